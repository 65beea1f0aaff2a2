"""What a caller tells an exporter beside the fitted object."""

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
    level: float = 0.95
    output_transform: Optional[str] = None
