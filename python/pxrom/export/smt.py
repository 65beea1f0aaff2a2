"""SMT: ``KRG``, ``KPLS`` and ``KPLSK`` after ``train``, with the error of the function.

Only attributes of the trained object are read, so that the package need not be installed:
``options``, ``X_norma``, ``X_offset``, ``X_scale``, ``y_norma``, ``y_mean``, ``y_std``,
``optimal_theta`` and ``optimal_par``, as its guide describes them.
"""

from typing import Any, List

import numpy as np

from . import _covariance as c
from . import _process
from ._covariance import Covariance, Factor, Product
from ._monomials import Term, design, quadratic_terms
from ._options import Options
from ._process import ProcessSurface
from ._surface import NotExportable, Surface

_MODELS = ("KRG", "KPLS", "KPLSK")
_DEGREES = {"constant": 0, "linear": 1, "quadratic": 2}
_POWERS = {"abs_exp": 1.0, "squar_exp": 2.0}
_MATERN = {"matern32": c.MATERN32, "matern52": c.MATERN52}


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output."""
    name = type(fitted).__name__
    if name not in _MODELS:
        raise NotExportable(
            f"a {name} of SMT has no counterpart; the exporter accepts KRG, KPLS and KPLSK"
        )
    if not hasattr(fitted, "optimal_par"):
        raise NotExportable(f"the {name} is not trained; call train first")
    X = np.asarray(fitted.X_norma, dtype=float)
    product = _product(fitted, X.shape[1])
    degree = _DEGREES[fitted.options["poly"]]
    terms = [term for term in quadratic_terms(X.shape[1]) if len(term) <= degree]
    outputs = np.asarray(fitted.y_norma, dtype=float).reshape(len(X), -1)
    return [
        _surface(fitted, X, product, terms, outputs[:, column], column)
        for column in range(outputs.shape[1])
    ]


def _surface(
    fitted: Any,
    X: np.ndarray,
    product: Product,
    terms: List[Term],
    outputs: np.ndarray,
    column: int,
) -> Surface:
    found = fitted.optimal_par
    beta = np.asarray(found["beta"], dtype=float).reshape(len(terms), -1)[:, column]
    gamma = np.asarray(found["gamma"], dtype=float).reshape(len(X), -1)[:, column]
    scale, shift = _of(fitted.y_std, column), _of(fitted.y_mean, column)
    # The tool keeps the variance in the unit of the output.
    variance = _of(found["sigma2"], column) / scale**2
    has_error = variance > 0.0 and not fitted.options.get("is_ri", False)
    amplitude = variance if variance > 0.0 else 1.0
    slope = 1.0 / np.ravel(np.asarray(fitted.X_scale, dtype=float))
    surface = ProcessSurface(
        slope,
        -np.ravel(np.asarray(fitted.X_offset, dtype=float)) * slope,
        scale=scale,
        shift=shift,
        samples=X,
        outputs=outputs,
        covariance=Covariance.of(product, amplitude),
        weights=gamma / amplitude,
        trend=dict(zip(terms, beta)),
        predict=lambda points: _column(fitted.predict_values(points), column),
    )
    if has_error:
        lower = np.sqrt(variance) * np.asarray(found["C"], dtype=float)
        functions = design(list(surface.trend), X)
        surface.make_error = lambda: _process.error_data(lower, trend=functions)
        surface.predict_error = lambda points: np.sqrt(
            _column(fitted.predict_variances(points), column)
        )
    else:
        surface.no_error = "the variance is 0, or that of a reinterpolation (is_ri)"
    return surface


def _of(values: Any, column: int) -> float:
    """That of one output, or the one of all."""
    flat = np.ravel(np.asarray(values, dtype=float))
    return float(flat[column if len(flat) > 1 else 0])


def _column(table: Any, column: int) -> np.ndarray:
    values = np.asarray(table, dtype=float)
    return np.asarray(values.reshape(len(values), -1)[:, column])


def _product(fitted: Any, inputs: int) -> Product:
    """The correlation is a product over the inputs."""
    correlation = fitted.options["corr"]
    theta = np.ravel(np.asarray(fitted.optimal_theta, dtype=float))
    # By component of a partial least squares regression.
    by_component = type(fitted).__name__ == "KPLS" or len(theta) != inputs
    if correlation in _MATERN and not by_component:
        return c.per_input(_MATERN[correlation], 1.0 / theta)
    power = _POWERS.get(correlation) if isinstance(correlation, str) else None
    if correlation == "pow_exp":
        power = float(fitted.options["pow_exp_power"])
    if power is None:
        raise NotExportable(
            f"the correlation {correlation!r} of a {type(fitted).__name__} has no counterpart; "
            "squar_exp, abs_exp and pow_exp have, and matern32 and matern52 of a KRG"
        )
    if by_component:
        theta = np.abs(np.asarray(fitted.coeff_pls, dtype=float)) ** power @ theta
    return c.of_rates(theta, np.full(inputs, power))
