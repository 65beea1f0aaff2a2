#!/usr/bin/python3
"""Writes reference.json: polynomial records, points, and there the value, the error and the gradients
of both. They come from the closed forms and hypergeometric series of mpmath to 50 digits (Debian's
python3-mpmath), not from recurrences; numbers are chosen by a fixed seed and are exact doubles."""

import json
import pathlib
import sys

from mpmath import (beta, chebyt, diff, factorial, fabs, gamma, hermite, jacobi, laguerre, legendre, mp, mpf,
                    sqrt)

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from formulas import back, drawer, exact, forward

mp.dps = 50
doubles = drawer(17)


def mean_square(kind, n, a, b):
    if n == 0:
        return mpf(1)
    if kind == 3:
        return gamma(n + a + 1) / factorial(n) / gamma(a + 1)
    return {1: lambda: 1 / mpf(2 * n + 1), 2: lambda: factorial(n),
            4: lambda: gamma(n + a + 1) * gamma(n + b + 1) / factorial(n) / gamma(n + a + b + 1)
            / (2 * n + a + b + 1) / beta(a + 1, b + 1)}[kind]()


def polynomial(kind, n, a, b, u, is_orthonormal):
    p = {0: lambda: u**n, 1: lambda: legendre(n, u), 3: lambda: laguerre(n, a, u),
         2: lambda: hermite(n, u / sqrt(mpf(2))) / mpf(2)**(mpf(n) / 2),
         4: lambda: jacobi(n, a, b, u), 5: lambda: chebyt(n, u)}[kind]()
    return p / sqrt(mean_square(kind, n, a, b)) if is_orthonormal and 0 < kind < 5 else p


def element(record, name, v, missing):
    return record[name][v] if record.get(name) else missing


class Surface:
    def __init__(self, record):
        self.record = record

    def products(self, x):
        r = self.record
        u = []
        for v, i in enumerate(r["VariableInputs"]):
            z = mpf(r["InputScaleSlopes"][i]) * x[i] + mpf(r["InputScaleIntercepts"][i])
            z = forward(element(r, "VariableTransformTypes", v, 0), z,
                        mpf(element(r, "VariableTransformValues", v, 0)),
                        mpf(element(r, "VariableLambdas", v, 0)))
            u.append(mpf(element(r, "VariableSlopes", v, 1)) * z
                     + mpf(element(r, "VariableIntercepts", v, 0)))
        made = []
        for k in range(len(r["Coefficients"])):
            b = mpf(1)
            for v in range(len(u)):
                b *= polynomial(element(r, "VariableBases", v, 0), r["Degrees"][k * len(u) + v],
                                mpf(element(r, "VariableAlphas", v, 0)),
                                mpf(element(r, "VariableBetas", v, 0)), u[v], r["Orthonormal"])
            made.append(b)
        return made

    def back(self, s):
        r = self.record
        return back(r["OutputTransformType"], s, mpf(r["OutputTransformValue"]),
                    mpf(r["OutputLambda"]))

    def sum(self, x):
        return sum(c * b for c, b in zip(exact(self.record["Coefficients"]), self.products(x)))

    def value(self, *x):
        r = self.record
        return (self.back(self.sum(x)) - mpf(r["OutputScaleIntercept"])) / mpf(r["OutputScaleSlope"])

    def error(self, *x):
        b = self.products(x)
        q = sum(p * mpf(c) * o for p, row in zip(b, self.record["Covariance"]) for c, o in zip(row, b))
        return fabs(diff(self.back, self.sum(x)) * sqrt(q) / mpf(self.record["OutputScaleSlope"]))


def record(inputs, variables, degrees, small=False, **more):
    terms = len(degrees) // len(variables)
    # b' C b is positive for all b: C is a sum of squares, and not symmetric on purpose.
    rows = [doubles(terms, -0.5, 0.5) for _ in range(terms)]
    covariance = [[sum(a[i] * a[j] for a in rows) + (0.125 * (i > j) - 0.125 * (i < j))
                   for j in range(terms)] for i in range(terms)]
    limit = 0.015625 if small else 2
    made = {"InputScaleSlopes": doubles(inputs, 0.5, 0.75),
            "InputScaleIntercepts": doubles(inputs, 0.25, 0.375), "OutputScaleSlope": -0.625,
            "OutputScaleIntercept": 0.375, "VariableInputs": variables, "Degrees": degrees,
            "Coefficients": [1.75] + doubles(terms - 1, -limit, limit), "Orthonormal": False,
            "OutputTransformType": 0, "OutputTransformValue": 1.75, "OutputLambda": 0.75,
            "Covariance": covariance}
    made.update(more)
    return made


records = []
for is_orthonormal in (False, True):
    for kind, alpha, beta_ in ((0, 0, 0), (1, 0, 0), (2, 0, 0), (3, -0.5, 0), (3, 1.75, 0),
                               (4, 0.5, -0.25), (4, -0.5, -0.5), (4, 1.25, -1 + 0.375),
                               (4, 0.5, -0.5)):
        if kind or not is_orthonormal:
            records.append(record(1, [0], [0, 1, 2, 3, 5, 8, 14], VariableBases=[kind],
                                  VariableAlphas=[alpha], VariableBetas=[beta_],
                                  Orthonormal=is_orthonormal))
# Chebyshev polynomials by a recurrence of their own, beside a basis that has a name.
records.append(record(2, [0, 1], [0, 0, 1, 0, 4, 1, 7, 2], VariableBases=[5, 1], Orthonormal=True,
                      Recurrences=[1, 0, 0] + 6 * [2, 0, 1]))
# Several variables of every basis, two of which share an input, and products of up to four.
records.append(record(3, [0, 1, 2, 0, 1], [0, 0, 0, 0, 0, 3, 0, 0, 1, 0, 1, 2, 1, 1, 0, 0, 0, 0, 4, 0,
                                           0, 1, 2, 0, 3, 2, 2, 0, 0, 2], VariableBases=[0, 1, 2, 3, 4],
                      VariableAlphas=[0, 0, 0, 0.5, 0.75], VariableBetas=[0, 0, 0, 0, -0.25],
                      VariableSlopes=doubles(5, -0.75, 0.75), Orthonormal=True,
                      VariableIntercepts=doubles(5, -0.25, 0.25)))
# Each transformation before and after, and those whose lambda counts as 0 or that mirror.
for kind in range(10):
    records.append(record(2, [0, 1], [0, 0, 1, 0, 0, 1, 2, 1, 0, 3], True,
                          VariableTransformTypes=[kind, (kind + 4) % 10],
                          VariableTransformValues=[1.75, 2.25], VariableLambdas=[0.75, 1.5],
                          OutputTransformType=(kind + 3) % 10))
for kind, lam, first in ((7, 0.0, 1.5), (8, 0.0, 0.25), (9, 0.0, 1.5), (9, 2.0, -1.5), (9, 1.25, -1.5)):
    made = record(1, [0], [0, 1, 2], True, OutputTransformType=kind, OutputLambda=lam)
    made["Coefficients"][0] = first
    records.append(made)

cases = []
for made in records:
    surface = Surface(made)
    inputs = len(made["InputScaleSlopes"])
    made["points"] = []
    for _ in range(3):
        x = doubles(inputs, 0, 1.25)
        axes = [tuple(int(i == j) for j in range(inputs)) for i in range(inputs)]
        made["points"].append({
            "x": x, "value": float(surface.value(*exact(x))), "error": float(surface.error(*exact(x))),
            "gradient": [float(diff(surface.value, tuple(exact(x)), axis)) for axis in axes],
            "errorGradient": [float(diff(surface.error, tuple(exact(x)), axis)) for axis in axes]})
    cases.append(made)

path = pathlib.Path(__file__).with_name("reference.json")
path.write_text(json.dumps(cases, indent=0) + "\n")
