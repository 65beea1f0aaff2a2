#!/usr/bin/env python3
"""Writes gradients.json: a model with one output per kind of surface, and the derivatives of its
outputs at some points. Values come from the formulas alone, with mpmath to 40 digits, and are
differentiated numerically there (python3-mpmath; numbers are chosen by a fixed seed and are exact
doubles)."""

import json
import pathlib
import random

from mpmath import (besselj, cos, diff, exp, fabs, log, lu_solve, matrix, mp, mpf, sin, sqrt, tanh)

mp.dps = 40
rng = random.Random(7)
D = 2
N = 9
SINC_CUT = mpf(4.71238898038469)
BESSEL_CUT = mpf(3.8317)


def doubles(count, low, high):
    return [rng.randint(int(low * 4096), int(high * 4096)) / 4096 for _ in range(count)]


def exact(values):
    return [mpf(v) for v in values]


def basis(kind, x):
    f = [mpf(1)] if kind >= 1 else []
    f += list(x) if kind >= 2 else []
    if kind == 3:
        f += [v * v for v in x]
    if kind == 4:
        f += [x[i] * x[j] for i in range(len(x)) for j in range(i, len(x))]
    return f


def dot(a, b):
    return sum((p * q for p, q in zip(a, b)), mpf(0))


def scaled(record, x):
    return [mpf(s) * v + mpf(b) for s, v, b in zip(record["InputScaleSlopes"], x,
                                                   record["InputScaleIntercepts"])]


def backscaled(record, y):
    return (y - mpf(record["OutputScaleIntercept"])) / mpf(record["OutputScaleSlope"])


def base(kind, samples=(-1, 2)):
    return {"DataType": kind, "NumberOfInputVariables": D, "NumberOfSamples": N,
            "InputSamples": doubles(N * D, *samples), "OutputSamples": doubles(N, -1, 1),
            "InputScaleSlopes": doubles(D, 0.5, 1.5), "InputScaleIntercepts": doubles(D, -0.5, 0.5),
            "OutputScaleSlope": 0.375, "OutputScaleIntercept": -1.25, "IsReadyForSolve": 1,
            "IsReadyForEvaluation": 1, "IsStopped": 0}


def rows(record):
    flat = exact(record["InputSamples"])
    return [flat[D * j:D * j + D] for j in range(N)]


def shifted(value, c):
    return (value - c) / (1 - c)


def correlation(kind, z, k, a):
    """What one input contributes as a factor; z = k a."""
    s = min(z, mpf(1))
    if kind == 1:
        return exp(-z)
    if kind == 2:
        return exp(-k * a * a)
    if kind == 3:
        return max(1 - z, mpf(0))
    if kind == 4:
        return 1 - 3 * s / 2 + s**3 / 2
    if kind == 5:
        return 1 - 3 * s**2 + 2 * s**3
    if kind == 6:
        return sqrt(k * k + a)
    if kind == 7:
        if z <= mpf(0.2):
            return 1 - 15 * z**2 + 30 * z**3
        return mpf(5) / 4 * (1 - s)**3
    if kind == 8:
        t = sqrt(mpf(5)) * z
        return exp(-t) * (1 + t + t * t / 3)
    if kind == 9:
        return 1 - z * z if z < 1 else mpf(0)
    if kind == 10:
        c = besselj(0, BESSEL_CUT)
        return shifted(besselj(0, z), c) if z <= BESSEL_CUT else mpf(0)
    c = sin(SINC_CUT) / SINC_CUT
    return shifted(sin(z) / z, c) if z <= SINC_CUT else mpf(0)


def kriging(kind, trend):
    r = base(4)
    far = kind in (3, 4, 5, 7, 9)
    r.update({"KrigingCorrelationFunctionType": kind, "KrigingPolynomialType": trend,
              "KrigingCorrelationCoefficients": doubles(N, -2, 2),
              "KrigingCorrelationKernels": doubles(D, 0.1, 0.6 if far else 1.5),
              "KrigingPolynomialCoefficients": doubles(len(basis(trend, [0] * D)), -1, 1),
              "KrigingVersion": 192, "KrigingSavePredictorError": 0})

    def value(x):
        u = scaled(r, x)
        y = dot(basis(trend, u), exact(r["KrigingPolynomialCoefficients"]))
        for row, c in zip(rows(r), exact(r["KrigingCorrelationCoefficients"])):
            for p, q, k in zip(u, scaled(r, row), exact(r["KrigingCorrelationKernels"])):
                c *= correlation(kind, k * fabs(p - q), k, fabs(p - q))
            y += c
        return backscaled(r, y)
    return r, value


def svr_kernel(kind, x, y, w):
    if kind in (0, 1):
        return (1 + dot(x, y))**(kind + 1)
    if kind == 2:
        return exp(-sum(k * (p - q)**2 for k, p, q in zip(w, x, y)))
    if kind == 3:
        return tanh(exp(mpf(1)) / D * dot(x, y) - exp(mpf(1)))
    if kind == 5:
        return exp(-sum(k * fabs(p - q) for k, p, q in zip(w, x, y)))
    s = sum((p - q)**2 for p, q in zip(x, y))
    return mpf(0) if s >= 1 else mpf(3) / 4 * (1 - s * s)


def support_vector(kind):
    r = base(5)
    r.update({"SVRKernType": kind, "SVRLossFuncType": 3, "SVRAlphas": doubles(N, 0, 2),
              "SVRAlphasStar": doubles(N, 0, 2), "SVRBetas": doubles(N, 0, 2),
              "SVRConstantCoeffcient": 0.625, "SVRKernelArray": doubles(D, 0.25, 1),
              "SVREpsilonValue": 0.5, "SVRNuValue": 0.5, "SVRConstantValue": 1, "SVRVersion": 171})

    def value(x):
        u = scaled(r, x)
        y = mpf(0.625)
        for row, a, b in zip(rows(r), exact(r["SVRAlphas"]), exact(r["SVRAlphasStar"])):
            y += (b - a) * svr_kernel(kind, u, scaled(r, row), exact(r["SVRKernelArray"]))
        return backscaled(r, y)
    return r, value


def radial(kind, r, h):
    if kind == 0:
        return exp(-(r / h)**2)
    if kind in (1, 2):
        t = r / (2 * h)
        if t > 1:
            return mpf(0)
        return (1 - t)**4 * (4 * t + 1) if kind == 1 else 1 - 3 * t**2 + 2 * t**3
    if kind == 3:
        z = 2 * r / h
        return shifted(sin(z) / z, sin(SINC_CUT) / SINC_CUT) if z <= SINC_CUT else mpf(0)
    if kind == 4:
        return 1 / ((r / h)**2 + 1)
    return tanh(r / D / h)


def linear_basis(kind, trend):
    r = base(7)
    r.update({"LBFFunction": kind, "LBFPolynomialType": trend, "LBFVersion": 170,
              "LBFKernelValues": doubles(N, 0.75, 2), "LBFKernelCoefficients": doubles(N, -2, 2),
              "LBFPolynomialCoefficients": doubles(len(basis(trend, [0] * D)), -1, 1)})

    def value(x):
        u = scaled(r, x)
        y = dot(basis(trend, u), exact(r["LBFPolynomialCoefficients"]))
        for row, h, c in zip(rows(r), exact(r["LBFKernelValues"]),
                             exact(r["LBFKernelCoefficients"])):
            y += c * radial(kind, sqrt(sum((p - q)**2 for p, q in zip(u, row))), h)
        return backscaled(r, y)
    return r, value


def weight(version, kind, r, rho):
    z = r / rho
    if kind == 0:
        return mpf(1)
    if kind == 1:
        return exp(-20 * z * z) if version == 162 else exp(-z * z)
    if kind == 2:
        t = min(mpf(1), r / (2 * sqrt(mpf(D)) * rho))
        return (1 - t)**4 * (4 * t + 1)
    if kind == 3:
        return 1 / ((r / 2)**2 + 1) if version == 162 else 1 / (z * z + 1)
    return 1 / fabs(z + mpf(0.01))


def moving_least_squares(version, kind, trend):
    r = base(6)
    p = len(basis(trend, [0] * D))
    r.update({"MLSVersion": version, "MLSWeightFunction": kind, "MLSPolynomialType": trend,
              "MLSNumberOfBasisFunctions": p, "MLSNumberOfUsedPoints": N - 1,
              "MLSUsedPointsOption": 0, "MLSExtraPointPercent": 0})

    def value(x):
        distances = [sqrt(sum((a - b)**2 for a, b in zip(x, row))) for row in rows(r)]
        rho = sorted(distances)[min(p, N - 1)]
        w = [weight(version, kind, q, rho) for q in distances[:N - 1]]
        w = [v / sum(w) for v in w]
        b = [basis(trend, row) for row in rows(r)[:N - 1]]
        A = matrix(p, p)
        right = matrix(p, 1)
        for i in range(p):
            A[i, i] = sqrt(mpf(p)) * mpf(1e-08) + (p + 10) * mpf(1e-14)
            for wj, bj, y in zip(w, b, exact(r["OutputSamples"])):
                right[i] += wj * bj[i] * y
                for k in range(p):
                    A[i, k] += wj * bj[i] * bj[k]
        return dot(basis(trend, x), list(lu_solve(A, right)))
    return r, value


def box(x, lam):
    return log(x) if lam == 0 else (x**lam - 1) / lam


def inverse_box(x, lam):
    return exp(x) if lam == 0 else (lam * x + 1)**(1 / lam)


def forward(kind, x, a, lam):
    if kind in (7, 8):
        return box(x, lam) if kind == 7 else exp(inverse_box(x, lam))
    if kind == 9:
        return box(x + 1, lam) if x >= 0 else -box(1 - x, 2 - lam)
    return {0: lambda: x, 1: lambda: exp(x), 2: lambda: log(x) / log(a), 3: lambda: log(x),
            4: lambda: log(x) / log(mpf(10)), 5: lambda: sqrt(x), 6: lambda: x**a}[kind]()


def back(kind, s, a, lam):
    if kind in (7, 8):
        return inverse_box(s, lam) if kind == 7 else exp(inverse_box(s, lam))
    if kind == 9:
        return inverse_box(s, lam) - 1 if s >= 0 else 1 - inverse_box(-s, 2 - lam)
    return {0: lambda: s, 1: lambda: log(s), 2: lambda: log(a) * exp(s), 3: lambda: exp(s),
            4: lambda: mpf(10)**s, 5: lambda: s**2, 6: lambda: s**(1 / a)}[kind]()


def regression(before, behind, lam, constant=3):
    r = base(3)
    # Scaled inputs stay above 0, where every transformation goes.
    r["InputScaleSlopes"] = doubles(D, 0.125, 0.25)
    r["InputScaleIntercepts"] = doubles(D, 0.75, 1)
    terms = [(1, []), (2, [0]), (2, [1]), (3, [0, 0]), (4, [0, 1]), (3, [1, 1])]
    coefficients = [constant] + doubles(5, -0.03125, 0.03125)
    values, lambdas = doubles(D, 1.5, 2.5), [lam, 0.5]
    r.update({"QRSVersion": 192, "RespSurfType": 0, "RegTermFilterType": 0,
              "RegTermFilterConfVal": 0.95, "InputTransformType": before,
              "InputTransformValues": values, "InputLambdas": lambdas,
              "OutputTransformType": behind, "OutputTransformValue": 1.75, "OutputLambda": lam,
              "NumSelRegTerm": 6, "MaxRegTerm": 6, "QRSSavePredictorError": 0})
    r["terms"] = [f"<RegTerm ID={i}>\nFuncType={t}\nisActive=1\nInputVariablesIndex="
                  f"{','.join(map(str, v))}\ncoefficientValue={c!r}\n</RegTerm>\n"
                  for i, ((t, v), c) in enumerate(zip(terms, coefficients))]

    def value(x):
        u = [forward(before, v, mpf(a), mpf(b)) for v, a, b in zip(scaled(r, x), values, lambdas)]
        s = mpf(0)
        for (_, variables), c in zip(terms, exact(coefficients)):
            for v in variables:
                c *= u[v]
            s += c
        return backscaled(r, back(behind, s, mpf(1.75), mpf(lam)))
    return r, value


def text_of(record):
    lines = []
    for key, value in record.items():
        if key != "terms":
            values = value if isinstance(value, list) else [value]
            lines.append(f"{key}={','.join(map(repr, values))}\n")
    return "".join(lines + record.get("terms", []))


outputs = {}
for kind in range(1, 12):
    outputs[f"kriging_{kind:02}"] = [kriging(kind, kind % 5)]
for kind in (0, 1, 2, 3, 5, 9):
    outputs[f"support_vector_{kind}"] = [support_vector(kind)]
for kind in range(6):
    outputs[f"linear_basis_{kind}"] = [linear_basis(kind, 1 + kind % 4)]
for version in (162, 170):
    for kind in range(5):
        outputs[f"moving_{version}_{kind}"] = [moving_least_squares(version, kind, (3, 2, 1)[kind % 3])]
for kind in range(10):
    outputs[f"regression_{kind}"] = [regression(kind, (kind + 3) % 10, 0.75)]
outputs["regression_log_box"] = [regression(7, 7, 0.0, 1)]
outputs["regression_log_yeo"] = [regression(9, 9, 0.0, 1)]
outputs["regression_yeo_below"] = [regression(9, 9, 1.25, -3)]
outputs["regression_yeo_below_log"] = [regression(0, 9, 2.0, -3)]
outputs["ensemble"] = [kriging(2, 2), support_vector(2), regression(3, 0, 0.5), linear_basis(0, 1)]

names = sorted(outputs)
count = len(names)
ids = ["x1", "x2"] + names
model = (f"<ParameterRegistry>\nParameterRegistryVersion=170\nIDs={','.join(ids)}\n"
         f"Causalities=0,0{',1' * count}\nTypes=0,0{',0' * count}\nAvailability=1,1{',1' * count}\n"
         f"DiscreteIndexing=\nRegistrationRank="
         f"{','.join(f'{{{name};{i}}}' for i, name in enumerate(ids))}\n</ParameterRegistry>\n"
         f"<DiscreteSets>\nDiscreteSet="
         f"{','.join(f'{{{name};{i}}}' for i, name in enumerate(names))}\n</DiscreteSets>\n")
points = [doubles(D, -1, 2) for _ in range(4)]
references = {}
for number, name in enumerate(names):
    surfaces = outputs[name]
    candidate = {"InputScaleSlopes": doubles(D, 0.75, 1.25),
                 "InputScaleIntercepts": doubles(D, -0.25, 0.25), "OutputScaleSlope": -0.75,
                 "OutputScaleIntercept": 0.5}
    weights = [1.0] if len(surfaces) == 1 else [0.5, -0.25, 0.375, 0.75]
    model += (f"<PlexuraData ID={number}>\nCandidateVersion=170\nCandidateNumberOfInputVariables={D}\n"
              "CandidateNumberOfSamples=0\nCandidateInputSamples=\nCandidateOutputSamples=\n" +
              "".join(f"Candidate{line}\n" for line in text_of(candidate).splitlines()) +
              f"CandidateRSCardinality={len(surfaces)}\n")
    for g, ((record, _), w) in enumerate(zip(surfaces, weights)):
        model += f"<Genome ID={g}>\nGenomeWeight={w!r}\n{text_of(record)}</Genome>\n"
    model += "</PlexuraData>\n"

    def value(*x):
        u = scaled(candidate, x)
        return backscaled(candidate, sum(mpf(w) * f(u) for (_, f), w in zip(surfaces, weights)))

    references[name] = [
        {"value": float(value(*exact(x))),
         "gradient": [float(diff(value, tuple(exact(x)), tuple(int(i == j) for j in range(D))))
                      for i in range(D)]} for x in points]

path = pathlib.Path(__file__).with_name("gradients.json")
path.write_text(json.dumps({"model": model, "points": points, "outputs": references}, indent=0) + "\n")
