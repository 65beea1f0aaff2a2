"""scipy's RBFInterpolator: a linear basis function surface where that family has its function and
its polynomial, else a process."""

from typing import Any, Dict, List

import numpy as np

from . import _covariance as c
from ._covariance import Covariance, Factor
from ._monomials import Term, trend_of
from ._options import Options
from ._process import ProcessSurface
from ._surface import LinearBasisSurface, NotExportable, Surface

_BASIS_FUNCTIONS = {"gaussian": 0, "inverse_quadratic": 4}  # E_LinearBasisFunction
_COVARIANCES = {
    "gaussian": c.GAUSSIAN,
    "inverse_quadratic": c.INVERSE_QUADRATIC,
    "inverse_multiquadric": c.INVERSE_MULTIQUADRIC,
    "multiquadric": c.MULTIQUADRIC,
    "thin_plate_spline": c.THIN_PLATE,
    "linear": c.LINEAR,
    "cubic": c.CUBIC,
    "quintic": c.QUINTIC,
}


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output of an ``RBFInterpolator``."""
    from scipy.interpolate import RBFInterpolator

    if not isinstance(fitted, RBFInterpolator):
        raise NotExportable(
            f"a {type(fitted).__name__} has no counterpart; the exporter accepts RBFInterpolator"
        )
    if fitted.neighbors is not None:
        raise NotExportable(
            "an interpolator of neighbors solves a new problem at each point; fit with "
            "neighbors=None"
        )
    if np.iscomplexobj(fitted.d) or fitted.d_dtype is complex:
        raise NotExportable("complex outputs have no counterpart")
    coefficients = np.asarray(fitted._coeffs, dtype=float).reshape(len(fitted._coeffs), -1)
    return [_surface(fitted, coefficients[:, k], k) for k in range(coefficients.shape[1])]


def _surface(fitted: Any, coefficients: np.ndarray, column: int) -> Surface:
    X = np.asarray(fitted.y, dtype=float)
    n, inputs = X.shape
    shift, scale = np.asarray(fitted._shift), np.asarray(fitted._scale)
    # Its polynomials use (x - shift) / scale, its distances use x; z = x - shift works for both.
    trend: Dict[Term, float] = {}
    for powers, value in zip(fitted.powers, coefficients[n:]):
        term = tuple(int(i) for i in np.repeat(np.arange(inputs), powers))
        trend[term] = float(value) / float(np.prod(scale[list(term)]))
    made: Surface
    if fitted.kernel in _BASIS_FUNCTIONS and max(map(len, trend), default=0) <= 2:
        kind, terms = trend_of(trend, inputs)
        made = LinearBasisSurface(
            np.ones(inputs),
            -shift,
            function=_BASIS_FUNCTIONS[fitted.kernel],
            width=1.0 / float(fitted.epsilon),
            coefficients=coefficients[:n],
            trend=kind,
            trend_coefficients=[trend.get(term, 0.0) for term in terms],
        )
    else:
        # Its Gaussian is exp(-r^2), that of a covariance exp(-r^2 / 2).
        reach = np.sqrt(0.5) if fitted.kernel == "gaussian" else 1.0
        lengths = (float(reach / fitted.epsilon),) * inputs
        made = ProcessSurface(
            np.ones(inputs),
            -shift,
            covariance=Covariance.of((Factor(_COVARIANCES[fitted.kernel], lengths),)),
            weights=coefficients[:n],
            trend=trend,
        )
    made.samples = X - shift
    made.outputs = np.asarray(fitted.d, dtype=float).reshape(n, -1)[:, column]
    made.predict = lambda points: np.asarray(fitted(points)).reshape(len(points), -1)[:, column]
    return made
