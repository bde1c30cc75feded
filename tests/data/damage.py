#!/usr/bin/env python3
"""Writes the folder damaged anew: variants of the frame in frame9-version4.zo, each damaged in its own way."""
import os
import struct
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "zo"))
import objectfile  # noqa: E402

# Uids in the frame: the section W14x283, the fifth storey, a column of section 6, a girder that starts at node 72, and
# another storey.
SECTION, STOREY, COLUMN, GIRDER, BASEMENT = 22, 337, 196, 201, 192


class Frame:
    """The frame as a list of records, by uid; the schema is the first."""

    def __init__(self):
        with open(os.path.join(HERE, "frame9-version4.zo"), "rb") as file:
            plain = file.read()
        self.begin = plain[:24] + struct.pack("<I4sI", 12, b"ZoDg", 1)
        self.records = [plain[at:at + size] for at, size, _, _ in objectfile.frames(plain)]

    def bytes(self):
        """With a digest, as files have that were saved as a whole."""
        heads = b"".join(record[:24] for record in self.records)
        digest = zlib.crc32(heads + self.begin)
        return self.begin + struct.pack("<I", digest) + b"".join(self.records)

    def offset(self, uid):
        return 40 + sum(map(len, self.records[:uid]))

    def point(self, uid, old, new):
        """Changes an object's first pointer to `old`, and makes the checksum right."""
        head, payload = self.records[uid][:24], self.records[uid][24:]
        payload = payload.replace(struct.pack("<i", old), struct.pack("<i", new), 1)
        self.records[uid] = head[:8] + struct.pack("<I", zlib.crc32(payload)) + head[12:] + payload


def flipped(contents, at):
    return contents[:at] + bytes([contents[at] ^ 0x20]) + contents[at + 1:]


def variants():
    frame = Frame()
    good = frame.bytes()
    section, storey = frame.offset(SECTION), frame.offset(STOREY)
    yield "whole", good
    yield "flipped-byte", flipped(good, section + 30)
    yield "schema", flipped(good, frame.offset(0) + 33)
    yield "torn", good[:storey + 40]
    yield "lying-size", good[:storey + 4] + struct.pack("<I", 0x4000) + good[storey + 8:]
    # More than the library's own reader passes over.
    yield "garbage", good[:storey] + b"These bytes belong to no record. " * 2000 + good[storey:]
    # Of these the digest tells: that of the whole frame.
    yield "missing", good[:section] + good[frame.offset(SECTION + 1):]
    yield "twice", good[:storey] + frame.records[SECTION] + good[storey:]
    # A program wrote these, and signed them.
    wrong = Frame()
    wrong.point(COLUMN, 6, 9999)
    wrong.point(GIRDER, 72, BASEMENT)
    yield "wrong-reference", wrong.bytes()
    # As a bad disk does it: a byte, a sector, and the end.
    yield "several", flipped(good, section + 30)[:storey] + bytes(512) + good[storey + 512:-700]


if __name__ == "__main__":
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "damaged")
    os.makedirs(folder, exist_ok=True)
    for name, contents in variants():
        with open(os.path.join(folder, name + ".zo"), "wb") as out:
            out.write(contents)
