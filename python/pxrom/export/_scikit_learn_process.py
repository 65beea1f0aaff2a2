"""scikit-learn's Gaussian processes, as Kriging surfaces where one holds them.

The posterior mean is a sum of kernels with the coefficients ``alpha_``. A Kriging surface has one
product of correlations of one input each, and no noise but that of a measurement. All other kernels
become a process.
"""

from functools import cache, partial
from typing import Any, List, NamedTuple, Optional

import numpy as np

from . import _covariance, _process
from ._covariance import Covariance
from ._options import Options
from ._process import ProcessSurface
from ._scikit_learn_covariance import covariance
from ._surface import KrigingErrorData, KrigingSurface, NotExportable, Surface, identity

_GAUSSIAN, _EXPONENTIAL, _MATERN52 = 2, 1, 8


class _Correlation(NamedTuple):
    """``kind``: E_KringingCorrelationFunctionType."""

    kind: int
    kernels: np.ndarray


def _correlation(of: Covariance, widths: np.ndarray) -> Optional[_Correlation]:
    """That of a Kriging surface with the same value and error, if there is one. ``widths``: the
    range of the samples by input, to recognise a length without effect."""
    if len(of.terms) != 1 or () in of.terms or of.priors:
        return None
    (product,) = of.terms
    functions = {factor.function for factor in product}
    if len(functions) != 1:
        return None
    inverses = np.array([1.0 / np.array(factor.lengths) for factor in product])
    if functions == {_covariance.GAUSSIAN}:
        return _Correlation(_GAUSSIAN, (0.5 * inverses**2).sum(axis=0))
    inverses[inverses * widths < 1e-9] = 0.0
    takes = np.count_nonzero(inverses, axis=1)
    if functions == {_covariance.MATERN12} and takes.max() <= 1:
        return _Correlation(_EXPONENTIAL, inverses.sum(axis=0))
    shared = np.count_nonzero(inverses, axis=0).max() > 1
    if functions == {_covariance.MATERN52} and takes.max() <= 1 and not shared:
        return _Correlation(_MATERN52, inverses.sum(axis=0))
    return None


def convert(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output."""
    if not hasattr(fitted, "alpha_"):
        raise NotExportable("the GaussianProcessRegressor is not fitted; call fit first")
    X = np.asarray(fitted.X_train_, dtype=float)
    of = covariance(fitted.kernel_, X.shape[1])
    correlation = _correlation(of, np.maximum(np.ptp(X, axis=0), 1e-300))
    alphas = fitted.alpha_.reshape(len(X), -1)
    means = np.broadcast_to(np.ravel(fitted._y_train_mean), alphas.shape[1])
    scales = np.broadcast_to(np.ravel(fitted._y_train_std), alphas.shape[1])
    targets = np.asarray(fitted.y_train_, dtype=float).reshape(len(X), -1)
    kriging_error = cache(partial(_kriging_error, fitted, of))
    # The tool's deviation at a new point has the white noise of the kernel, but not alpha.
    noise = of.noise + np.asarray(fitted.alpha, dtype=float)
    process_error = cache(partial(_process.process_error, of, X, noise, np.asarray(fitted.L_)))
    made: List[Surface] = []
    for column, alpha in enumerate(alphas.T):
        surface: Surface
        if correlation is not None:
            surface = KrigingSurface(
                *identity(X.shape[1]),
                correlation=correlation.kind,
                coefficients=of.variance * alpha,
                kernels=correlation.kernels,
                make_error=kriging_error,
            )
        else:
            surface = ProcessSurface(
                *identity(X.shape[1]),
                covariance=of,
                weights=alpha,
                trend=_process.posterior(of, X, alpha),
                make_error=process_error,
            )
        surface.samples, surface.outputs = X, targets[:, column]
        surface.scale, surface.shift = float(scales[column]), float(means[column])
        surface.predict_error = _Deviation(fitted, column)
        made.append(surface)
    return made


def _kriging_error(fitted: Any, of: Covariance) -> KrigingErrorData:
    samples = len(fitted.L_)
    # The noise belongs to the variance of a prediction, but not to its covariance with samples.
    variance = of.variance + of.noise
    inverse = _process.inverse_of(fitted.L_)
    return KrigingErrorData(
        variance=variance,
        inv_c=inverse * (of.variance / np.sqrt(variance)),
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
