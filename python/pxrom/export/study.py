"""A whole database: parameters, combinations, ensembles."""

import os
import warnings
from dataclasses import dataclass, replace
from typing import Any, Callable, Dict, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from .. import _core, _files
from .._model import Model, with_answers
from .._points import floats, has_names, is_frame, names_of, require_key, table
from .._wording import counted, did_you_mean, listed, visible
from . import _folds
from ._convert import convert, parts_of, unchecked
from ._options import Options
from ._surface import EnsembleScale, NotExportable, Predict, Surface
from ._verify import check_points, compare, predicted

Bounds = Optional[Tuple[float, float]]
# A fitted object, or a fitted object and its weight.
Member = Union[Any, Tuple[Any, float]]

_CONTINUOUS, _DISCRETE = 0, 2
_ONE_COMBINATION = "pass the rows of that combination alone: X[X[{name!r}] == {value}]"


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
    whole: Optional[Predict]  # of the tool, if the members came from one object


class Study:
    """Builds a database.

        study = Study()
        study.input("L", unit="m", caption="Length", bounds=(1, 2))
        study.discrete("Material", caption="1 steel / 2 aluminium")
        study.output("mass", unit="kg")
        study.add("mass", fitted, X, y, at={"Material": 1})
        study.save("beam.pxdb")

    Points have one column per input, in the order in which inputs were declared. Each
    combination needs every output. Names, units and captions must not hold a comma, semicolon or
    brace, which separate values in a database.
    """

    def __init__(self) -> None:
        self._inputs: Dict[str, _Declared] = {}
        self._discrete: Dict[str, _Declared] = {}
        self._outputs: Dict[str, _Declared] = {}
        self._ensembles: Dict[Tuple[int, ...], Dict[str, _Ensemble]] = {}

    def input(self, name: str, unit: str = "", caption: str = "", bounds: Bounds = None) -> "Study":
        """Declares a continuous input. ``bounds`` (lower, upper) are shown, never enforced; by
        default they are those of the samples."""
        self._declare(self._inputs, name, unit, caption, bounds, _CONTINUOUS, True)
        return self

    def discrete(self, name: str, caption: str = "") -> "Study":
        """Declares a discrete input, which selects a combination. It takes whole numbers."""
        self._declare(self._discrete, name, "", caption, None, _DISCRETE, True)
        return self

    def output(
        self, name: str, unit: str = "", caption: str = "", bounds: Bounds = None
    ) -> "Study":
        """Declares an output."""
        self._declare(self._outputs, name, unit, caption, bounds, _CONTINUOUS, False)
        return self

    def add(
        self,
        outputs: Any,
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
        """Adds a fit, or an ensemble of fits, that predicts one or more outputs at one combination.

        Args:
            outputs: the name of the output, or the names of all outputs of ``fitted``.
            fitted: a fitted object; or, for one output, a weighted ensemble: a list of pairs
                (fitted, weight) whose weights add up to 1. All members predict the output itself,
                in its unit.
            X: the samples of the fit (n, d) in its order, as an array, a mapping or a frame by
                input name; leave them out if the fitted object knows them. They are compared with
                the fit and used for the check. statsmodels and cross-validation need them.
            y: their outputs (n,), or (n, k) for k outputs, or a frame by output name. Samples are
                stored only with their outputs. Without y, these are the samples that the fit keeps
                (processes, interpolators and statsmodels keep them; support vectors and
                scikit-learn's linear models don't). Samples that a fit doesn't keep are checked by
                a new fit with its settings.
            at: the value of each discrete input, a whole number.
            error: "auto" exports the tool's predicted error if there is one that maps, of an
                ensemble if all members have one; True requires it; False leaves it out.
            folds: cross-validation data for a predicted error in the output's unit: a number of
                folds (``KFold(folds, shuffle=True, random_state=0)``), or anything with ``split``.
                Each member is fitted again without each fold.
            refit: ``refit(fitted, X, y)`` returns a new fitted object for a fold. By default
                scikit-learn's ``clone`` and ``fit``.
            level: the level of statsmodels' two-sided prediction interval.
            output_transform: "log", "log10" or "sqrt" if a statsmodels fit predicts this function
                of the output.
            tolerance: how far the export may be from the tool, relative to the output's range. A
                larger difference is accepted, with a warning, only if rounding explains it: u times
                the sum of ``|weight times kernel value|`` and similar terms, which matter for a process
                that was fitted without noise and has large coefficients that cancel.
            error_tolerance: the same for errors: their squares relative to the variance.

        Raises:
            NotExportable: when something has no counterpart, or the check fails.
        """
        names = names_of(outputs)
        key = self._key({} if at is None else at)
        for name in names:
            if name not in self._outputs:
                raise ValueError(f"there is no output {name!r}{did_you_mean(name, self._outputs)}")
        if is_frame(X):
            require_key(X, dict(zip(self._discrete, key)), _ONE_COMBINATION)
        points = None if X is None else self._points(X)
        targets = None if y is None else self._targets(y, points, names)
        options = Options(
            points,
            targets,
            list(self._inputs) if is_frame(X) else None,
            level=level,
            output_transform=output_transform,
        )
        members, weights, whole = _members(fitted)
        if whole is not None:
            # Each member was fitted to samples of its own.
            options = replace(options, y=None, are_given=False)
        for member in members:
            self._require_order(member)
        if len(members) > 1 and len(names) > 1:
            raise ValueError("an ensemble predicts one output; add the outputs one by one")
        if whole is not None and error is True and folds is None:
            raise NotExportable(
                "an average has a predicted error only from cross-validation: pass folds"
            )
        keep = error if whole is None and folds is None else False

        def converted(one: Any, given: Options) -> List[Surface]:
            return convert(one, given, keep, tolerance, error_tolerance, self._bounds())

        made = [converted(member, options) for member in members]
        for surfaces in made:
            self._require_fit(surfaces, names)
        if len(made) > 1 and any(surfaces[0].predict_error is None for surfaces in made):
            # The error of some members is not that of the ensemble.
            for surfaces in made:
                surfaces[0].drop_error("another member of the ensemble has none")
        ensembles: Dict[str, _Ensemble] = {}
        for place, name in enumerate(names):
            surfaces = [of_member[place] for of_member in made]
            cross_validation = None
            if folds is not None:
                cross_validation = _folds.make(
                    members, points, targets, place, folds, refit, converted, options
                )
            column = None if targets is None else targets[:, place]
            ensemble = _Ensemble(surfaces, weights, points, column, cross_validation, whole)
            self._check(key, name, ensemble, tolerance)
            ensembles[name] = ensemble
        self._ensembles.setdefault(key, {}).update(ensembles)
        return self

    def to_text(self, *, answers: int = 0) -> str:
        """The text of the database, with ``answers`` check points for each combination, which
        :func:`pxrom.check` compares on another machine."""
        if not self._ensembles:
            raise ValueError("the study has no fitted model; add one")
        for key, outputs in self._ensembles.items():
            missing = [name for name in self._outputs if name not in outputs]
            if missing:
                where = f" at {self._shown(key)}" if key else ""
                raise ValueError(f"no model was added for the output {listed(missing)}{where}")
        made = {key: dict(outputs) for key, outputs in self._ensembles.items()}
        return with_answers(str(self._study(made).to_text()), answers)

    def to_model(self) -> Model:
        """The database in memory."""
        return Model(self.to_text())

    def save(self, path: Union[str, "os.PathLike[str]"], *, answers: int = 0) -> None:
        """Writes the database to a file, compressed if its name ends with ".gz". A file that is
        there is replaced as a whole or, when that fails, left as it was. ``answers`` as for
        :meth:`to_text`."""
        _files.write(path, self.to_text(answers=answers))

    def __repr__(self) -> str:
        inputs = ", ".join([*self._discrete, *self._inputs]) or "no inputs"
        outputs = ", ".join(self._outputs) or "no outputs"
        count = len(self._ensembles)
        extra = f" in {counted(count, 'combination')}" if self._discrete and count else ""
        missing = sum(len(self._outputs) - len(held) for held in self._ensembles.values())
        if count == 0:
            extra = ", without a model"
        elif missing:
            extra += f", {counted(missing, 'model')} missing"
        return visible(f"<Study {outputs} of {inputs}{extra}>")

    def _declare(
        self,
        group: Dict[str, _Declared],
        name: str,
        unit: str,
        caption: str,
        bounds: Bounds,
        kind: int,
        is_input: bool,
    ) -> None:
        if name in self._inputs or name in self._discrete or name in self._outputs:
            raise ValueError(f"there is already a parameter {name!r}")
        if self._ensembles:
            raise ValueError("declare all parameters before the first model is added")
        if not name.strip():
            raise ValueError("a parameter needs a name")
        if bounds is not None and not -np.inf < bounds[0] < bounds[1] < np.inf:
            raise ValueError(f"the bounds of {name!r} have to be (lower, upper), not {bounds!r}")
        declared = _Declared(name, unit, caption, bounds)
        alone = _core.Study()
        _add(alone, declared, kind, is_input, None)
        try:
            alone.to_text()  # says what a database can't hold
        except ValueError as error:
            raise ValueError(f"{error}; write it without") from None
        group[name] = declared

    def _targets(self, y: Any, points: Optional[np.ndarray], outputs: List[str]) -> np.ndarray:
        """(n, k), by name if y is a frame that has those names."""
        if has_names(y):
            names = names_of(y)
            if is_frame(y) and set(outputs) <= set(names):
                y, names = y[outputs], outputs
            for name, output in zip(names, outputs):
                if name != output and name in self._outputs:
                    raise ValueError(f"y holds {name!r} where the output {output!r} is added")
        made = floats(y, "y")
        made = made.reshape(len(made), -1) if made.ndim > 0 else made.reshape(1, 1)
        if points is None:
            raise ValueError("y needs the samples that it was observed at: pass X as well")
        if len(points) != len(made) or made.shape[1] != len(outputs):
            raise ValueError(
                f"y has the shape {np.shape(y)}; it has to have one row per point of X, which has "
                f"{len(points)}, and {counted(len(outputs), 'column')}"
            )
        return made

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
            if not isinstance(at[name], (int, float, np.number)) or at[name] % 1 != 0:
                raise ValueError(
                    f"{name}={at[name]!r} has to be a whole number, such as at={{{name!r}: 1}}; "
                    "say what it means in the caption"
                )
        return tuple(int(at[name]) for name in self._discrete)

    def _shown(self, key: Tuple[int, ...]) -> str:
        return ", ".join(f"{name}={value}" for name, value in zip(self._discrete, key))

    def _bounds(self) -> Optional[np.ndarray]:
        """(2, d), if all inputs have bounds."""
        bounds = [declared.bounds for declared in self._inputs.values()]
        if not bounds or any(one is None for one in bounds):
            return None
        return np.array(bounds, dtype=float).T

    def _require_order(self, fitted: Any) -> None:
        """Columns go by their position, so the names of a fit must be in the same order."""
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
                f"the fit has {counted(len(surfaces), 'output')}, but the outputs are "
                f"{listed(names)}; name each, as in {_example('outputs', 'y', len(surfaces))}"
            )
        if surfaces[0].inputs != len(self._inputs):
            raise NotExportable(
                f"the fit has {counted(surfaces[0].inputs, 'input')}, but the inputs are "
                f"{listed(self._inputs)}; name each, as in "
                f"{_example('inputs', 'x', surfaces[0].inputs)}"
            )

    def _check(
        self, key: Tuple[int, ...], name: str, ensemble: _Ensemble, tolerance: float
    ) -> None:
        """Compares the whole ensemble, as it will be written, with the tools' own predictions."""
        is_surface = len(ensemble.surfaces) == 1 and ensemble.whole is None
        if is_surface and ensemble.weights == [1.0] and ensemble.folds is None:
            return  # that was compared
        samples = ensemble.X
        if samples is None:
            samples = ensemble.surfaces[0].physical_samples()
        points = check_points(samples, len(self._inputs), self._bounds())
        expected = np.zeros(len(points))
        for surface, weight in zip(ensemble.surfaces, ensemble.weights):
            assert surface.predict is not None
            expected += weight * surface.predict(points)
        if ensemble.whole is not None:
            expected = ensemble.whole(points)

        def rounding() -> np.ndarray:
            # Twice: the scaling of the ensemble rounds as well.
            members = zip(ensemble.surfaces, ensemble.weights)
            return sum((2.0 * abs(w) * s.rounding(points) for s, w in members), np.zeros(1))

        study = self._study({key: {name: ensemble}}, only=name)
        got, _ = predicted(study, list(zip(self._discrete, key)), points, False)
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")  # said of the surface already
            compare(got, expected, tolerance, rounding, f" of {name!r}")

    def _study(
        self, ensembles: Dict[Tuple[int, ...], Dict[str, _Ensemble]], only: Optional[str] = None
    ) -> _core.Study:
        study = _core.Study()
        for declared in self._discrete.values():
            _add(study, declared, _DISCRETE, True, None)
        samples = [e.X for outputs in ensembles.values() for e in outputs.values()]
        samples += [
            surface.physical_samples()
            for outputs in ensembles.values()
            for ensemble in outputs.values()
            for surface in ensemble.surfaces
        ]
        for place, declared in enumerate(self._inputs.values()):
            _add(study, declared, _CONTINUOUS, True, _range(samples, place))
        for name, declared in self._outputs.items():
            if only is None or name == only:
                _add(study, declared, _CONTINUOUS, False, None)
        for key, outputs in ensembles.items():
            candidates = [(name, _candidate(one)) for name, one in outputs.items()]
            study.add_combination(list(zip(self._discrete, key)), candidates)
        return study


def _add(
    study: _core.Study, declared: _Declared, kind: int, is_input: bool, bounds: Bounds
) -> None:
    lower, upper = declared.bounds or bounds or (0.0, 0.0)
    study.add_parameter(
        declared.name, is_input, kind, declared.unit, declared.caption, lower, upper
    )


def _example(argument: str, stem: str, count: int) -> str:
    return f"{argument}={[stem] if count == 1 else [f'{stem}{i}' for i in range(count)]}"


def _range(samples: Sequence[Optional[np.ndarray]], place: int) -> Bounds:
    known = [X[:, place] for X in samples if X is not None and len(X) > 0]
    if not known:
        return None
    lower = min(float(column.min()) for column in known)
    upper = max(float(column.max()) for column in known)
    return (lower, upper) if lower < upper else None


def _members(fitted: Any) -> Tuple[List[Any], List[float], Optional[Predict]]:
    """Members, weights, and the prediction of the object that they are the parts of."""
    if not isinstance(fitted, list):
        found = parts_of(fitted)
        if found is None:
            return [fitted], [1.0], None
        members, predict = found
        return [member for member, _ in members], [weight for _, weight in members], predict
    if not fitted or not all(isinstance(one, tuple) and len(one) == 2 for one in fitted):
        raise ValueError("an ensemble is a list of pairs (fitted, weight)")
    weights = [float(weight) for _, weight in fitted]
    if abs(sum(weights) - 1.0) > 1e-9:
        raise ValueError(f"the weights of an ensemble have to add up to 1, not {sum(weights):g}")
    return [member for member, _ in fitted], weights, None


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
    if y is None:
        first = ensemble.surfaces[0]
        X, y = first.physical_samples(), first.physical_outputs()
    if X is not None and y is not None:  # samples need inputs and outputs
        candidate.set_samples(X.tolist(), y.tolist())
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
    inputs: Any = None,
    outputs: Any = None,
    **options: Any,
) -> str:
    """The database of one fitted object, without discrete inputs.

    ``inputs`` and ``outputs`` name the parameters; a str names one; by default the columns
    of a frame ``X`` or the names that the object was fitted with, else x0, x1, ...; and the columns
    of a frame ``y`` or the name of a Series, else y, or y0, y1, ... The other arguments are those
    of :meth:`Study.add`.
    """
    names = _input_names(fitted, X) if inputs is None else names_of(inputs)
    named = _output_names(fitted, y) if outputs is None else names_of(outputs)
    study = Study()
    for name in names:
        study.input(name)
    for name in named:
        study.output(name)
    study.add(named, fitted, X, y, **options)
    return study.to_text()


def save(path: Union[str, "os.PathLike[str]"], fitted: Any, *args: Any, **kwargs: Any) -> None:
    """:func:`to_text` into a file."""
    _files.write(path, to_text(fitted, *args, **kwargs))


def _input_names(fitted: Any, X: Any) -> List[str]:
    if is_frame(X):
        return [str(column) for column in X.columns]
    if isinstance(X, Mapping):
        return [str(name) for name in X]
    known = getattr(fitted, "feature_names_in_", None)
    if known is not None:
        return [str(name) for name in known]
    if X is not None:
        return [f"x{i}" for i in range(np.shape(X)[1] if np.ndim(X) == 2 else 1)]
    return [f"x{i}" for i in range(_first(fitted).inputs)]


def _output_names(fitted: Any, y: Any) -> List[str]:
    named = names_of(y) if has_names(y) else []
    count = len(named) or _output_count(fitted, y)
    return named or (["y"] if count == 1 else [f"y{i}" for i in range(count)])


def _output_count(fitted: Any, y: Any) -> int:
    if isinstance(fitted, list):
        return 1
    if y is not None and np.ndim(y) == 2:
        return int(np.shape(y)[1])
    return _count_of(fitted)


def _first(fitted: Any) -> Surface:
    member = fitted[0][0] if isinstance(fitted, list) and fitted else _members(fitted)[0][0]
    return unchecked(member)[0]


def _count_of(fitted: Any) -> int:
    # One output is by far the most usual, and an exporter may need X to know the number.
    coefficients = getattr(fitted, "n_outputs_", None)
    if coefficients is not None:
        return int(coefficients)
    if parts_of(fitted) is not None:
        return 1
    try:
        return len(unchecked(fitted))
    except NotExportable:
        return 1
