"""Tables: the objects of a class as rows of plain values."""

from __future__ import annotations

from collections.abc import Callable, Iterator, Sequence
from typing import TYPE_CHECKING, Any

from ._records import UidMap
from .errors import DamagedError, UnknownNameError
from .schema import Class, Kind

if TYPE_CHECKING:
    from .reading import File, Record

MOST_NESTED = 20
"""Levels of objects that are parts of objects."""
TAKEN = ("file", "uid", "class")
"""Columns that are no fields; a field of such a name is "Class.field"."""

_Cell = tuple[str, int, Callable[[Any], Any] | None, bool]
"""Name of the column, position of the slot, how its raw value becomes a plain one, whether it is a member."""


class Table:
    """The objects of a class, and of those that derive from it unless told otherwise.

    `absent`: the fields among those asked for that none of the classes has. `kinds`: what the columns hold, None where
    classes differ; complete after the last row.
    """

    def __init__(self, file: File, class_name: str, fields: Sequence[str] | None = None, *,
                 derived: bool = True) -> None:
        self._file = file
        self._fields = field_names(fields)
        self._records = file.objects(class_name, derived=derived)
        self._cells: dict[tuple[Class, str], list[_Cell]] = {}
        self._members_seen = bytearray()
        self.kinds: dict[str, Kind | None] = {}
        names = _names(file.schema.family(class_name, derived=derived))
        self.absent = [name for name in fields or () if name not in names and name.partition(".")[0] not in names]
        base = file.schema[class_name]
        if base.is_readable and base.least_size <= len(file._data):
            self._plan(base, "")

    def require_fields(self) -> None:
        """Raises UnknownNameError if none of the classes has a field that was asked for."""
        for name in self.absent:
            raise UnknownNameError(f'none of the classes has a field "{name}"', path=self._file.path)

    def rows(self) -> Iterator[dict[str, Any]]:
        rows = map(self._row, self._records)
        if self._fields is None:
            return rows
        names = ["uid", "class", *self._fields]
        return ({name: row.get(name) for name in names} for row in rows)

    def columns(self) -> dict[str, list[Any]]:
        found: dict[str, list[Any]] = {name: [] for name in ("uid", "class", *(self._fields or ()))}
        number = 0
        for row in self.rows():
            if row.keys() != found.keys():
                for name in row:
                    if name not in found:
                        found[name] = [None] * number
                for name in found.keys() - row.keys():
                    found[name].append(None)
            for name, value in row.items():
                found[name].append(value)
            number += 1
        return found

    def _row(self, record: Record) -> dict[str, Any]:
        row: dict[str, Any] = {"uid": record.uid, "class": record.cls.name}
        self._fill(row, record, "", MOST_NESTED)
        return row

    def _fill(self, row: dict[str, Any], record: Record, prefix: str, levels: int) -> None:
        if levels == 0:
            raise DamagedError(f"{record!r} is a part of a part, more than {MOST_NESTED} times", path=self._file.path)
        raw = record.raw
        for name, position, plain, is_member in self._plan(record.cls, prefix):
            value = raw[position]
            if is_member and value:
                self._fill(row, self._member(value, record, name), name + ".", levels - 1)
            else:
                row[name] = value if plain is None else plain(value)

    def _plan(self, cls: Class, prefix: str) -> list[_Cell]:
        cells = self._cells.get((cls, prefix))
        if cells is None:
            cells = self._cells[cls, prefix] = []
            for name, position in cls.positions.items():
                kind = cls.slots[position].field.kind
                if name in TAKEN and not prefix:
                    name = f"{cls.slots[position].owner.name}.{name}"
                name = prefix + name
                cells.append((name, position, _plain(kind), kind is Kind.MEMBER))
                if kind is not Kind.MEMBER:
                    self.kinds[name] = kind if self.kinds.get(name, kind) is kind else None
        return cells

    def _member(self, uid: int, owner: Record, name: str) -> Record:
        """An object is a part of one owner; what is part of several would multiply."""
        member = self._file._follow(uid, owner, name)
        assert member is not None
        if not self._members_seen:
            self._members_seen = bytearray(len(self._file))
        if self._members_seen[member._position]:
            raise DamagedError(f"{member!r} is part of two objects", path=self._file.path)
        self._members_seen[member._position] = 1
        return member


def field_names(fields: Sequence[str] | None) -> tuple[str, ...] | None:
    """The names asked for. Raises TypeError for one name instead of a list."""
    if isinstance(fields, str):
        raise TypeError(f'fields are a list of names: ["{fields}"]')
    return None if fields is None else tuple(fields)


def _names(classes: list[Class]) -> set[str]:
    """The names that fields of the classes may have in a table."""
    names: set[str] = set()
    open_, seen = list(classes), set(classes)
    while open_:
        cls = open_.pop()
        names.update(own.name for own in cls.fields)
        names.update(f"{cls.name}.{own.name}" for own in cls.fields)
        new = set(cls.parents) - seen
        seen |= new
        open_ += new
    return names


def _plain(kind: Kind) -> Callable[[Any], Any] | None:
    if kind.is_pointer:
        return lambda uid: uid or None
    if kind.is_pointer_list:
        return lambda uids: [uid or None for uid in uids]
    if kind.is_value_list:
        return list
    return _pairs if kind is Kind.CHILD_MAP else None


def _pairs(uids: UidMap) -> list[list[int | None]]:
    if len(uids.keys) != len(uids.values):
        raise DamagedError(f"a map has {len(uids.keys)} keys and {len(uids.values)} values")
    return [[key or None, value or None] for key, value in zip(uids.keys, uids.values)]
