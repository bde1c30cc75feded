"""Writing: models in memory, made anew or loaded from a file, and how they are saved."""

from __future__ import annotations

import io
import os
import shutil
import struct
import tempfile
import zlib
from collections.abc import Iterable, Iterator, Mapping, Sequence
from typing import Any, BinaryIO

from . import _frames
from ._fields import Fields
from ._records import Encoder, UidMap, Uids, Values
from .errors import ModelError, UnknownNameError
from .reading import File, Source
from .schema import Class, Field, Kind, Schema, check_text, write_schema


class ValueList(list[Any]):
    """The values of a list. `integers`: those of the application's that stand with it, as many in each object."""

    integers: tuple[int, ...] = ()


class ObjectList(list["Object | None"]):
    """The objects of a list, None for null. `integers` as in `ValueList`."""

    integers: tuple[int, ...] = ()


class ObjectMap(list[tuple["Object | None", "Object | None"]]):
    """The pairs of a map. `integers`: those that stand with the keys, and with the values.

    `single`: the application declares single pointers, and there is one pair.
    """

    integers: tuple[tuple[int, ...], tuple[int, ...]] = ((), ())
    single = False


class Object(Fields):
    """An object of a model. Its fields are its items and, where the name allows, its attributes.

    A list is there from the beginning, empty; giving it another value changes its items. A map takes a dictionary, too.
    Values are checked when they are given (ModelError), and those in lists when the model is saved.
    """

    __slots__ = ("_model", "_values")
    _model: Model
    _values: list[Any]

    def __init__(self, model: Model, cls: Class) -> None:
        object.__setattr__(self, "cls", cls)
        object.__setattr__(self, "_model", model)
        object.__setattr__(self, "_values", [])

    def __getitem__(self, name: str) -> Any:
        return self._values[self.cls.position(name)]

    def __setitem__(self, name: str, value: Any) -> None:
        position = self.cls.position(name)
        before = self._values[position]
        if isinstance(before, list):
            if isinstance(before, ObjectMap) and isinstance(value, Mapping):
                value = value.items()
            before[:] = value
            return
        field = self.cls.slots[position].field
        try:
            value = self._model._checked(field, value)
        except _COMPLAINTS as error:
            raise _complaint(self, field, error) from None
        for same in self.cls.twins(position):
            self._values[same] = value

    def __setattr__(self, name: str, value: Any) -> None:
        try:
            self[name] = value
        except UnknownNameError as error:
            raise AttributeError(str(error)) from None

    def __repr__(self) -> str:
        return f"<{self.cls.name}>"


def _default(kind: Kind) -> Any:
    if kind.is_pointer_list:
        return ObjectList()
    if kind.is_value_list:
        return ValueList()
    if kind is Kind.CHILD_MAP:
        return ObjectMap()
    return {Kind.STRING: "", Kind.BLOB: b"", Kind.BOOL: False, Kind.FLOAT: 0.0, Kind.DOUBLE: 0.0, Kind.INT: 0,
            Kind.UNSIGNED: 0}.get(kind)


_COMPLAINTS = (ModelError, TypeError, ValueError)
"""What a value that does not fit raises."""


def _complaint(owner: Object, field: Field, error: Exception) -> ModelError:
    """The same with the field's name before it."""
    message = error.message if isinstance(error, ModelError) else str(error)
    remedy = error.remedy if isinstance(error, ModelError) else None
    return ModelError(f"{owner.cls.name}.{field.name}: {message}", remedy=remedy)


class Model:
    """Objects of a schema that hang from a root, to be changed and saved.

    `externals` are objects that fields may refer to though none owns them; those that a field of an external kind
    refers to are saved in any case.
    """

    def __init__(self, schema: Schema, *, version: int, release: int) -> None:
        if not 0 <= version < _frames.VERSION_LIMIT or not 0 <= release < _frames.RELEASE_LIMIT:
            raise ModelError(f"a version is below {_frames.VERSION_LIMIT}, a release below {_frames.RELEASE_LIMIT}; "
                             f"these are {version} and {release}")
        self.schema = schema
        self.version = version
        self.release = release
        self.root: Object | None = None
        self.externals: list[Object] = []

    def new(self, class_name: str, **fields: Any) -> Object:
        """A new object of the class. It is saved once a field of an object that is saved owns it, or as the root."""
        cls = self.schema[class_name]
        if cls.abstract:
            raise ModelError(f'the class "{class_name}" is abstract: it has no objects of its own')
        if not cls.slots:
            raise ModelError(f'the class "{class_name}" has no field: its objects would not be saved',
                             remedy="Give the class a field")
        made = Object(self, cls)
        made._values.extend(_default(slot.field.kind) for slot in cls.slots)
        for position in cls.positions.values() if cls.has_twins else ():
            for same in cls.twins(position):
                made._values[same] = made._values[position]
        for name, value in fields.items():
            made[name] = value
        return made

    def objects(self, class_name: str | None = None) -> list[Object]:
        """The objects that a saving writes, in its order: all, or those of the class and of derived ones."""
        base = None if class_name is None else self.schema[class_name]
        return [found for found in self._uids() if base is None or found.cls.derives_from(base)]

    def to_bytes(self) -> bytes:
        """The model as the bytes of a file. Raises ModelError for what cannot be saved."""
        out = io.BytesIO()
        self._write(out)
        return out.getvalue()

    def save(self, path: str | os.PathLike[str], *, backup: bool = False) -> None:
        """Saves the model: beside the target, which it replaces when it is complete and on the device.

        With `backup` the version before it is kept under the name with "-bak" behind. Raises ModelError for what cannot be
        saved, FileExistsError while the file with "-new" behind shows that a program is saving, or was interrupted.
        """
        target = os.path.realpath(path)  # what a link leads to is replaced, not the link
        if os.path.exists(target + "-new"):
            raise FileExistsError(f'"{target}-new" exists: a program is saving the file, or was interrupted, and '
                                  "then that is the newest version. Look at it, then rename or delete it")
        handle, temporary = tempfile.mkstemp(".tmp", "~zo", os.path.dirname(target))
        try:
            with os.fdopen(handle, "wb") as out:
                self._write(out)
                out.flush()
                os.fsync(out.fileno())
            _take_mode(temporary, target)
            if backup and os.path.exists(target):
                _copy(target, target + "-bak")
            os.replace(temporary, target)
        except BaseException:
            os.unlink(temporary)
            raise
        _sync_folder(os.path.dirname(target))

    # Saving

    def _uids(self) -> dict[Object, int]:
        """Every object that is saved: from the root and the external objects that are met, then from the others."""
        if self.root is None:
            raise ModelError("the model has no root", remedy="Set model.root")
        uids: dict[Object, int] = {}
        for top in (self.root, *self.externals):
            self._check_object(top)
            self._reach(top, uids)
        return uids

    def _adopt(self, objects: Iterable[Object]) -> None:
        """Takes the objects of a file, in its order: the first is the root, and none gets lost."""
        uids: dict[Object, int] = {}
        for found in objects:
            if found not in uids:
                if self.root is None:
                    self.root = found
                else:
                    self.externals.append(found)
                self._reach(found, uids)

    def _reach(self, top: Object, uids: dict[Object, int]) -> None:
        """Numbers the object, what it owns, and in turn the external objects that are met."""
        externals = {top: None}
        waiting = [top]
        for external in waiting:
            found: dict[Object, None] = {}
            self._walk(external, uids, found)
            waiting += (further for further in found if further not in externals)
            externals.update(found)

    def _walk(self, top: Object, uids: dict[Object, int], externals: dict[Object, None]) -> None:
        open_ = [top]
        while open_:
            found = open_.pop()
            if found in uids:
                continue
            uids[found] = len(uids) + 1
            owned: list[Object] = []
            for position in found.cls.owning_or_external:
                field, value = found.cls.slots[position].field, found._values[position]
                try:
                    targets = _targets(value)
                    for target in targets:
                        self._check_object(target)
                except _COMPLAINTS as error:
                    raise _complaint(found, field, error) from None
                if field.kind.owns:
                    owned += targets
                else:
                    externals.update(dict.fromkeys(targets))
            open_ += reversed(owned)

    def _check_object(self, value: Any) -> None:
        if not isinstance(value, Object):
            raise TypeError(f"{value!r} is no object of a model")
        if value._model.schema is not self.schema:
            raise ModelError(f"{value!r} is an object of another schema")

    def _write(self, out: BinaryIO) -> None:
        uids = self._uids()
        header = _frames.HEADER.pack(self.version, 0, 0, len(uids) + 1, self.release, 0, _frames.EXTRA.size)
        begin = header + _frames.EXTRA.pack(_frames.DIGEST_NAME, _frames.DIGEST_LAYOUT, 0)
        out.write(begin)
        digest = 0
        for frame in self._frames(uids):
            digest = zlib.crc32(frame[:_frames.HEAD.size], digest)
            out.write(frame)
        digest = zlib.crc32(begin[:-4], digest)
        out.seek(len(begin) - 4)
        out.write(struct.pack("<I", digest))

    def _frames(self, uids: dict[Object, int]) -> Iterator[bytes]:
        yield _frames.frame(0, 0, _limited(write_schema(self.schema), "the schema"))
        encoders = {cls: Encoder(cls) for cls in {found.cls for found in uids}}
        integers: dict[tuple[Class, str], tuple[Any, ...]] = {}
        for found, uid in uids.items():
            raw = []
            for slot, value in zip(found.cls.slots, found._values, strict=True):
                try:
                    raw.append(self._raw(slot.field, value, uids))
                    if isinstance(value, list):
                        _check_integers(integers.setdefault((found.cls, slot.field.name), _shape(value)), value)
                except _COMPLAINTS as error:
                    raise _complaint(found, slot.field, error) from None
            content = _limited(encoders[found.cls](raw), repr(found))
            yield _frames.frame(found.cls.id, uid, content)

    def _raw(self, field: Field, value: Any, uids: dict[Object, int]) -> Any:
        """The value as records hold it."""
        kind = field.kind
        if kind.is_pointer:
            return self._uid(field, value, uids)
        if kind.is_pointer_list:
            return _with(Uids(self._uid(field, item, uids) for item in value), value.integers)
        if kind is Kind.CHILD_MAP:
            if value.single and len(value) != 1:
                raise ModelError(f"a map of single pointers holds one pair, not {len(value)}")
            anything = Field(field.name, kind)
            keys, values = (Uids(self._uid(field if half else anything, pair[half], uids) for pair in value)
                            for half in range(2))
            return UidMap(_with(keys, value.integers[0]), _with(values, value.integers[1]), value.single)
        if kind.is_value_list:
            item = Field(field.name, _ITEMS[kind])
            return _with(Values(self._checked(item, one) for one in value), value.integers)
        return self._checked(field, value)

    def _uid(self, field: Field, value: Object | None, uids: dict[Object, int]) -> int:
        if value is None:
            return 0
        self._checked(field, value)
        if value not in uids:
            raise ModelError(f"refers to a {value!r} that nothing owns",
                             remedy="Let a field own it, or add it to model.externals")
        return uids[value]

    def _checked(self, field: Field, value: Any) -> Any:
        """The value as the field holds it. Raises ModelError or what a conversion raises."""
        kind = field.kind
        if kind is Kind.STRING:
            if not isinstance(value, str):
                raise TypeError(f"a text is a str, not {type(value).__name__}")
            check_text(value, "the text")
            return value
        if kind is Kind.BLOB:
            return bytes(memoryview(value))
        if kind is Kind.BOOL:
            if not isinstance(value, bool):
                raise TypeError(f"a flag is True or False, not {value!r}")
            return value
        if kind in _NUMBERS:
            code, words = _NUMBERS[kind]
            try:
                return code.unpack(code.pack(value))[0]
            except (struct.error, OverflowError):
                raise ModelError(f"{value!r} is no {words}") from None
        if value is not None:
            self._check_object(value)
            if not self.schema.may_lead(field.target, value.cls):
                raise ModelError(f'leads to a "{field.target}", not to a "{value.cls.name}"')
        return value


_NUMBERS = {Kind.INT: (struct.Struct("<i"), "whole number of 32 bits"),
            Kind.UNSIGNED: (struct.Struct("<I"), "whole number of 32 bits without sign"),
            Kind.FLOAT: (struct.Struct("<f"), "number of 32 bits"), Kind.DOUBLE: (struct.Struct("<d"), "number")}
_ITEMS = {Kind.INT_LIST: Kind.INT, Kind.FLOAT_LIST: Kind.FLOAT, Kind.DOUBLE_LIST: Kind.DOUBLE,
          Kind.STRING_LIST: Kind.STRING}


def _targets(value: Any) -> list[Object]:
    """The objects that a field holds."""
    if isinstance(value, ObjectMap):
        halves = [key for key, _ in value] + [held for _, held in value]
        return [found for found in halves if found is not None]
    if isinstance(value, list):
        return [found for found in value if found is not None]
    return [] if value is None else [value]


def _with(items: Any, integers: Sequence[int]) -> Any:
    if integers:
        items.integers = tuple(integers)
    return items


def _shape(value: Any) -> tuple[Any, ...]:
    if isinstance(value, ObjectMap):
        return value.single, *map(len, value.integers)
    return (len(value.integers),)


def _check_integers(usual: tuple[Any, ...], value: Any) -> None:
    """A reader knows one form for all objects of a class."""
    if _shape(value) != usual:
        raise ModelError("stands with another number of integers than in other objects of the class")


def _limited(content: bytes, what: str) -> bytes:
    if len(content) > _frames.MAX_PAYLOAD:
        raise ModelError(f"{what} takes {len(content)} bytes; a record holds {_frames.MAX_PAYLOAD}")
    return content


def _take_mode(path: str, target: str) -> None:
    """A new file gets the permissions of the one that it replaces, or those that new files have."""
    if os.path.exists(target):
        shutil.copymode(target, path)
    elif os.name == "posix":
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(path, 0o666 & ~mask)


def _copy(path: str, copy: str) -> None:
    handle, temporary = tempfile.mkstemp(".tmp", "~zo", os.path.dirname(copy))
    os.close(handle)
    try:
        shutil.copy2(path, temporary)
        os.replace(temporary, copy)
    except BaseException:
        os.unlink(temporary)
        raise


def _sync_folder(folder: str) -> None:
    """Where the system has it: the new name is on the device, too."""
    if os.name == "posix":
        handle = os.open(folder, os.O_RDONLY)
        try:
            os.fsync(handle)
        finally:
            os.close(handle)


# Loading


def load(source: Source, *, layouts: Mapping[str, Sequence[int]] | None = None) -> Model:
    """Loads a whole file as a model, to change it and to save it again; checks it first.

    Raises UndecidedError where the file does not tell how a list or map stands in it: `layouts` says so, as in `open`.
    """
    with File(source, layouts=layouts) as file:
        file.require_decided()
        file.check()
        model = Model(file.schema, version=file.version, release=file.release)
        objects = {record.uid: Object(model, record.cls) for record in file}
        for record in file:
            made = objects[record.uid]
            for slot, raw in zip(record.cls.slots, record.raw, strict=True):
                made._values.append(_loaded(raw, slot.field.kind, objects))
            for position in record.cls.positions.values() if record.cls.has_twins else ():
                for same in record.cls.twins(position):
                    if made._values[same] == made._values[position]:
                        made._values[same] = made._values[position]
        model._adopt(objects.values())
        return model


def _loaded(raw: Any, kind: Kind, objects: Mapping[int, Object]) -> Any:
    if kind.is_pointer:
        return objects[raw] if raw else None
    if isinstance(raw, Uids):
        return _with(ObjectList(objects[uid] if uid else None for uid in raw), raw.integers)
    if isinstance(raw, Values):
        return _with(ValueList(raw), raw.integers)
    if isinstance(raw, UidMap):
        made = ObjectMap((objects[key] if key else None, objects[value] if value else None)
                         for key, value in zip(raw.keys, raw.values, strict=True))
        made.integers = raw.keys.integers, raw.values.integers
        made.single = raw.single
        return made
    return raw
