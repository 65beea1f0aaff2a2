"""Functions of one input or of the output that a database has: which one it is, and its values."""

from dataclasses import dataclass
from typing import Callable, Dict, NamedTuple, Optional

import numpy as np

Values = Callable[[np.ndarray], np.ndarray]


@dataclass(frozen=True)
class Function:
    """A transformation by its E_QRSTransformationType: forward of an input, back of an output."""

    kind: int
    value: float = 0.0
    parameter: float = 0.0  # lambda

    def forward(self, x: np.ndarray) -> np.ndarray:
        x = np.asarray(x, dtype=float)
        if self.kind == 6:
            return np.asarray(np.power(x, self.value))
        if self.kind == 7:
            return _box_cox(x, self.parameter)
        if self.kind == 9:
            below = -_box_cox(1.0 - np.minimum(x, 0.0), 2.0 - self.parameter)
            return np.where(x < 0.0, below, _box_cox(1.0 + np.maximum(x, 0.0), self.parameter))
        return np.asarray(_FORWARD[self.kind](x))

    def back(self, t: np.ndarray) -> np.ndarray:
        t = np.asarray(t, dtype=float)
        if self.kind == 6:
            return np.asarray(np.power(t, 1.0 / self.value))
        if self.kind == 7:
            return _inverse_box_cox(t, self.parameter)
        if self.kind == 9:
            below = 1.0 - _inverse_box_cox(-np.minimum(t, 0.0), 2.0 - self.parameter)
            return np.where(
                t < 0.0, below, _inverse_box_cox(np.maximum(t, 0.0), self.parameter) - 1.0
            )
        return np.asarray(_BACK[self.kind](t))

    def back_slope(self, t: np.ndarray) -> np.ndarray:
        """How much a change of the argument changes ``back``, to a few digits."""
        step = 1e-6 * (1.0 + np.abs(t))
        return np.asarray((self.back(t + step) - self.back(t - step)) / (2.0 * step))


def _box_cox(x: np.ndarray, parameter: float) -> np.ndarray:
    if abs(parameter) < 1e-6:
        return np.asarray(np.log(x))
    return np.asarray((np.power(x, parameter) - 1.0) / parameter)


def _inverse_box_cox(t: np.ndarray, parameter: float) -> np.ndarray:
    if abs(parameter) < 1e-6:
        return np.asarray(np.exp(t))
    return np.asarray(np.power(parameter * t + 1.0, 1.0 / parameter))


_FORWARD: Dict[int, Values] = {1: np.exp, 3: np.log, 4: np.log10, 5: np.sqrt}
_BACK: Dict[int, Values] = {1: np.log, 3: np.exp, 4: lambda t: 10.0**t, 5: np.square}

# By the names that a caller may give.
NAMED: Dict[str, Function] = {"log": Function(3), "log10": Function(4), "sqrt": Function(5)}


class Recognised(NamedTuple):
    """y = scale function(slope x + intercept) + shift; without a function a power of x."""

    function: Optional[Function]
    slope: float = 1.0
    intercept: float = 0.0
    scale: float = 1.0
    shift: float = 0.0
    power: int = 1


_KNOWN = (
    Recognised(None),
    Recognised(None, power=2),
    Recognised(None, power=3),
    Recognised(Function(3)),
    Recognised(Function(3), intercept=1.0),
    Recognised(Function(3), scale=1.0 / np.log(2.0)),
    Recognised(Function(4)),
    Recognised(Function(5)),
    Recognised(Function(1)),
    Recognised(Function(1), shift=-1.0),
    Recognised(Function(1), slope=-1.0),
    Recognised(Function(1), slope=float(np.log(2.0))),
    Recognised(Function(6, -1.0)),
    Recognised(Function(6, -2.0)),
    Recognised(Function(6, 1.5)),
    Recognised(Function(6, 1.0 / 3.0)),
    Recognised(Function(6, -0.5)),
)


def values(known: Recognised, x: np.ndarray) -> np.ndarray:
    x = known.slope * np.asarray(x, dtype=float) + known.intercept
    own = x**known.power if known.function is None else known.function.forward(x)
    return np.asarray(known.scale * own + known.shift)


def recognise(x: np.ndarray, y: np.ndarray) -> Optional[Recognised]:
    """The function that has the values ``y`` at ``x``, if it is one of a list: x, x^2, x^3, log,
    log1p, log2, log10, sqrt, exp, expm1, exp2, exp(-x), and powers."""
    with np.errstate(all="ignore"):
        for known in _KNOWN:
            if np.allclose(values(known, x), y, rtol=1e-12, atol=1e-300):
                return known
    return None


#: What :func:`recognise` knows, for messages.
KNOWN = "log, log1p, log2, log10, sqrt, exp, expm1, exp2, squares, cubes and reciprocals"
