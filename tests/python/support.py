"""What the tests of the Python package share.

ZO_FRAME names the example's program, which opens files by the library, ZO_TOOL the file tool, which knows no classes.
"""
import os
import struct
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DATA = ROOT / "tests" / "data"
sys.path.insert(0, str(ROOT / "bindings" / "python"))

import zoprimitives as zo  # noqa: E402
from zoprimitives import Kind  # noqa: E402


class FolderTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="zo-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)


def houses():
    schema = zo.Schema()
    schema.add("Thing", [("name", Kind.STRING)], abstract=True)
    schema.add("Place", [("x", Kind.DOUBLE), ("y", Kind.DOUBLE)])
    schema.add("Room", [("area", Kind.DOUBLE), ("place", Kind.MEMBER, "Place"), ("beside", Kind.REFERENCE, "Room")],
               parents=["Thing"])
    schema.add("Kitchen", [("stoves", Kind.INT)], parents=["Room"])
    schema.add("House", [("rooms", Kind.CHILD_LIST, "Room")], parents=["Thing"])
    return schema


def house(rooms=2, name="Casa", schema=None):
    """A model of a house whose last room is a kitchen."""
    model = zo.Model(schema or houses(), version=1, release=2026)
    made = [model.new("Room", name=f"{name} {i}", area=10.0 + i, place=model.new("Place", x=float(i)))
            for i in range(1, rooms)]
    kitchen = model.new("Kitchen", name="Küche", area=12.5, stoves=4, beside=made[0] if made else None)
    model.root = model.new("House", name=name, rooms=[*made, kitchen])
    return model


# Files byte by byte: what no writer would write.


def text(value):
    data = value.encode("cp1252")
    return struct.pack("<i", len(data)) + data


def ints(*values):
    return struct.pack(f"<{len(values)}i", *values)


def field(name, kind, target=0):
    return ints(target, kind) + text(name)


def entry(number, name, *blocks, parents=(), abstract=False):
    """A class of a schema record; each block is a list of fields."""
    return (ints(number) + text(name) + bytes([abstract]) + ints(-1, len(parents), *parents) +
            b"".join(ints(len(block)) + b"".join(block) for block in blocks))


def frame(class_id, uid, payload):
    return struct.pack("<IIIiiI", 0xABCAABCA, len(payload), zlib.crc32(payload), class_id, uid, 0) + payload


def file_of(entries, *records, version=1):
    """A file of these classes and (class id, uid, payload)."""
    schema = ints(len(entries)) + b"".join(entries)
    return (struct.pack("<7I", version, 0, 0, 1 + len(records), 2026, 0, 0) + frame(0, 0, schema) +
            b"".join(frame(*record) for record in records))


def simple(*fields, **how):
    """A class 1 "A" with fields in the block of values."""
    return entry(1, "A", list(fields), [], [], [], [], **how)


def main():
    os.environ.setdefault("PYTHONDONTWRITEBYTECODE", "1")
    unittest.main()
