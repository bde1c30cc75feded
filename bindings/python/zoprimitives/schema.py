"""The classes of a file and their fields."""

from __future__ import annotations

import struct
from collections.abc import Iterable, Iterator, Mapping, Sequence
from dataclasses import dataclass, field
from enum import IntEnum
from functools import cached_property

from . import _text
from ._frames import MAX_PAYLOAD
from .errors import ModelError, SchemaError, UnknownNameError, UnreadableError

MAX_LEVELS = 1_000
"""Class levels of one object, a parent that is inherited twice counted twice."""
MAX_COUNT = 16_777_215
GENERIC_BASES = frozenset(("ZoStreamableBase", "ZoObjectStreamable", "Streamable"))
"""A field of such a class takes any object."""


class Kind(IntEnum):
    """What a field holds; the numbers are those of the file."""

    INT = -1
    FLOAT = -2
    DOUBLE = -3
    STRING = -4
    BLOB = -5
    CHILD = -6
    """An owned object."""
    CHILD_LIST = -7
    REFERENCE = -8
    """An object that another field owns."""
    REFERENCE_LIST = -9
    BOOL = -10
    INT_LIST = -11
    FLOAT_LIST = -12
    DOUBLE_LIST = -13
    STRING_LIST = -14
    EXTERNAL = -15
    """A reference to an object that the model does not own, but the file holds."""
    EXTERNAL_LIST = -16
    UNSIGNED = -17
    MEMBER = -18
    """An object that is part of its owner."""
    CHILD_MAP = -19

    @property
    def owns(self) -> bool:
        """Whether the objects hang from the field."""
        return self in _OWNING

    @property
    def is_external(self) -> bool:
        return self in _EXTERNAL

    @property
    def is_pointer(self) -> bool:
        """Whether the field leads to one object, or none."""
        return self in _POINTERS

    @property
    def is_pointer_list(self) -> bool:
        return self in _POINTER_LISTS

    @property
    def is_value_list(self) -> bool:
        return self in _VALUE_LISTS

    @property
    def smallest(self) -> int:
        """The fewest bytes that such a field takes in a record."""
        return _SMALLEST.get(self, 4)

    @property
    def place(self) -> int:
        """Which of the six blocks of fields it stands in, from 0."""
        return _PLACES.get(self, 1)


_OWNING = frozenset((Kind.CHILD, Kind.MEMBER, Kind.CHILD_LIST, Kind.CHILD_MAP))
_EXTERNAL = frozenset((Kind.EXTERNAL, Kind.EXTERNAL_LIST))
_POINTERS = frozenset((Kind.CHILD, Kind.REFERENCE, Kind.EXTERNAL, Kind.MEMBER))
_POINTER_LISTS = frozenset((Kind.CHILD_LIST, Kind.REFERENCE_LIST, Kind.EXTERNAL_LIST))
_VALUE_LISTS = frozenset((Kind.INT_LIST, Kind.FLOAT_LIST, Kind.DOUBLE_LIST, Kind.STRING_LIST))
_SMALLEST = {Kind.BOOL: 1, Kind.DOUBLE: 8, Kind.CHILD_MAP: 8}
_PLACES = {Kind.CHILD_MAP: 0, Kind.CHILD: 2, Kind.MEMBER: 2, Kind.CHILD_LIST: 3, Kind.REFERENCE: 4,
           Kind.EXTERNAL: 4, Kind.REFERENCE_LIST: 5, Kind.EXTERNAL_LIST: 5}
_KINDS = {int(kind): kind for kind in Kind}


@dataclass(frozen=True, slots=True)
class Field:
    """A field of a class. `target`: the name of the class that it leads to, None for any and for values."""

    name: str
    kind: Kind
    target: str | None = None


@dataclass(eq=False)
class Class:
    """A class of a schema. `fields` are its own, in record order; `slots` has the inherited ones, too."""

    name: str
    id: int
    fields: tuple[Field, ...] = ()
    parents: tuple["Class", ...] = ()
    abstract: bool = False
    unknown_kind: int | None = field(default=None, repr=False)
    """A kind of one of its own fields that this version does not know."""

    def __repr__(self) -> str:
        return f"<Class {self.name}>"

    def levels(self) -> Iterator[Class]:
        """The class and all that it inherits from, parents first; what is inherited twice comes twice."""
        open_ = [(self, False)]
        while open_:
            level, has_parents = open_.pop()
            if has_parents or not level.parents:
                yield level
            else:
                open_.append((level, True))
                open_.extend((parent, False) for parent in reversed(level.parents))

    def derives_from(self, other: Class) -> bool:
        """Whether it is that class, or inherits from it."""
        return self is other or any(level is other for level in self.levels())

    @cached_property
    def least_size(self) -> int:
        """The fewest bytes of a record."""
        return sum(level._own_least_size for level in self.levels())

    @cached_property
    def _own_least_size(self) -> int:
        return sum(own.kind.smallest for own in self.fields)

    @property
    def is_readable(self) -> bool:
        """Whether this version knows the kinds of all its fields."""
        return all(level.unknown_kind is None for level in self.levels())

    @cached_property
    def slots(self) -> tuple[Slot, ...]:
        """All fields, inherited ones included, as they follow each other in a record.

        A parent that is inherited twice is there twice. Raises UnreadableError where a kind is unknown, SchemaError where
        no record could hold the fields.
        """
        for level in self.levels():
            if level.unknown_kind is not None:
                raise UnreadableError(f'objects of the class "{self.name}" cannot be read: '
                                      f'"{level.name}" has a field of kind {level.unknown_kind}')
        if self.least_size > MAX_PAYLOAD:
            raise SchemaError(f'the class "{self.name}" has more fields than a record can hold')
        return tuple(Slot(own, level) for level in self.levels() for own in level.fields)

    @cached_property
    def positions(self) -> Mapping[str, int]:
        """Where in `slots` the field of a name stands.

        Where fields share a name, that of the class itself, or of the parent named last, has it; another one is
        "Class.field".
        """
        found: dict[str, int] = {}
        for position, slot in enumerate(self.slots):
            before = found.get(slot.field.name)
            if before is not None and self.slots[before].owner is not slot.owner:
                found[f"{self.slots[before].owner.name}.{slot.field.name}"] = before
            found[slot.field.name] = position
        return found

    @cached_property
    def owning_or_external(self) -> tuple[int, ...]:
        """The positions of the fields whose objects are saved with an object of the class."""
        return tuple(position for position, slot in enumerate(self.slots)
                     if slot.field.kind.owns or slot.field.kind.is_external)

    @cached_property
    def has_twins(self) -> bool:
        """Whether a parent is inherited twice, so that a field stands at several positions and has one value."""
        return len(self.positions) < len(self.slots)

    def twins(self, position: int) -> Sequence[int]:
        """All positions of the field that stands at that one."""
        if not self.has_twins:
            return (position,)
        return [other for other, slot in enumerate(self.slots) if slot == self.slots[position]]

    def position(self, name: str) -> int:
        """Where in `slots` it stands. Raises UnknownNameError."""
        try:
            return self.positions[name]
        except KeyError:
            raise UnknownNameError(f'"{self.name}" has no field "{name}"; it has '
                                   f'{_enumerated(self.positions)}') from None


@dataclass(frozen=True, slots=True)
class Slot:
    """A field in the record of a class: the field, and the class that declares it."""

    field: Field
    owner: Class


def _enumerated(names: Iterable[str]) -> str:
    return ", ".join(f'"{name}"' for name in names) or "none"


class Schema(Mapping[str, Class]):
    """The classes of a file, by name, in the file's order."""

    def __init__(self) -> None:
        self._classes: dict[str, Class] = {}
        self.by_id: dict[int, Class] = {}

    def __getitem__(self, name: str) -> Class:
        try:
            return self._classes[name]
        except KeyError:
            raise UnknownNameError(f'there is no class "{name}"; there are {_enumerated(self)}') from None

    def __iter__(self) -> Iterator[str]:
        return iter(self._classes)

    def __len__(self) -> int:
        return len(self._classes)

    def __contains__(self, name: object) -> bool:
        return name in self._classes

    def __repr__(self) -> str:
        return f"<Schema {', '.join(self)}>"

    def add(self, name: str, fields: Iterable[Field | tuple[str, Kind] | tuple[str, Kind, str | None]] = (), *,
            parents: Iterable[str] = (), abstract: bool = False) -> Class:
        """Adds a class, its parents before it, and returns it.

        A field is a `Field`, or its arguments: `("name", Kind.STRING)`, `("rooms", Kind.CHILD_LIST, "Room")`. The class
        that a field leads to may come later. In a record, and so in `fields`, fields stand by kind: maps, values, owned
        objects, owned lists, references, lists of references.
        """
        if name in self._classes:
            raise ModelError(f'there is a class "{name}" already')
        made = [own if isinstance(own, Field) else Field(*own) for own in fields]
        for text in (name, *(own.name for own in made)):
            check_text(text, f'the name "{text}"')
        if len({own.name for own in made}) < len(made):
            raise ModelError(f'two fields of "{name}" share a name')
        cls = Class(name, max(self.by_id, default=0) + 1, _in_place(made), tuple(self[parent] for parent in parents),
                    abstract)
        if sum(1 for _ in cls.levels()) > MAX_LEVELS:
            raise ModelError(_too_many_levels(cls))
        self._put(cls)
        return cls

    def _put(self, cls: Class) -> None:
        self._classes[cls.name] = cls
        self.by_id[cls.id] = cls

    def family(self, name: str, *, derived: bool = True) -> list[Class]:
        """The class, and unless told otherwise those that derive from it."""
        found = {self[name]}
        if derived:
            children: dict[Class, list[Class]] = {}
            for cls in self.values():
                for parent in cls.parents:
                    children.setdefault(parent, []).append(cls)
            open_ = list(found)
            while open_:
                new = set(children.get(open_.pop(), ())) - found
                found |= new
                open_ += new
        return [cls for cls in self.values() if cls in found]

    def may_lead(self, target: str | None, cls: Class) -> bool:
        """Whether a field of that target takes objects of the class."""
        return target is None or target in GENERIC_BASES or (target in self and cls.derives_from(self[target]))


def check_text(text: str, what: str) -> bytes:
    """The bytes of a text for a file. Raises ModelError."""
    try:
        return _text.encode(text)
    except UnicodeEncodeError as error:
        raise ModelError(f"{what} has a character that Windows-1252 lacks: "
                         f"{error.object[error.start]!r}", remedy="Use another one") from None


def _in_place(fields: Iterable[Field]) -> tuple[Field, ...]:
    return tuple(sorted(fields, key=lambda own: own.kind.place))


def _check_levels(classes: Iterable[Class]) -> None:
    """Refuses a class that is its own ancestor, and more levels than an object may have. Does not recurse."""
    levels: dict[Class, int] = {}
    for root in classes:
        open_ = {root: iter(root.parents)} if root not in levels else {}
        while open_:
            cls, parents = next(reversed(open_.items()))
            parent = next((parent for parent in parents if parent not in levels), None)
            if parent in open_:
                raise SchemaError(f'the class "{cls.name}" is its own ancestor')
            if parent is not None:
                open_[parent] = iter(parent.parents)
                continue
            levels[cls] = 1 + sum(levels[parent] for parent in cls.parents)
            if levels[cls] > MAX_LEVELS:
                raise SchemaError(_too_many_levels(cls))
            del open_[cls]


def _too_many_levels(cls: Class) -> str:
    return f'objects of the class "{cls.name}" have more than {MAX_LEVELS} class levels'


# The schema record


class _Reader:
    """Takes values from the schema record; its end is a SchemaError."""

    _INT = struct.Struct("<i")

    def __init__(self, content: bytes) -> None:
        self.content = content
        self.at = 0

    def number(self) -> int:
        if len(self.content) - self.at < 4:
            raise SchemaError("the schema ends too soon")
        (value,) = self._INT.unpack_from(self.content, self.at)
        self.at += 4
        return int(value)

    def count(self, smallest: int) -> int:
        """A number of things that take at least so many bytes each."""
        count = self.number()
        if not 0 <= count <= MAX_COUNT or count * smallest > len(self.content) - self.at:
            raise SchemaError("the schema counts more than it has")
        return count

    def bytes(self, size: int) -> bytes:
        found = self.content[self.at:self.at + size]
        if len(found) < size:
            raise SchemaError("the schema ends too soon")
        self.at += size
        return found

    def text(self) -> str:
        return _text.decode(self.bytes(self.count(1)))


@dataclass(slots=True)
class _Entry:
    """A class as it stands in the file: by numbers."""

    id: int
    name: str
    abstract: bool
    parents: list[int]
    fields: list[tuple[int, int, str]]
    """Class id, kind, name."""


_SMALLEST_CLASS = 4 + 4 + 1 + 4 + 5 * 4
_SMALLEST_FIELD = 4 + 4 + 4


def _read_entry(reader: _Reader) -> _Entry:
    entry = _Entry(reader.number(), reader.text(), reader.bytes(1) != b"\0", [], [])
    marker = reader.number()
    entry.parents = [reader.number() for _ in range(reader.count(4))] if marker == -1 else [marker]
    _read_block(reader, entry)
    # The block of maps is only there where the class has one: then the values' follows.
    has_maps = bool(entry.fields) and entry.fields[-1][1] == Kind.CHILD_MAP
    for _ in range(5 if has_maps else 4):
        _read_block(reader, entry)
    return entry


def _read_block(reader: _Reader, entry: _Entry) -> None:
    for _ in range(reader.count(_SMALLEST_FIELD)):
        entry.fields.append((reader.number(), reader.number(), reader.text()))


def read_schema(content: bytes) -> Schema:
    """The schema in the payload of a schema record. Raises SchemaError."""
    reader = _Reader(content)
    entries = [_read_entry(reader) for _ in range(reader.count(_SMALLEST_CLASS))]
    schema = Schema()
    for entry in entries:
        if entry.id <= 0 or entry.id in schema.by_id:
            raise SchemaError(f'the id {entry.id} of the class "{entry.name}" is not positive, or another class has it')
        if entry.name in schema:
            raise SchemaError(f'there are two classes "{entry.name}"')
        schema._put(Class(entry.name, entry.id, abstract=entry.abstract))
    for entry in entries:
        cls = schema.by_id[entry.id]
        cls.parents = tuple(_class_of(schema, parent, cls) for parent in entry.parents if parent != 0)
        if len(cls.parents) >= MAX_LEVELS:
            raise SchemaError(_too_many_levels(cls))
        fields = []
        for class_id, number, name in entry.fields:
            kind = _KINDS.get(number)
            if kind is None:
                cls.unknown_kind = number
                continue
            leads = kind.owns or kind.place > 1
            fields.append(Field(name, kind, _class_of(schema, class_id, cls).name if leads and class_id else None))
        if len({own.name for own in fields}) < len(fields):
            raise SchemaError(f'two fields of the class "{cls.name}" share a name')
        cls.fields = _in_place(fields)
    _check_levels(schema.values())
    return schema


def _class_of(schema: Schema, class_id: int, cls: Class) -> Class:
    found = schema.by_id.get(class_id)
    if found is None:
        raise SchemaError(f'the class "{cls.name}" names a class {class_id} that is not there')
    return found


def write_schema(schema: Schema) -> bytes:
    """The payload of the schema record."""
    out = bytearray(struct.pack("<i", len(schema)))

    def put_text(text: str) -> None:
        data = check_text(text, f'the name "{text}"')
        out.extend(struct.pack("<i", len(data)) + data)

    for cls in schema.values():
        if cls.unknown_kind is not None:
            raise ModelError(f'the class "{cls.name}" has a field of the unknown kind {cls.unknown_kind}')
        out += struct.pack("<i", cls.id)
        put_text(cls.name)
        out += struct.pack("<?ii", cls.abstract, -1, len(cls.parents))
        out += struct.pack(f"<{len(cls.parents)}i", *(parent.id for parent in cls.parents))
        for place in range(6):
            block = [own for own in cls.fields if own.kind.place == place]
            if place == 0 and not block:
                continue
            out += struct.pack("<i", len(block))
            for own in block:
                target = schema[own.target].id if own.target is not None and own.target in schema else 0
                out += struct.pack("<ii", target, own.kind)
                put_text(own.name)
    return bytes(out)
