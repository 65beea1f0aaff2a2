"""Cross-validation data: each member of an ensemble is fitted again without each fold."""

from dataclasses import dataclass
from typing import Any, Callable, List, Optional, Sequence

import numpy as np

from ._options import Options
from ._surface import EnsembleScale, NotExportable, Surface

Refit = Callable[[Any, np.ndarray, np.ndarray], Any]
Convert = Callable[[Any, Options], List[Surface]]


@dataclass
class Folds:
    """``surfaces``: by member, then by fold. ``sorted_inputs`` (n, d) in physical units, fold
    by fold, ``counts`` of them in each; ``outputs`` (n,)."""

    surfaces: List[List[Surface]]
    sorted_inputs: np.ndarray
    counts: List[int]
    outputs: np.ndarray


def make(
    members: Sequence[Any],
    X: Optional[np.ndarray],
    y: Optional[np.ndarray],
    column: int,
    folds: Any,
    refit: Optional[Refit],
    convert: Convert,
    options: Options,
) -> Folds:
    """``column``: which of the outputs ``y`` (n, k) the ensemble predicts."""
    if X is None or y is None:
        raise ValueError("cross-validation needs new fits: pass X and y")
    parts = _parts(folds, X)
    if sorted(int(i) for part in parts for i in part) != list(range(len(X))):
        raise ValueError("the folds have to hold each sample once")
    fit = _refit_by_clone if refit is None else refit
    targets = y[:, 0] if y.shape[1] == 1 else y
    surfaces: List[List[Surface]] = []
    for member in members:
        of_member: List[Surface] = []
        for part in parts:
            rest = np.setdiff1d(np.arange(len(X)), part)
            fitted = fit(member, X[rest], targets[rest])
            given = Options(X[rest], y[rest], None, False, options.level, options.output_transform)
            of_member.append(convert(fitted, given)[column])
        surfaces.append(of_member)
    order = np.concatenate(parts)
    return Folds(surfaces, X[order], [len(part) for part in parts], y[order, column])


def unit_scale(folds: Folds) -> EnsembleScale:
    """Scales inputs and output from 0 to 1 over the samples, so that distances between points, and
    the part of an error that grows with them, have no unit."""
    lower, width = folds.sorted_inputs.min(axis=0), np.ptp(folds.sorted_inputs, axis=0)
    slopes = 1.0 / np.where(width > 0.0, width, 1.0)
    spread = float(np.ptp(folds.outputs)) or 1.0
    return EnsembleScale(
        slopes, -lower * slopes, 1.0 / spread, -float(folds.outputs.min()) / spread
    )


def _parts(folds: Any, X: np.ndarray) -> List[np.ndarray]:
    if isinstance(folds, int):
        from sklearn.model_selection import KFold

        if not 2 <= folds <= len(X):
            raise ValueError(f"there are {len(X)} samples: folds={folds} has to be 2 to {len(X)}")
        folds = KFold(folds, shuffle=True, random_state=0)
    if not hasattr(folds, "split"):
        raise ValueError(f"folds={folds!r} has to be a number or to have a method split")
    return [np.asarray(test) for _, test in folds.split(X)]


def _refit_by_clone(member: Any, X: np.ndarray, y: np.ndarray) -> Any:
    if not hasattr(member, "get_params") or not hasattr(member, "fit"):
        raise NotExportable(
            f"a {type(member).__name__} can't be fitted again automatically: pass refit=, a "
            "function of (fitted, X, y) that returns a new fit"
        )
    from sklearn.base import clone

    return clone(member).fit(X, y)
