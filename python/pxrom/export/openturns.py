"""OpenTURNS: Kriging results (:mod:`._openturns_kriging`), and results of functional chaos, linear
models and general linear models (:mod:`._openturns_polynomials`)."""

from typing import Any, List

from . import _openturns_kriging
from ._openturns_polynomials import chaos, linear_algorithms, linear_model, trends
from ._options import Options
from ._surface import NotExportable, Surface


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """A result, or an algorithm that has run."""
    import openturns as ot

    if isinstance(fitted, (ot.KrigingAlgorithm, ot.FunctionalChaosAlgorithm, *linear_algorithms())):
        fitted = fitted.getResult()
    if isinstance(fitted, ot.KrigingResult):
        return _openturns_kriging.surfaces(fitted)
    if isinstance(fitted, ot.FunctionalChaosResult):
        return chaos(fitted)
    if isinstance(fitted, ot.LinearModelResult):
        return linear_model(fitted)
    if isinstance(fitted, ot.GeneralLinearModelResult):
        return trends(fitted)
    raise NotExportable(
        f"a {type(fitted).__name__} has no counterpart; the exporter accepts KrigingResult, "
        "FunctionalChaosResult, LinearModelResult, GeneralLinearModelResult, and the algorithms "
        "that have run for them"
    )
