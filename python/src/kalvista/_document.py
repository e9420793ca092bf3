"""The small XML reader that the library's file formats are defined by."""
from __future__ import annotations

import os
from collections.abc import Callable, Iterator
from typing import Optional, TypeVar, Union

from . import _kalvista
from ._errors import FormatError, NotFoundError
from ._files import Path, encoded, encoded_text, why_unreadable

Element = tuple[int, int]
Value = TypeVar("Value")
Default = TypeVar("Default")


class _Required:
    """Stands for a default that was not given."""


_REQUIRED = _Required()


class Document:
    """An element of a file, found by plain search: no attributes, no blanks inside tags, no ``<name/>``.

    ``Document(path, root)`` is the content of the root element, whose tags stand alone on their
    lines. Raises NotFoundError when the file does not exist, FormatError when it has no such root.
    Two documents are equal when files, roots and contents are.
    """

    __slots__ = ("_reader", "_path", "_root", "_element")

    def __init__(self, path: Path, root: str) -> None:
        name = encoded(path)
        self._reader = _kalvista.Reader(name, encoded_text(root))
        if not self._reader.opened or not self._reader.has_root:
            raise why_unreadable(name, root)
        self._path = os.fsdecode(name)
        self._root = root
        self._element: Element = (0, self._reader.length)

    @property
    def path(self) -> str:
        """Path of the file."""
        return self._path

    @property
    def text(self) -> str:
        """All that stands between the element's tags."""
        return self._reader.text(self._element)

    def get_int(self, name: str, default: Union[Default, _Required] = _REQUIRED) -> Union[int, Default]:
        """Reads the first child of that name as an integer: decimal, hexadecimal (0x10) or octal (010).

        Without such a child gives the default, or raises NotFoundError when there is none. Raises
        FormatError when the text is no number.
        """
        return self._number(self._reader.get_int, name, default)

    def get_float(self, name: str, default: Union[Default, _Required] = _REQUIRED) -> Union[float, Default]:
        """Reads the first child of that name as a number of single precision; else as get_int()."""
        return self._number(self._reader.get_float, name, default)

    def get_text(self, name: str, default: Union[Default, _Required] = _REQUIRED) -> Union[str, Default]:
        """Reads the text of the first child of that name, blanks included; else as get_int()."""
        child = self._reader.first_child(self._element, encoded_text(name))
        return self._absent(name, default) if child is None else self._reader.text(child)

    def children(self, name: str) -> Iterator[Document]:
        """Goes over the children of that name."""
        wanted = encoded_text(name)
        begin, end = self._element
        while (child := self._reader.first_child((begin, end), wanted)) is not None:
            yield self._at(child)
            begin = child[1]

    def count(self, name: str) -> int:
        """Counts the children of that name."""
        return self._reader.count(self._element, encoded_text(name))

    def _number(
        self,
        read: Callable[[Element, bytes], tuple[bool, Optional[Value]]],
        name: str,
        default: Union[Default, _Required],
    ) -> Union[Value, Default]:
        present, value = read(self._element, encoded_text(name))
        if not present:
            return self._absent(name, default)
        if value is None:
            text = self.get_text(name)
            raise FormatError(f"the element <{name}> in the file {self._path} is no number: {text!r}", self._path)
        return value

    def _absent(self, name: str, default: Union[Default, _Required]) -> Default:
        if isinstance(default, _Required):
            raise NotFoundError(f"the file {self._path} has no element <{name}> here", self._path)
        return default

    def _at(self, element: Element) -> Document:
        child = object.__new__(Document)
        child._reader, child._path, child._root, child._element = self._reader, self._path, self._root, element
        return child

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Document) and self._value() == other._value()

    def __hash__(self) -> int:
        return hash(self._value())

    def _value(self) -> tuple[str, str, str]:
        return self._path, self._root, self.text

    def __copy__(self) -> Document:
        return self

    def __deepcopy__(self, memo: object) -> Document:
        return self

    def __reduce__(self) -> tuple[object, ...]:
        return _reopened, (self._path, self._root, self._element, self.text)

    def __repr__(self) -> str:
        text = self.text
        return f"<Document {self._root!r} of {self._path}: {text[:40]!r}{'...' if len(text) > 40 else ''}>"


def _reopened(path: str, root: str, element: Element, text: str) -> Document:
    """Reads the file of a pickled document again, which must still be the same there."""
    document = Document(path, root)._at(element)
    if document.text != text:
        raise FormatError(f"the file {path} has changed since the document was pickled", path)
    return document
