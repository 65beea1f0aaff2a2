"""A Gaussian process of scikit-learn for the benchmarks: reads it, then predicts for each byte.

Reads numbers of 64 bits: inputs, samples, points (integers), length, noise, then the samples, outputs and
points. Writes a byte when it is ready, and for each byte read the values and standard deviations.
"""

import os
import sys

os.environ["OPENBLAS_NUM_THREADS"] = os.environ["OMP_NUM_THREADS"] = "1"

# The number of threads has to be known before these are loaded.
import numpy as np  # noqa: E402
from sklearn.gaussian_process import GaussianProcessRegressor  # noqa: E402
from sklearn.gaussian_process.kernels import RBF  # noqa: E402


def _read(count: int, dtype: type = np.float64) -> np.ndarray:
    return np.frombuffer(sys.stdin.buffer.read(8 * count), dtype)


inputs, samples, points = (int(count) for count in _read(3, np.int64))
length, noise = _read(2)
rows = _read(samples * inputs).reshape(samples, inputs)
outputs = _read(samples)
table = _read(points * inputs).reshape(points, inputs)
process = GaussianProcessRegressor(RBF(length, "fixed"), alpha=noise, optimizer=None)
process.fit(rows, outputs)
sys.stdout.buffer.write(b"r")
sys.stdout.buffer.flush()
while sys.stdin.buffer.read(1):
    values, errors = process.predict(table, return_std=True)
    sys.stdout.buffer.write(np.concatenate([values, errors]).astype(np.float64).tobytes())
    sys.stdout.buffer.flush()
