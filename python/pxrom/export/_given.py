"""Compares the samples of a caller with the fit itself."""

import warnings
from typing import Any, List, Optional

import numpy as np

from ._options import Options
from ._surface import NotExportable, Surface

_ADVICE = "pass the samples of the fit in its order, or leave X and y out"


def require_samples_of(fitted: Any, surfaces: List[Surface], options: Options) -> None:
    """Refuses ``X`` and ``y`` that are not what ``fitted`` was fitted to.

    Samples that the fit keeps are compared one by one. For the others, a new fit with the same
    settings is made: on the true samples it predicts the same, or nearly the same if weights of
    samples or a random state were lost.
    """
    X, y = options.X, options.y
    if X is None:
        return
    name = type(fitted).__name__
    is_known = True
    for column, surface in enumerate(surfaces):
        kept = surface.physical_samples()
        if kept is None:
            is_known = False
            continue
        count = len(kept) if surface.rows is None else surface.sample_count
        if len(X) != count:
            raise NotExportable(
                f"X has {len(X)} rows, but the {name} was fitted to {count} samples; {_ADVICE}"
            )
        _require_equal("X", X if surface.rows is None else X[surface.rows], kept, name)
        outputs = surface.physical_outputs()
        if outputs is None:
            is_known = False
        elif y is not None:
            _require_equal("y", y[:, column : column + 1], outputs[:, None], name)
    if y is not None and not is_known:
        _require_same_fit(fitted, surfaces, X, y)


def _require_equal(what: str, given: np.ndarray, kept: np.ndarray, name: str) -> None:
    """Compares, allowing for what scaling there and back can change."""
    allowed = 1e-9 * np.abs(kept).max(axis=0, initial=0.0)
    wrong = np.argwhere(~(np.abs(given - kept) <= allowed))
    if len(wrong) > 0:
        row, column = wrong[0]
        raise NotExportable(
            f"{what} is not what the {name} was fitted to: it holds {given[row, column]:.10g} "
            f"where the fit has {kept[row, column]:.10g}; {_ADVICE}"
        )


def _require_same_fit(fitted: Any, surfaces: List[Surface], X: np.ndarray, y: np.ndarray) -> None:
    predicted = _predicted_anew(fitted, X, y)
    if predicted is None:
        return
    for column, surface in enumerate(surfaces):
        assert surface.predict is not None
        away = np.asarray(surface.predict(X), dtype=float).reshape(-1) - predicted[:, column]
        # A quarter of the outputs' spread: weights change a fit by less, other samples by more.
        if not np.sqrt(np.mean(away**2)) <= 0.25 * np.std(y[:, column]) + 1e-9 * np.abs(y).max():
            raise NotExportable(
                f"X and y are not what the {type(fitted).__name__} was fitted to: a new fit to "
                f"them predicts something else; {_ADVICE}"
            )


def _predicted_anew(fitted: Any, X: np.ndarray, y: np.ndarray) -> Optional[np.ndarray]:
    """At ``X`` (n, k), or None for a tool that can't be fitted again."""
    if not hasattr(fitted, "get_params"):
        return None
    from sklearn.base import clone

    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        try:
            anew = clone(fitted).fit(X, y[:, 0] if y.shape[1] == 1 else y)
        except ValueError as error:
            raise NotExportable(
                f"X and y are not what the {type(fitted).__name__} was fitted to, since a fit to "
                f"them fails ({error}); {_ADVICE}"
            ) from None
        return np.asarray(anew.predict(X), dtype=float).reshape(len(X), -1)
