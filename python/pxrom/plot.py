"""Pictures of a model with matplotlib.

    >>> figure = pxrom.plot.slices(model, {"Material": 1, "Holes": 2}, {"L": 1.5})
    >>> figure.savefig("slices.png")

:func:`slices` varies one input at a time through a point, for one output or all of them;
:func:`contour` varies two. Inputs that the point leaves out are in the middle of their bounds.
:func:`predicted_actual` and :func:`residuals` show what :meth:`Model.validate` found. All return a
matplotlib figure and show nothing.
"""

from typing import Any, Callable, Dict, List, Mapping, Optional, Sequence, Tuple

import numpy as np

from ._model import Model, Parameter
from ._points import names_of
from ._validation import Validation
from ._wording import did_you_mean, visible

__all__ = ["contour", "predicted_actual", "residuals", "slices"]

_STEPS = 101
_ACROSS = 5
_COLOURS = {
    "line": "#1f4e79",
    "band": "#9dc3e6",
    "sample": "#c55a11",
    "point": "#404040",
    "unsampled": "#eeeeee",
}


def slices(
    model: Model,
    discrete: Optional[Mapping[str, int]] = None,
    point: Optional[Mapping[str, float]] = None,
    *,
    outputs: Any = None,
    inputs: Any = None,
    samples: int = 12,
) -> Any:
    """Slices through a point, which is marked: a row per output and a column per input; with more
    than five inputs there are further rows.

    The band is the predicted error to both sides, if the database has one. Parts outside the range
    of the samples are grey. Each slice shows the ``samples`` that lie nearest to it (0 for none), by their distance
    in the other inputs, each as a part of its bounds' width: the nearer, the darker.
    """
    shown = _chosen(outputs, [p.name for p in model.outputs], "output")
    varied = _chosen(inputs, [p.name for p in model.inputs], "input")
    centre, ranges = _centre(model, point)
    at_point = model.predict(discrete, centre[None])
    sampled = {output: model.sample_ranges(discrete, output=output) for output in shown}
    figure, axes = _grid(len(shown), len(varied))
    for column, name in enumerate(varied):
        place = [p.name for p in model.inputs].index(name)
        X = np.tile(centre, (_STEPS, 1))
        X[:, place] = np.linspace(ranges[place, 0], ranges[place, 1], _STEPS)
        result = model.predict(discrete, X, return_error=True)
        assert result.errors is not None and result.lower is not None and result.upper is not None
        for row, output in enumerate(shown):
            ax = axes[row][column]
            values = result.values[output]
            if not np.isnan(result.errors[output]).all():
                band = (result.lower[output], result.upper[output])
                ax.fill_between(X[:, place], *band, color=_COLOURS["band"], lw=0)
            _shade_unsampled(ax, sampled[output].get(name), ranges[place])
            ax.plot(X[:, place], values, color=_COLOURS["line"])
            ax.axvline(centre[place], color=_COLOURS["point"], lw=0.6, ls=":")
            inputs_of, outputs_of = model.samples(discrete, output=output)
            near, shade = _nearest(inputs_of, [place], centre, ranges, samples)
            _dots(ax, inputs_of[near, place], outputs_of[near], shade)
            _mark(ax, centre[place], at_point.values[output][0])
            if row == len(shown) - 1 or len(varied) > _ACROSS:
                ax.set_xlabel(_label(model.inputs[place]))
            if column % _ACROSS == 0:
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
    samples: int = 12,
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
    figure = _figure(5.2, 4.2)
    ax = figure.subplots()
    drawn = ax.contourf(U, V, values, levels=14, cmap="Blues")
    figure.colorbar(drawn, ax=ax, label=_label(_named(model.outputs, output)))
    points, _ = model.samples(discrete, output=output)
    near, shade = _nearest(points, [i, j], centre, ranges, samples)
    _dots(ax, points[near, i], points[near, j], shade)
    _mark(ax, centre[i], centre[j])
    ax.set_xlabel(_label(model.inputs[i]))
    ax.set_ylabel(_label(model.inputs[j]))
    figure.suptitle(_title(discrete))
    return figure


def predicted_actual(validation: Validation, *, outputs: Any = None) -> Any:
    """Predicted values over measured ones, a picture per output. Points on the line agree; bars are
    the predicted errors, where they are in the unit of the output."""

    def draw(ax: Any, output: str, measured: np.ndarray, predicted: np.ndarray) -> None:
        errors = np.abs(validation.errors[output])
        ax.errorbar(
            measured,
            predicted,
            errors,
            fmt="o",
            ms=4,
            lw=0.8,
            color=_COLOURS["line"],
            ecolor=_COLOURS["band"],
        )
        ends = [np.nanmin([measured, predicted]), np.nanmax([measured, predicted])]
        ax.plot(ends, ends, color=_COLOURS["point"], lw=0.8)
        ax.set_ylabel(_label(_named(validation.model.outputs, output)) + " predicted")

    return _validated(validation, outputs, draw)


def residuals(validation: Validation, *, outputs: Any = None) -> Any:
    """Predicted minus measured values over the measured ones, a picture per output."""

    def draw(ax: Any, output: str, measured: np.ndarray, predicted: np.ndarray) -> None:
        ax.axhline(0.0, color=_COLOURS["point"], lw=0.8)
        ax.plot(measured, predicted - measured, "o", ms=4, color=_COLOURS["line"])
        ax.set_ylabel(_label(_named(validation.model.outputs, output)) + " difference")

    return _validated(validation, outputs, draw)


def _validated(
    validation: Validation,
    outputs: Any,
    draw: Callable[[Any, str, np.ndarray, np.ndarray], None],
) -> Any:
    shown = _chosen(outputs, validation.outputs, "measured output")
    across = min(len(shown), 3)
    down = -(-len(shown) // across)
    figure = _figure(3.4 * across, 3.2 * down)
    for place, output in enumerate(shown):
        ax = figure.add_subplot(down, across, place + 1)
        draw(ax, output, validation.measured[output], validation.predicted[output])
        ax.set_xlabel("measured")
        ax.set_title(f"R2 = {validation[output].r2:.4g}", fontsize="medium")
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


def _nearest(
    points: np.ndarray, varied: Sequence[int], centre: np.ndarray, ranges: np.ndarray, count: int
) -> Tuple[np.ndarray, np.ndarray]:
    """The rows of the ``count`` points nearest to the picture, the nearest last so that it is drawn
    on top, and how dark each is: from 1 in the picture's own plane, falling with the mean
    distance per input."""
    if count < 0 or count != int(count):
        raise ValueError(f"samples={count!r} has to be a number of samples, 0 for none")
    others = [k for k in range(len(centre)) if k not in varied]
    away = np.zeros(len(points))
    if others:
        widths = ranges[others, 1] - ranges[others, 0]
        away = np.sqrt((((points[:, others] - centre[others]) / widths) ** 2).mean(axis=1))
    near = np.argsort(away, kind="stable")[: int(count)][::-1]
    return near, 1.0 / (1.0 + (away[near] / 0.2) ** 2)


def _shade_unsampled(ax: Any, sampled: Optional[Tuple[float, float]], shown: np.ndarray) -> None:
    if sampled is not None:
        for start, end in ((shown[0], sampled[0]), (sampled[1], shown[1])):
            if start < end:
                ax.axvspan(start, end, color=_COLOURS["unsampled"], lw=0, zorder=0)


def _dots(ax: Any, x: np.ndarray, y: np.ndarray, shade: np.ndarray) -> None:
    if len(x) > 0:
        ax.scatter(x, y, s=14, color=_COLOURS["sample"], alpha=shade)


def _mark(ax: Any, x: float, y: float) -> None:
    """Draws the point itself on top."""
    ax.plot(x, y, "o", ms=5, mfc="white", mec=_COLOURS["point"], zorder=5)


def _share_rows(axes: Sequence[Sequence[Any]]) -> None:
    """Sets one range of values for each output, so that its slices can be compared."""
    for row in axes:
        low = min(ax.get_ylim()[0] for ax in row)
        high = max(ax.get_ylim()[1] for ax in row)
        for column, ax in enumerate(row):
            ax.set_ylim(low, high)
            if column % _ACROSS > 0:
                ax.tick_params(labelleft=False)


def _figure(width: float, height: float) -> Any:
    # The figure alone, without pyplot: nothing opens a window or stays in a global list.
    from matplotlib.figure import Figure

    return Figure(figsize=(width, height), layout="constrained")


def _grid(outputs: int, inputs: int) -> Tuple[Any, List[List[Any]]]:
    """A figure, and its axes by output and input."""
    across = min(inputs, _ACROSS)
    down = -(-inputs // _ACROSS)
    figure = _figure(2.4 * across + 0.8, 2.0 * outputs * down + 0.6)
    cells = figure.add_gridspec(outputs * down, across)
    axes = [
        [
            figure.add_subplot(cells[row * down + column // _ACROSS, column % _ACROSS])
            for column in range(inputs)
        ]
        for row in range(outputs)
    ]
    return figure, axes


def _chosen(asked: Any, names: Sequence[str], what: str) -> List[str]:
    chosen = list(names) if asked is None else names_of(asked)
    for name in chosen:
        if name not in names:
            raise ValueError(f"there is no {what} {name!r}{did_you_mean(name, names)}")
    if not chosen:
        raise ValueError(f"there is no {what} to show")
    return chosen


def _named(parameters: Sequence[Parameter], name: str) -> Parameter:
    return next(parameter for parameter in parameters if parameter.name == name)


def _label(parameter: Parameter) -> str:
    return visible(f"{parameter.name} [{parameter.unit}]" if parameter.unit else parameter.name)


def _title(discrete: Optional[Mapping[str, int]]) -> str:
    return visible(", ".join(f"{name}={value}" for name, value in (discrete or {}).items()))
