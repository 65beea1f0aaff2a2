"""From a fitted object to checked surfaces."""

import importlib
from typing import Any, List, Optional, Tuple

import numpy as np

from ._given import require_samples_of
from ._options import Options
from ._surface import NotExportable, Predict, Surface
from ._verify import check_points, verify

# The exporter by the package that an object's class comes from.
_EXPORTERS = {
    "sklearn": "scikit_learn",
    "openturns": "openturns",
    "scipy": "scipy_rbf",
    "statsmodels": "statsmodels",
    "smt": "smt",
    "GPy": "gpy",
    "pyKriging": "pykriging",
}


def convert(
    fitted: Any,
    options: Options,
    error: Any,
    tolerance: float,
    error_tolerance: float,
    bounds: Optional[np.ndarray] = None,
) -> List[Surface]:
    """One surface per output of ``fitted``, which predicts the same as the tool.

    ``error``: "auto" exports a predicted error if there is one that maps, True requires it, False
    leaves it out. ``bounds`` (2, d): where to check if the samples aren't known.
    """
    if error not in ("auto", True, False):
        raise ValueError(f"error has to be 'auto', True or False, not {error!r}")
    surfaces = _exporter(fitted).surfaces(fitted, options)
    for surface in surfaces:
        if error is False:
            surface.drop_error("it was not asked for")
        elif error is True and surface.predict_error is None:
            raise NotExportable(f"there is no predicted error to export: {surface.no_error}")
        if options.X is not None and options.X.shape[1] != surface.inputs:
            raise NotExportable(
                f"X has {options.X.shape[1]} columns, but the fit has {surface.inputs} inputs"
            )
    if options.are_given:
        require_samples_of(fitted, surfaces, options)
    for column, surface in enumerate(surfaces):
        if options.y is not None and surface.outputs is None:
            surface.targets = (
                options.y[:, column] if surface.rows is None else (options.y[surface.rows, column])
            )
        samples = options.X if options.X is not None else surface.physical_samples()
        points = check_points(samples, surface.inputs, bounds)
        if samples is None and bounds is None:
            _require_prediction(surface, points)
        verify(surface, points, tolerance, error_tolerance)
    return surfaces


def unchecked(fitted: Any) -> List[Surface]:
    """The surfaces of ``fitted`` before any comparison: to count its inputs and outputs."""
    return list(_exporter(fitted).surfaces(fitted, Options()))


def _require_prediction(surface: Surface, points: np.ndarray) -> None:
    assert surface.predict is not None
    try:
        is_finite = bool(np.all(np.isfinite(surface.predict(points))))
    except ValueError:
        is_finite = False
    if not is_finite:
        raise NotExportable(
            "the tool does not predict between -1 and 1, where an export without samples is "
            "checked: pass X, the samples of the fit"
        )


def parts_of(fitted: Any) -> Optional[Tuple[List[Tuple[Any, float]], Predict]]:
    """The members with their weights and the prediction of an object that averages others; None
    for any other."""
    if not type(fitted).__module__.startswith("sklearn."):
        return None
    from . import scikit_learn

    members = scikit_learn.parts(fitted)
    return None if members is None else (members, scikit_learn.Column(fitted, 0))


def _exporter(fitted: Any) -> Any:
    for kind in type(fitted).__mro__:
        module = _EXPORTERS.get(kind.__module__.split(".")[0])
        if module is not None:
            return importlib.import_module(f".{module}", __package__)
    raise NotExportable(
        f"a {type(fitted).__module__}.{type(fitted).__qualname__} is not from a known tool; "
        "the exporter accepts fitted objects of scikit-learn, OpenTURNS, scipy, statsmodels, SMT, "
        "GPy and pyKriging"
    )
