"""scikit-learn's kernels of Gaussian processes as covariances, and what uses them."""

from typing import Any, Dict, List

import numpy as np

from . import _covariance as c
from ._covariance import Covariance, Factor
from ._monomials import Term
from ._options import Options
from ._process import ProcessSurface, posterior
from ._surface import NotExportable, Surface, identity


def covariance(kernel: Any, inputs: int) -> Covariance:
    """Of a kernel with the parameters of a fit."""
    from sklearn.gaussian_process import kernels as k

    if isinstance(kernel, k.Sum):
        return covariance(kernel.k1, inputs).plus(covariance(kernel.k2, inputs))
    if isinstance(kernel, k.Product):
        return covariance(kernel.k1, inputs).times(covariance(kernel.k2, inputs))
    if isinstance(kernel, k.Exponentiation):
        return covariance(kernel.kernel, inputs).to_the(float(kernel.exponent))
    if isinstance(kernel, k.ConstantKernel):
        return Covariance.constant(kernel.constant_value)
    if isinstance(kernel, k.WhiteKernel):
        return Covariance(noise=float(kernel.noise_level))
    if isinstance(kernel, k.DotProduct):
        # The variances of a constant and of a slope for each input.
        return Covariance(priors=_positive({(): kernel.sigma_0**2, **_slopes(inputs)}))
    if isinstance(kernel, k.RationalQuadratic):
        lengths = (float(kernel.length_scale),) * inputs
        return Covariance.of((Factor(c.RATIONAL, lengths, float(kernel.alpha)),))
    if isinstance(kernel, k.RBF):  # Matern derives from it
        nu = getattr(kernel, "nu", np.inf)
        if nu not in c.MATERN:
            raise NotExportable(
                f"a Matern kernel with nu={nu:g} has no counterpart; nu=0.5, 1.5, 2.5 and inf have"
            )
        lengths = np.broadcast_to(np.asarray(kernel.length_scale, dtype=float), inputs)
        return Covariance.of((Factor(c.MATERN[nu], tuple(map(float, lengths))),))
    if isinstance(kernel, k.PairwiseKernel):
        return _pairwise(kernel, inputs)
    raise NotExportable(
        f"the kernel {type(kernel).__name__} has no counterpart; the exporter accepts RBF, Matern, "
        "RationalQuadratic, ConstantKernel, WhiteKernel and DotProduct, their sums, products and "
        "powers"
    )


def _slopes(inputs: int) -> Dict[Term, float]:
    return {(i,): 1.0 for i in range(inputs)}


def _positive(priors: Dict[Term, float]) -> Dict[Term, float]:
    return {term: float(prior) for term, prior in priors.items() if prior > 0.0}


def _pairwise(kernel: Any, inputs: int) -> Covariance:
    gamma = float(kernel.gamma)
    if kernel.metric == "rbf":
        return Covariance.of((Factor(c.GAUSSIAN, (float(np.sqrt(0.5 / gamma)),) * inputs),))
    if kernel.metric == "laplacian":
        return Covariance.of(c.per_input(c.MATERN12, [1.0 / gamma] * inputs))
    if kernel.metric == "linear":
        return Covariance(priors=_slopes(inputs))
    raise NotExportable(
        f"a PairwiseKernel of the metric {kernel.metric!r} has no counterpart; rbf, laplacian and "
        "linear have"
    )


def is_one(kernel: Any) -> bool:
    """Whether a support vector machine or a ridge takes its kernel from here."""
    from sklearn.gaussian_process.kernels import Kernel

    return isinstance(kernel, Kernel)


def _weighted(kernel: Any, X: np.ndarray, weights: np.ndarray, bias: float) -> ProcessSurface:
    """A bias and a weighted sum of kernels."""
    of = covariance(kernel, X.shape[1])
    of.noise = 0.0  # of no effect between points
    trend = posterior(of, X, weights)
    if bias or trend:
        trend[()] = trend.get((), 0.0) + bias
    return ProcessSurface(
        *identity(X.shape[1]), samples=X, covariance=of, weights=weights, trend=trend
    )


def vectors(fitted: Any, options: Options) -> List[Surface]:
    """SVR and NuSVR. They keep all samples, and which of them are support vectors."""
    X = np.asarray(fitted._BaseLibSVM__Xfit, dtype=float)[fitted.support_]
    weights = np.asarray(fitted.dual_coef_, dtype=float).ravel()
    surface = _weighted(fitted.kernel, X, weights, float(fitted.intercept_[0]))
    surface.rows, surface.sample_count = fitted.support_, int(fitted.shape_fit_[0])
    return [surface]


def ridge(fitted: Any, options: Options) -> List[Surface]:
    """KernelRidge: one surface per output, without a bias."""
    X = np.asarray(fitted.X_fit_, dtype=float)
    duals = np.asarray(fitted.dual_coef_, dtype=float).reshape(len(X), -1)
    return [_weighted(fitted.kernel, X, column, 0.0) for column in duals.T]
