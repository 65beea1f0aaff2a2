#!/usr/bin/env python3
"""Writes gradients.json: a model with one output per kind of surface, and the derivatives of its
outputs at some points. Values come from the formulas alone, with mpmath to 40 digits, and are
differentiated numerically there (python3-mpmath; numbers are chosen by a fixed seed and are exact
doubles)."""

import json
import pathlib
import sys

from mpmath import diff, mp, mpf, sqrt

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from formulas import (back, basis, correlation, dot, drawer, exact, forward, lbf_function, mls_value,
                      squared_distance, svr_kernel)

mp.dps = 40
doubles = drawer(7)
D = 2
N = 9


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
                c *= correlation(kind, k, abs(p - q))
            y += c
        return backscaled(r, y)
    return r, value


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
            y += c * lbf_function(kind, D, sqrt(squared_distance(u, row)), h)
        return backscaled(r, y)
    return r, value


def moving_least_squares(version, kind, trend):
    r = base(6)
    p = len(basis(trend, [0] * D))
    r.update({"MLSVersion": version, "MLSWeightFunction": kind, "MLSPolynomialType": trend,
              "MLSNumberOfBasisFunctions": p, "MLSNumberOfUsedPoints": N - 1,
              "MLSUsedPointsOption": 0, "MLSExtraPointPercent": 0})

    def value(x):
        return mls_value(version, kind, trend, x, rows(r), exact(r["OutputSamples"]), N - 1)
    return r, value


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
