"""The device configuration file."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Optional, SupportsIndex

from . import _kalvista
from ._files import Path, checked_serial, encoded, encoded_directory, why_unreadable


@dataclass(frozen=True)
class Configuration:
    """What a device configuration file says about one camera. Values are as they stand, unchecked.

    serial              serial number of the camera; 0 when none is given
    fov                 field of view of the wanted optics, in degrees; 0 for none
    optics_text         tells apart optics of the same field of view
    formats_path        directory of the video formats
    cali_path           directory of the calibration files
    t_min               lower limit of the wanted temperature range, in °C
    t_max               upper limit of the wanted temperature range, in °C
    framerate           wanted frame rate, in frames per second
    video_format_index  index of the video format (USB endpoint); -1 when none is given
    bispectral          0 thermal sensor only, 1 bispectral technology
    average             not 0: frames are averaged over the intermediate frames
    auto_flag           the automatic flag is enabled
    min_interval        minimum interval of the automatic flag, in the camera's unit
    max_interval        maximum interval of the automatic flag, in the camera's unit
    pif_in_mode         process interface input: 0 image capture, 1 flag control
    pif_out_mode        process interface output: 0 off, 1 frame sync signal
    pif_out_voltage     process interface output voltage, in mV
    t_chip_mode         chip heating: 0 floating, 1 automatic, 2 fixed value
    t_chip_fixed_value  chip heating value for mode 2, in °C
    focus               position of the focus motor, in percent of its range
    """

    serial: int
    fov: int
    optics_text: Optional[str]
    formats_path: Optional[str]
    cali_path: Optional[str]
    t_min: int
    t_max: int
    framerate: float
    video_format_index: int
    bispectral: int
    average: int
    auto_flag: bool
    min_interval: float
    max_interval: float
    pif_in_mode: int
    pif_out_mode: int
    pif_out_voltage: int
    t_chip_mode: int
    t_chip_fixed_value: float
    focus: float

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
