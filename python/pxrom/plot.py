"""Pictures of a model with matplotlib.

    >>> figure = pxrom.plot.slices(model, {"Material": 1, "Holes": 2}, {"L": 1.5})
    >>> figure.savefig("slices.png")

:func:`slices` varies one input at a time through a point, for one output or all of them;
:func:`contour` varies two. Both return a matplotlib figure and show nothing. Inputs that the point
leaves out stand in the middle of their bounds.
"""

from typing import Any, Dict, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from ._model import Model, Parameter
from ._wording import did_you_mean

__all__ = ["contour", "slices"]

_STEPS = 101
_COLOURS = {"line": "#1f4e79", "band": "#9dc3e6", "sample": "#c55a11", "point": "#404040"}


def slices(
    model: Model,
    discrete: Optional[Mapping[str, int]] = None,
    point: Optional[Mapping[str, float]] = None,
    *,
    outputs: Union[str, Sequence[str], None] = None,
    inputs: Union[str, Sequence[str], None] = None,
    samples: float = 0.15,
) -> Any:
    """Slices through a point: a row per output and a column per input.

    The band is the predicted error to both sides, where the database has one in the unit of the
    output. Samples are shown where they lie near: within ``samples``, as a part of the bounds'
    width, of the point in every other input (0 for none); the nearer, the darker.
    """
    rows = _chosen(outputs, [p.name for p in model.outputs], "output")
    columns = _chosen(inputs, [p.name for p in model.inputs], "input")
    centre, ranges = _centre(model, point)
    figure, axes = _figure(len(rows), len(columns))
    for column, name in enumerate(columns):
        place = [p.name for p in model.inputs].index(name)
        X = np.tile(centre, (_STEPS, 1))
        X[:, place] = np.linspace(ranges[place, 0], ranges[place, 1], _STEPS)
        result = model.predict(discrete, X, return_error=True)
        assert result.errors is not None
        for row, output in enumerate(rows):
            ax = axes[row, column]
            values = result.values[output]
            if output not in result.scaled_errors:
                error = np.abs(result.errors[output])
                ax.fill_between(
                    X[:, place], values - error, values + error, color=_COLOURS["band"], lw=0
                )
            ax.plot(X[:, place], values, color=_COLOURS["line"])
            ax.axvline(centre[place], color=_COLOURS["point"], lw=0.6, ls=":")
            if samples > 0:
                _show_samples(ax, model, discrete, output, place, centre, ranges, samples)
            if row == len(rows) - 1:
                ax.set_xlabel(_label(model.inputs[place]))
            if column == 0:
                ax.set_ylabel(_label(_named(model.outputs, output)))
    _share_rows(axes)
    figure.suptitle(_title(discrete))
    return figure


def contour(
    model: Model,
    discrete: Optional[Mapping[str, int]] = None,
    point: Optional[Mapping[str, float]] = None,
    *,
    output: str,
    x: str,
    y: str,
    samples: float = 0.15,
    steps: int = 61,
) -> Any:
    """One output over two inputs, the others as in ``point``; samples as in :func:`slices`."""
    names = [p.name for p in model.inputs]
    _chosen(output, [p.name for p in model.outputs], "output")
    _chosen([x, y], names, "input")
    if x == y:
        raise ValueError(f"x and y have to be two inputs, both are {x!r}")
    centre, ranges = _centre(model, point)
    i, j = names.index(x), names.index(y)
    U, V = np.meshgrid(
        np.linspace(*ranges[i], steps), np.linspace(*ranges[j], steps), indexing="xy"
    )
    X = np.tile(centre, (U.size, 1))
    X[:, i], X[:, j] = U.ravel(), V.ravel()
    values = model.predict(discrete, X).values[output].reshape(U.shape)
    figure, axes = _figure(1, 1, (5.2, 4.2))
    ax = axes[0, 0]
    drawn = ax.contourf(U, V, values, levels=14, cmap="Blues")
    figure.colorbar(drawn, ax=ax, label=_label(_named(model.outputs, output)))
    if samples > 0:
        points, _ = model.samples(discrete, output=output)
        near = _nearness(points, [i, j], centre, ranges, samples)
        _dots(ax, points[:, i], points[:, j], near)
    ax.plot(centre[i], centre[j], "+", color=_COLOURS["point"])
    ax.set_xlabel(_label(model.inputs[i]))
    ax.set_ylabel(_label(model.inputs[j]))
    figure.suptitle(_title(discrete))
    return figure


def _centre(model: Model, point: Optional[Mapping[str, float]]) -> Tuple[np.ndarray, np.ndarray]:
    """The point by column, and the range that each input is varied over."""
    given: Dict[str, float] = dict(point or {})
    names = [p.name for p in model.inputs]
    for name in given:
        if name not in names:
            raise ValueError(f"there is no input {name!r}{did_you_mean(name, names)}")
    centre, ranges = [], []
    for parameter in model.inputs:
        if parameter.bounds is None:
            if parameter.name not in given:
                raise ValueError(
                    f"the input {parameter.name!r} has no bounds: the point has to name it"
                )
            value = float(given[parameter.name])
            reach = abs(value) or 1.0
            ranges.append((value - reach / 2, value + reach / 2))
        else:
            ranges.append(parameter.bounds)
            value = float(given.get(parameter.name, np.mean(parameter.bounds)))
        centre.append(value)
    return np.array(centre), np.array(ranges, dtype=float).reshape(-1, 2)


def _nearness(
    points: np.ndarray, varied: Sequence[int], centre: np.ndarray, ranges: np.ndarray, reach: float
) -> np.ndarray:
    """1 for samples in the plane that is shown, falling to 0 at ``reach`` from it."""
    others = [k for k in range(len(centre)) if k not in varied]
    if len(points) == 0 or not others:
        return np.ones(len(points))
    widths = ranges[others, 1] - ranges[others, 0]
    away = np.abs((points[:, others] - centre[others]) / widths).max(axis=1)
    return np.clip(1.0 - away / reach, 0.0, 1.0)


def _show_samples(
    ax: Any,
    model: Model,
    discrete: Optional[Mapping[str, int]],
    output: str,
    place: int,
    centre: np.ndarray,
    ranges: np.ndarray,
    reach: float,
) -> None:
    points, values = model.samples(discrete, output=output)
    near = _nearness(points, [place], centre, ranges, reach)
    _dots(ax, points[:, place], values, near)


def _dots(ax: Any, x: np.ndarray, y: np.ndarray, near: np.ndarray) -> None:
    shown = near > 0
    if shown.any():
        ax.scatter(x[shown], y[shown], s=14, color=_COLOURS["sample"], alpha=near[shown])


def _share_rows(axes: np.ndarray) -> None:
    """One range of values for each output, so that its slices compare."""
    for row in axes:
        low = min(ax.get_ylim()[0] for ax in row)
        high = max(ax.get_ylim()[1] for ax in row)
        for column, ax in enumerate(row):
            ax.set_ylim(low, high)
            if column > 0:
                ax.tick_params(labelleft=False)


def _figure(rows: int, columns: int, size: Optional[Tuple[float, float]] = None) -> Any:
    # The figure alone, without pyplot: nothing opens a window or stays in a global list.
    from matplotlib.figure import Figure

    figure = Figure(figsize=size or (2.4 * columns + 0.8, 2.0 * rows + 0.6), layout="constrained")
    return figure, figure.subplots(rows, columns, squeeze=False)


def _chosen(asked: Union[str, Sequence[str], None], names: Sequence[str], what: str) -> list:
    chosen = list(names) if asked is None else [asked] if isinstance(asked, str) else list(asked)
    for name in chosen:
        if name not in names:
            raise ValueError(f"there is no {what} {name!r}{did_you_mean(name, names)}")
    if not chosen:
        raise ValueError(f"there is no {what} to show")
    return chosen


def _named(parameters: Sequence[Parameter], name: str) -> Parameter:
    return next(parameter for parameter in parameters if parameter.name == name)


def _label(parameter: Parameter) -> str:
    return f"{parameter.name} [{parameter.unit}]" if parameter.unit else parameter.name


def _title(discrete: Optional[Mapping[str, int]]) -> str:
    return ", ".join(f"{name}={value}" for name, value in (discrete or {}).items())
