"""How the lists and maps of a class stand in its records, which only the records themselves tell.

The rule is in docs/file-format.md, "How lists and maps stand".
"""

from __future__ import annotations

import struct
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass, field

from ._records import SINGLE, Layout, ShortRecord, block, count, layouts_of, usual_layout
from .schema import Class, Field, Kind

MOST_STEPS = 200_000
"""Values passed in one record while readings of it are searched, long ones counted more."""
MOST_READINGS = 256
MOST_UIDS = 200_000
MOST_BEGINNINGS = 16
ENOUGH = 100
"""Records that agree with the only reading that is left."""

Choice = tuple[Layout, ...]
"""A layout for each open slot."""
Use = tuple[Field, int]
"""A field that refers to a uid."""
_INT = struct.Struct("<i")


@dataclass(frozen=True)
class Reading:
    """The layout of each slot, and the slots for which others suit the records as well.

    `gave_up`: there were too many readings to try.
    """

    layouts: tuple[Layout, ...]
    undecided: tuple[int, ...] = ()
    gave_up: bool = False


@dataclass
class _Candidate:
    choice: Choice
    uses: list[Use] = field(default_factory=list)
    """Of the records taken so far."""


class LayoutSearch:
    """Searches for the reading of a class: give it records until it `has_ended`, then ask for the `best`."""

    def __init__(self, cls: Class, known: Mapping[str, Layout]) -> None:
        """`known`: layouts by "Class.field", which are not searched."""
        self._fields = [slot.field for slot in cls.slots]
        self._layouts = [known.get(f"{slot.owner.name}.{slot.field.name}", usual_layout(slot.field.kind))
                         for slot in cls.slots]
        self._open = [position for position, slot in enumerate(cls.slots)
                      if len(layouts_of(slot.field.kind)) > 1
                      and f"{slot.owner.name}.{slot.field.name}" not in known]
        self._candidates: list[_Candidate] = []
        self._gave_up = False
        self._beginnings = self._taken = self._fits = self._misfits = self._uses = 0

    @property
    def has_ended(self) -> bool:
        """Whether further records would hardly tell more."""
        if not self._open:
            return True
        if not self._candidates:
            return self._beginnings == MOST_BEGINNINGS
        return len(self._candidates) == 1 and self._fits >= ENOUGH

    @property
    def needs_objects(self) -> bool:
        """Whether only the objects that are referred to can tell more."""
        return len(self._candidates) > 1

    def take(self, data: bytes) -> None:
        """Takes a further record into account."""
        self._taken += 1
        if not self._candidates:
            self._begin(data)
        read: list[tuple[_Candidate, list[Use]]] = []
        for candidate in self._candidates:
            uses: list[Use] = []
            if self._reads(candidate.choice, data, uses):
                read.append((candidate, uses))
        if read:
            self._fits += 1
            self._candidates = [candidate for candidate, _ in read]
            self._keep(read)
        elif self._candidates:
            self._misfits += 1  # one that is odd decides nothing
            if self._misfits > self._fits:
                self._begin(data)

    def _keep(self, read: list[tuple[_Candidate, list[Use]]]) -> None:
        """All readings keep the references of the same records, or the comparison would not be fair."""
        self._uses += sum(len(uses) for _, uses in read)
        if self._uses <= MOST_UIDS:
            for candidate, uses in read:
                candidate.uses += uses

    def best(self, may_mean: Callable[[Field, int], bool]) -> Reading:
        """`may_mean(field, uid)`: whether the field may refer to what has that uid."""
        if not self._candidates:
            undecided = self._open if self._taken else []
            return Reading(tuple(self._layouts), tuple(undecided), self._gave_up)

        def rank(candidate: _Candidate) -> tuple[int, int]:
            wrong = sum(not may_mean(*use) for use in candidate.uses)
            return wrong, sum(_assumed(layout) for layout in candidate.choice)
        ranks = [rank(candidate) for candidate in self._candidates]
        equals = [candidate.choice for candidate, its in zip(self._candidates, ranks, strict=True)
                  if its == min(ranks)]
        chosen = list(self._layouts)
        for position, layout in zip(self._open, equals[0], strict=True):
            chosen[position] = layout
        return Reading(tuple(chosen), tuple(position for index, position in enumerate(self._open)
                                            if len({choice[index] for choice in equals}) > 1))

    def _begin(self, data: bytes) -> None:
        self._candidates = []
        self._fits = self._misfits = self._uses = 0
        if self._beginnings < MOST_BEGINNINGS:
            self._beginnings += 1
            self._candidates = [_Candidate(choice) for choice in self._all(data)]

    def _all(self, data: bytes) -> list[Choice]:
        """All choices that read the record whole, the plainest first; none if there are too many."""
        found: list[Choice] = []
        steps = 0
        least = [0] * (len(self._fields) + 1)
        for position in range(len(self._fields) - 1, -1, -1):
            least[position] = least[position + 1] + self._fields[position].kind.smallest
        open_ = set(self._open)
        paths: list[tuple[int, int, Choice]] = [(0, 0, ())]
        while paths:
            position, at, choice = paths.pop()
            while position < len(self._fields) and position not in open_:
                begin, at = at, passed(self._fields[position].kind, self._layouts[position], data, at)
                steps += _effort(begin, at)
                position += 1
                if at < 0 or steps > MOST_STEPS:
                    break
            if steps > MOST_STEPS or len(found) > MOST_READINGS:
                self._gave_up = True
                return []
            if at < 0:
                continue
            if position == len(self._fields):
                if at == len(data):
                    found.append(choice)
                continue
            kind = self._fields[position].kind
            for layout in reversed(layouts_of(kind)):
                end = passed(kind, layout, data, at)
                steps += _effort(at, end)
                if end >= 0 and len(data) - end >= least[position + 1]:
                    paths.append((position + 1, end, (*choice, layout)))
        return found

    def _reads(self, choice: Choice, data: bytes, uses: list[Use]) -> bool:
        layouts = list(self._layouts)
        for position, layout in zip(self._open, choice, strict=True):
            layouts[position] = layout
        at = 0
        for own, layout in zip(self._fields, layouts, strict=True):
            at = passed(own.kind, layout, data, at, lambda uid, own=own: uses.append((own, uid)))  # type: ignore[misc]
            if at < 0:
                return False
        return at == len(data)


def _effort(begin: int, end: int) -> int:
    return 1 + max(0, end - begin) // 256  # a list of texts is walked


def _assumed(layout: Layout) -> int:
    """How much a layout assumes: the integers; a map of single pointers counts as one."""
    return 1 if layout[0] == SINGLE else sum(layout)


def passed(kind: Kind, layout: Layout, data: bytes, at: int, refer: Callable[[int], object] | None = None) -> int:
    """Where the value there ends; -1 if the record does not hold one. Calls `refer` for each uid that is not 0."""
    try:
        if kind is Kind.STRING or kind is Kind.BLOB:
            return block(data, at)[1]
        if kind is Kind.STRING_LIST:
            number, at = count(data, at, layout[0], 4)
            for _ in range(number):
                at = block(data, at)[1]
            return at
        if kind is Kind.CHILD_MAP and layout[0] != SINGLE:
            return _uids_passed(data, _uids_passed(data, at, layout[0], refer), layout[1], refer)
        if kind.is_pointer_list:
            return _uids_passed(data, at, layout[0], refer)
        if kind.is_value_list:
            size = 8 if kind is Kind.DOUBLE_LIST else 4
            number, at = count(data, at, layout[0], size)
            return at + size * number
    except (ShortRecord, struct.error):
        return -1
    end = at + kind.smallest
    if end > len(data):
        return -1
    if refer is not None and (kind.is_pointer or kind is Kind.CHILD_MAP):
        _refer(data, at, (end - at) // 4, refer)
    return end


def _uids_passed(data: bytes, at: int, integers: int, refer: Callable[[int], object] | None) -> int:
    number, at = count(data, at, integers, 4)
    if refer is not None:
        _refer(data, at, number, refer)
    return at + 4 * number


def _refer(data: bytes, at: int, number: int, refer: Callable[[int], object]) -> None:
    for uid in struct.unpack_from(f"<{number}i", data, at):
        if uid:
            refer(uid)


def known_layouts(given: Mapping[str, Sequence[int]], classes: Mapping[str, Class]) -> dict[str, Layout]:
    """Checks what a caller says of fields, by "Class.field". Raises ValueError."""
    known: dict[str, Layout] = {}
    for name, layout in given.items():
        class_name, _, field_name = name.rpartition(".")
        if class_name not in classes:
            continue  # a file has only the classes that it needs
        kinds = [own.kind for own in classes[class_name].fields if own.name == field_name]
        if not kinds or tuple(layout) not in layouts_of(kinds[0]):
            raise ValueError(f'"{name}": {tuple(layout)} is no way for this field to stand in a file')
        known[name] = tuple(layout)
    return known
