"""pyKriging: a trained ``kriging``, with the deviation that it predicts, in the output's unit.

Only attributes of the trained object are read, so that the package need not be installed: ``X``,
``y``, ``normRange``, ``ynormRange``, ``theta``, ``pl``, ``U``, ``mu`` and ``SigmaSqr``.
"""

from typing import Any, List

import numpy as np

from . import _covariance as c
from . import _process
from ._covariance import Covariance
from ._options import Options
from ._process import ProcessSurface
from ._surface import NotExportable, Surface


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """One surface."""
    name = type(fitted).__name__
    if name not in ("kriging", "regression_kriging"):
        raise NotExportable(
            f"a {name} of pyKriging has no counterpart; the exporter accepts kriging"
        )
    if getattr(fitted, "U", None) is None or getattr(fitted, "mu", None) is None:
        raise NotExportable(f"the {name} is not trained; call train first")
    X = np.asarray(fitted.X, dtype=float)
    y = np.asarray(fitted.y, dtype=float)
    n, inputs = X.shape
    lower, upper = np.array(fitted.normRange, dtype=float).T
    least, most = (float(bound) for bound in fitted.ynormRange)
    factor = np.asarray(fitted.U, dtype=float).T
    mean = float(np.ravel(fitted.mu)[0])
    variance = float(np.ravel(fitted.SigmaSqr)[0])
    rates = np.broadcast_to(np.asarray(fitted.theta, dtype=float), inputs)
    powers = np.broadcast_to(np.asarray(fitted.pl, dtype=float), inputs)
    solved = np.linalg.solve(factor.T, np.linalg.solve(factor, y - mean))
    surface = ProcessSurface(
        1.0 / (upper - lower),
        -lower / (upper - lower),
        scale=most - least,
        shift=least,
        samples=X,
        outputs=y,
        covariance=Covariance.of(c.of_rates(rates, powers), variance),
        weights=solved / variance,
        trend={(): mean},
        # It takes one point at a time, and its deviation is that of the scaled output.
        predict=lambda points: np.array([float(np.ravel(fitted.predict(x))[0]) for x in points]),
        predict_error=lambda points: (most - least)
        * np.array([float(np.ravel(fitted.predict_var(x))[0]) for x in points]),
    )
    surface.make_error = lambda: _process.error_data(np.sqrt(variance) * factor)
    return [surface]
