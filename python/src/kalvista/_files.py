"""Paths and serial numbers on their way to the library, and why a file could not be read."""
from __future__ import annotations

import operator
import os
import stat
from typing import SupportsIndex, Union

from . import _kalvista
from ._errors import Error, FormatError, NotFoundError

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

LONGEST_DIRECTORY = 260
LARGEST_SERIAL = 2**31 - 1


def encoded(path: Path) -> bytes:
    """The bytes of a path."""
    try:
        name = os.fsencode(path)
    except UnicodeEncodeError as error:
        raise FormatError(f"{error.object!r} can be the name of no file: {error.reason}") from None
    return _whole(name)


def encoded_text(text: str) -> bytes:
    """The bytes of a text as it stands in a file."""
    if not isinstance(text, str):
        raise TypeError(f"expected str, not {type(text).__name__}")
    try:
        return _whole(text.encode(errors="surrogateescape"))
    except UnicodeEncodeError as error:
        raise FormatError(f"{text!r} can stand in no file: {error.reason}") from None


def _whole(text: bytes) -> bytes:
    """What holds no zero byte: the library would end there."""
    if b"\0" in text:
        raise FormatError(f"{os.fsdecode(text)!r} holds a zero byte; leave it out", os.fsdecode(text))
    return text


def encoded_directory(directory: Path) -> bytes:
    """The bytes of a directory that the library takes as it is."""
    text = encoded(directory) or os.path.join(os.getcwdb(), b"Imager")
    if len(text) > LONGEST_DIRECTORY:
        name = os.fsdecode(text)
        raise FormatError(f"the directory {name} has more than {LONGEST_DIRECTORY} bytes; use a shorter path", name)
    return text


def checked_serial(serial: SupportsIndex, largest: int = LARGEST_SERIAL) -> int:
    """A serial number that a camera can have."""
    number = operator.index(serial)
    if not 0 <= number <= largest:
        raise FormatError(f"{number} is no serial number; give one from 0 to {largest}")
    return number


def why_unreadable(path: bytes, root: str) -> Error:
    """What to raise for a file that the library did not take."""
    name = os.fsdecode(path)
    try:
        mode = os.stat(path).st_mode
    except (FileNotFoundError, NotADirectoryError):
        return NotFoundError(f"the file {name} does not exist", name)
    except OSError as error:
        return Error(f"the file {name} cannot be reached: {error.strerror}", name)
    if not stat.S_ISREG(mode):
        return FormatError(f"{name} is no regular file", name)
    if not os.access(path, os.R_OK):
        return Error(f"the file {name} cannot be read: permission denied", name)
    reader = _kalvista.Reader(path, encoded_text(root))
    if not reader.opened:
        return FormatError(f"the comments in the file {name} do not balance; mend it, or get it anew", name)
    if not reader.has_root:
        return FormatError(f"the file {name} has no element <{root}>; mend it, or get it anew", name)
    return Error(f"the file {name} changed while it was read; try again", name)
