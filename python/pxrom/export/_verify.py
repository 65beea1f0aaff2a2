"""Checks that an export predicts the same as the tool."""

import warnings
from typing import Callable, List, Optional, Tuple

import numpy as np

from .. import _core
from ._surface import EnsembleScale, NotExportable, Surface

# Beyond this part of an output's range a difference is no longer one of digits.
_MEANINGLESS = 1e-3


def check_points(
    X: Optional[np.ndarray], inputs: int, bounds: Optional[np.ndarray] = None
) -> np.ndarray:
    """Up to 100 samples, and 100 points in and a little beyond their box."""
    draw = np.random.default_rng(20240229)
    if bounds is None:
        if X is not None and len(X) > 0:
            bounds = np.array([X.min(axis=0), X.max(axis=0)])
        else:
            bounds = np.array([np.full(inputs, -1.0), np.full(inputs, 1.0)])
    width = bounds[1] - bounds[0]
    between = bounds[0] + width * draw.uniform(-0.1, 1.1, (100, inputs))
    # Logarithms and roots must not leave their domain.
    between = np.clip(between, np.where(bounds[0] > 0, bounds[0], -np.inf), np.inf)
    if X is None:
        return between
    samples = X if len(X) <= 100 else X[draw.choice(len(X), 100, replace=False)]
    return np.vstack([samples, between])


def verify(surface: Surface, points: np.ndarray, tolerance: float, error_tolerance: float) -> None:
    """Raises NotExportable unless the surface's record predicts the same as its tool."""
    assert surface.predict is not None
    study = _core.Study()
    names = [f"x{i}" for i in range(surface.inputs)]
    for name in names:
        study.add_parameter(name, True, 0, "", "", 0.0, 0.0)
    study.add_parameter("y", False, 0, "", "", 0.0, 0.0)
    ensemble = EnsembleScale.identity(surface.inputs)
    candidate = _core.Candidate()
    candidate.add_surface(surface.record(ensemble), 1.0)
    candidate.set_scaling(ensemble.slopes.tolist(), ensemble.intercepts.tolist(), 1.0, 0.0)
    study.add_combination([], [("y", candidate)])
    with_error = surface.predict_error is not None
    values, errors = predicted(study, [], points, with_error)
    expected = np.asarray(surface.predict(points), float).reshape(-1)
    compare(values, expected, tolerance, lambda: surface.rounding(points))
    if with_error:
        assert surface.predict_error is not None and errors is not None
        expected = np.asarray(surface.predict_error(points), float).reshape(-1)
        allowed = max(error_tolerance, surface.error_accuracy)
        scale = surface.error_scale
        compare_errors(errors, expected, scale, allowed, lambda: surface.error_rounding(points))


def predicted(
    study: _core.Study, at: List[Tuple[str, int]], points: np.ndarray, with_error: bool
) -> Tuple[np.ndarray, Optional[np.ndarray]]:
    """Values and errors of the only output. The text of a study reads as the study itself, or is
    refused, so large texts need not be written and read to compare them."""
    prepared = study.model().prepare(at, None, None)
    table = np.ascontiguousarray(points, dtype=float)
    if not with_error:
        return prepared.evaluate(table, False, 1)[0][:, 0], None
    values, errors = prepared.evaluate_with_errors(table, False, 1)[:2]
    return values[:, 0], errors[:, 0]


def compare(
    got: np.ndarray,
    expected: np.ndarray,
    tolerance: float,
    rounding: Callable[[], np.ndarray],
    what: str = "",
) -> None:
    """Compares values, relative to the range of the expected ones; a range that is tiny compared
    with their magnitude counts as 1e-4 of it. A difference beyond the tolerance that ``rounding()``
    explains is accepted with a warning: the tool doesn't reproduce its own digits there."""
    if not np.all(np.isfinite(expected)):
        raise NotExportable(
            f"the tool itself does not predict a finite number at every sample{what}"
        )
    spread = max(float(np.ptp(expected)), 1e-4 * float(np.abs(expected).max())) or 1.0
    away = np.abs(got - expected) / spread
    worst = float(away.max())
    if worst <= tolerance:
        return
    rounded = rounding() / spread
    explained = float(rounded.max())
    if not np.all(away <= tolerance + rounded):
        raise NotExportable(
            f"the exported surface differs from the tool's own prediction by {worst:.1e} of the "
            f"output's range{what}; {tolerance:.0e} is allowed (tolerance=), and rounding explains "
            f"{explained:.1e}: the tool computes something else than its parameters say"
        )
    if worst > _MEANINGLESS:
        raise NotExportable(
            f"the exported surface differs from the tool's own prediction by {worst:.1e} of the "
            f"output's range{what}, since large coefficients cancel and leave few digits; a little "
            "noise in the fit (alpha=, a nugget, smoothing) makes it sound"
        )
    warnings.warn(
        f"the export agrees with the tool to {worst:.1e} of the output's range{what}, and the fit "
        f"itself is only defined to {explained:.1e}, since its large coefficients cancel; a little "
        "noise in the fit (alpha=, a nugget) makes it sound",
        stacklevel=2,
    )


def compare_errors(
    got: np.ndarray,
    expected: np.ndarray,
    scale: Optional[float],
    tolerance: float,
    rounding: Callable[[], np.ndarray],
) -> None:
    """Compares the squares of predicted errors, since a root near 0 has few good digits.
    ``rounding()`` is that of the squares."""
    scale = scale or float((expected**2).max()) or 1.0
    away = np.abs(got**2 - expected**2) / scale
    worst = float(away.max())
    if worst <= tolerance:
        return
    if not np.all(away <= tolerance + rounding() / scale):
        raise NotExportable(
            f"the exported predicted error differs from the tool's own: by {worst:.1e} of the "
            f"variance, and {tolerance:.0e} is allowed (error_tolerance=); error=False leaves it "
            "out"
        )
