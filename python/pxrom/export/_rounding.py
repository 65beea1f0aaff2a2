"""How far two evaluations of one surface can differ when both only round.

This follows the standard model of rounding (Higham, Accuracy and Stability of Numerical Algorithms,
chapter 3): a sum of n terms is off by at most n u times the sum of their magnitudes, and each term
by its own few roundings and by those of the coordinates. That is far below any tolerance unless
large coefficients cancel, as they do in a process fitted without noise.
"""

from typing import Callable, Dict, Tuple

import numpy as np

UNIT = float(np.finfo(float).eps)
# Roundings of one term, without its sum: scaling, differences, kernel, weight.
STEPS = 8
# Derivatives are taken over steps this much wider than a rounding.
_WIDER = 2.0**20

# Distances per input (n, d) to kernel values (n,); falling in each distance, or growing in each.
Shape = Callable[[np.ndarray], np.ndarray]


def _matern52(away: np.ndarray) -> np.ndarray:
    t = np.sqrt(5.0) * away
    return np.asarray(np.prod((1.0 + t + t**2 / 3.0) * np.exp(-t), axis=1))


def _spherical(away: np.ndarray) -> np.ndarray:
    t = np.minimum(away, 1.0)
    return np.asarray(np.prod(1.0 - 1.5 * t + 0.5 * t**3, axis=1))


# By E_KringingCorrelationFunctionType.
_CORRELATIONS: Dict[int, Callable[[np.ndarray, np.ndarray], np.ndarray]] = {
    1: lambda away, k: np.exp(-away @ k),
    2: lambda away, k: np.exp(-(away**2) @ k),
    4: lambda away, k: _spherical(away * k),
    8: lambda away, k: _matern52(away * k),
}


def correlation(kind: int, kernels: np.ndarray) -> Shape:
    """Of a Kriging surface; 1 and 2 are the exponential and the Gaussian of all families."""
    function = _CORRELATIONS[kind]
    return lambda away: function(away, kernels)


def kernels_off(
    shape: Shape, samples: np.ndarray, point: np.ndarray, off: np.ndarray
) -> Tuple[np.ndarray, np.ndarray]:
    """The kernels between a point and the samples, and by how much each may be off when the
    coordinates' differences (n, d) are by ``off``."""
    away = np.abs(point - samples)
    wide = _WIDER * off
    values = shape(away)
    through_place = np.abs(shape(np.maximum(away - wide, 0.0)) - shape(away + wide)) / _WIDER
    sizes = np.abs(values)
    exponent = np.abs(np.log(np.maximum(sizes, 1e-300)))
    return values, through_place + UNIT * (STEPS + exponent) * sizes
