"""A database in memory."""

import os
import threading
from dataclasses import dataclass
from typing import Any, Dict, List, Mapping, Optional, Tuple, Union

import numpy as np

from . import _core, _html, _points
from ._prediction import Prediction
from ._wording import did_you_mean, listed

_KINDS = ("continuous", "continuous", "discrete", "derived")


@dataclass(frozen=True)
class Parameter:
    """One parameter of a model.

    ``kind`` is "continuous", "discrete" or "derived". ``lower`` and ``upper`` are ``None`` where
    the database has no bounds; they are shown and never enforced. ``values`` are those that the
    combinations of a discrete input have, ascending. Disabled and derived parameters are carried
    and take no part in a prediction.
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


class Combination(Dict[str, int]):
    """The values of the discrete inputs of one fitted combination, by name. A dict that can be
    handed to :meth:`Model.predict`."""


class Model:
    """A database of fitted models; made by :func:`load` and :func:`loads`.

    Attributes:
        text: the text that it was read from.
        inputs: the continuous inputs, in the order of the columns of points.
        discrete: the discrete inputs; a prediction names one value of each.
        outputs: what a prediction answers, in the order of its columns.
        parameters: all of them by rank, also disabled and derived ones.
        combinations: the fitted combinations of discrete values, ascending.

    A model never changes. Any number of threads may use one, and predictions release the
    interpreter's lock. It pickles by its text.
    """

    text: str
    parameters: Tuple[Parameter, ...]
    inputs: Tuple[Parameter, ...]
    discrete: Tuple[Parameter, ...]
    outputs: Tuple[Parameter, ...]
    combinations: Tuple[Combination, ...]

    def __init__(self, text: str) -> None:
        if not isinstance(text, str):
            raise TypeError(f"the text of a database is a str, not {type(text).__name__}")
        self.text = text
        self._model = _core.read(text)
        # By name, and by rank where that decides: the library's own order.
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
        names = [parameter.name for parameter in self.discrete]
        self.combinations = tuple(Combination(zip(names, key)) for key in self._keys)
        self._prepared: Dict[Tuple[int, ...], _core.Prepared] = {}
        self._lock = threading.Lock()

    def predict(
        self,
        discrete: Optional[Mapping[str, int]] = None,
        X: Any = None,
        *,
        return_error: bool = False,
        gradient: bool = False,
        mode: str = "exact",
    ) -> Prediction:
        """Predicts every output at many points of one combination.

        Args:
            discrete: the value of each discrete input by name, such as
                ``{"Material": 1, "Holes": 2}``; ``None`` or ``{}`` for a model without.
            X: the points in physical units: an array of the shape (n, d) with a column per input in
                the order of :attr:`inputs`; or a mapping from input name to n values, where a
                single value stands for all points; or a pandas frame with a column per input, in
                any order and with others beside them.
            return_error: also the predicted errors. Values are the same with and without.
            gradient: also the derivatives with respect to the inputs.
            mode: "exact" gives the same bits on every machine; "fast" gives values, and errors from
                cross-validation, within 1e-11 of the largest one that an output has in the batch,
                two to three times as fast where kernels are summed.

        Returns:
            A :class:`Prediction` with ``values``, ``errors``, ``statuses`` and ``gradients`` by
            output name.

        Raises:
            ValueError: when names, values or shapes don't fit; the message says what would.
        """
        if mode not in ("exact", "fast"):
            raise ValueError(f"mode has to be 'exact' or 'fast', not {mode!r}")
        key = self._key({} if discrete is None else discrete)
        prepared = self._prepare(key)
        names = tuple(parameter.name for parameter in self.inputs)
        if X is None:
            if names:
                raise ValueError(f"X is missing: points with the inputs {listed(names)}")
            X = np.empty((1, 0))
        points = _points.table(X, names)

        values, errors, statuses = prepared.evaluate(points, mode == "fast", return_error)
        if return_error and (statuses == 1).any():
            # A family without errors refuses the form with errors: the value is good all the same.
            plain, _, plain_statuses = prepared.evaluate(points, mode == "fast", False)
            mended = (statuses == 1) & (plain_statuses == 0)
            values[mended] = plain[mended]
            statuses[mended] = -2
        gradients = prepared.gradients(points)[0] if gradient else None
        return Prediction(
            outputs=prepared.outputs,
            inputs=names,
            values=values,
            errors=errors,
            statuses=statuses,
            gradients=gradients,
            scaled_errors=frozenset(self._keys[key]) if return_error else frozenset(),
            index=X.index if _points.is_frame(X) else None,
        )

    def samples(
        self, discrete: Optional[Mapping[str, int]] = None, *, output: str
    ) -> Tuple[np.ndarray, np.ndarray]:
        """The samples that the database keeps for one output of a combination: inputs of the shape
        (n, d), with the columns of :attr:`inputs`, and outputs of the shape (n,). n is 0 where it
        keeps none."""
        names = [parameter.name for parameter in self.outputs]
        if output not in names:
            raise ValueError(f"there is no output {output!r}{did_you_mean(output, names)}")
        rows, values = self._model.samples(self._key({} if discrete is None else discrete), output)
        X = np.array(rows, dtype=float).reshape(len(rows), -1)
        y = np.array(values, dtype=float)
        if X.shape != (len(y), len(self.inputs)):
            return np.empty((0, len(self.inputs))), np.empty(0)
        return X, y

    def to_text(self) -> str:
        """The database in its canonical form, as ``pxrom format`` writes it. :attr:`text` is what
        was read. ValueError where the text would not read back as the same model."""
        return str(self._model.to_text())

    def _key(self, discrete: Mapping[str, int]) -> Tuple[int, ...]:
        names = [parameter.name for parameter in self.discrete]
        if not isinstance(discrete, Mapping):
            wanted = "{" + ", ".join(f"{name!r}: ..." for name in names) + "}"
            raise ValueError(f"discrete values go by name: {wanted}, not {discrete!r}")
        for name in discrete:
            if name not in names:
                raise ValueError(f"there is no discrete input {name!r}{did_you_mean(name, names)}")
        key: List[int] = []
        for parameter in self.discrete:
            if parameter.name not in discrete:
                raise ValueError(
                    f"the discrete input {parameter.name!r} is missing; it takes "
                    f"{listed(parameter.values, 'or')}"
                )
            value = discrete[parameter.name]
            if value not in parameter.values:
                raise ValueError(
                    f"{parameter.name}={value!r} was not fitted; it takes "
                    f"{listed(parameter.values, 'or')}"
                )
            key.append(int(value))
        if tuple(key) not in self._keys:
            fitted = "; ".join(
                ", ".join(f"{name}={value}" for name, value in combination.items())
                for combination in self.combinations
            )
            raise ValueError(
                f"the combination {dict(discrete)!r} was not fitted; there are: {fitted}"
            )
        return tuple(key)

    def _prepare(self, key: Tuple[int, ...]) -> _core.Prepared:
        prepared = self._prepared.get(key)
        if prepared is None:
            values = list(zip((parameter.name for parameter in self.discrete), key))
            # Two threads may prepare one combination; the first to be ready is kept.
            made = self._model.prepare(values)
            with self._lock:
                prepared = self._prepared.setdefault(key, made)
        return prepared

    def __reduce__(self) -> Tuple[Any, ...]:
        return Model, (self.text,)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Model) and self.text == other.text

    def __hash__(self) -> int:
        return hash(self.text)

    def __repr__(self) -> str:
        inputs = ", ".join(parameter.name for parameter in self.discrete + self.inputs)
        outputs = ", ".join(parameter.name for parameter in self.outputs)
        count = len(self.combinations)
        extra = f" in {count} combinations" if self.discrete else ""
        return f"<Model {outputs} of {inputs}{extra}>"

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


def _parameter(raw: Mapping[str, Any]) -> Parameter:
    # A database without bounds says 0 and 0.
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


def loads(text: str) -> Model:
    """Reads the text of a database.

    Reading is silent about damage that has a meaning of its own; :func:`check` tells.

    Raises:
        ValueError: when the text can't be read, with the first thing that is wrong with it.
    """
    return Model(text)


def load(path: Union[str, "os.PathLike[str]"]) -> Model:
    """Reads a database file; see :func:`loads`. OSError where there is no such file."""
    with open(path, encoding="utf-8", errors="surrogateescape", newline="") as file:
        text = file.read()
    try:
        return Model(text)
    except ValueError as error:
        raise ValueError(f"{os.fspath(path)}: {error}") from None


def format(text: str) -> str:
    """The text of a database in its canonical form: what ``pxrom format`` writes."""
    return Model(text).to_text()
