"""scikit-learn's SVR, NuSVR and KernelRidge as support vector surfaces: a bias plus a weighted sum
of kernels between the point and the samples.

A dot product of the library has the factor 1 and the constant 1, so that a factor g and a constant
c go into a scale of the inputs, z = sqrt(g / c) x, and into the multipliers.
"""

from typing import Any, List, NamedTuple

import numpy as np

from ._options import Options
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
            "kernel='poly' with degree=2"
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
        if coef0 <= 0.0:
            raise NotExportable(
                f"the kernel (gamma x y + coef0)^2 with coef0={coef0:g} has no counterpart: the "
                "library's is (1 + x y)^2, so that coef0 has to be above 0"
            )
        return _Mapped(_QUADRATIC, scale=float(np.sqrt(gamma / coef0)), factor=coef0**2)
    if name in ("poly", "polynomial"):
        raise NotExportable(
            f"a polynomial kernel of the degree {degree:g} has no counterpart; 2 has"
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
        "polynomial up to the degree 2, and sigmoid with coef0=-e"
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


def vectors(fitted: Any, options: Options) -> List[Surface]:
    """SVR and NuSVR."""
    if not hasattr(fitted, "dual_coef_"):
        raise NotExportable(f"the {type(fitted).__name__} is not fitted; call fit first")
    _require_name(fitted.kernel)
    X = fitted.support_vectors_
    X = np.asarray(X.todense() if hasattr(X, "todense") else X, dtype=float)
    duals = fitted.dual_coef_
    duals = np.asarray(duals.todense() if hasattr(duals, "todense") else duals, dtype=float)
    if len(X) == 0:
        raise NotExportable("the fit has no support vector: it is a constant")
    mapped = _mapped(fitted.kernel, fitted._gamma, fitted.coef0, fitted.degree, X.shape[1])
    surface = _surface(mapped, X, duals.ravel(), float(fitted.intercept_[0]))
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
    _require_name(fitted.kernel)
    X = fitted.X_fit_
    X = np.asarray(X.todense() if hasattr(X, "todense") else X, dtype=float)
    gamma = 1.0 / X.shape[1] if fitted.gamma is None else float(fitted.gamma)
    mapped = _mapped(fitted.kernel, gamma, fitted.coef0, fitted.degree, X.shape[1])
    duals = np.asarray(fitted.dual_coef_, dtype=float).reshape(len(X), -1)
    made: List[Surface] = []
    for column in duals.T:
        surface = _surface(mapped, X, column, 0.0)
        surface.by_products = True
        made.append(surface)
    return made
