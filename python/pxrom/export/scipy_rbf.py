"""scipy's RBFInterpolator as a linear basis function surface."""

from typing import Any, Dict, List

import numpy as np

from ._monomials import Term, trend_of
from ._options import Options
from ._surface import LinearBasisSurface, NotExportable, Surface

_GAUSSIAN, _RATIONAL = 0, 4
_FUNCTIONS = {"gaussian": _GAUSSIAN, "inverse_quadratic": _RATIONAL}


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output of an ``RBFInterpolator``."""
    from scipy.interpolate import RBFInterpolator

    if not isinstance(fitted, RBFInterpolator):
        raise NotExportable(
            f"a {type(fitted).__name__} has no counterpart; the exporter accepts RBFInterpolator"
        )
    if fitted.kernel not in _FUNCTIONS:
        raise NotExportable(
            f"the kernel {fitted.kernel!r} is not one of the library's radial functions; the "
            "exporter accepts gaussian and inverse_quadratic"
        )
    if fitted.neighbors is not None:
        raise NotExportable(
            "an interpolator of neighbors solves a new problem at each point; fit with "
            "neighbors=None"
        )
    if np.iscomplexobj(fitted.d) or fitted.d_dtype is complex:
        raise NotExportable("complex outputs have no counterpart")

    X = np.asarray(fitted.y, dtype=float)
    n, inputs = X.shape
    shift, scale = np.asarray(fitted._shift), np.asarray(fitted._scale)
    coefficients = np.asarray(fitted._coeffs, dtype=float).reshape(len(fitted._coeffs), -1)
    outputs = np.asarray(fitted.d, dtype=float).reshape(n, -1)
    made: List[Surface] = []
    for column in range(coefficients.shape[1]):
        # Its polynomials use (x - shift) / scale, its distances use x; z = x - shift works for
        # both.
        trend: Dict[Term, float] = {}
        for powers, value in zip(fitted.powers, coefficients[n:, column]):
            term = tuple(int(i) for i in np.repeat(np.arange(inputs), powers))
            if len(term) > 2:
                raise NotExportable(
                    f"the polynomial has the degree {len(term)}; a trend has at most 2 (degree=)"
                )
            trend[term] = float(value) / float(np.prod(scale[list(term)]))
        kind, terms = trend_of(trend, inputs)
        made.append(
            LinearBasisSurface(
                np.ones(inputs),
                -shift,
                samples=X - shift,
                outputs=outputs[:, column],
                function=_FUNCTIONS[fitted.kernel],
                width=1.0 / float(fitted.epsilon),
                coefficients=coefficients[:n, column],
                trend=kind,
                trend_coefficients=[trend.get(term, 0.0) for term in terms],
                predict=_column(fitted, column),
            )
        )
    return made


def _column(fitted: Any, column: int) -> Any:
    return lambda points: np.asarray(fitted(points)).reshape(len(points), -1)[:, column]
