"""What can go wrong, and what to do about it.

Every exception of this package derives from `ZoError`. What the system refuses (no such file, no permission, a full
disk) stays an `OSError`.
"""

from __future__ import annotations


class ZoError(Exception):
    """Root of this package's exceptions; its text is complete: file, place, what is wrong, what to do.

    `message` is what is wrong, `path` the file (None for bytes), `offset` the byte of the file where it was found (None
    where no byte is to blame), `remedy` what to do.
    """

    default_remedy: str | None = None

    def __init__(self, message: str, *, path: str | None = None, offset: int | None = None,
                 remedy: str | None = None) -> None:
        super().__init__(message)
        self.message = message
        self.path = path
        self.offset = offset
        self.remedy = remedy if remedy is not None else self.default_remedy

    def __str__(self) -> str:
        place = ", ".join(([self.path] if self.path is not None else []) +
                          ([f"byte {self.offset}"] if self.offset is not None else []))
        text = f"{place}: {self.message}" if place else self.message
        return f"{text}. {self.remedy}." if self.remedy else f"{text}."


class WrongFileError(ZoError):
    """The bytes do not begin as an object file does."""

    default_remedy = "Choose another file"


class DamagedError(ZoError):
    """Bytes are not those that were written."""

    default_remedy = 'Take the version before it, the file of that name with "-bak" behind, or let "zo salvage" copy what is whole'


class TruncatedError(DamagedError):
    """The file ends too soon: it was cut, or is still being written."""

    default_remedy = 'Try again if a program is saving it now; otherwise take the file of that name with "-bak" behind'


class WrongDigestError(DamagedError):
    """Each record is whole, but records are missing, in another place, or of another class or uid than was written."""


class MissingObjectError(DamagedError):
    """A pointer leads to an object that the file does not hold.

    So it is with a lost record, and with objects of a class without any field, which have no record.
    """


class SchemaError(DamagedError):
    """The file's schema contradicts itself."""


class UnreadableError(ZoError):
    """The objects of a class have a field of a kind that this version does not know."""

    default_remedy = "Update this package"


class UndecidedError(ZoError):
    """The file can be read in several ways, and the one that is right has to be known."""

    default_remedy = 'Say how the field stands in the file: open(path, layouts={"Class.field": (1,)})'


class UndecidedWarning(UserWarning):
    """Records are read in the plainest of several ways that suit them: see `File.undecided`."""


class UnknownNameError(ZoError, KeyError):
    """There is no class, field or object of that name or uid."""


class ModelError(ZoError, ValueError):
    """The model cannot be saved as it is, or a field cannot hold the value."""
