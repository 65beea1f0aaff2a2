"""From what a caller has for points to a table with one column per input."""

from typing import Any, Dict, Mapping, Sequence

import numpy as np

from ._wording import did_you_mean, listed


def is_frame(points: Any) -> bool:
    """Whether it is a pandas frame, without importing pandas."""
    return hasattr(points, "columns") and hasattr(points, "index") and hasattr(points, "loc")


def table(points: Any, inputs: Sequence[str]) -> np.ndarray:
    """``points`` as a C-contiguous float array of the shape (rows, len(inputs))."""
    if is_frame(points):
        return _of_frame(points, inputs)
    if isinstance(points, Mapping):
        return _of_mapping(points, inputs)
    made = _floats(points, "points")
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


def _floats(values: Any, what: str) -> np.ndarray:
    try:
        made = np.asarray(values)
        if made.dtype.kind == "c":
            raise TypeError
        return made.astype(float, copy=False)
    except (TypeError, ValueError):
        raise ValueError(f"{what} can't be read as real numbers") from None


def _of_frame(frame: Any, inputs: Sequence[str]) -> np.ndarray:
    made = np.empty((len(frame), len(inputs)))
    for place, name in enumerate(inputs):
        count = sum(1 for column in frame.columns if column == name)
        if count != 1:
            many = "no column" if count == 0 else f"{count} columns"
            strings = [str(column) for column in frame.columns]
            hint = did_you_mean(name, strings) if count == 0 else ""
            raise ValueError(f"the frame has {many} for the input {name!r}{hint}")
        made[:, place] = _floats(frame[name].to_numpy(), f"column {name!r}")
    return made


def _of_mapping(points: Mapping[str, Any], inputs: Sequence[str]) -> np.ndarray:
    for name in points:
        if name not in inputs:
            raise ValueError(f"there is no input {name!r}{did_you_mean(name, inputs)}")
    columns: Dict[str, np.ndarray] = {}
    for name in inputs:
        if name not in points:
            raise ValueError(f"the input {name!r} is missing; needed are {listed(inputs)}")
        columns[name] = _floats(points[name], f"input {name!r}")
        if columns[name].ndim > 1:
            raise ValueError(
                f"input {name!r} has {columns[name].ndim} dimensions; give one value per point"
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
    return made
