"""Reads and writes the object files of ZoPrimitives, with the standard library alone.

    import zoprimitives

    with zoprimitives.open("house.zo") as file:
        for room in file.objects("Room"):
            print(room.name, room.area)

`open` reads lazily, `load` gives a `Model` to change and save, `scan` tables of many files. What goes wrong is a `ZoError`.
"""

from ._records import SINGLE, Uids, UidMap, Values
from ._version import __version__
from .errors import (DamagedError, MissingObjectError, ModelError, SchemaError, TruncatedError, UndecidedError,
                     UndecidedWarning, UnknownNameError, UnreadableError, WrongDigestError, WrongFileError, ZoError)
from .model import Model, Object, ObjectList, ObjectMap, ValueList, load
from .reading import File, Record, RecordList, RecordMap, open
from .scanning import dataframe, scan
from .schema import Class, Field, Kind, Schema, Slot

__all__ = [
    "SINGLE", "Class", "DamagedError", "Field", "File", "Kind", "MissingObjectError", "Model", "ModelError", "Object",
    "ObjectList", "ObjectMap", "Record", "RecordList", "RecordMap", "Schema", "SchemaError", "Slot", "TruncatedError",
    "UidMap", "Uids", "UndecidedError", "UndecidedWarning", "UnknownNameError", "UnreadableError", "ValueList", "Values", "WrongDigestError",
    "WrongFileError", "ZoError", "__version__", "dataframe", "load", "open",
    "scan",
]
