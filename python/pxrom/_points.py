"""Turns the points of a caller into a table with one column per input."""

from collections import Counter
from typing import Any, Dict, List, Mapping, Sequence, Tuple

import numpy as np

from ._wording import did_you_mean, listed


def is_frame(points: Any) -> bool:
    """Whether it is a pandas frame, without importing pandas."""
    return hasattr(points, "columns") and hasattr(points, "index") and hasattr(points, "loc")


def has_names(given: Any) -> bool:
    """Whether it is a pandas frame or Series."""
    return is_frame(given) or (hasattr(given, "name") and hasattr(given, "loc"))


def names_of(given: Any) -> List[str]:
    """The names that a caller gives: a str is one name; a frame gives the names of its columns, a
    Series its own name, anything else its items."""
    if isinstance(given, str):
        return [given]
    if is_frame(given):
        return [str(column) for column in given.columns]
    if has_names(given):
        return [] if given.name is None else [str(given.name)]
    return [str(name) for name in given]


def require_key(columns: Any, key: Mapping[str, int], advice: str) -> None:
    """Refuses a column of a discrete input that has other values than ``key``."""
    for name, value in key.items():
        if name not in columns:
            continue
        held = list(dict.fromkeys(np.ravel(np.asarray(columns[name])).tolist()))
        if any(one != value for one in held):
            shown = listed(held) if len(held) <= 4 else f"{len(held)} different values"
            raise ValueError(
                f"the points hold {shown} for {name!r}, but the combination says {name}={value}; "
                + advice.format(name=name, value=value)
            )


def row_named(points: Any, row: int) -> str:
    """How a message names a row: by the index of a frame, otherwise counted from 0."""
    return f"row {points.index[row] if is_frame(points) else row!r}"


def rows_with_nan(points: np.ndarray) -> Any:
    """The rows (n,) in which an input is NaN; None, after one pass without a copy, if there are
    none."""
    if points.size == 0 or not np.isnan(points.min()):
        return None
    return np.isnan(points).any(axis=1)


def table(points: Any, inputs: Sequence[str]) -> np.ndarray:
    """``points`` as a C-contiguous float array of the shape (rows, len(inputs))."""
    return tables(points, inputs, ())[0]


def tables(
    points: Any, inputs: Sequence[str], discrete: Sequence[str]
) -> Tuple[np.ndarray, Dict[str, np.ndarray]]:
    """``points`` as for :func:`table`, and the values (rows,) of each of the discrete inputs that a
    frame or a mapping holds, of any type."""
    if is_frame(points):
        return _of_frame(points, inputs), _discrete_of_frame(points, discrete)
    if isinstance(points, Mapping):
        return _of_mapping(points, inputs, discrete)
    return _of_array(points, inputs), {}


def _of_array(points: Any, inputs: Sequence[str]) -> np.ndarray:
    made = floats(points, "points")
    if made.ndim != 2:
        raise ValueError(
            f"points have to be a table with rows of points, but have {made.ndim} dimension(s); "
            "for one point write [[...]], for one input X.reshape(-1, 1)"
        )
    if made.shape[1] != len(inputs):
        raise ValueError(
            f"points have {made.shape[1]} columns, but the model has {len(inputs)} inputs, "
            f"in this order: {listed(inputs)}"
        )
    return np.ascontiguousarray(made)


def point(given: Any, inputs: Sequence[str]) -> np.ndarray:
    """``given`` as a C-contiguous float array of the shape (len(inputs),)."""
    made = floats(given, "the point")
    if made.shape != (len(inputs),):
        raise ValueError(
            f"a point is an array of the shape ({len(inputs)},), with the inputs {listed(inputs)}, "
            f"but it has the shape {made.shape}; Model.predict takes tables"
        )
    return np.array(made, dtype=float, order="C")


def floats(values: Any, what: str) -> np.ndarray:
    """Real numbers; ``what`` names them in a refusal."""
    if hasattr(values, "toarray"):
        raise ValueError(f"a sparse matrix was given for {what}; pass its toarray()")
    try:
        made = np.asarray(values)
        if made.dtype.kind == "c":
            raise TypeError
        return made.astype(float, copy=False)
    except (TypeError, ValueError):
        raise ValueError(f"{what} can't be read as real numbers") from None


def _of_frame(frame: Any, inputs: Sequence[str]) -> np.ndarray:
    made = np.empty((len(frame), len(inputs)))
    counts = Counter(frame.columns)
    for place, name in enumerate(inputs):
        count = counts[name]
        if count != 1:
            many = "no column" if count == 0 else f"{count} columns"
            strings = [str(column) for column in frame.columns]
            hint = did_you_mean(name, strings) if count == 0 else ""
            raise ValueError(f"the frame has {many} for the input {name!r}{hint}")
        made[:, place] = floats(frame[name].to_numpy(), f"column {name!r}")
    return made


def _discrete_of_frame(frame: Any, discrete: Sequence[str]) -> Dict[str, np.ndarray]:
    columns: Dict[str, np.ndarray] = {}
    for name in discrete:
        if name in frame.columns:
            columns[name] = frame[name].to_numpy()
            if columns[name].ndim > 1:
                raise ValueError(f"the frame has several columns for the input {name!r}")
    return columns


def _of_mapping(
    points: Mapping[str, Any], inputs: Sequence[str], discrete: Sequence[str]
) -> Tuple[np.ndarray, Dict[str, np.ndarray]]:
    known = {*inputs, *discrete}
    for name in points:
        if name not in known:
            raise ValueError(f"there is no input {name!r}{did_you_mean(name, inputs)}")
    columns: Dict[str, np.ndarray] = {}
    for name in inputs:
        if name not in points:
            raise ValueError(f"the input {name!r} is missing; the inputs are {listed(inputs)}")
        columns[name] = floats(points[name], f"input {name!r}")
    columns.update((name, np.asarray(points[name])) for name in discrete if name in points)
    for name, values in columns.items():
        if values.ndim > 1:
            raise ValueError(
                f"input {name!r} has {values.ndim} dimensions; give one value per point"
            )
    lengths = {name: len(values) for name, values in columns.items() if values.ndim == 1}
    rows = max(lengths.values(), default=1)
    for name, length in lengths.items():
        if length != rows:
            longest = max(lengths, key=lambda other: lengths[other])
            raise ValueError(
                f"inputs differ in length: {length} values for {name!r}, {rows} for {longest!r}"
            )
    made = np.empty((rows, len(inputs)))
    for place, name in enumerate(inputs):
        made[:, place] = columns[name]
    return made, {
        name: np.broadcast_to(columns[name], rows) for name in discrete if name in columns
    }
