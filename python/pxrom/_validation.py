"""A model beside measurements."""

from typing import TYPE_CHECKING, Any, Dict, List, Mapping, NamedTuple, Optional, Tuple

import numpy as np

from . import _core, _html, _points
from ._prediction import Columns
from ._wording import listed, visible

if TYPE_CHECKING:
    from ._model import Combination, Model


class Scores(NamedTuple):
    """How well predictions of one output agree with measurements. A difference is the predicted
    value minus the measured one; all but ``r2`` is in the unit of the output.

    ``count`` rows were compared; ``missing`` rows have no measured value, and ``failed`` ones have a
    measured value and no prediction. ``r2`` is the coefficient of determination, NaN where it is
    undefined, since all measured values are equal. ``bias`` is the mean difference. ``with_error``
    rows have a predicted error, and ``within`` says how many of them differ by at most one, two and
    three predicted errors.
    """

    count: int
    missing: int
    failed: int
    r2: float
    rmse: float
    mean_absolute_error: float
    largest_absolute_error: float
    bias: float
    with_error: int
    within: Tuple[int, int, int]


class Validation:
    """What :meth:`Model.validate` returns, for n rows and the m outputs that were measured.

    Attributes:
        outputs: the m names.
        combinations: the combinations of discrete values in the rows, ascending.
        measured: :class:`Columns` of the shape (n, m), NaN where a value is missing.
        predicted: the same for the values of the model, NaN where it has none.
        errors: the same for predicted errors in the unit of the output, NaN for a missing one.
        rows: the number of the combination of each row.

    ``validation["mass"]`` gives the :class:`Scores` of one output over all rows.
    """

    def __init__(
        self,
        model: "Model",
        outputs: Tuple[str, ...],
        combinations: Tuple["Combination", ...],
        rows: np.ndarray,
        measured: np.ndarray,
        predicted: np.ndarray,
        errors: np.ndarray,
    ) -> None:
        self.model = model
        self.outputs = outputs
        self.combinations = combinations
        self.rows = rows
        self.measured = Columns(outputs, measured)
        self.predicted = Columns(outputs, predicted)
        self.errors = Columns(outputs, errors)

    def __getitem__(self, output: str) -> Scores:
        return self.scores(output)

    def scores(self, output: str, discrete: Optional[Mapping[str, int]] = None) -> Scores:
        """The scores of one output over all rows, or over those of one combination."""
        chosen: Any = slice(None)
        if discrete is not None:
            if dict(discrete) not in self.combinations:
                raise ValueError(f"no row has the combination {dict(discrete)!r}")
            chosen = self.rows == self.combinations.index(dict(discrete))
        columns = (self.measured[output], self.predicted[output], self.errors[output])
        return Scores(**_core.compare(*(column[chosen] for column in columns)))

    def worst(self, output: str, count: int = 3) -> np.ndarray:
        """The places of the rows that differ most, the largest difference first."""
        away = np.abs(self.predicted[output] - self.measured[output])
        order = np.argsort(-away, kind="stable")
        return order[np.isfinite(away[order])][:count]

    def frame(self) -> Any:
        """A pandas frame with the scores: a row per output for all rows, whose discrete inputs are
        missing, followed by a row per combination if there are several."""
        import pandas

        made = pandas.DataFrame([{**named, **scores._asdict()} for named, scores in self._lines()])
        return made.astype({parameter.name: "Int64" for parameter in self.model.discrete})

    def _lines(self) -> List[Tuple[Dict[str, Any], Scores]]:
        lines: List[Tuple[Dict[str, Any], Scores]] = []
        none = dict.fromkeys(parameter.name for parameter in self.model.discrete)
        for output in self.outputs:
            lines.append(({"output": output, **none}, self.scores(output)))
            if len(self.combinations) > 1:
                for combination in self.combinations:
                    named = {"output": output, **combination}
                    lines.append((named, self.scores(output, combination)))
        return lines

    def __repr__(self) -> str:
        scores = (f"{name}: R2 {self[name].r2:.4g}" for name in self.outputs)
        return visible(f"<Validation of {len(self.rows)} row(s); {', '.join(scores)}>")

    def _repr_html_(self) -> str:
        head = ["Output", "Combination", "Rows", "R2", "RMSE", "Mean error", "Largest", "Bias"]
        head.append("Within 1, 2, 3 errors")
        rows = []
        for named, scores in self._lines():
            output = str(named.pop("output"))
            values = [f"{name}={value}" for name, value in named.items() if value is not None]
            rows.append([output, ", ".join(values), str(scores.count)])
            rows[-1] += [f"{score:.4g}" for score in scores[3:8]]
            rows[-1].append(
                ", ".join(f"{k / scores.with_error:.3g}" for k in scores.within)
                if scores.with_error
                else "-"
            )
        return _html.table(head, rows, repr(self)[1:-1])


def validate(model: "Model", table: Any, discrete: Optional[Mapping[str, int]]) -> Validation:
    """What :meth:`Model.validate` documents."""
    if not _points.is_frame(table) and not isinstance(table, Mapping):
        raise ValueError("validate takes a pandas frame or a mapping, with a column per input")
    known = [parameter.name for parameter in model.outputs]
    outputs = tuple(name for name in known if name in table)
    if not outputs:
        raise ValueError(f"no column has measured values; the outputs are {listed(known)}")
    held = table
    if isinstance(table, Mapping):
        used = [parameter.name for parameter in (*model.inputs, *model.discrete)]
        held = {name: table[name] for name in used if name in table}
    points, groups = model._points_by_combination(held, model._fixed(discrete or {}))

    measured = np.empty((len(points), len(outputs)))
    for place, output in enumerate(outputs):
        measured[:, place] = _measured(table[output], output)
    predicted = np.full(measured.shape, np.nan)
    errors = np.full(measured.shape, np.nan)
    rows = np.empty(len(points), dtype=int)
    combinations = []
    for number, (key, places) in enumerate(groups):
        rows[places] = number
        combination = model._combination(key)
        combinations.append(combination)
        result = model.predict(combination, points[places], return_error=True)
        assert result.errors is not None
        for place, output in enumerate(outputs):
            predicted[places, place] = result.values[output]
            errors[places, place] = result.errors[output]
    return Validation(model, outputs, tuple(combinations), rows, measured, predicted, errors)


def _measured(column: Any, output: str) -> np.ndarray:
    if hasattr(column, "to_numpy"):
        try:
            return np.asarray(column.to_numpy(dtype=float, na_value=np.nan))
        except (TypeError, ValueError):
            pass
    return _points.floats(column, f"column {output!r}")
