"""Texts of files: Windows-1252, where each byte is a character, and each text comes back as it was."""

from __future__ import annotations

import codecs
from typing import Any

# The five bytes that Windows-1252 leaves open stand for the control characters of the same number.
_OPEN = b"\x81\x8d\x8f\x90\x9d"
_CHARACTERS: Any = "".join(bytes((byte,)).decode("latin-1" if byte in _OPEN else "cp1252") for byte in range(256))
_BYTES = codecs.charmap_build(_CHARACTERS)


def decode(data: bytes) -> str:
    """The text of the bytes; every sequence of bytes is one."""
    return codecs.charmap_decode(data, "strict", _CHARACTERS)[0]


def encode(text: str) -> bytes:
    """The bytes of the text. Raises UnicodeEncodeError for a character that Windows-1252 lacks."""
    return codecs.charmap_encode(text, "strict", _BYTES)[0]
