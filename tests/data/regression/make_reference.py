#!/usr/bin/python3
"""Writes reference.json: transformations and predictor errors by numpy 1.24 and scipy 1.10.

transforms: [type, parameter, x, forward(x), back(forward(x))] for the types that are textbook pairs.
errors: least squares fits with their prediction half-widths at new points, in the output's own unit.
"""

import json

import numpy as np
from scipy import special, stats

random = np.random.default_rng(5)

YEO_BACK = {
    # The inverse of Yeo-Johnson, from its definition.
    True: lambda z, a: np.expm1(z) if a == 0 else (a * z + 1) ** (1 / a) - 1,
    False: lambda z, a: -np.expm1(-z) if a == 2 else 1 - (1 - (2 - a) * z) ** (1 / (2 - a)),
}


def transforms():
    rows = []
    for x in (1e-3, 0.5, 1.0, 2.75, 40.0):
        rows.append([3, 0.0, x, np.log(x), x])
        rows.append([4, 0.0, x, np.log10(x), x])
        rows.append([5, 0.0, x, np.sqrt(x), x])
        rows.append([1, 0.0, x, np.exp(x), x])
        for power in (1.0, 2.0, 3.0):
            rows.append([6, power, x, np.float_power(x, power), x])
        for a in (-1.5, -0.5, 0.0, 0.25, 1.0, 2.0):
            z = special.boxcox(x, a)
            rows.append([7, a, x, z, special.inv_boxcox(z, a)])
    for x in (-30.0, -2.0, -0.1, 0.0, 0.1, 2.0, 30.0):
        for a in (-0.5, 0.0, 0.5, 1.0, 1.5, 2.0):
            z = float(stats.yeojohnson(np.array([x]), lmbda=a)[0])
            rows.append([9, a, x, z, float(YEO_BACK[x >= 0](z, a))])
    return [[float(v) for v in row] for row in rows]


def errors():
    cases = []
    for n, d, level, inactive in ((8, 1, 0.95, []), (30, 2, 0.9, [1, 4]), (620, 2, 0.99, []),
                                  (12, 3, 0.6, [0, 3])):
        terms = [[]] + [[i] for i in range(d)] + [[i, j] for i in range(d) for j in range(i, d)]
        active = [k for k in range(len(terms)) if k not in inactive]
        samples = random.uniform(-1, 1, (n, d))

        def design(points):
            return np.array([[np.prod(p[t]) if t else 1.0 for t in (terms[k] for k in active)]
                             for p in points])

        x = design(samples)
        y = x @ random.uniform(-2, 2, len(active)) + random.normal(0, 0.3, n)
        coefficients, *_ = np.linalg.lstsq(x, y, rcond=None)
        dof = n - len(active)
        sigma2 = float(np.sum((y - x @ coefficients) ** 2) / dof)
        inverse = np.linalg.inv(x.T @ x)
        points = random.uniform(-1.5, 1.5, (5, d))
        r = design(points)
        slope = 0.25
        leverage = np.einsum("pi,ij,pj->p", r, inverse, r)
        half = np.sqrt(sigma2 * (1 + leverage)) * stats.t.ppf(level, dof) / slope
        cases.append(dict(samples=n, inputs=d, terms=terms, active=active, level=level,
                          sigma2=sigma2, inverse=inverse.tolist(), slope=slope,
                          points=points.tolist(), errors=half.tolist()))
    return cases


with open("reference.json", "w") as out:
    json.dump(dict(transforms=transforms(), errors=errors()), out)
    out.write("\n")
