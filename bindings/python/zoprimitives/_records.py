"""The inner form of a record: the values of an object, one after another in the order of its class's slots.

What is read is raw: a pointer is its uid, a list of pointers `Uids`, a list of values `Values`, a map `UidMap`.
"""

from __future__ import annotations

import struct
from collections.abc import Callable, Sequence
from typing import Any, NamedTuple

from . import _text
from .schema import Class, Kind

Layout = tuple[int, ...]
"""What the file does not tell of a field: how many integers of the application's stand between the count of a list and
its items; of a map, for keys and for values. (SINGLE, SINGLE): a map of single pointers."""
SINGLE = -1

_INT = struct.Struct("<i")
_CODES = {Kind.INT: "i", Kind.FLOAT: "f", Kind.DOUBLE: "d", Kind.BOOL: "?", Kind.UNSIGNED: "I",
          Kind.CHILD: "i", Kind.REFERENCE: "i", Kind.EXTERNAL: "i", Kind.MEMBER: "i"}
_ITEM_CODES = {Kind.INT_LIST: "i", Kind.FLOAT_LIST: "f", Kind.DOUBLE_LIST: "d"}
_SIZES = {"i": 4, "f": 4, "d": 8}


class Values(tuple[Any, ...]):
    """The values of a list. `integers`: those of the application's that stand with it."""

    integers: tuple[int, ...] = ()


class Uids(tuple[int, ...]):
    """The uids of a list, 0 for null. `integers`: those of the application's that stand with it."""

    integers: tuple[int, ...] = ()


class UidMap(NamedTuple):
    """The halves of a map. `single`: each is one pointer, not a list."""

    keys: Uids
    values: Uids
    single: bool = False


class ShortRecord(Exception):
    """A value reaches beyond the record's end."""


Step = Callable[[bytes, int, list[Any]], int]
"""Appends values of the record from that place on, and returns where they end. Raises ShortRecord or struct.error."""


def usual_layout(kind: Kind) -> Layout:
    return (0, 0) if kind is Kind.CHILD_MAP else (0,)


def layouts_of(kind: Kind) -> tuple[Layout, ...]:
    """All that a field of the kind may have, the usual one first."""
    if kind is Kind.CHILD_MAP:
        return (*((first, second) for first in range(3) for second in range(3)), (SINGLE, SINGLE))
    if kind.is_pointer_list or kind.is_value_list:
        return ((0,), (1,), (2,))
    return (usual_layout(kind),)


class Decoder:
    """Takes the records of one class apart."""

    def __init__(self, cls: Class, layouts: Sequence[Layout]) -> None:
        self._steps: list[Step] = []
        self.fixed: struct.Struct | None = None
        """Of a record in which every value has one size."""
        run = ""
        for slot, layout in zip(cls.slots, layouts, strict=True):
            kind = slot.field.kind
            if kind in _CODES:
                run += _CODES[kind]
                continue
            if run:
                self._steps.append(_fixed(run))
                run = ""
            self._steps.append(_step(kind, layout))
        if run and not self._steps:
            self.fixed = struct.Struct("<" + run)
        if run:
            self._steps.append(_fixed(run))

    def __call__(self, data: bytes) -> Sequence[Any]:
        """The raw values. Raises ShortRecord if the record does not hold them or does not end with the last."""
        try:
            if self.fixed is not None:
                return self.fixed.unpack(data)
            values: list[Any] = []
            at = 0
            for step in self._steps:
                at = step(data, at, values)
        except struct.error:
            raise ShortRecord from None
        if at != len(data):
            raise ShortRecord
        return values


def _fixed(codes: str) -> Step:
    run = struct.Struct("<" + codes)
    unpack, size = run.unpack_from, run.size

    def step(data: bytes, at: int, values: list[Any]) -> int:
        values.extend(unpack(data, at))
        return at + size
    return step


def _step(kind: Kind, layout: Layout) -> Step:
    if kind is Kind.STRING:
        return _take_text
    if kind is Kind.BLOB:
        return _take_blob
    if kind is Kind.CHILD_MAP:
        return _take_single_map if layout == (SINGLE, SINGLE) else _map(*layout)
    return _list(kind, *layout)


def block(data: bytes, at: int) -> tuple[int, int]:
    """Where the text or blob that stands there begins and ends."""
    begin = at + 4
    end = begin + _INT.unpack_from(data, at)[0]
    if not begin <= end <= len(data):
        raise ShortRecord
    return begin, end


def _take_text(data: bytes, at: int, values: list[Any]) -> int:
    begin, end = block(data, at)
    values.append(_text.decode(data[begin:end]))
    return end


def _take_blob(data: bytes, at: int, values: list[Any]) -> int:
    begin, end = block(data, at)
    values.append(data[begin:end])
    return end


def count(data: bytes, at: int, integers: int, smallest: int) -> tuple[int, int]:
    """How many items the list there has, and where they begin; the record has room for them."""
    number = _INT.unpack_from(data, at)[0]
    begin = at + 4 + 4 * integers
    if number < 0 or begin + number * smallest > len(data):
        raise ShortRecord
    return number, begin


def _list(kind: Kind, integers: int) -> Step:
    code = _ITEM_CODES.get(kind, "i")
    make: Callable[[Any], Any] = Uids if kind.is_pointer_list else Values
    size = _SIZES[code]

    def step(data: bytes, at: int, values: list[Any]) -> int:
        number, begin = count(data, at, integers, size)
        if kind is Kind.STRING_LIST:
            texts: list[str] = []
            end = begin
            for _ in range(number):
                end = _take_text(data, end, texts)
            items = make(texts)
        else:
            end = begin + number * size
            items = make(struct.unpack_from(f"<{number}{code}", data, begin))
        if integers:
            items.integers = struct.unpack_from(f"<{integers}i", data, at + 4)
        values.append(items)
        return end
    return step


def _map(first: int, second: int) -> Step:
    halves = _list(Kind.CHILD_LIST, first), _list(Kind.CHILD_LIST, second)

    def step(data: bytes, at: int, values: list[Any]) -> int:
        found: list[Any] = []
        for half in halves:
            at = half(data, at, found)
        values.append(UidMap(*found))
        return at
    return step


def _take_single_map(data: bytes, at: int, values: list[Any]) -> int:
    key, value = struct.unpack_from("<2i", data, at)
    values.append(UidMap(Uids((key,)), Uids((value,)), True))
    return at + 8


# Writing


class Encoder:
    """Puts the raw values of one class together, in the same order. Raises struct.error for a number out of range."""

    def __init__(self, cls: Class) -> None:
        self._kinds = [slot.field.kind for slot in cls.slots]

    def __call__(self, values: Sequence[Any]) -> bytes:
        out = bytearray()
        for kind, value in zip(self._kinds, values, strict=True):
            out += encoded(kind, value)
        return bytes(out)


def encoded(kind: Kind, value: Any) -> bytes:
    """The bytes of one raw value."""
    code = _CODES.get(kind)
    if code is not None:
        return struct.pack("<" + code, value)
    if kind is Kind.STRING:
        return _block(_text.encode(value))
    if kind is Kind.BLOB:
        return _block(value)
    if kind is Kind.CHILD_MAP:
        if value.single:
            return struct.pack("<2i", value.keys[0], value.values[0])
        return _uids(value.keys) + _uids(value.values)
    if kind.is_pointer_list:
        return _uids(value)
    begin = _beginning(value)
    if kind is Kind.STRING_LIST:
        return begin + b"".join(_block(_text.encode(item)) for item in value)
    return begin + struct.pack(f"<{len(value)}{_ITEM_CODES[kind]}", *value)


def _block(data: bytes) -> bytes:
    return _INT.pack(len(data)) + data


def _beginning(items: Values | Uids) -> bytes:
    return struct.pack(f"<{1 + len(items.integers)}i", len(items), *items.integers)


def _uids(items: Uids) -> bytes:
    return _beginning(items) + struct.pack(f"<{len(items)}i", *items)
