"""One combination of a model, ready for one point after the other."""

from typing import TYPE_CHECKING, Any, Dict, FrozenSet, List, Optional, Tuple, Union

from . import _core, _points
from ._wording import visible

if TYPE_CHECKING:
    from ._model import Combination, Model


_ORIGINS = ("none", "cross-validation", "all surfaces", "one surface")


def error_origin(prepared: _core.Prepared) -> Dict[str, str]:
    """As :class:`Prediction` has it."""
    made = {}
    for name, (kind, surface, count, first_order) in zip(
        prepared.outputs, prepared.error_origins()
    ):
        origin = f"surface {surface + 1} of {count}" if kind == 3 else _ORIGINS[kind]
        made[name] = f"{origin}, first order" if first_order else origin
    return made


class Predictor(_core.Predictor):
    """A function of one point, for optimisers and solvers; :meth:`Model.at` makes it.

    A call takes the values of the continuous inputs, in the order of ``inputs`` and in physical
    units: an array of the shape (d,), or anything that numpy turns into one. It has less overhead
    than :meth:`Model.predict`, and the same bits. :meth:`Model.predict` is faster for many points.

    ===========================  ====================  ==================
    with d inputs, m outputs     output="mass"         several outputs
    ===========================  ====================  ==================
    ``f(x)``                     float                 (m,)
    ``f.gradient(x)``            (d,)                  (m, d)
    ``f.value_and_gradient(x)``  a tuple of these      a tuple of these
    ``f.value_and_error(x)``     (float, float)        ((m,), (m,))
    ===========================  ====================  ==================

    What cannot be evaluated is NaN: all results if an input is NaN, the value of a damaged surface,
    the error of a family that has none, a gradient where the formula has none.

    Attributes:
        model: the model.
        discrete: the values of its discrete inputs.
        inputs: the d names, in the order of a point.
        outputs: the m names, in the order of the results.
        bounds: (lower, upper) of each input, as scipy.optimize takes them; ``None`` where the
            database has no bound.
        error_origin: whose error that of each output is; see :class:`Prediction`.
        scaled_errors: the outputs whose raw error is in a scaled space; see :class:`Prediction`.

    It never changes, and any number of threads may use it. Evaluations that take long release the
    interpreter's lock. It pickles with the text of its model.
    """

    model: "Model"
    discrete: "Combination"
    inputs: Tuple[str, ...]
    outputs: Tuple[str, ...]
    error_origin: Dict[str, str]
    scaled_errors: FrozenSet[str]

    def __init__(
        self,
        model: "Model",
        discrete: "Combination",
        prepared: _core.Prepared,
        output: Optional[str],
        scaled_errors: FrozenSet[str],
        gradient_hint: str,
    ) -> None:
        inputs = prepared.inputs
        super().__init__(
            prepared, output is not None, lambda x: _points.point(x, inputs), gradient_hint
        )
        self.model = model
        self.discrete = discrete
        self.inputs = inputs
        self.outputs = prepared.outputs
        self.error_origin = error_origin(prepared)
        self.scaled_errors = scaled_errors
        self._output = output

    @property
    def bounds(self) -> List[Tuple[Optional[float], Optional[float]]]:
        return [(parameter.lower, parameter.upper) for parameter in self.model.inputs]

    def __reduce__(self) -> Tuple[Any, ...]:
        output: Union[str, Tuple[str, ...]] = self.outputs if self._output is None else self._output
        return type(self.model).at, (self.model, dict(self.discrete), output)

    def __repr__(self) -> str:
        at = ", ".join(f"{name}={value}" for name, value in self.discrete.items())
        names = f"{', '.join(self.outputs)} of {', '.join(self.inputs)}"
        return visible(f"<Predictor {names}{' at ' + at if at else ''}>")
