"""The outer form of a file: its header, the frames of its records, their checksums and the digest."""

from __future__ import annotations

import mmap
import struct
import zlib
from collections.abc import Iterator
from dataclasses import dataclass

from .errors import DamagedError, TruncatedError, WrongDigestError, WrongFileError

Data = bytes | mmap.mmap

HEADER = struct.Struct("<7I")
HEAD = struct.Struct("<IIIiiI")
"""Marker, size, checksum, class id, uid, key."""
EXTRA = struct.Struct("<4sII")
MARKER = 0xABCAABCA
MARKERS = frozenset((MARKER, 0xABCDABCD))
MAX_PAYLOAD = 10_485_760
VERSION_LIMIT = 10_000
RELEASE_LIMIT = 1_000_000
EXTRA_LIMIT = 65_536
DIGEST_NAME = b"ZoDg"
DIGEST_LAYOUT = 1


@dataclass(frozen=True, slots=True)
class Header:
    """What stands before the first record."""

    version: int
    release: int
    record_count: int
    size: int
    """Of header and extra block: where the first record begins."""
    digest: int | None
    """None: there is none, or of a later layout."""


def read_header(data: Data, path: str | None) -> Header:
    if len(data) < HEADER.size:
        raise TruncatedError("the file ends within its header", path=path, offset=len(data))
    version, _, _, count, release, _, extra = HEADER.unpack_from(data)
    if version >= VERSION_LIMIT or release >= RELEASE_LIMIT or extra >= EXTRA_LIMIT:
        raise WrongFileError("this is no object file", path=path)
    size = HEADER.size + extra
    if len(data) < size:
        raise TruncatedError("the file ends within its header", path=path, offset=len(data))
    digest = None
    if extra == EXTRA.size:
        name, layout, value = EXTRA.unpack_from(data, HEADER.size)
        digest = value if name == DIGEST_NAME and layout == DIGEST_LAYOUT else None
    return Header(version, release, count, size, digest)


def heads(data: Data, begin: int, path: str | None) -> Iterator[tuple[int, int, int]]:
    """The offset, class id and uid of each record from there to the end. Reads no payload."""
    at, end, unpack, head_size = begin, len(data), HEAD.unpack_from, HEAD.size
    while at < end:
        if end - at < head_size:
            raise TruncatedError("the file ends within a record's head", path=path, offset=at)
        marker, size, _, class_id, uid, _ = unpack(data, at)
        if marker not in MARKERS:
            raise DamagedError("no record begins where one should", path=path, offset=at)
        if size > MAX_PAYLOAD:
            raise DamagedError("a record is larger than any can be", path=path, offset=at)
        if end - at - head_size < size:
            raise TruncatedError("the file ends within a record", path=path, offset=at)
        yield at, class_id, uid
        at += head_size + size


def payload(data: Data, at: int, path: str | None) -> bytes:
    """The plain payload of the record at that offset, which `heads` has found."""
    _, size, crc, _, _, key = HEAD.unpack_from(data, at)
    begin = at + HEAD.size
    found = data[begin:begin + size]
    if key:
        found = scrambled(found, key)
    if zlib.crc32(found) != crc:
        raise DamagedError("a record's bytes do not agree with their checksum", path=path, offset=at)
    return found


def scrambled(data: bytes, key: int) -> bytes:
    """Scrambles or restores. The lowest set bit of the key's bits 0 to 2 is what counts."""
    k = key & 7 & -(key & 7)
    pattern = bytes((11 * k & 255, 13 * k & 255, 15 * k & 255)) * (len(data) // 3 + 1)
    mixed = int.from_bytes(data, "little") ^ int.from_bytes(pattern[:len(data)], "little")
    return mixed.to_bytes(len(data), "little")


def frame(class_id: int, uid: int, content: bytes) -> bytes:
    """A record with its head."""
    return HEAD.pack(MARKER, len(content), zlib.crc32(content), class_id, uid, 0) + content


def check_digest(data: Data, header: Header, path: str | None) -> None:
    """Raises WrongDigestError if the heads of the records are not those that were written."""
    if header.digest is None:
        return
    crc = 0
    for at, _, _ in heads(data, header.size, path):
        crc = zlib.crc32(data[at:at + HEAD.size], crc)
    if zlib.crc32(data[:HEADER.size + 8], crc) != header.digest:
        raise WrongDigestError("records are missing, out of place, or of another class or uid than was written, "
                               "or the saving was interrupted", path=path)
