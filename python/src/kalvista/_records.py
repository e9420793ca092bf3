"""The records of a calibration: immutable, compared and hashed by value."""
from __future__ import annotations

from collections.abc import Iterator, Mapping
from dataclasses import dataclass, field
from typing import Any, Optional, SupportsIndex

from . import _kalvista, _pictures
from ._errors import NotFoundError
from ._files import Path, checked_serial, encoded, encoded_directory, why_unreadable


class Constants(Mapping[str, float]):
    """An immutable mapping from the keys of the calibration file to their numbers."""

    __slots__ = ("_values",)

    _values: dict[str, float]

    def __init__(self, values: Mapping[str, float]) -> None:
        self._values = dict(values)

    def __getitem__(self, key: str) -> float:
        return self._values[key]

    def __iter__(self) -> Iterator[str]:
        return iter(self._values)

    def __len__(self) -> int:
        return len(self._values)

    def __hash__(self) -> int:
        return hash(frozenset(self._values.items()))

    def __repr__(self) -> str:
        return f"Constants({self._values!r})"


@dataclass(frozen=True)
class Range:
    """A temperature range that an optics is calibrated for; temperatures are in °C."""

    low: float
    """Lower end."""
    high: float
    """Upper end."""
    low_extended: Optional[float]
    """Lower end of the extended range; None when the file has none (or the number -100)."""
    high_extended: Optional[float]
    """Upper end of the extended range; None when the file has none (or the number -100)."""
    decimals: int
    """Decimals that a temperature is told with."""
    frame_rates: tuple[int, ...]
    """Calibrated frame rates, in frames per second; empty: any."""
    table: Constants = field(repr=False)
    """Parameters of the calibration table, keys as in the file."""


@dataclass(frozen=True)
class Optics:
    """An optics of a camera, with its temperature ranges in the order of the file."""

    fov: int
    """Field of view, in degrees."""
    text: str
    """Tells apart optics of the same field of view; may be empty."""
    serial_number: int
    """Serial number of the optics."""
    sample_point: bool
    """True when the optics needs no characteristic-curve files."""
    ranges: tuple[Range, ...]
    """Its temperature ranges."""


@dataclass(frozen=True, repr=False)
class Calibration:
    """The calibration of one camera: a snapshot that stays as it is, whatever is loaded later.

    >>> calibration = Calibration.load("/var/lib/cameras", 12345678)
    >>> calibration.find(33, "macro").ranges
    """

    serial: int
    """Serial number of the camera."""
    main: Constants
    """Constants of the device, keys as in the file: ``main["TecA"]``."""
    optics: tuple[Optics, ...]
    """The optics, in the order of the file."""

    @staticmethod
    def load(directory: Path, serial: SupportsIndex) -> Calibration:
        """Reads ``Cali-<serial>.xml`` of a directory, anew each time.

        No directory is made. An empty directory means "Imager" below the working directory.
        Raises NotFoundError when the file does not exist, FormatError when it holds no calibration.
        """
        folder = encoded_directory(directory)
        number = checked_serial(serial)
        calibration = _kalvista.load(folder, number)
        if calibration is None:
            raise why_unreadable(b"%s/Cali-%d.xml" % (folder, number), "CaliData")
        return calibration

    def find(self, fov: int, text: str = "") -> Optics:
        """Gives the first optics of this field of view and exactly this text, or raises NotFoundError."""
        for optics in self.optics:
            if (optics.fov, optics.text) == (fov, text):
                return optics
        known = ", ".join(f"{optics.fov}° {optics.text!r}" for optics in self.optics) or "none"
        raise NotFoundError(f"camera {self.serial} has no optics of {fov}° with the text {text!r}; it has {known}")

    def file_names(self) -> list[str]:
        """Names every file of the calibration, its XML first, in the order of the library's check."""
        names = [f"Cali-{self.serial}.xml"]
        for optics in self.optics:
            # Files are found by field of view and text: of two alike, the first one's ranges count.
            ranges = self.find(optics.fov, optics.text).ranges
            for wanted in ranges:
                alike = next(known for known in ranges if (known.low, known.high) == (wanted.low, wanted.high))
                for rate in alike.frame_rates or (0,):
                    base = self._base_name(optics, wanted, rate)
                    names.append(f"Cali-{base}.dat")
                    if not optics.sample_point:
                        names.append(f"Kennlinie-{base}.prn")
        return names

    def _base_name(self, optics: Optics, wanted: Range, rate: int) -> str:
        text = encoded(optics.text)
        return _kalvista.file_name(self.serial, optics.fov, text, wanted.low, wanted.high, rate)

    def plot(self, axes: Any = None) -> Any:
        """Draws the ranges of each optics as bars over temperature, extended parts paler.

        Needs matplotlib: ``pip install kalvista[plot]``. Gives the axes that it drew on.
        """
        return _pictures.plot(self, axes)

    def _repr_html_(self) -> str:
        return _pictures.html_table(self)

    def __repr__(self) -> str:
        optics = ", ".join(f"{one.fov}° {one.text}".rstrip() for one in self.optics)
        return f"<Calibration of camera {self.serial}: {optics or 'no optics'}>"
