"""GPy: ``GPRegression``, with the deviation of a new measurement, which is what ``predict``
returns.

Only attributes of the fit are read, so that the package need not be installed: ``X``, ``Y``,
``kern``, ``likelihood``, ``posterior``, ``normalizer`` and ``mean_function``.
"""

from functools import cache, partial
from typing import Any, List

import numpy as np

from . import _covariance as c
from . import _process
from ._covariance import Covariance, Factor
from ._options import Options
from ._process import ProcessSurface
from ._surface import NotExportable, Surface, identity

_RADIAL = {
    "RBF": c.GAUSSIAN,
    "Exponential": c.MATERN12,
    "OU": c.MATERN12,
    "Matern32": c.MATERN32,
    "Matern52": c.MATERN52,
    "RatQuad": c.RATIONAL,
}


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface per output."""
    name = type(fitted).__name__
    likelihood = type(getattr(fitted, "likelihood", None)).__name__
    if name not in ("GPRegression", "GP") or likelihood != "Gaussian":
        raise NotExportable(
            f"a {name} of GPy has no counterpart; the exporter accepts GPRegression with a "
            "Gaussian likelihood"
        )
    if getattr(fitted, "mean_function", None) is not None:
        raise NotExportable(
            "a mean_function has no counterpart; fit the residuals, or add a Linear or a Bias "
            "kernel"
        )
    X = np.asarray(fitted.X, dtype=float)
    Y = np.asarray(fitted.Y, dtype=float)
    of = _covariance(fitted.kern, X.shape[1])
    of.noise += float(np.ravel(fitted.likelihood.variance)[0])
    weights = np.asarray(fitted.posterior.woodbury_vector, dtype=float).reshape(len(X), -1)
    scales, shifts = np.ones(Y.shape[1]), np.zeros(Y.shape[1])
    if getattr(fitted, "normalizer", None) is not None:
        scales = np.broadcast_to(np.ravel(fitted.normalizer.std), Y.shape[1])
        shifts = np.broadcast_to(np.ravel(fitted.normalizer.mean), Y.shape[1])
    lower = np.asarray(fitted.posterior.woodbury_chol, dtype=float)
    # The tool adds 1e-8 to the diagonal.
    make_error = cache(partial(_process.process_error, of, X, of.noise + 1e-8, lower))
    made: List[Surface] = []
    for column in range(Y.shape[1]):
        made.append(
            ProcessSurface(
                *identity(X.shape[1]),
                scale=float(scales[column]),
                shift=float(shifts[column]),
                samples=X,
                outputs=(Y[:, column] - shifts[column]) / scales[column],
                covariance=of,
                weights=weights[:, column],
                trend=_process.posterior(of, X, weights[:, column]),
                make_error=make_error,
                by_products=True,
                predict=_Prediction(fitted, column, False),
                predict_error=_Prediction(fitted, column, True),
            )
        )
    return made


class _Prediction:
    """The mean of one output, or its deviation."""

    def __init__(self, fitted: Any, column: int, deviation: bool) -> None:
        self._fitted = fitted
        self._column = column
        self._deviation = deviation

    def __call__(self, X: np.ndarray) -> np.ndarray:
        mean, variance = (np.asarray(part, dtype=float) for part in self._fitted.predict(X))
        if not self._deviation:
            return np.asarray(mean.reshape(len(X), -1)[:, self._column])
        columns = np.broadcast_to(variance.reshape(len(X), -1), mean.reshape(len(X), -1).shape)
        return np.sqrt(np.maximum(columns[:, self._column], 0.0))


def _covariance(kernel: Any, inputs: int) -> Covariance:
    name = type(kernel).__name__
    if name in ("Add", "Prod"):
        parts = [_covariance(part, inputs) for part in kernel.parts]
        made = parts[0]
        for part in parts[1:]:
            made = made.plus(part) if name == "Add" else made.times(part)
        return made
    taken = [int(i) for i in np.ravel(kernel.active_dims)]
    if name == "Linear":
        variances = np.broadcast_to(np.ravel(kernel.variances), len(taken))
        return Covariance(priors={(i,): float(v) for i, v in zip(taken, variances) if v > 0.0})
    variance = float(np.ravel(kernel.variance)[0])
    if name == "White":
        return Covariance(noise=variance)
    if name == "Bias":
        return Covariance.constant(variance)
    if name not in _RADIAL:
        raise NotExportable(
            f"the kernel {name} of GPy has no counterpart; the exporter accepts RBF, Exponential, "
            "Matern32, Matern52, RatQuad, Linear, Bias and White, their sums and products"
        )
    lengths = np.full(inputs, np.inf)
    lengths[taken] = np.broadcast_to(np.ravel(kernel.lengthscale), len(taken))
    power = 0.0
    if name == "RatQuad":  # (1 + r^2 / 2)^-power
        power = float(np.ravel(kernel.power)[0])
        lengths = lengths / np.sqrt(power)
    return Covariance.of((Factor(_RADIAL[name], tuple(map(float, lengths)), power),), variance)
