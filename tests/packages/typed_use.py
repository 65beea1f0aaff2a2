"""Checked by mypy against the types of the installed package, not run."""

from typing import Optional

import numpy as np

import pxrom
from pxrom import _core

model: pxrom.Model = pxrom.loads("", limit=1000)
result: pxrom.Prediction = model.predict({"Material": 1}, {"L": [1.2, 1.5]}, return_error=True)
values: np.ndarray[None, np.dtype[np.float64]] = result.values["mass"]
status: int = _core.run_command([b"pxrom", b"--version"])
severities: list[str] = [finding.severity for finding in pxrom.check("")]
