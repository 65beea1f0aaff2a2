"""A database in memory."""

import os
import threading
from dataclasses import dataclass
from typing import Any, Dict, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Union, cast

import numpy as np

from . import _core, _files, _findings, _html, _points, _validation
from ._prediction import Located, Prediction
from ._predictor import Predictor, error_origin
from ._wording import did_you_mean, listed, visible

_HOW_TO_RAISE = "(limit= and memory_limit= of pxrom.load set them.)"
_EACH_ROW = "leave {name!r} out of the combination to predict each point at its own"
_KINDS = ("continuous", "continuous", "discrete", "derived")
_MOST_SHOWN = 20
_MOST_JOBS = 1024
_MOST_ANSWERS = 1000


@dataclass(frozen=True)
class Parameter:
    """One parameter of a model.

    ``kind`` is "continuous", "discrete" or "derived". ``lower`` and ``upper`` are ``None`` if the
    database has no bounds; bounds are shown and never enforced. ``values`` are the values of a
    discrete input in the combinations, ascending. Disabled and derived parameters are kept and take
    no part in a prediction.
    """

    name: str
    unit: str
    caption: str
    lower: Optional[float]
    upper: Optional[float]
    values: Tuple[int, ...]
    kind: str
    is_input: bool
    enabled: bool
    rank: int

    @property
    def bounds(self) -> Optional[Tuple[float, float]]:
        """(lower, upper), or None."""
        return None if self.lower is None or self.upper is None else (self.lower, self.upper)

    def _described(self) -> Tuple[str, str, str, str]:
        if self.kind == "discrete":
            domain = ", ".join(str(value) for value in self.values)
        else:
            domain = "" if self.bounds is None else f"{self.lower:g} to {self.upper:g}"
        return self.name, self.caption, domain, self.unit


class Cost(NamedTuple):
    """The cost of an evaluation, estimated from the sizes of what a model holds: floating-point
    operations at each point, with errors, and bytes of memory in addition to the model."""

    operations: int
    bytes: int


class CodeNeeds(NamedTuple):
    """What generated code needs on a controller: bytes of tables, at most about so many bytes of
    code for a Cortex-M4, bytes of stack, operations per call. ``math.h`` is not counted."""

    table_bytes: int
    code_bytes: int
    stack_bytes: int
    operations: int


class Combination(Dict[str, int]):
    """The values of the discrete inputs of one fitted combination, by name. A dict that can be
    passed to :meth:`Model.predict`."""


class _Results(NamedTuple):
    """What :class:`Prediction` holds."""

    outputs: Tuple[str, ...]
    statuses: np.ndarray
    values: np.ndarray
    errors: Optional[np.ndarray] = None
    lower: Optional[np.ndarray] = None
    upper: Optional[np.ndarray] = None
    raw_errors: Optional[np.ndarray] = None
    gradients: Optional[np.ndarray] = None


# The key of a combination, and the places of its points.
_Group = Tuple[Tuple[int, ...], Any]
_Part = Tuple[Tuple[int, ...], Any, _Results]


class Model:
    """A database of fitted models; :func:`load` and :func:`loads` make it.

    Attributes:
        text: the text that the model was read from.
        inputs: the continuous inputs, in the order of the columns of points.
        discrete: the discrete inputs; a prediction names one value of each.
        outputs: the outputs of a prediction, in the order of its columns.
        parameters: all parameters by rank, also disabled and derived ones.
        combinations: the fitted combinations of discrete values, ascending.
        limit: the largest number of operations that a point may take, or ``None``.
        memory_limit: the largest number of bytes that an evaluation may take, or ``None``.

    A model never changes. Any number of threads may use it, and predictions release the
    interpreter's lock. It pickles as its text.
    """

    text: str
    parameters: Tuple[Parameter, ...]
    inputs: Tuple[Parameter, ...]
    discrete: Tuple[Parameter, ...]
    outputs: Tuple[Parameter, ...]
    combinations: Tuple[Combination, ...]
    limit: Optional[int]
    memory_limit: Optional[int]

    def __init__(
        self,
        text: str,
        *,
        limit: Optional[float] = None,
        memory_limit: Optional[float] = None,
    ) -> None:
        _findings.require_text(text)
        self.text = text
        self.limit = _amount("limit", limit)
        self.memory_limit = _amount("memory_limit", memory_limit)
        try:
            self._model = _core.read(text)
        except ValueError as error:
            if text and "\n" not in text and "<" not in text:
                hint = f"; to read a file, call pxrom.load({text[:200]!r})"
                raise ValueError(f"{error}{hint}") from None
            raise
        # The library orders by name; where ranks decide, it orders by rank.
        raws = self._model.parameters()
        named = [_parameter(raw) for raw in raws]
        ranked = sorted(named, key=lambda parameter: parameter.rank)
        self.parameters = tuple(ranked)
        used = [parameter for parameter in ranked if parameter.enabled and parameter.is_input]
        self.inputs = tuple(p for p in used if p.kind == "continuous")
        self.discrete = tuple(p for p in used if p.kind == "discrete")
        self.outputs = tuple(
            parameter
            for parameter, raw in zip(named, raws)
            if parameter.enabled and not parameter.is_input and raw["type"] == 0
        )
        self._keys: Dict[Tuple[int, ...], Tuple[str, ...]] = dict(self._model.combinations())
        self._input_names = tuple(parameter.name for parameter in self.inputs)
        self._discrete_names = tuple(parameter.name for parameter in self.discrete)
        self.combinations = tuple(self._combination(key) for key in self._keys)
        self._prepared: Dict[Tuple[int, ...], _core.Prepared] = {}
        self._lock = threading.Lock()

    def predict(
        self,
        discrete: Any = None,
        X: Any = None,
        *,
        return_error: bool = False,
        gradient: bool = False,
        mode: str = "exact",
        jobs: int = 1,
    ) -> Prediction:
        """Predicts every output at many points.

        Args:
            discrete: the value of each discrete input by name, such as
                ``{"Material": 1, "Holes": 2}``, for all points. Leave out what the points hold, or
                all of it: ``predict(X)``.
            X: the points in physical units: an array of the shape (n, d) with a column per input in
                the order of :attr:`inputs`; or a mapping from input name to n values, where a
                single value is used for all points; or a pandas frame with a column per input, in
                any order, which may have other columns. A mapping or frame may hold discrete inputs
                too: each point is then predicted at its own combination. A point with a NaN in any
                continuous input has the status 1 and NaN results, in every family.
            return_error: also the predicted errors, in the unit of their output. The values are the
                same either way.
            gradient: also the derivatives with respect to the inputs.
            mode: "exact" gives the same bits on every machine; "fast" gives values, and errors from
                cross-validation, within 1e-11 of the largest one that an output has in the batch,
                two to three times as fast for surfaces that sum kernels.
            jobs: the number of threads. The results have the same bits with any number.

        Returns:
            A :class:`Prediction` with ``values``, ``errors``, ``statuses`` and ``gradients`` by
            output name.

        Raises:
            ValueError: when names, values or shapes don't fit, or when a point costs more than the
                limit of the model; the message says what would be enough.
        """
        if mode not in ("exact", "fast"):
            raise ValueError(f"mode has to be 'exact' or 'fast', not {mode!r}")
        if not isinstance(jobs, (int, np.integer)) or not 1 <= jobs <= _MOST_JOBS:
            raise ValueError(f"jobs has to be a number from 1 to {_MOST_JOBS}, not {jobs!r}")
        if X is None and self._is_points(discrete):
            discrete, X = None, discrete
        fixed = self._fixed({} if discrete is None else discrete)
        names = self._input_names
        if X is None:
            self._whole_key(fixed)
            if names:
                raise ValueError(f"X is missing: points with the inputs {listed(names)}")
            X = np.empty((1, 0))
        points, groups = self._points_by_combination(X, fixed)
        parts = [
            (key, rows, self._evaluate(key, points[rows], return_error, gradient, mode, jobs))
            for key, rows in groups
        ]
        if len(parts) == 1:
            made = parts[0][2]
        else:
            made = self._joined(parts, len(points), return_error, gradient)
        scaled = {name for key, _, _ in parts for name in self._keys[key]} if return_error else ()
        # The caller may change X before the locations are asked for.
        kept = points.copy() if isinstance(X, np.ndarray) else points
        return Prediction(
            outputs=made.outputs,
            inputs=names,
            values=made.values,
            statuses=made.statuses,
            errors=made.errors,
            lower=made.lower,
            upper=made.upper,
            raw_errors=made.raw_errors,
            gradients=made.gradients,
            scaled_errors=frozenset(scaled),
            error_origin=self._error_origin(groups, made.outputs) if return_error else None,
            locate=lambda: self._located(groups, kept, made.outputs, jobs),
            index=X.index if _points.is_frame(X) else None,
        )

    def at(
        self,
        discrete: Optional[Mapping[str, int]] = None,
        output: Union[None, str, Sequence[str]] = None,
    ) -> Predictor:
        """One combination as a function of one point, for optimisers and solvers: it costs a few
        microseconds per call, and the results have the same bits as those of :meth:`predict`.

        Args:
            discrete: the value of each discrete input by name, as for :meth:`predict`.
            output: the name of one output, whose value is a float; or several names, whose values
                are an array. Without it, all outputs; the only output if there is no other. Only
                these are evaluated.

        Raises:
            ValueError: when names or values don't fit, or when a point costs more than the limit of
                the model.
        """
        key = self._key({} if discrete is None else discrete)
        prepared = self._prepare(key)
        known = prepared.outputs
        if output is None and len(known) == 1:
            output = known[0]
        chosen = known if output is None else (output,) if isinstance(output, str) else output
        for name in chosen:
            if name not in known:
                raise ValueError(f"there is no output {name!r}{did_you_mean(name, known)}")
        names = [parameter.name for parameter in self.discrete]
        return Predictor(
            model=self,
            discrete=Combination(zip(names, key)),
            prepared=prepared.select(list(chosen)),
            output=output if isinstance(output, str) else None,
            scaled_errors=frozenset(self._keys[key]).intersection(chosen),
            gradient_hint=f" {_HOW_TO_RAISE}",
        )

    def validate(
        self, table: Any, discrete: Optional[Mapping[str, int]] = None
    ) -> _validation.Validation:
        """Compares predictions with measurements, as ``pxrom validate`` does.

        Args:
            table: a pandas frame, or a mapping from name to values, with a column per input,
                discrete inputs among them, and one for each output that was measured. NaN is a
                missing value. Other columns are ignored.
            discrete: the values of discrete inputs that have no column.

        Returns:
            A :class:`Validation`: ``validation["mass"].r2``, ``validation.frame()``;
            :mod:`pxrom.plot` has pictures of it.

        Raises:
            ValueError: when columns are missing or don't fit, and when a row has a combination that
                was not fitted.
        """
        return _validation.validate(self, table, discrete)

    def cost(self, discrete: Optional[Mapping[str, int]] = None) -> Cost:
        """The cost of :meth:`predict` for a combination: all outputs together, without gradients.
        Evaluates nothing."""
        return Cost(*self._model.cost(self._named(self._key({} if discrete is None else discrete))))

    def samples(
        self, discrete: Optional[Mapping[str, int]] = None, *, output: str
    ) -> Tuple[np.ndarray, np.ndarray]:
        """The samples that the database keeps for one output of a combination: inputs of the shape
        (n, d), with the columns of :attr:`inputs`, and outputs of the shape (n,). n is 0 if it
        keeps none."""
        names = [parameter.name for parameter in self.outputs]
        if output not in names:
            raise ValueError(f"there is no output {output!r}{did_you_mean(output, names)}")
        rows, values = self._model.samples(self._key({} if discrete is None else discrete), output)
        if len(rows) != len(values) or any(len(row) != len(self.inputs) for row in rows):
            rows, values = [], []  # incomplete samples don't count
        X = np.array(rows, dtype=float).reshape(len(rows), len(self.inputs))
        return X, np.array(values, dtype=float)

    def sample_ranges(
        self, discrete: Optional[Mapping[str, int]] = None, *, output: str
    ) -> Dict[str, Tuple[float, float]]:
        """(lowest, highest) value of each input among the samples that one output was fitted to.
        They are not the bounds of the inputs. Empty if the database keeps no samples."""
        prepared = self._prepare(self._key({} if discrete is None else discrete))
        if output not in prepared.outputs:
            raise ValueError(
                f"there is no output {output!r}{did_you_mean(output, prepared.outputs)}"
            )
        ranges = prepared.sample_ranges(prepared.outputs.index(output))
        return dict(zip(self._input_names, zip(*ranges)))

    def code(
        self,
        folder: Union[str, "os.PathLike[str]"],
        *,
        name: str = "model",
        combination: Optional[Mapping[str, int]] = None,
        outputs: Sequence[str] = (),
        errors: bool = False,
        gradients: bool = False,
        single: bool = False,
        budget: int = 0,
    ) -> CodeNeeds:
        """Writes the model as C99, ``name.h`` and ``name.c``, as ``pxrom code`` does: code that needs
        ``math.h`` alone and gives the same bits.

        Args:
            folder: made if it is not there.
            name: the start of all names in the code.
            combination: a value of each discrete input; without it the code takes them.
            outputs: all without it.
            errors: predicted errors too.
            gradients: derivatives by the inputs too.
            single: float instead of double.
            budget: refuse more bytes of tables and code than this; 0 is no limit.

        Raises:
            ValueError: when the model or an argument does not allow it; no file is written then.
        """
        pairs = [] if combination is None else self._named(self._key(combination))
        given = (list(outputs), errors, gradients, single, budget)
        return CodeNeeds(*_core.write_code(self._model, os.fspath(folder), name, pairs, *given))

    def fmu(
        self,
        path: Union[str, "os.PathLike[str]"],
        *,
        fmi: int = 2,
        name: Optional[str] = None,
        combination: Optional[Mapping[str, int]] = None,
        outputs: Sequence[str] = (),
        errors: bool = True,
    ) -> Tuple[str, ...]:
        """Writes the model as an FMU for system simulators, as ``pxrom fmu --export`` does.

        Args:
            path: the archive, for example "beam.fmu".
            fmi: 2 or 3.
            name: the model identifier; without it the name of the archive.
            combination: a value of each discrete input; without it they are parameters.
            outputs: all without it.
            errors: predicted errors as further outputs.

        Returns:
            The platforms that the archive has binaries for, with the compiler that made each. None
            where no compiler is found; the sources are always in it.

        Raises:
            ValueError: when the model or an argument does not allow it; no file is written then.
        """
        pairs = [] if combination is None else self._named(self._key(combination))
        given = (fmi, name or "", pairs, list(outputs), errors)
        return tuple(_core.write_fmu(self._model, os.fspath(path), *given))

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes :attr:`text` to a file, compressed if its name ends with ".gz". A file that is
        there is replaced as a whole or, when that fails, left as it was."""
        _files.write(path, self.text)

    def to_text(self) -> str:
        """The database in its canonical form, as ``pxrom format`` writes it. :attr:`text` is what
        was read. ValueError if the text would not read back as the same model."""
        return str(self._model.to_text())

    def _is_points(self, given: Any) -> bool:
        """Whether the only argument of a prediction is points rather than a combination."""
        if _points.is_frame(given):
            return True
        if isinstance(given, Mapping):
            return len(given) > 0 and (
                not self.discrete or any(name in given for name in self._input_names)
            )
        return given is not None and not self.discrete

    def _evaluate(
        self,
        key: Tuple[int, ...],
        points: np.ndarray,
        return_error: bool,
        gradient: bool,
        mode: str,
        jobs: int,
    ) -> _Results:
        prepared = self._prepare(key)
        if return_error:
            *tables, statuses = prepared.evaluate_with_errors(points, mode == "fast", jobs)
        else:
            values, statuses = prepared.evaluate(points, mode == "fast", jobs)
            tables = [values]
        made = _Results(prepared.outputs, statuses, *tables)
        if gradient:
            made = made._replace(gradients=self._gradients(prepared, points, jobs))
        unknown = _points.rows_with_nan(points)
        if unknown is not None:
            # Some families would refuse the point, others would give NaN as a value, or would not
            # read the input.
            statuses[unknown] = 1
            for results in made[2:]:
                if results is not None:
                    results[unknown] = np.nan
        return made

    def _joined(
        self, parts: List[_Part], rows: int, return_error: bool, gradient: bool
    ) -> _Results:
        """The results of several combinations, each point in its place. An output that a
        combination lacks has the status 1 there."""
        outputs = tuple(dict.fromkeys(name for _, _, part in parts for name in part.outputs))
        if not parts:
            outputs = tuple(parameter.name for parameter in self.outputs)
        shape = (rows, len(outputs))
        joined = _Results(
            outputs,
            np.ones(shape, dtype=np.intc),
            *(np.full(shape, np.nan) for _ in range(5 if return_error else 1)),
        )
        if gradient:
            joined = joined._replace(gradients=np.full((*shape, len(self.inputs)), np.nan))
        for _, places, part in parts:
            cells = np.ix_(places, [outputs.index(name) for name in part.outputs])
            for whole, piece in zip(joined[1:], part[1:]):
                if whole is not None:
                    whole[cells] = piece
        return joined

    def _located(
        self, groups: List[_Group], points: np.ndarray, outputs: Tuple[str, ...], jobs: int
    ) -> Located:
        """Where points are relative to the samples, each at its own combination."""
        shape = (len(points), len(outputs))
        made = Located(
            np.zeros(shape, dtype=bool),
            np.full(shape, np.nan),
            np.zeros((*shape, len(self.inputs)), dtype=np.int8),
        )
        for key, rows in groups:
            prepared = self._prepare(key)
            try:
                inside, distance, sides = prepared.locate(points[rows], jobs)
            except ValueError as error:
                raise ValueError(f"Locations: {error} {_HOW_TO_RAISE}") from None
            places = np.arange(len(points))[rows]
            columns = np.array([outputs.index(name) for name in prepared.outputs], dtype=int)
            cells = np.ix_(places, columns)
            for whole, piece in zip(made, (inside == 1, distance, sides)):
                whole[cells] = piece
        return made

    def _error_origin(self, groups: List[_Group], outputs: Tuple[str, ...]) -> Dict[str, str]:
        found: Dict[str, List[str]] = {name: [] for name in outputs}
        for key, _ in groups:
            for name, origin in error_origin(self._prepare(key)).items():
                found[name].append(origin)
        return {name: " or ".join(dict.fromkeys(each)) for name, each in found.items()}

    def _points_by_combination(
        self, X: Any, fixed: Mapping[str, int]
    ) -> Tuple[np.ndarray, List[_Group]]:
        """The points as a table, and their combinations, each with the places of its rows."""
        points, columns = _points.tables(X, self._input_names, self._discrete_names)
        if columns:
            _points.require_key(columns, fixed, _EACH_ROW)
        return points, self._groups(fixed, columns, X, len(points))

    def _groups(
        self, fixed: Mapping[str, int], columns: Mapping[str, np.ndarray], points: Any, rows: int
    ) -> List[_Group]:
        """The combinations of the points, ascending, each with the places of its rows."""
        free = [name for name in columns if name not in fixed]
        if not free:
            return [(self._whole_key(fixed), slice(None))]
        if len(fixed) + len(free) < len(self.discrete):
            self._whole_key({**fixed, **dict.fromkeys(free, 0)})  # says what is missing
        table = np.empty((rows, len(self.discrete)), dtype=np.int64)
        for place, parameter in enumerate(self.discrete):
            if parameter.name in fixed:
                table[:, place] = fixed[parameter.name]
            else:
                table[:, place] = _whole_values(parameter, columns[parameter.name], points)
        keys, first, where, counts = np.unique(
            table, axis=0, return_index=True, return_inverse=True, return_counts=True
        )
        for key, row in zip(keys.tolist(), first.tolist()):
            self._require_fitted(tuple(key), f" in {_points.row_named(points, row)}")
        places = np.split(np.argsort(where.ravel(), kind="stable"), np.cumsum(counts)[:-1])
        return [(tuple(key), rows_of) for key, rows_of in zip(keys.tolist(), places)]

    def _fixed(self, discrete: Any) -> Dict[str, int]:
        """The values that a caller gives for all points, some or all of them."""
        names = [parameter.name for parameter in self.discrete]
        known = set(names)
        if not isinstance(discrete, Mapping):
            wanted = "{" + ", ".join(f"{name!r}: ..." for name in names) + "}"
            raise ValueError(
                f"the combination comes before the points and is a mapping by name: {wanted}, not "
                f"{type(discrete).__name__}"
                if names
                else "the model has no discrete inputs: pass None, or only the points"
            )
        for name in discrete:
            if name not in known:
                if any(name == parameter.name for parameter in self.inputs):
                    raise ValueError(f"{name!r} is a continuous input: it goes into the points X")
                raise ValueError(f"there is no discrete input {name!r}{did_you_mean(name, names)}")
        fixed: Dict[str, int] = {}
        for parameter in self.discrete:
            if parameter.name not in discrete:
                continue
            value = discrete[parameter.name]
            if np.ndim(value) != 0:
                raise ValueError(
                    f"{parameter.name!r} takes one value, not {type(value).__name__}; for a value "
                    "per point, put it among the points of predict"
                )
            if value not in parameter.values:
                raise _not_fitted(parameter, value)
            fixed[parameter.name] = int(value)
        return fixed

    def _key(self, discrete: Any) -> Tuple[int, ...]:
        """The key of one combination."""
        return self._whole_key(self._fixed(discrete))

    def _whole_key(self, fixed: Mapping[str, int]) -> Tuple[int, ...]:
        for parameter in self.discrete:
            if parameter.name not in fixed:
                raise ValueError(
                    f"the discrete input {parameter.name!r} is missing; it takes "
                    f"{listed(parameter.values, 'or')}"
                )
        key = tuple(fixed[name] for name in self._discrete_names)
        self._require_fitted(key)
        return key

    def _require_fitted(self, key: Tuple[int, ...], where: str = "") -> None:
        if key not in self._keys:
            fitted = "; ".join(
                ", ".join(f"{name}={value}" for name, value in combination.items())
                for combination in self.combinations[:_MOST_SHOWN]
            )
            more = len(self.combinations) - _MOST_SHOWN
            fitted += f"; and {more} more" if more > 0 else ""
            raise ValueError(
                f"the combination {dict(self._named(key))!r}{where} was not fitted; there are: "
                + visible(fitted)
            )

    def _prepare(self, key: Tuple[int, ...]) -> _core.Prepared:
        prepared = self._prepared.get(key)
        if prepared is None:
            # Two threads may prepare one combination; the first to be ready is kept.
            try:
                made = self._model.prepare(self._named(key), self.limit, self.memory_limit)
            except ValueError as error:
                raise ValueError(f"{error} {_HOW_TO_RAISE}") from None
            with self._lock:
                prepared = self._prepared.setdefault(key, made)
        return prepared

    def _combination(self, key: Tuple[int, ...]) -> Combination:
        return Combination(self._named(key))

    def _named(self, key: Tuple[int, ...]) -> List[Tuple[str, int]]:
        return list(zip(self._discrete_names, key))

    @staticmethod
    def _gradients(prepared: _core.Prepared, points: np.ndarray, jobs: int) -> np.ndarray:
        try:
            return prepared.gradients(points, jobs)[0]
        except ValueError as error:
            raise ValueError(f"Gradients: {error} {_HOW_TO_RAISE}") from None

    def __copy__(self) -> "Model":
        return self

    def __deepcopy__(self, memo: Any) -> "Model":
        return self

    def __reduce__(self) -> Tuple[Any, ...]:
        return _restored, (self.text, self.limit, self.memory_limit)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Model) and self.text == other.text

    def __hash__(self) -> int:
        return hash(self.text)

    def __repr__(self) -> str:
        inputs = ", ".join(parameter.name for parameter in self.discrete + self.inputs)
        outputs = ", ".join(parameter.name for parameter in self.outputs)
        count = len(self.combinations)
        extra = f" in {count} combinations" if self.discrete else ""
        return visible(f"<Model {outputs} of {inputs}{extra}>")

    def _repr_html_(self) -> str:
        head = ["", "Name", "Caption", "Bounds or values", "Unit"]
        rows = []
        for role, parameters in (
            ("discrete", self.discrete),
            ("input", self.inputs),
            ("output", self.outputs),
        ):
            rows += [[role, *parameter._described()] for parameter in parameters]
        return _html.table(head, rows, f"Model with {len(self.combinations)} combination(s)")


def _not_fitted(parameter: Parameter, value: object, where: str = "") -> ValueError:
    return ValueError(
        f"{visible(parameter.name)}={value!r}{where} was not fitted; it takes "
        f"{listed(parameter.values, 'or')}"
    )


def _number(value: Any) -> float:
    try:
        return float(value)
    except (TypeError, ValueError):
        return np.nan


def _whole_values(parameter: Parameter, values: np.ndarray, points: Any) -> np.ndarray:
    """The values (n,) of a discrete input at points, all of which were fitted."""
    try:
        numbers = values.astype(float)
    except (TypeError, ValueError):
        numbers = np.array([_number(value) for value in values.tolist()])
    known = np.isin(numbers, parameter.values)
    if not known.all():
        row = int(np.argmin(known))
        where = f" in {_points.row_named(points, row)}"
        raise _not_fitted(parameter, values.tolist()[row], where)
    return numbers.astype(np.int64)


def _parameter(raw: Mapping[str, Any]) -> Parameter:
    # Without bounds both are 0.
    bounded = raw["lower"] < raw["upper"]
    return Parameter(
        name=raw["name"],
        unit=raw["unit"],
        caption=raw["caption"],
        lower=raw["lower"] if bounded else None,
        upper=raw["upper"] if bounded else None,
        values=raw["values"],
        kind=_KINDS[raw["type"]] if raw["type"] in range(len(_KINDS)) else "derived",
        is_input=raw["is_input"],
        enabled=raw["enabled"],
        rank=raw["rank"],
    )


def _amount(name: str, given: Optional[float]) -> Optional[int]:
    """A limit in the form of the library."""
    if given is None:
        return None
    if not 0 <= given < 2.0**64:
        raise ValueError(f"{name} has to be a number from 0, or None for none, not {given!r}")
    return int(given)


def _restored(text: str, limit: Optional[int], memory_limit: Optional[int]) -> Model:
    return Model(text, limit=limit, memory_limit=memory_limit)


def loads(
    text: Union[str, _files.Content],
    *,
    limit: Optional[float] = None,
    memory_limit: Optional[float] = None,
) -> Model:
    """Reads the text of a database.

    Reading does not report damage that can still be read; :func:`check` does.

    Args:
        text: what the file holds, as a str, as bytes or as an open file; bytes and files may be
            compressed by gzip.
        limit: the largest number of floating-point operations that a prediction may take at each
            point, such as ``2e9``. :meth:`Model.predict` refuses a higher cost before it evaluates.
            Set a limit for models from strangers. :meth:`Model.cost` gives the cost of a model.
        memory_limit: the same for bytes of memory.

    Raises:
        ValueError: when the text can't be read, with the first thing that is wrong with it.
    """
    held = _files.text_of(text) if _files.has_content(text) else cast(str, text)
    return Model(held, limit=limit, memory_limit=memory_limit)


def load(
    path: Union[str, "os.PathLike[str]", _files.Content],
    *,
    limit: Optional[float] = None,
    memory_limit: Optional[float] = None,
) -> Model:
    """Reads a database file, which may be compressed by gzip; see :func:`loads`, which also says
    what else than a path may be passed. OSError, with a sentence that says why, if the file can't
    be read."""
    if _files.has_content(path):
        return loads(cast(Any, path), limit=limit, memory_limit=memory_limit)
    if not isinstance(path, (str, os.PathLike)):
        raise TypeError(f"load takes a path, bytes or an open file, not {type(path).__name__}")
    if "\n" in str(path):
        raise ValueError("load takes a path, but this is a text: call pxrom.loads")
    text = _files.read(path)
    try:
        return Model(text, limit=limit, memory_limit=memory_limit)
    except ValueError as error:
        raise ValueError(f"{_files.shown(path)}: {error}") from None


def format(text: Union[str, _files.Content], *, answers: int = 0) -> str:
    """The text of a database in its canonical form: what ``pxrom format`` writes, with so many check
    points for each combination. :func:`check` compares the answers that they hold with those of
    another machine."""
    return with_answers(loads(text).to_text(), answers)


def with_answers(text: str, answers: int) -> str:
    """A text with so many check points for each combination; the same text for 0."""
    if not isinstance(answers, (int, np.integer)) or not 0 <= answers <= _MOST_ANSWERS:
        raise ValueError(f"answers has to be a number from 0 to {_MOST_ANSWERS}, not {answers!r}")
    return _core.with_check_points(text, answers) if answers else text
