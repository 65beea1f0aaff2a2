"""What was exported must predict what the tool predicts."""

from typing import Optional

import numpy as np

from .. import _core
from .._model import Model
from ._surface import EnsembleScale, NotExportable, Surface


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
    between = bounds[0] + width * draw.uniform(-0.05, 1.05, (100, inputs))
    # Logarithms and roots are not to leave their domain.
    between = np.clip(between, np.where(bounds[0] > 0, bounds[0], -np.inf), np.inf)
    if X is None:
        return between
    samples = X if len(X) <= 100 else X[draw.choice(len(X), 100, replace=False)]
    return np.vstack([samples, between])


def verify(surface: Surface, points: np.ndarray, tolerance: float, error_tolerance: float) -> None:
    """Raises NotExportable unless the surface's record answers as its tool does."""
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
    answer = Model(study.to_text()).predict(None, points, return_error=with_error)
    compare(answer.values["y"], np.asarray(surface.predict(points), float).reshape(-1), tolerance)
    if with_error:
        assert surface.predict_error is not None and answer.errors is not None
        expected = np.asarray(surface.predict_error(points), float).reshape(-1)
        allowed = max(error_tolerance, surface.error_accuracy)
        compare_errors(answer.errors["y"], expected, surface.error_scale, allowed)


def compare(got: np.ndarray, expected: np.ndarray, tolerance: float, what: str = "") -> None:
    """Values, relative to the range of the expected ones. A range that is tiny beside their
    magnitude asks for more digits than a double has, and counts as 1e-4 of that."""
    if not np.all(np.isfinite(expected)):
        raise NotExportable(f"the tool itself predicts no finite number at every sample{what}")
    spread = max(float(np.ptp(expected)), 1e-4 * float(np.abs(expected).max())) or 1.0
    worst = float(np.abs(got - expected).max()) / spread
    if not worst <= tolerance:
        raise NotExportable(
            f"the exported surface differs from the tool's own prediction by {worst:.1e} of the "
            f"output's range{what}, and {tolerance:.0e} is allowed (tolerance=): either the tool "
            "computes something else than its parameters say, or large coefficients cancel"
        )


def compare_errors(
    got: np.ndarray, expected: np.ndarray, scale: Optional[float], tolerance: float
) -> None:
    """Predicted errors by their squares, since a root near 0 has few good digits."""
    scale = scale or float((expected**2).max()) or 1.0
    worst = float(np.abs(got**2 - expected**2).max()) / scale
    if not worst <= tolerance:
        raise NotExportable(
            f"the exported predicted error differs from the tool's own: by {worst:.1e} of the "
            f"variance, and {tolerance:.0e} is allowed (error_tolerance=); error=False leaves it "
            "out"
        )
