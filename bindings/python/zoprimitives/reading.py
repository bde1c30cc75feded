"""Reading: files, their objects as records, and tables of them."""

from __future__ import annotations

import io
import mmap
import os
import warnings
from array import array
from bisect import bisect_left
from collections.abc import Iterable, Iterator, Mapping, Sequence
from typing import Any, overload

from . import _frames
from ._fields import Fields
from ._layouts import LayoutSearch, Reading, known_layouts
from ._pandas import dataframe_of
from ._records import Decoder, ShortRecord, UidMap, Uids
from ._tables import Table
from .errors import DamagedError, MissingObjectError, TruncatedError, UndecidedError, UndecidedWarning, UnknownNameError
from .schema import Class, Field, Kind, Schema, read_schema

Source = str | os.PathLike[str] | bytes
"""A path, or the bytes of a file."""


class Record(Fields):
    """An object of a file, for reading. Its fields are its items and, where the name allows, its attributes.

    `record["name"]` and `record.name` give a number, a text (str), a blob (bytes) or a flag as such, a pointer as the
    `Record` that it leads to (None for null), a list of values as `Values`, which is a tuple, a list of pointers as
    `RecordList`, a map as `RecordMap`. Nothing is read before it is asked for. Equal are records of the same object of the
    same `File`.
    """

    __slots__ = ("_file", "_position", "_values")

    def __init__(self, file: File, position: int) -> None:
        self._file = file
        self._position = position
        self._values: Sequence[Any] | None = None
        self.cls: Class = file._class_at(position)

    @property
    def uid(self) -> int:
        """The number of the object within its file."""
        return self._file._uids[self._position]

    @property
    def raw(self) -> Sequence[Any]:
        """The values in the order of `cls.slots`, pointers as uids."""
        if self._values is None:
            self._values = self._file._decode(self._position)
        return self._values

    def __getitem__(self, name: str) -> Any:
        raw = self.raw
        position = self.cls.position(name)
        value = raw[position]
        kind = self.cls.slots[position].field.kind
        if kind.is_pointer:
            return self._file._follow(value, self, name)
        if isinstance(value, Uids):
            return RecordList(self, name, value)
        if isinstance(value, UidMap):
            return RecordMap(self, name, value)
        return value

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Record) and self._file is other._file and self._position == other._position

    def __hash__(self) -> int:
        return hash((id(self._file), self._position))

    def __repr__(self) -> str:
        return f"<{self.cls.name} {self.uid}>"


class RecordList(Sequence[Record | None]):
    """The objects of a list, None for null. `uids` are theirs; `integers` those of the application's in the list."""

    __slots__ = ("_owner", "_name", "uids")

    def __init__(self, owner: Record, name: str, uids: Uids) -> None:
        self._owner = owner
        self._name = name
        self.uids = uids

    @property
    def integers(self) -> tuple[int, ...]:
        return self.uids.integers

    def __len__(self) -> int:
        return len(self.uids)

    @overload
    def __getitem__(self, index: int) -> Record | None: ...
    @overload
    def __getitem__(self, index: slice) -> list[Record | None]: ...

    def __getitem__(self, index: int | slice) -> Record | None | list[Record | None]:
        if isinstance(index, slice):
            return [self._follow(uid) for uid in self.uids[index]]
        return self._follow(self.uids[index])

    def __iter__(self) -> Iterator[Record | None]:
        return map(self._follow, self.uids)

    def _follow(self, uid: int) -> Record | None:
        return self._owner._file._follow(uid, self._owner, self._name)

    def __repr__(self) -> str:
        return f"<{len(self)} objects of {self._owner!r}.{self._name}>"


class RecordMap:
    """The pairs of a map: objects to objects. `uids` has its halves as they stand in the file."""

    __slots__ = ("_keys", "_values", "uids")

    def __init__(self, owner: Record, name: str, uids: UidMap) -> None:
        if len(uids.keys) != len(uids.values):
            raise DamagedError(f"the map {owner!r}.{name} has {len(uids.keys)} keys and {len(uids.values)} values",
                               path=owner._file.path)
        self.uids = uids
        self._keys = RecordList(owner, name, uids.keys)
        self._values = RecordList(owner, name, uids.values)

    def keys(self) -> RecordList:
        return self._keys

    def values(self) -> RecordList:
        return self._values

    def items(self) -> Iterator[tuple[Record | None, Record | None]]:
        return zip(self._keys, self._values)

    def __len__(self) -> int:
        return len(self._keys)

    def __iter__(self) -> Iterator[Record | None]:
        return iter(self._keys)


def open(source: Source, *, mapped: bool = False, layouts: Mapping[str, Sequence[int]] | None = None,
         check: bool = False) -> File:
    """Opens a file, or its bytes; see `File`."""
    return File(source, mapped=mapped, layouts=layouts, check=check)


class File:
    """An object file, open for reading: `version` and `release` of the application, `schema`, and the objects.

    The file is read at once and closed again, so that nobody waits for it. With `mapped` it is mapped into memory instead,
    for files that memory does not hold; nobody may change it until it is closed.

    A file does not tell whether integers of the application's stand in its lists, nor how its maps stand. That is
    found out from the records; where they do not tell, reading warns (`UndecidedWarning`) and takes the plainest way.
    `layouts` says it for those who know: {"Class.field": (1,)} for a list with one integer, (0, 1) for a map whose values
    have one, (-1, -1) for a map of single pointers. Classes that the file lacks are passed over.

    With `check`, `check()` is called first. Without it, damage shows when something is read that it hit.
    """

    def __init__(self, source: Source, *, mapped: bool = False, layouts: Mapping[str, Sequence[int]] | None = None,
                 check: bool = False) -> None:
        self.path: str | None = None if isinstance(source, bytes) else os.fspath(source)
        self._data: _frames.Data = _load(source, mapped)
        self._is_closed = False
        try:
            header = _frames.read_header(self._data, self.path)
            self._header = header
            self.version = header.version
            self.release = header.release
            self.schema = self._read_schema()
            self._known = known_layouts(layouts or {}, self.schema)
            self._decoders: dict[Class, Decoder] = {}
            self._readings: dict[Class, Reading] = {}
            self._offsets, self._uids, self._class_ids = array("q"), array("i"), array("i")
            self._is_indexed = False
            self._unordered: dict[int, int] | None = None
            if check:
                self.check()
        except BaseException:
            self.close()
            raise

    def close(self) -> None:
        """Lets go of the file. What was not read before cannot be read any more: ValueError."""
        if isinstance(self._data, mmap.mmap):
            self._data.close()
        self._data = b""
        self._is_closed = True

    def __enter__(self) -> File:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<File {self.path or 'in memory'}>"

    @property
    def has_digest(self) -> bool:
        """Whether the file tells by itself of records that are missing, out of place, or of another class or uid."""
        return self._header.digest is not None

    def check(self) -> None:
        """Reads the whole file: every checksum, the digest if there is one, every object and every pointer.

        Raises what it finds: an exception of the `DamagedError` family, or UnreadableError.
        """
        _frames.check_digest(self._data, self._header, self.path)
        self._index()
        if self._header.record_count > len(self) + 1 and all(cls.least_size for cls in self.schema.values()):
            raise TruncatedError(f"of {self._header.record_count} records only {len(self) + 1} are there", path=self.path)
        for position in range(len(self._offsets)):
            record = Record(self, position)
            for slot, value in zip(record.cls.slots, record.raw, strict=True):
                uids: Iterable[int] = (value,) if slot.field.kind.is_pointer else ()
                if isinstance(value, Uids):
                    uids = value
                elif isinstance(value, UidMap):
                    pairs = RecordMap(record, slot.field.name, value)
                    uids = (*pairs.keys().uids, *pairs.values().uids)
                for uid in uids:
                    if uid and self._find(uid) is None:
                        raise self._missing(uid, record, slot.field.name)

    # Objects

    @property
    def root(self) -> Record:
        """The first object, from which the model hangs."""
        for record in self.objects():
            return record
        raise MissingObjectError("the file has no object", path=self.path)

    def __len__(self) -> int:
        """The number of objects."""
        self._index()
        return len(self._offsets)

    def __iter__(self) -> Iterator[Record]:
        return self.objects()

    def __getitem__(self, uid: int) -> Record:
        """The object of that uid. Raises UnknownNameError."""
        position = self._find(uid)
        if position is None:
            raise UnknownNameError(f"there is no object {uid}", path=self.path)
        return Record(self, position)

    def objects(self, class_name: str | None = None, *, derived: bool = True) -> Iterator[Record]:
        """The objects of a class in file order, those of classes that derive from it included; without a name, all.

        Of other records only the heads are looked at. Raises UnknownNameError if the file has no such class.
        """
        ids = None if class_name is None else {cls.id for cls in self.schema.family(class_name, derived=derived)}
        self._index()
        return (Record(self, position) for position, class_id in enumerate(self._class_ids)
                if ids is None or class_id in ids)

    def undecided(self) -> dict[str, list[str]]:
        """The fields of each class for which the records do not tell how they stand in them; looks at all of these.

        Such a field is read in the plainest way that fits.
        """
        self._index()
        used = set(self._class_ids)
        found = {cls.name: self._undecided_of(cls) for cls in self.schema.values() if cls.id in used}
        return {name: fields for name, fields in found.items() if fields}

    def require_decided(self) -> None:
        """Raises UndecidedError if there is an undecided field."""
        for class_name, names in self.undecided().items():
            raise UndecidedError(_do_not_tell(class_name, names), path=self.path)

    # Tables

    def rows(self, class_name: str, fields: Sequence[str] | None = None, *,
             derived: bool = True) -> Iterator[dict[str, Any]]:
        """The objects of a class as dictionaries of plain values: "uid", "class", then the fields, or those asked for.

        A pointer is the uid, None for null; a list a list; a map a list of pairs of uids. The fields of an object that is
        part of its owner are its owner's: "place.x". A field that a derived class does not have is left out, None if it
        was asked for. Raises UnknownNameError for a field that none of the classes has.
        """
        table = Table(self, class_name, fields, derived=derived)
        table.require_fields()
        return table.rows()

    def columns(self, class_name: str, fields: Sequence[str] | None = None, *,
                derived: bool = True) -> dict[str, list[Any]]:
        """The same by column. Each has an entry for each object, None where the object has no such field."""
        table = Table(self, class_name, fields, derived=derived)
        table.require_fields()
        return table.columns()

    def dataframe(self, class_name: str, fields: Sequence[str] | None = None, *, derived: bool = True) -> Any:
        """The same as a pandas.DataFrame. Numbers and flags that may be missing have pandas' nullable types.

        Raises ImportError where pandas is missing.
        """
        table = Table(self, class_name, fields, derived=derived)
        table.require_fields()
        return dataframe_of(table.columns(), table.kinds)

    # Bytes

    def _read_schema(self) -> Schema:
        first = next(_frames.heads(self._data, self._header.size, self.path), None)
        if first is None:
            raise TruncatedError("the file has no schema", path=self.path, offset=self._header.size)
        at, class_id, uid = first
        if class_id != 0 or uid != 0:
            raise DamagedError("the first record is not the schema", path=self.path, offset=at)
        try:
            return read_schema(_frames.payload(self._data, at, self.path))
        except DamagedError as error:
            error.path, error.offset = self.path, at
            raise

    def _require_open(self) -> None:
        if self._is_closed:
            raise ValueError(f"{self!r} is closed")

    def _index(self) -> None:
        if self._is_indexed:
            return
        self._require_open()
        offsets, uids, class_ids = array("q"), array("i"), array("i")
        latest, is_ordered, known = 0, True, self.schema.by_id
        found = _frames.heads(self._data, self._header.size, self.path)
        next(found, None)
        for at, class_id, uid in found:
            if uid <= latest:
                is_ordered = False
            latest = uid
            if uid <= 0 or class_id not in known:
                raise DamagedError(f"a record has the uid {uid} and the class {class_id}", path=self.path, offset=at)
            offsets.append(at)
            uids.append(uid)
            class_ids.append(class_id)
        if not is_ordered:
            self._unordered = {uid: position for position, uid in enumerate(uids)}
            if len(self._unordered) < len(uids):
                raise DamagedError("two records have the same uid", path=self.path)
        self._offsets, self._uids, self._class_ids = offsets, uids, class_ids
        self._is_indexed = True

    def _find(self, uid: int) -> int | None:
        """Where in the index the object of that uid is."""
        self._index()
        if self._unordered is not None:
            return self._unordered.get(uid)
        uids = self._uids
        if 0 < uid <= len(uids) and uids[uid - 1] == uid:
            return uid - 1
        position = bisect_left(uids, uid)
        return position if position < len(uids) and uids[position] == uid else None

    def _class_at(self, position: int) -> Class:
        return self.schema.by_id[self._class_ids[position]]

    def _follow(self, uid: int, owner: Record, name: str) -> Record | None:
        if uid == 0:
            return None
        position = self._find(uid)
        if position is None:
            raise self._missing(uid, owner, name)
        return Record(self, position)

    def _missing(self, uid: int, owner: Record, name: str) -> MissingObjectError:
        return MissingObjectError(f"{owner!r}.{name} leads to the object {uid}, which the file does not hold",
                                  path=self.path, offset=self._offsets[owner._position])

    def _payload(self, position: int, cls: Class) -> bytes:
        """Of an object of the class; long enough for its fields."""
        self._require_open()
        found = _frames.payload(self._data, self._offsets[position], self.path)
        if len(found) < cls.least_size:
            raise self._misfit(position)
        return found

    def _misfit(self, position: int) -> DamagedError:
        return DamagedError(f"the record of {Record(self, position)!r} does not hold the fields of its class",
                            path=self.path, offset=self._offsets[position])

    def _decode(self, position: int) -> Sequence[Any]:
        cls = self._class_at(position)
        content = self._payload(position, cls)
        decoder = self._decoders.get(cls)
        if decoder is None:
            decoder = self._decoders[cls] = Decoder(cls, self._reading(cls).layouts)
            if undecided := self._undecided_of(cls):
                place = "" if self.path is None else f"{self.path}: "
                warnings.warn(place + _do_not_tell(cls.name, undecided), UndecidedWarning, stacklevel=4)
        try:
            return decoder(content)
        except ShortRecord:
            if self._reading(cls).gave_up:
                raise UndecidedError(f'the records of "{cls.name}" can be read in too many ways to try them all',
                                     path=self.path, offset=self._offsets[position]) from None
            raise self._misfit(position) from None

    def _undecided_of(self, cls: Class) -> list[str]:
        return [cls.slots[position].field.name for position in self._reading(cls).undecided]

    def _reading(self, cls: Class) -> Reading:
        """How the lists and maps of the class stand in its records."""
        found = self._readings.get(cls)
        if found is None:
            found = self._readings[cls] = self._search(cls)
        return found

    def _search(self, cls: Class) -> Reading:
        search = LayoutSearch(cls, self._known)
        if not search.has_ended:
            for position, class_id in enumerate(self._class_ids):
                if class_id == cls.id:
                    search.take(self._payload(position, cls))
                    if search.has_ended:
                        break
        return search.best(self._may_mean)

    def _may_mean(self, field: Field, uid: int) -> bool:
        position = self._find(uid)
        # The class of a map is that of its values.
        target = None if field.kind is Kind.CHILD_MAP else field.target
        return position is not None and self.schema.may_lead(target, self._class_at(position))


def _do_not_tell(class_name: str, fields: Sequence[str]) -> str:
    names = ", ".join(f'"{name}"' for name in fields[:5]) + (f" and {len(fields) - 5} more" if len(fields) > 5 else "")
    return f'the records of "{class_name}" do not tell how {names} stand in them'


def _load(source: Source, mapped: bool) -> _frames.Data:
    if isinstance(source, bytes):
        return source
    with io.open(source, "rb") as file:
        if not mapped or os.fstat(file.fileno()).st_size == 0:
            return file.read()
        return mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
