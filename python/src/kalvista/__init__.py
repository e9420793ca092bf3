"""Calibrations and configurations of USB infrared cameras.

    import kalvista

    calibration = kalvista.Calibration.load("/var/lib/cameras", 12345678)
    for optics in calibration.optics:
        print(optics.fov, optics.text, [(r.low, r.high, r.frame_rates) for r in optics.ranges])

Every call may come from any thread. Failures are raised as kalvista.Error; the library's log goes to
the logger "kalvista" of the logging module.
"""
from __future__ import annotations

import dataclasses
import os
import sys
from typing import Optional, SupportsIndex

from . import _kalvista
from ._configuration import Configuration
from ._document import Document
from ._errors import Error, FormatError, NotFoundError
from ._files import Path, checked_serial, encoded_directory
from ._log import log
from ._records import Calibration, Constants, Optics, Range

__version__ = _kalvista.version
__all__ = [
    "Calibration",
    "Configuration",
    "Constants",
    "Document",
    "Error",
    "FormatError",
    "NotFoundError",
    "Optics",
    "Range",
    "find_serial",
    "log",
    "missing_files",
]

_kalvista.register_records(
    {
        "Constants": (Constants, Constants.__slots__),
        **{
            record.__name__: (record, tuple(field.name for field in dataclasses.fields(record)))
            for record in (Range, Optics, Calibration, Configuration)
        },
    }
)

_DEVICES = "/sys/bus/usb/devices"


def missing_files(directory: Path, serial: SupportsIndex) -> list[str]:
    """Names the files of a camera's calibration that are missing from a directory; none is made.

    Without a calibration XML that can be loaded, its name alone: it names all others.
    """
    folder = encoded_directory(directory)
    try:
        names = Calibration.load(folder, serial).file_names()
    except (NotFoundError, FormatError):
        return [f"Cali-{checked_serial(serial)}.xml"]
    return [name for name in names if not _opens(os.path.join(folder, os.fsencode(name)))]


def find_serial(serial: Optional[SupportsIndex] = None) -> Optional[int]:
    """Gives the serial number of the attached camera, or of this one when it is attached; else None.

    0 asks for any camera, as None does.
    Raises Error when the kernel's list of devices cannot be read.
    """
    wanted = 0 if serial is None else checked_serial(serial, 2 * sys.maxsize + 1)
    if os.path.exists(_DEVICES) and not os.access(_DEVICES, os.R_OK | os.X_OK):
        raise Error(f"the directory {_DEVICES} cannot be read: permission denied", _DEVICES)
    return _kalvista.find_serial(wanted) or None


def _opens(path: bytes) -> bool:
    try:
        os.close(os.open(path, os.O_RDONLY | os.O_CLOEXEC | os.O_NONBLOCK))
    except OSError:
        return False
    return True
