"""A whole database: parameters, combinations, ensembles."""

import os
from dataclasses import dataclass
from typing import Any, Callable, Dict, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from .. import _core
from .._model import Model
from .._points import is_frame, table
from .._wording import did_you_mean, listed
from . import _folds
from ._convert import convert
from ._options import Options
from ._surface import EnsembleScale, NotExportable, Surface
from ._verify import check_points, compare

Bounds = Optional[Tuple[float, float]]
# A fitted object, or a fitted object and its weight.
Member = Union[Any, Tuple[Any, float]]

_CONTINUOUS, _DISCRETE = 0, 2


@dataclass
class _Declared:
    name: str
    unit: str
    caption: str
    bounds: Bounds


@dataclass
class _Ensemble:
    surfaces: List[Surface]
    weights: List[float]
    X: Optional[np.ndarray]
    y: Optional[np.ndarray]
    folds: Optional[_folds.Folds]


class Study:
    """Builds a database.

        study = Study()
        study.input("L", unit="m", caption="Length", bounds=(1, 2))
        study.discrete("Material", caption="1 steel, 2 aluminium")
        study.output("mass", unit="kg")
        study.add("mass", fitted, X, y, at={"Material": 1})
        study.save("beam.pxdb")

    Points have one column per input, in the order in which inputs were declared. Each combination
    that is named needs every output.
    """

    def __init__(self) -> None:
        self._inputs: Dict[str, _Declared] = {}
        self._discrete: Dict[str, _Declared] = {}
        self._outputs: Dict[str, _Declared] = {}
        self._ensembles: Dict[Tuple[int, ...], Dict[str, _Ensemble]] = {}

    def input(self, name: str, unit: str = "", caption: str = "", bounds: Bounds = None) -> "Study":
        """Declares a continuous input. ``bounds`` (lower, upper) are shown, never enforced; without
        them those of the samples stand."""
        self._declare(self._inputs, name, unit, caption, bounds)
        return self

    def discrete(self, name: str, caption: str = "") -> "Study":
        """Declares a discrete input, which selects a combination. It takes whole numbers."""
        self._declare(self._discrete, name, "", caption, None)
        return self

    def output(
        self, name: str, unit: str = "", caption: str = "", bounds: Bounds = None
    ) -> "Study":
        """Declares an output."""
        self._declare(self._outputs, name, unit, caption, bounds)
        return self

    def add(
        self,
        outputs: Union[str, Sequence[str]],
        fitted: Any,
        X: Any = None,
        y: Any = None,
        *,
        at: Optional[Mapping[str, int]] = None,
        error: Any = "auto",
        folds: Any = None,
        refit: Optional[Callable[[Any, np.ndarray, np.ndarray], Any]] = None,
        level: float = 0.95,
        output_transform: Optional[str] = None,
        tolerance: float = 1e-10,
        error_tolerance: float = 1e-9,
    ) -> "Study":
        """Adds what predicts one or more outputs at one combination.

        Args:
            outputs: the name of the output, or the names of all outputs of ``fitted``.
            fitted: a fitted object; or, for one output, a weighted ensemble: a list of pairs
                (fitted, weight) whose weights add up to 1. All members predict the output itself,
                in its unit.
            X: the samples of the fit (n, d), as an array, a mapping or a frame by input name; to be
                left out where the fitted object knows them. They are stored, shown and used for the
                check. statsmodels needs them, and so does cross-validation.
            y: their outputs (n,), or (n, k) for k outputs.
            at: the value of each discrete input.
            error: "auto", the tool's predicted error where there is one that maps (an ensemble has
                none but from cross-validation); True insists on it; False leaves it out.
            folds: cross-validation data for a predicted error in the output's unit: a number of
                folds (``KFold(folds, shuffle=True, random_state=0)``), or anything with ``split``.
                Each member is fitted anew without each fold.
            refit: how: ``refit(fitted, X, y)`` returns a new fitted object. By default
                scikit-learn's ``clone`` and ``fit``.
            level: of statsmodels' two-sided prediction interval.
            output_transform: "log", "log10" or "sqrt" when a statsmodels fit predicts that of the
                output.
            tolerance: how far the export may be from the tool, relative to the output's range.
            error_tolerance: the same for errors: their squares relative to the variance.

        Raises:
            NotExportable: when something has no counterpart, or the check fails.
        """
        names = [outputs] if isinstance(outputs, str) else list(outputs)
        key = self._key({} if at is None else at)
        for name in names:
            if name not in self._outputs:
                raise ValueError(f"there is no output {name!r}{did_you_mean(name, self._outputs)}")
        points = None if X is None else self._points(X)
        targets = None if y is None else _targets(y, points, len(names))
        options = Options(
            points, targets, list(self._inputs) if is_frame(X) else None, level, output_transform
        )
        members, weights = _members(fitted)
        for member in members:
            self._require_order(member)
        if len(members) > 1 and len(names) > 1:
            raise ValueError("an ensemble predicts one output; add the outputs one by one")
        if (len(members) > 1 or folds is not None) and error is True and folds is None:
            raise NotExportable("an ensemble has no error but from cross-validation: pass folds")
        keep = error if len(members) == 1 and folds is None else False

        def converted(one: Any, given: Options) -> List[Surface]:
            return convert(one, given, keep, tolerance, error_tolerance, self._bounds())

        made = [converted(member, options) for member in members]
        for surfaces in made:
            self._require_fit(surfaces, names)
        ensembles: Dict[str, _Ensemble] = {}
        for place, name in enumerate(names):
            surfaces = [of_member[place] for of_member in made]
            cross_validation = None
            if folds is not None:
                cross_validation = _folds.make(
                    members, points, targets, place, folds, refit, converted, options
                )
            column = None if targets is None else targets[:, place]
            ensemble = _Ensemble(surfaces, weights, points, column, cross_validation)
            self._check(key, name, ensemble, tolerance)
            ensembles[name] = ensemble
        self._ensembles.setdefault(key, {}).update(ensembles)
        return self

    def to_text(self) -> str:
        """The text of the database."""
        if not self._ensembles:
            raise ValueError("the study has no fitted model; add one")
        for key, outputs in self._ensembles.items():
            missing = [name for name in self._outputs if name not in outputs]
            if missing:
                where = f" at {self._shown(key)}" if key else ""
                raise ValueError(f"no model was added for the output {listed(missing)}{where}")
        return self._text({key: dict(outputs) for key, outputs in self._ensembles.items()})

    def to_model(self) -> Model:
        """The database in memory."""
        return Model(self.to_text())

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes the database to a file."""
        text = self.to_text()
        with open(path, "w", encoding="utf-8", errors="surrogateescape", newline="") as file:
            file.write(text)

    def _declare(
        self, group: Dict[str, _Declared], name: str, unit: str, caption: str, bounds: Bounds
    ) -> None:
        if name in self._inputs or name in self._discrete or name in self._outputs:
            raise ValueError(f"there is a parameter {name!r} already")
        if self._ensembles:
            raise ValueError("declare all parameters before the first model is added")
        if bounds is not None and not bounds[0] < bounds[1]:
            raise ValueError(f"the bounds of {name!r} have to be (lower, upper), not {bounds!r}")
        group[name] = _Declared(name, unit, caption, bounds)

    def _points(self, X: Any) -> np.ndarray:
        return table(X, list(self._inputs))

    def _key(self, at: Mapping[str, int]) -> Tuple[int, ...]:
        for name in at:
            if name not in self._discrete:
                raise ValueError(
                    f"there is no discrete input {name!r}{did_you_mean(name, self._discrete)}"
                )
        for name in self._discrete:
            if name not in at:
                raise ValueError(f"at= lacks a value of the discrete input {name!r}")
            if int(at[name]) != at[name]:
                raise ValueError(f"{name}={at[name]!r} has to be a whole number")
        return tuple(int(at[name]) for name in self._discrete)

    def _shown(self, key: Tuple[int, ...]) -> str:
        return ", ".join(f"{name}={value}" for name, value in zip(self._discrete, key))

    def _bounds(self) -> Optional[np.ndarray]:
        """(2, d), when all inputs have some."""
        bounds = [declared.bounds for declared in self._inputs.values()]
        if not bounds or any(one is None for one in bounds):
            return None
        return np.array(bounds, dtype=float).T

    def _require_order(self, fitted: Any) -> None:
        """Columns go by their place, so that the names of a fit must not stand elsewhere."""
        known = getattr(fitted, "feature_names_in_", None)
        if known is None:
            return
        for name, declared in zip(known, self._inputs):
            if name != declared and name in self._inputs:
                raise NotExportable(
                    f"the fit has its inputs in the order {listed(map(str, known))}, the study in "
                    f"the order {listed(self._inputs)}: declare them as the fit has them"
                )

    def _require_fit(self, surfaces: List[Surface], names: List[str]) -> None:
        if len(surfaces) != len(names):
            raise NotExportable(
                f"the fit has {len(surfaces)} outputs, but {len(names)} are named: {listed(names)}"
            )
        if surfaces[0].inputs != len(self._inputs):
            raise NotExportable(
                f"the fit has {surfaces[0].inputs} inputs, but the study declares "
                f"{len(self._inputs)}: {listed(self._inputs)}"
            )

    def _check(
        self, key: Tuple[int, ...], name: str, ensemble: _Ensemble, tolerance: float
    ) -> None:
        """The whole ensemble, as it will be written, against the tools' own predictions."""
        samples = ensemble.X
        if samples is None:
            samples = ensemble.surfaces[0].physical_samples()
        points = check_points(samples, len(self._inputs), self._bounds())
        expected = np.zeros(len(points))
        for surface, weight in zip(ensemble.surfaces, ensemble.weights):
            assert surface.predict is not None
            expected += weight * surface.predict(points)
        model = Model(self._text({key: {name: ensemble}}, only=name))
        at = dict(zip(self._discrete, key))
        compare(model.predict(at, points).values[name], expected, tolerance, f" of {name!r}")

    def _text(
        self, ensembles: Dict[Tuple[int, ...], Dict[str, _Ensemble]], only: Optional[str] = None
    ) -> str:
        study = _core.Study()
        for declared in self._discrete.values():
            study.add_parameter(declared.name, True, _DISCRETE, "", declared.caption, 0.0, 0.0)
        samples = [e.X for outputs in ensembles.values() for e in outputs.values()]
        samples += [
            surface.physical_samples()
            for outputs in ensembles.values()
            for ensemble in outputs.values()
            for surface in ensemble.surfaces
        ]
        for place, declared in enumerate(self._inputs.values()):
            _add(study, declared, True, _range(samples, place))
        for name, declared in self._outputs.items():
            if only is None or name == only:
                _add(study, declared, False, None)
        for key, outputs in ensembles.items():
            candidates = [(name, _candidate(one)) for name, one in outputs.items()]
            study.add_combination(list(zip(self._discrete, key)), candidates)
        return str(study.to_text())


def _add(study: _core.Study, declared: _Declared, is_input: bool, bounds: Bounds) -> None:
    lower, upper = declared.bounds or bounds or (0.0, 0.0)
    study.add_parameter(
        declared.name, is_input, _CONTINUOUS, declared.unit, declared.caption, lower, upper
    )


def _range(samples: Sequence[Optional[np.ndarray]], place: int) -> Bounds:
    known = [X[:, place] for X in samples if X is not None and len(X) > 0]
    if not known:
        return None
    lower = min(float(column.min()) for column in known)
    upper = max(float(column.max()) for column in known)
    return (lower, upper) if lower < upper else None


def _members(fitted: Any) -> Tuple[List[Any], List[float]]:
    if not isinstance(fitted, list):
        return [fitted], [1.0]
    if not fitted or not all(isinstance(one, tuple) and len(one) == 2 for one in fitted):
        raise ValueError("an ensemble is a list of pairs (fitted, weight)")
    weights = [float(weight) for _, weight in fitted]
    if abs(sum(weights) - 1.0) > 1e-9:
        raise ValueError(f"the weights of an ensemble have to add up to 1, not {sum(weights):g}")
    return [member for member, _ in fitted], weights


def _targets(y: Any, points: Optional[np.ndarray], outputs: int) -> np.ndarray:
    made = np.asarray(y, dtype=float)
    made = made.reshape(len(made), -1)
    if points is None or len(points) != len(made) or made.shape[1] != outputs:
        raise ValueError(
            f"y has the shape {np.shape(y)}; it has to have one row per point of X and "
            f"{outputs} column(s)"
        )
    return made


def _candidate(ensemble: _Ensemble) -> _core.Candidate:
    inputs = ensemble.surfaces[0].inputs
    scale = EnsembleScale.identity(inputs)
    if ensemble.folds is not None:
        scale = _folds.unit_scale(ensemble.folds)
    candidate = _core.Candidate()
    candidate.set_scaling(
        scale.slopes.tolist(), scale.intercepts.tolist(), scale.slope, scale.intercept
    )
    X, y = ensemble.X, ensemble.y
    if X is None:
        X = ensemble.surfaces[0].physical_samples()
        first = ensemble.surfaces[0]
        y = None if first.outputs is None else first.scale * first.outputs + first.shift
    if X is not None:
        candidate.set_samples(X.tolist(), ([0.0] * len(X) if y is None else y.tolist()))
    for surface, weight in zip(ensemble.surfaces, ensemble.weights):
        candidate.add_surface(surface.record(scale), weight)
    if ensemble.folds is not None:
        for member in ensemble.folds.surfaces:
            for surface in member:
                candidate.add_sub_surface(surface.record(scale))
        rows = ensemble.folds.sorted_inputs * scale.slopes + scale.intercepts
        candidate.set_folds(rows.tolist(), ensemble.folds.counts)
    return candidate


def to_text(
    fitted: Any,
    X: Any = None,
    y: Any = None,
    *,
    inputs: Optional[Sequence[str]] = None,
    outputs: Optional[Sequence[str]] = None,
    **options: Any,
) -> str:
    """The database of one fitted object, without discrete inputs.

    ``inputs`` and ``outputs`` name the parameters; by default the names that the object was fitted
    with or the columns of a frame ``X``, else x0, x1, ...; and y, or y0, y1, ... The other
    arguments are those of :meth:`Study.add`.
    """
    names = _input_names(fitted, X) if inputs is None else list(inputs)
    if outputs is None:
        count = _output_count(fitted, y)
        outputs = ["y"] if count == 1 else [f"y{i}" for i in range(count)]
    study = Study()
    for name in names:
        study.input(name)
    for name in outputs:
        study.output(name)
    study.add(list(outputs), fitted, X, y, **options)
    return study.to_text()


def save(path: Union[str, "os.PathLike[str]"], fitted: Any, *args: Any, **kwargs: Any) -> None:
    """:func:`to_text` into a file."""
    text = to_text(fitted, *args, **kwargs)
    with open(path, "w", encoding="utf-8", errors="surrogateescape", newline="") as file:
        file.write(text)


def _input_names(fitted: Any, X: Any) -> List[str]:
    if is_frame(X):
        return [str(column) for column in X.columns]
    if isinstance(X, Mapping):
        return [str(name) for name in X]
    known = getattr(fitted, "feature_names_in_", None)
    if known is not None:
        return [str(name) for name in known]
    if X is not None:
        return [f"x{i}" for i in range(np.asarray(X).shape[1])]
    return [f"x{i}" for i in range(_first(fitted).inputs)]


def _output_count(fitted: Any, y: Any) -> int:
    if isinstance(fitted, list):
        return 1
    if y is not None and np.ndim(y) == 2:
        return int(np.shape(y)[1])
    return _count_of(fitted)


def _first(fitted: Any) -> Surface:
    member = fitted[0][0] if isinstance(fitted, list) and fitted else fitted
    return convert(member, Options(), False, np.inf, np.inf)[0]


def _count_of(fitted: Any) -> int:
    # A fit of one output is by far the most usual, and an exporter may need X to tell.
    coefficients = getattr(fitted, "n_outputs_", None)
    if coefficients is not None:
        return int(coefficients)
    try:
        return len(convert(fitted, Options(), False, np.inf, np.inf))
    except NotExportable:
        return 1
