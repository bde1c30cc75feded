"""Writes object files, and takes them apart: what tests need that no application saves."""
import struct
import zlib

INT, FLOAT, DOUBLE, STRING, BLOB = -1, -2, -3, -4, -5
OWNED, OWNED_LIST, REFERENCE, REFERENCE_LIST, BOOL = -6, -7, -8, -9, -10
INTS, FLOATS, DOUBLES, STRINGS = -11, -12, -13, -14
EXTERNAL, EXTERNAL_LIST, UNSIGNED, MEMBER, OWNED_MAP = -15, -16, -17, -18, -19
MARKER = 0xABCAABCA


def text(value):
    encoded = value.encode("cp1252")
    return struct.pack("<I", len(encoded)) + encoded


def integers(*values):
    return struct.pack(f"<{len(values)}i", *values)


def uids(values):
    return integers(len(values), *values)


def record(class_id, uid, payload, crc=None):
    crc = zlib.crc32(payload) if crc is None else crc
    return struct.pack("<3I2iI", MARKER, len(payload), crc, class_id, uid, 0) + payload


class Schema:
    """Classes get ids from 1 in their order."""

    BLOCKS = ((OWNED_MAP,), (INT, FLOAT, DOUBLE, STRING, BLOB, BOOL, INTS, FLOATS, DOUBLES, STRINGS, UNSIGNED),
              (OWNED, MEMBER), (OWNED_LIST,), (REFERENCE, EXTERNAL), (REFERENCE_LIST, EXTERNAL_LIST))

    def __init__(self):
        self.classes = []

    def add(self, name, parents=(), fields=(), abstract=False):
        """`fields`: (name, kind) or (name, kind, id of its class). The id of the class."""
        self.classes.append((name, parents, fields, abstract))
        return len(self.classes)

    def payload(self):
        out = [integers(len(self.classes))]
        for index, (name, parents, fields, abstract) in enumerate(self.classes):
            out += [integers(index + 1), text(name), bytes([abstract]), integers(-1, len(parents), *parents)]
            for block in self.BLOCKS:
                own = [field for field in fields if field[1] in block]
                if block == (OWNED_MAP,) and not own:
                    continue
                out.append(integers(len(own)))
                for field in own:
                    out += [integers(field[2] if len(field) > 2 else 0, field[1]), text(field[0])]
        return b"".join(out)


def header(count, extra=b""):
    return struct.pack("<7I", 3, 0, 0, count, 2026, 0, len(extra)) + extra


def whole(schema, objects):
    """A file with a digest; `objects` are (class id, uid, payload), in the order of the file."""
    records = [record(0, 0, schema.payload())] + [record(*one) for one in objects]
    crc = 0
    for one in records:
        crc = zlib.crc32(one[:24], crc)
    begin = header(len(records), b"ZoDg" + struct.pack("<II", 1, 0))
    digest = zlib.crc32(begin[:36], crc)
    return begin[:36] + struct.pack("<I", digest) + b"".join(records)


def frames(contents):
    """(offset, size with the head, class id, uid) of each record of an undamaged file."""
    at = 28 + struct.unpack_from("<I", contents, 24)[0]
    found = []
    while at < len(contents):
        size, class_id, uid = struct.unpack_from("<I4xii", contents, at + 4)
        found.append((at, 24 + size, class_id, uid))
        at += 24 + size
    return found
