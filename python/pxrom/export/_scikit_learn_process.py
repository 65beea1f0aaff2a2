"""scikit-learn's Gaussian processes as Kriging surfaces.

The posterior mean is a sum of kernels with the coefficients ``alpha_``: a Kriging surface without a
trend. A kernel has to reduce to one correlation times a constant, plus white noise, plus constants.
"""

from dataclasses import dataclass, field
from typing import Any, List, Optional

import numpy as np

from ._options import Options
from ._rounding import UNIT
from ._surface import KrigingErrorData, KrigingSurface, NotExportable, Surface, identity

_GAUSSIAN, _EXPONENTIAL, _MATERN52 = 2, 1, 8


@dataclass
class _Correlation:
    kind: int
    kernels: np.ndarray
    factor: float = 1.0

    def times(self, other: "_Correlation") -> "_Correlation":
        if self.kind != other.kind:
            raise NotExportable("a product of correlations of different kinds has no counterpart")
        if self.kind == _MATERN52 and np.any((self.kernels > 0) & (other.kernels > 0)):
            raise NotExportable("a product of two Matern kernels of one input has no counterpart")
        return _Correlation(self.kind, self.kernels + other.kernels, self.factor * other.factor)


@dataclass
class _Parts:
    """A sum: constants, white noise, correlations."""

    constant: float = 0.0
    noise: float = 0.0
    correlations: List[_Correlation] = field(default_factory=list)

    def plus(self, other: "_Parts") -> "_Parts":
        return _Parts(
            self.constant + other.constant,
            self.noise + other.noise,
            self.correlations + other.correlations,
        )

    def times(self, other: "_Parts") -> "_Parts":
        made = _Parts(self.constant * other.constant)
        # White noise is 0 between points and a constant where they are the same.
        made.noise = (
            self.noise * other._at_zero() + other.noise * self._at_zero() - self.noise * other.noise
        )
        for a, b in ((self, other), (other, self)):
            if a.constant != 0.0:
                for one in b.correlations:
                    made.correlations.append(
                        _Correlation(one.kind, one.kernels, a.constant * one.factor)
                    )
        made.correlations += [a.times(b) for a in self.correlations for b in other.correlations]
        return made

    def _at_zero(self) -> float:
        return self.constant + self.noise + sum(one.factor for one in self.correlations)


def _parts(kernel: Any, widths: np.ndarray) -> _Parts:
    """``widths``: the range of the samples by input, to recognise a length scale without effect."""
    from sklearn.gaussian_process import kernels as k

    if isinstance(kernel, k.Sum):
        return _parts(kernel.k1, widths).plus(_parts(kernel.k2, widths))
    if isinstance(kernel, k.Product):
        return _parts(kernel.k1, widths).times(_parts(kernel.k2, widths))
    if isinstance(kernel, k.ConstantKernel):
        return _Parts(constant=float(kernel.constant_value))
    if isinstance(kernel, k.WhiteKernel):
        return _Parts(noise=float(kernel.noise_level))
    if isinstance(kernel, k.RBF):  # Matern derives from it
        return _Parts(correlations=[_stationary(kernel, widths)])
    raise NotExportable(
        f"the kernel {type(kernel).__name__} has no counterpart; the exporter accepts RBF, Matern "
        "with nu=2.5 of one input each, ConstantKernel and WhiteKernel"
    )


def _stationary(kernel: Any, widths: np.ndarray) -> _Correlation:
    inverse = 1.0 / np.broadcast_to(np.asarray(kernel.length_scale, dtype=float), widths.shape)
    nu = getattr(kernel, "nu", np.inf)
    if nu == np.inf:
        return _Correlation(_GAUSSIAN, 0.5 * inverse**2)
    if nu not in (0.5, 2.5):
        raise NotExportable(f"a Matern kernel with nu={nu:g} has no counterpart; nu=2.5 has one")
    inverse = np.where(inverse * widths < 1e-9, 0.0, inverse)
    if np.count_nonzero(inverse) > 1:
        # The tool's own optimizer refuses infinite bounds.
        far = f"1e{int(np.ceil(np.log10(widths.max()))) + 10}"
        raise NotExportable(
            f"a Matern kernel with nu={nu:g} takes the distance over all inputs, and the library "
            "multiplies one factor per input: fit a product of Matern kernels of one input each, "
            "in which a fixed, huge length takes the others out, for two inputs "
            f"Matern([1, {far}], [(0.01, 100), ({far}, {far})], nu=2.5) * "
            f"Matern([{far}, 1], [({far}, {far}), (0.01, 100)], nu=2.5)"
        )
    return _Correlation(_MATERN52 if nu == 2.5 else _EXPONENTIAL, inverse)


def convert(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output."""
    if not hasattr(fitted, "alpha_"):
        raise NotExportable("the GaussianProcessRegressor is not fitted; call fit first")
    X = np.asarray(fitted.X_train_, dtype=float)
    parts = _parts(fitted.kernel_, np.maximum(np.ptp(X, axis=0), 1e-300))
    if len(parts.correlations) != 1:
        raise NotExportable(
            f"the kernel {fitted.kernel_} has {len(parts.correlations)} correlations in its sum; "
            "a Kriging surface has one"
        )
    correlation = parts.correlations[0]
    alphas = fitted.alpha_.reshape(len(X), -1)
    means = np.broadcast_to(np.ravel(fitted._y_train_mean), alphas.shape[1])
    scales = np.broadcast_to(np.ravel(fitted._y_train_std), alphas.shape[1])
    targets = np.asarray(fitted.y_train_, dtype=float).reshape(len(X), -1)
    error_data = _error_data(fitted, parts, len(X))
    made: List[Surface] = []
    for column, alpha in enumerate(alphas.T):
        surface = KrigingSurface(
            *identity(X.shape[1]),
            scale=float(scales[column]),
            shift=float(means[column]),
            samples=X,
            outputs=targets[:, column],
            trend_coefficients=(parts.constant * float(alpha.sum()),),
            correlation=correlation.kind,
            coefficients=correlation.factor * alpha,
            kernels=correlation.kernels,
            error_data=error_data,
        )
        # The constant of the kernel makes a sum of coefficients that cancel.
        surface.off = len(alpha) * UNIT * abs(parts.constant) * float(np.abs(alpha).sum())
        surface.predict_error = _Deviation(fitted, column)
        if error_data is None:
            surface.drop_error("a constant added to the kernel has no place in the error's data")
        made.append(surface)
    return made


def _error_data(fitted: Any, parts: _Parts, samples: int) -> Optional[KrigingErrorData]:
    if parts.constant != 0.0:
        return None
    from scipy.linalg import solve_triangular

    factor = parts.correlations[0].factor
    # The noise belongs to the variance of a prediction, but not to its covariance with samples.
    variance = factor + parts.noise
    inverse = solve_triangular(fitted.L_, np.eye(samples), lower=True)
    return KrigingErrorData(
        variance=variance,
        inv_c=inverse * (factor / np.sqrt(variance)),
        inv_g=np.zeros((1, 1)),
        ft=np.zeros((1, samples)),
    )


class _Deviation:
    """The standard deviation of one output."""

    def __init__(self, fitted: Any, column: int) -> None:
        self._fitted = fitted
        self._column = column

    def __call__(self, X: np.ndarray) -> np.ndarray:
        import warnings

        with warnings.catch_warnings():
            # At a sample a variance may come out a little below 0, and count as 0; or the
            # estimator, fitted with names, misses them.
            warnings.simplefilter("ignore")
            _, deviation = self._fitted.predict(X, return_std=True)
        return np.asarray(deviation).reshape(len(X), -1)[:, self._column]
