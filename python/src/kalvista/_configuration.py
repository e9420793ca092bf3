"""The device configuration file."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Optional, SupportsIndex

from . import _kalvista
from ._files import Path, checked_serial, encoded, encoded_directory, why_unreadable


@dataclass(frozen=True)
class Configuration:
    """What a device configuration file says about one camera. Values are as they stand, unchecked."""

    serial: int
    """Serial number of the camera; 0 when none is given."""
    fov: int
    """Field of view of the wanted optics, in degrees; 0 for none."""
    optics_text: Optional[str]
    """Tells apart optics of the same field of view."""
    formats_path: Optional[str]
    """Directory of the video formats."""
    cali_path: Optional[str]
    """Directory of the calibration files."""
    t_min: int
    """Lower limit of the wanted temperature range, in °C."""
    t_max: int
    """Upper limit of the wanted temperature range, in °C."""
    framerate: float
    """Wanted frame rate, in frames per second."""
    video_format_index: int
    """Index of the video format (USB endpoint); -1 when none is given."""
    bispectral: int
    """0 thermal sensor only, 1 bispectral technology."""
    average: int
    """Not 0: frames are averaged over the intermediate frames."""
    auto_flag: bool
    """The automatic flag is enabled."""
    min_interval: float
    """Minimum interval of the automatic flag, in the camera's unit."""
    max_interval: float
    """Maximum interval of the automatic flag, in the camera's unit."""
    pif_in_mode: int
    """Process interface input: 0 image capture, 1 flag control."""
    pif_out_mode: int
    """Process interface output: 0 off, 1 frame sync signal."""
    pif_out_voltage: int
    """Process interface output voltage, in mV."""
    t_chip_mode: int
    """Chip heating: 0 floating, 1 automatic, 2 fixed value."""
    t_chip_fixed_value: float
    """Chip heating value for mode 2, in °C."""
    focus: float
    """Position of the focus motor, in percent of its range."""

    @staticmethod
    def read(path: Path) -> Configuration:
        """Reads a file. Raises NotFoundError when it does not exist, FormatError when it is none."""
        name = encoded(path)
        configuration = _kalvista.read_configuration(name)
        if configuration is None:
            raise why_unreadable(name, "imager")
        return configuration

    @staticmethod
    def default_document(serial: SupportsIndex, directory: Path) -> str:
        """Gives the text of a default configuration file for a camera, with this calibration directory.

        The optics of the calibration that lies there stands in a comment, else a placeholder.
        """
        return _kalvista.default_document(checked_serial(serial), encoded_directory(directory))
