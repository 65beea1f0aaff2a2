"""What a caller passes to an exporter in addition to the fitted object."""

from dataclasses import dataclass
from typing import Optional, Sequence

import numpy as np


@dataclass(frozen=True)
class Options:
    """``X`` (n, d) and ``y`` (n,) or (n, k) are the samples in physical units, if known;
    ``names`` are those of its columns, when the caller gave them as a frame."""

    X: Optional[np.ndarray] = None
    y: Optional[np.ndarray] = None
    names: Optional[Sequence[str]] = None
    are_given: bool = True  # by the caller, so that they have to be compared with the fit
    level: float = 0.95
    output_transform: Optional[str] = None
