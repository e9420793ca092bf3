"""The records of a calibration: immutable, compared and hashed by value."""
from __future__ import annotations

import os
from collections.abc import Iterator, Mapping
from dataclasses import dataclass, field
from typing import Any, Optional, SupportsIndex

from . import _kalvista, _pictures
from ._errors import NotFoundError
from ._files import Path, checked_serial, encoded_directory, encoded_text, why_unreadable


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

    def __reduce__(self) -> tuple[object, ...]:
        return Constants, (self._values,)

    def __repr__(self) -> str:
        return f"Constants({self._values!r})"


@dataclass(frozen=True)
class Range:
    """A temperature range that an optics is calibrated for; temperatures are in °C.

    low            lower end
    high           upper end
    low_extended   lower end of the extended range; None when the file has none (or the number -100)
    high_extended  upper end of the extended range; None when the file has none (or the number -100)
    decimals       decimals that a temperature is told with
    frame_rates    calibrated frame rates, in frames per second; empty: any
    table          parameters of the calibration table, keys as in the file
    """

    low: float
    high: float
    low_extended: Optional[float]
    high_extended: Optional[float]
    decimals: int
    frame_rates: tuple[int, ...]
    table: Constants = field(repr=False)


@dataclass(frozen=True)
class Optics:
    """An optics of a camera, with its temperature ranges in the order of the file.

    fov            field of view, in degrees
    text           tells apart optics of the same field of view; may be empty
    serial_number  serial number of the optics
    sample_point   true when the optics needs no characteristic-curve files
    ranges         its temperature ranges
    """

    fov: int
    text: str
    serial_number: int
    sample_point: bool
    ranges: tuple[Range, ...]


@dataclass(frozen=True, repr=False)
class Calibration:
    """The calibration of one camera: a snapshot that stays as it is, whatever is loaded later.

    >>> calibration = Calibration.load("/var/lib/cameras", 12345678)
    >>> calibration.find(33, "macro").ranges

    serial  serial number of the camera
    main    constants of the device, keys as in the file: ``main["TecA"]``
    optics  the optics, in the order of the file
    """

    serial: int
    main: Constants
    optics: tuple[Optics, ...]

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
        # Files are found by field of view and text, and by the ends of a range: of two alike, the first counts.
        first_optics: dict[tuple[int, str], Optics] = {}
        for optics in self.optics:
            first_range: dict[tuple[float, float], Range] = {}
            for wanted in first_optics.setdefault((optics.fov, optics.text), optics).ranges:
                alike = first_range.setdefault((wanted.low, wanted.high), wanted)
                for rate in alike.frame_rates or (0,):
                    base = self._base_name(optics, wanted, rate)
                    names.append(f"Cali-{base}.dat")
                    if not optics.sample_point:
                        names.append(f"Kennlinie-{base}.prn")
        return names

    def _base_name(self, optics: Optics, wanted: Range, rate: int) -> str:
        text = encoded_text(optics.text)
        return os.fsdecode(_kalvista.file_name(self.serial, optics.fov, text, wanted.low, wanted.high, rate))

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
