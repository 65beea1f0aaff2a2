"""scikit-learn's SVR, NuSVR and KernelRidge as support vector surfaces: a bias plus a weighted sum
of kernels between the point and the samples.

A polynomial kernel of a degree above 2, or without a positive constant, is written out in
monomials.

A dot product of the library has the factor 1 and the constant 1, so that a factor g and a constant
c go into a scale of the inputs, z = sqrt(g / c) x, and into the multipliers.
"""

from itertools import combinations_with_replacement
from math import comb, factorial
from typing import Any, Dict, List, NamedTuple

import numpy as np

from . import _scikit_learn_covariance
from ._features import MOST_TERMS
from ._monomials import Term
from ._options import Options
from ._regression_surface import RegressionSurface
from ._rounding import STEPS, UNIT
from ._surface import NotExportable, Surface, SupportVectorSurface

_LINEAR, _QUADRATIC, _GAUSSIAN, _SIGMOID, _EXPONENTIAL = 0, 1, 2, 3, 5


class _Mapped(NamedTuple):
    """kernel(x, y) = factor k(scale x, scale y) + constant."""

    kind: int
    width: float = 1.0
    scale: float = 1.0
    factor: float = 1.0
    constant: float = 0.0


def _require_name(kernel: Any) -> None:
    if callable(kernel) or kernel == "precomputed":
        kind = (
            "kernel that is a function of one's own" if callable(kernel) else "precomputed kernel"
        )
        raise NotExportable(
            f"a {kind} has no counterpart; fit with kernel='rbf', kernel='linear', or "
            "kernel='poly'"
        )


def _mapped(name: Any, gamma: float, coef0: float, degree: float, inputs: int) -> _Mapped:
    if name == "rbf":
        return _Mapped(_GAUSSIAN, width=gamma)
    if name == "laplacian":
        return _Mapped(_EXPONENTIAL, width=gamma)
    if name == "linear":
        return _Mapped(_LINEAR, constant=-1.0)
    if name in ("poly", "polynomial") and degree == 1:
        return _Mapped(_LINEAR, factor=gamma, constant=coef0 - gamma)
    if name in ("poly", "polynomial") and degree == 2:
        return _Mapped(_QUADRATIC, scale=float(np.sqrt(gamma / coef0)), factor=coef0**2)
    if name in ("poly", "polynomial"):
        raise NotExportable(
            f"a polynomial kernel of the degree {degree:g} has no counterpart; take a whole number "
            "above 0"
        )
    if name == "sigmoid":
        if abs(coef0 + np.e) > 1e-12:
            raise NotExportable(
                f"the kernel tanh(gamma x y + coef0) with coef0={coef0:g} has no counterpart: the "
                "library's is tanh((e / d) x y - e), so coef0 has to be -e"
            )
        return _Mapped(_SIGMOID, scale=float(np.sqrt(gamma * inputs / np.e)))
    raise NotExportable(
        f"the kernel {name!r} has no counterpart; the exporter accepts rbf, laplacian, linear, "
        "polynomial, and sigmoid with coef0=-e"
    )


def _surface(
    mapped: _Mapped, X: np.ndarray, multipliers: np.ndarray, bias: float
) -> SupportVectorSurface:
    scale = np.full(X.shape[1], mapped.scale)
    return SupportVectorSurface(
        scale,
        np.zeros(X.shape[1]),
        samples=X * scale,
        kernel=mapped.kind,
        width=mapped.width,
        multipliers=mapped.factor * multipliers,
        bias=bias + mapped.constant * float(multipliers.sum()),
    )


def _needs_monomials(name: Any, coef0: float, degree: float) -> bool:
    if name not in ("poly", "polynomial") or degree != int(degree) or degree < 2:
        return False
    return degree > 2 or coef0 <= 0.0


def _monomial_surface(
    X: np.ndarray,
    multipliers: np.ndarray,
    bias: float,
    gamma: float,
    coef0: float,
    degree: int,
) -> RegressionSurface:
    """The sum of multipliers (gamma x y + coef0)^degree over the rows y of ``X``, by the
    multinomial theorem."""
    inputs = X.shape[1]
    count = comb(inputs + degree, degree)
    if count > MOST_TERMS:
        raise NotExportable(
            f"a polynomial kernel of the degree {degree} in {inputs} inputs has {count} monomials, "
            f"and the exporter writes out {MOST_TERMS}; use a lower degree or fewer inputs"
        )
    terms: Dict[Term, float] = {}
    for order in range(degree + 1):
        factor = gamma**order * coef0 ** (degree - order) / factorial(degree - order)
        if factor == 0.0:
            continue
        for term in combinations_with_replacement(range(inputs), order):
            ways = factorial(degree)
            for i in set(term):
                ways //= factorial(term.count(i))
            terms[term] = float(ways * factor * (multipliers @ np.prod(X[:, term], axis=1)))
    terms[()] = terms.get((), 0.0) + bias
    surface = RegressionSurface(np.ones(inputs), np.zeros(inputs), samples=X, terms=terms)
    # The tool's sum has larger terms, over all multipliers.
    reach = gamma * (X**2).sum(axis=1).max() + abs(coef0)
    surface.off = float((STEPS + len(X)) * UNIT * np.abs(multipliers).sum() * reach**degree)
    return surface


def vectors(fitted: Any, options: Options) -> List[Surface]:
    """SVR and NuSVR."""
    if not hasattr(fitted, "dual_coef_"):
        raise NotExportable(f"the {type(fitted).__name__} is not fitted; call fit first")
    if _scikit_learn_covariance.is_one(fitted.kernel):
        return _scikit_learn_covariance.vectors(fitted, options)
    _require_name(fitted.kernel)
    X = fitted.support_vectors_
    X = np.asarray(X.todense() if hasattr(X, "todense") else X, dtype=float)
    duals = fitted.dual_coef_
    duals = np.asarray(duals.todense() if hasattr(duals, "todense") else duals, dtype=float)
    if len(X) == 0:
        raise NotExportable("the fit has no support vector: it is a constant")
    bias = float(fitted.intercept_[0])
    if _needs_monomials(fitted.kernel, fitted.coef0, fitted.degree):
        expanded = _monomial_surface(
            X, duals.ravel(), bias, fitted._gamma, fitted.coef0, int(fitted.degree)
        )
        expanded.rows, expanded.sample_count = fitted.support_, int(fitted.shape_fit_[0])
        return [expanded]
    mapped = _mapped(fitted.kernel, fitted._gamma, fitted.coef0, fitted.degree, X.shape[1])
    surface = _surface(mapped, X, duals.ravel(), bias)
    surface.rows, surface.sample_count = fitted.support_, int(fitted.shape_fit_[0])
    for name in ("epsilon", "nu", "C"):
        value = getattr(fitted, name, None)
        if isinstance(value, (int, float)):
            surface.settings[name] = float(value)
    if type(fitted).__name__ == "NuSVR":
        surface.settings.pop("epsilon", None)
    else:
        surface.settings.pop("nu", None)
    return [surface]


def ridge(fitted: Any, options: Options) -> List[Surface]:
    """KernelRidge: one surface per output, without a bias."""
    if not hasattr(fitted, "dual_coef_"):
        raise NotExportable("the KernelRidge is not fitted; call fit first")
    if _scikit_learn_covariance.is_one(fitted.kernel):
        return _scikit_learn_covariance.ridge(fitted, options)
    _require_name(fitted.kernel)
    X = fitted.X_fit_
    X = np.asarray(X.todense() if hasattr(X, "todense") else X, dtype=float)
    gamma = 1.0 / X.shape[1] if fitted.gamma is None else float(fitted.gamma)
    duals = np.asarray(fitted.dual_coef_, dtype=float).reshape(len(X), -1)
    made: List[Surface] = []
    if _needs_monomials(fitted.kernel, fitted.coef0, fitted.degree):
        for column in duals.T:
            degree = int(fitted.degree)
            made.append(_monomial_surface(X, column, 0.0, gamma, float(fitted.coef0), degree))
        return made
    mapped = _mapped(fitted.kernel, gamma, fitted.coef0, fitted.degree, X.shape[1])
    for column in duals.T:
        surface = _surface(mapped, X, column, 0.0)
        surface.by_products = True
        made.append(surface)
    return made
