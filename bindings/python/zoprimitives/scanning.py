"""Many files at once: the objects of one class as rows, read by a pool of processes."""

from __future__ import annotations

import os
from collections import deque
from collections.abc import Callable, Iterable, Iterator, Mapping, Sequence
from concurrent.futures import Future, ProcessPoolExecutor
from contextlib import ExitStack
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from ._pandas import dataframe_of
from ._tables import Table, field_names
from .errors import UnknownNameError, ZoError
from .reading import File
from .schema import Kind

BATCH_BYTES = 16 << 20
BATCH_FILES = 32
"""What one process takes at a time, at most; a larger file goes alone."""

OnError = Callable[[str, Exception], object]
_Where = str | os.PathLike[str] | Iterable[str | os.PathLike[str]]


@dataclass(frozen=True)
class _Question:
    class_name: str
    fields: tuple[str, ...] | None
    derived: bool
    layouts: Mapping[str, Sequence[int]] | None


@dataclass
class _Answer:
    """What one file says; `columns` is None if it has no such class."""

    path: str
    columns: dict[str, list[Any]] | None = None
    kinds: Mapping[str, Kind | None] | None = None
    absent: tuple[str, ...] = ()
    error: Exception | None = None


def scan(where: _Where, class_name: str, fields: Sequence[str] | None = None, *, pattern: str = "*.zo",
         derived: bool = True, processes: int | None = None, layouts: Mapping[str, Sequence[int]] | None = None,
         on_error: OnError | None = None) -> Iterator[dict[str, Any]]:
    """The objects of a class in many files, one row after another, file by file.

    `where` is a folder, which is searched with its subfolders for files of the pattern, or the files themselves. A row is
    as `File.rows` gives it, with "file", its path, before "uid", and None where other rows of the file have a field;
    `fields`, `derived` and `layouts` are as there and in `open`. `processes`: so many read at once, as many as the machine has processors unless told; 1: this one alone.

    A file that lacks the class has no rows; a field that a file's version lacks is None. Raises FileNotFoundError where
    there is no file, UnknownNameError at the end if no file had the class, or a field. What goes wrong with a file is
    raised, or handed to `on_error(path, exception)`, which goes on with the next file when it returns.
    """
    question = _Question(class_name, field_names(fields), derived, layouts)
    return _rows(_files(where, pattern), question, processes or os.cpu_count() or 1, on_error)


def dataframe(path: str | os.PathLike[str], class_name: str, fields: Sequence[str] | None = None, *,
              derived: bool = True, layouts: Mapping[str, Sequence[int]] | None = None) -> Any:
    """The rows that `scan` gives for one file as a pandas.DataFrame: one partition of a distributed table.

    The types of its columns do not depend on the values. A file that lacks the class, or a field, gives them all the same
    if `fields` are given.
    """
    question = _Question(class_name, field_names(fields), derived, layouts)
    answer = _ask(os.fspath(path), question)
    if answer.error is not None:
        raise answer.error
    columns = answer.columns or {name: [] for name in ("uid", "class", *(fields or ()))}
    return dataframe_of({"file": [answer.path] * len(columns["uid"]), **columns}, answer.kinds or {})


def _files(where: _Where, pattern: str) -> list[str]:
    if not isinstance(where, (str, os.PathLike)):
        found = [os.fspath(path) for path in where]
    elif not os.path.isdir(where):
        raise NotADirectoryError(f'"{os.fspath(where)}" is no folder; give single files as a list')
    else:
        found = sorted(str(path) for path in Path(where).rglob(pattern) if path.is_file())
    if not found:
        raise FileNotFoundError(f'there is no file "{pattern}" to scan')
    return found


def _rows(paths: list[str], question: _Question, processes: int, on_error: OnError | None) -> Iterator[dict[str, Any]]:
    has_class = False
    absent = set(question.fields or ())
    failed = 0
    for answer in _answers(paths, question, processes):
        if answer.error is not None:
            if on_error is None:
                raise answer.error
            on_error(answer.path, answer.error)
            failed += 1
        elif answer.columns is not None:
            has_class = True
            absent.intersection_update(answer.absent)
            names = ("file", *answer.columns)
            for values in zip(*answer.columns.values()):
                yield dict(zip(names, (answer.path, *values)))
    if not has_class and failed < len(paths):
        raise UnknownNameError(f'none of the {len(paths)} files has a class "{question.class_name}"')
    if has_class and absent:
        raise UnknownNameError(f'no class "{question.class_name}" has a field "{min(absent)}" in any of the files')


def _answers(paths: list[str], question: _Question, processes: int) -> Iterator[_Answer]:
    """The answers in the order of the files. At most two batches a process are read ahead."""
    if processes == 1:
        yield from (_ask(path, question) for path in paths)
        return
    with ExitStack() as stack:
        pool = ProcessPoolExecutor(processes)
        stack.callback(pool.shutdown, cancel_futures=True)
        waiting: deque[Future[list[_Answer]]] = deque()
        for batch in _batches(paths, processes):
            waiting.append(pool.submit(_ask_all, batch, question))
            if len(waiting) > 2 * processes:
                yield from waiting.popleft().result()
        while waiting:
            yield from waiting.popleft().result()


def _batches(paths: list[str], processes: int) -> Iterator[list[str]]:
    most = max(1, min(BATCH_FILES, len(paths) // (2 * processes)))
    batch: list[str] = []
    size = 0
    for path in paths:
        try:
            its = os.path.getsize(path)
        except OSError:
            its = 0  # whoever opens it says what is wrong
        if batch and (len(batch) == most or size + its > BATCH_BYTES):
            yield batch
            batch, size = [], 0
        batch.append(path)
        size += its
    yield batch


def _ask_all(paths: list[str], question: _Question) -> list[_Answer]:
    return [_ask(path, question) for path in paths]


def _ask(path: str, question: _Question) -> _Answer:
    try:
        with File(path, layouts=question.layouts) as file:
            if question.class_name not in file.schema:
                return _Answer(path)
            table = Table(file, question.class_name, question.fields, derived=question.derived)
            columns = table.columns()
            return _Answer(path, columns, table.kinds, tuple(table.absent))
    except (ZoError, OSError, ValueError) as error:
        return _Answer(path, error=error)
