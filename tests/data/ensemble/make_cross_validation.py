#!/usr/bin/env python3
"""Makes cross_validation.json: predicted errors of cross-validated ensembles of constants.

An independent calculation with numpy, from the method alone: fold predictions weighted by how far
the point is from each fold's nearest sample, their spread around the shrunken mean, damped near
samples.
"""

import json
import pathlib

import numpy as np

random = np.random.default_rng(20261121)


def predicted_error(point, rows, folds, rho, slope, weights, values, fold_values):
    squared = np.sum((rows - point) ** 2, axis=1)
    starts = np.concatenate([[0], np.cumsum(folds)])
    nearest = np.array([squared[a:b].min() for a, b in zip(starts[:-1], starts[1:])])
    raw = -np.expm1(-10.0 * (nearest / rho) ** 2)
    trust = raw / raw.sum()
    without = weights @ fold_values
    full = weights @ values
    count = len(folds)
    mean = (count * (trust @ without) + full) / (count + 1)
    spread = np.sqrt(trust @ (without - mean) ** 2)
    q = squared.min()
    damping = min(1.0, np.log1p(10.0 * q / (rho + 0.0001)))
    return (0.005 * q + spread) * damping / slope * 3.0


cases = []
for d, folds, m in [(1, [3, 2], 1), (2, [4, 4, 5], 2), (3, [1, 6, 2, 3], 3), (5, [10] * 5, 2)]:
    rows = random.uniform(-1, 1, (sum(folds), d))
    weights = random.uniform(0.1, 1, m)
    values = random.normal(size=m)
    fold_values = values[:, None] + 0.1 * random.normal(size=(m, len(folds)))
    input_slopes = random.uniform(0.5, 2, d)
    input_intercepts = random.normal(size=d)
    slope, intercept = random.uniform(0.2, 3) * random.choice([-1, 1]), random.normal()
    rho = random.uniform(0.05, 0.5)
    points = [random.uniform(-1, 1, d), rows[1] + 1e-3, rows[0]]
    for k, scaled in enumerate(points):
        x = (scaled - input_intercepts) / input_slopes
        scaled = input_slopes * x + input_intercepts
        cases.append({
            "rows": rows.tolist(), "folds": folds, "rho": rho, "weights": weights.tolist(),
            "values": values.tolist(), "foldValues": fold_values.tolist(),
            "inputSlopes": input_slopes.tolist(), "inputIntercepts": input_intercepts.tolist(),
            "slope": slope, "intercept": intercept, "x": x.tolist(),
            "value": (weights @ values - intercept) / slope,
            "error": predicted_error(scaled, rows, folds, rho, slope, weights, values, fold_values),
        })

target = pathlib.Path(__file__).with_name("cross_validation.json")
target.write_text("[\n" + ",\n".join(json.dumps(case) for case in cases) + "\n]\n")
