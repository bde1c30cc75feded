"""Tables for pandas, which is imported where a data frame is asked for."""

from __future__ import annotations

from collections.abc import Mapping, Sequence
from typing import Any

from .schema import Kind

_DTYPES = {Kind.INT: "Int64", Kind.UNSIGNED: "Int64", Kind.BOOL: "boolean", Kind.FLOAT: "float64",
           Kind.DOUBLE: "float64"}


def dataframe_of(columns: Mapping[str, Sequence[Any]], kinds: Mapping[str, Kind | None]) -> Any:
    """A pandas.DataFrame of the columns, whose types depend on the kinds alone and not on the values."""
    try:
        import pandas  # type: ignore[import]
    except ImportError as error:
        raise ImportError("a data frame needs pandas: pip install pandas. Without it, rows() and columns() give the "
                          "same values", name="pandas") from error

    def series(name: str, values: Sequence[Any]) -> Any:
        kind = kinds.get(name)
        dtype = "int64" if name == "uid" else "Int64" if kind and kind.is_pointer else _DTYPES.get(kind or Kind.STRING)
        return pandas.Series(values, dtype=dtype or "object")
    return pandas.DataFrame({name: series(name, values) for name, values in columns.items()})
