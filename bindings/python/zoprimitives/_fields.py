"""What objects that are read and objects that are built have in common: the fields of their class, by name."""

from __future__ import annotations

from collections.abc import Iterable, Iterator
from typing import Any

from .errors import UnknownNameError
from .schema import Class


class Fields:
    """An object whose fields are its items and, where the name allows, its attributes."""

    __slots__ = ("cls",)
    cls: Class

    def keys(self) -> Iterable[str]:
        """The names of the fields, inherited ones included; see `Class.positions`."""
        return self.cls.positions.keys()

    def __iter__(self) -> Iterator[str]:
        return iter(self.cls.positions)

    def __contains__(self, name: object) -> bool:
        return name in self.cls.positions

    def __getitem__(self, name: str) -> Any:
        raise NotImplementedError

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        try:
            return self[name]
        except UnknownNameError as error:
            raise AttributeError(str(error)) from None
