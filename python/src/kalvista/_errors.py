"""What can go wrong."""
from __future__ import annotations

import errno
from typing import Optional


class Error(Exception):
    """Something that the library could not do: a sentence that says what, and the path concerned."""

    path: Optional[str]

    def __init__(self, sentence: str, path: Optional[str] = None) -> None:
        super().__init__(sentence)
        self.path = path

    def __str__(self) -> str:
        return str(self.args[0])

    def __reduce__(self) -> tuple[object, ...]:
        return type(self), (str(self), self.path)


class NotFoundError(Error, FileNotFoundError):
    """A file, an element or an optics that is not there."""

    def __init__(self, sentence: str, path: Optional[str] = None) -> None:
        super().__init__(sentence, path)
        self.errno, self.strerror, self.filename = errno.ENOENT, sentence, path


class FormatError(Error, ValueError):
    """A file that is not what it should be, or a value that can be none."""
