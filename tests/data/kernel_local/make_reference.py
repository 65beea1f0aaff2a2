#!/usr/bin/env python3
"""Writes reference.json: kernels, weights, radial functions and whole predictions of the support
vector, moving least squares and linear basis surfaces, computed with mpmath to 50 digits from the
formulas alone (python3-mpmath; numbers are chosen by a fixed seed and are exact doubles)."""

import json
import pathlib
import sys

from mpmath import mp, mpf, sqrt

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from formulas import (SINC_CUT, basis, dot, drawer, exact, lbf_function, mls_value, mls_weight,
                      squared_distance, svr_kernel)

mp.dps = 50
doubles = drawer(20)


def functions():
    up, down = 1 + 2.0**-52, 1 - 2.0**-53
    out = {"svr": [], "mls": [], "lbf": []}
    for kind in (0, 1, 2, 3, 5, 9):
        pairs = [(doubles(3, -s, s), doubles(3, -s, s)) for s in (1, 0.5, 0.25, 0.25)]
        # The same point, the squared distance 1 (the cut-off of type 9), just below, just above.
        pairs += [([0.5, -1.0, 0.25], [0.5, -1.0, 0.25])]
        pairs += [([d, 0.0, 0.0], [0.0, 0.0, 0.0]) for d in (1.0, down, up)]
        for x, y in pairs:
            w = doubles(3, 0.25, 2)
            value = svr_kernel(kind, exact(x), exact(y), exact(w))
            out["svr"].append({"type": kind, "x": x, "y": y, "widths": w, "value": float(value)})
    for version in (162, 170):
        for kind in range(6):
            # With d = 4 and rho = 0.75 the compact weight ends at r = 3.
            for r in [0.0, 0.75, 3.0 * down, 3.0, 3.0 * up, 7.5] + doubles(3, 0.1, 2.9):
                value = mls_weight(version, kind, 4, mpf(r), mpf(0.75)) if kind < 5 else mpf(0)
                out["mls"].append({"version": version, "function": kind, "d": 4, "r": r,
                                   "rho": 0.75, "value": float(value)})
    for kind in range(6):
        # Around the cut-offs 2 h of types 1 and 2, and around z = 1e-06 and 3 pi / 2 of type 3.
        cut = float(SINC_CUT)
        for r in [0.0, 0.9e-06, 1.1e-06, 4.0 * down, 4.0, 4.0 * up, cut * down, cut,
                  cut * up] + doubles(4, 0.1, 6):
            value = lbf_function(kind, 3, mpf(r), mpf(2))
            out["lbf"].append({"type": kind, "d": 3, "r": r, "h": 2.0, "value": float(value)})
    return out


def base_record(n, d):
    return {"samples": [doubles(d, -2, 2) for _ in range(n)], "outputs": doubles(n, -1, 1),
            "slopes": doubles(d, 0.5, 1.5), "intercepts": doubles(d, -0.5, 0.5),
            "slope": 0.375, "intercept": -1.25, "x": doubles(d, -2, 2)}


def scaled(record, x):
    return [mpf(a) * mpf(v) + mpf(b)
            for a, v, b in zip(record["slopes"], x, record["intercepts"])]


def backscaled(record, value):
    return float((value - mpf(record["intercept"])) / mpf(record["slope"]))


def svr_prediction(kind, loss):
    r = base_record(6, 2)
    r.update(kernel=kind, loss=loss, alphas=doubles(6, 0, 2), alphas_star=doubles(6, 0, 2),
             betas=doubles(6, -2, 2), bias=0.625, widths=doubles(2, 0.25, 1))
    x = scaled(r, r["x"])
    value = mpf(r["bias"])
    for j, row in enumerate(r["samples"]):
        m = (mpf(r["alphas_star"][j]) - mpf(r["alphas"][j])) if loss in (3, 4) else mpf(r["betas"][j])
        value += m * svr_kernel(kind, x, scaled(r, row), exact(r["widths"]))
    r["value"] = backscaled(r, value)
    return r


def mls_prediction(version, weight, kind):
    r = base_record(12, 2)
    x = exact(r["x"])
    r.update(version=version, function=weight, basis=kind, p=len(basis(kind, x)), used=9)
    r["value"] = float(mls_value(version, weight, kind, x, list(map(exact, r["samples"])),
                                 exact(r["outputs"]), 9))
    return r


def lbf_prediction(function, kind):
    r = base_record(6, 2)
    x = scaled(r, r["x"])
    f = basis(kind, x)
    r.update(function=function, basis=kind, widths=doubles(6, 0.5, 2),
             trend=doubles(len(f), -1, 1), weights=doubles(6, -2, 2))
    value = dot(f, exact(r["trend"]))
    for j, row in enumerate(r["samples"]):
        distance = sqrt(squared_distance(x, exact(row)))
        value += mpf(r["weights"][j]) * lbf_function(function, 2, distance, mpf(r["widths"][j]))
    r["value"] = backscaled(r, value)
    return r


reference = functions()
reference["svr_predictions"] = [svr_prediction(k, loss) for k in (0, 1, 2, 3, 5, 9)
                                for loss in (2, 3, 4)]
reference["mls_predictions"] = [mls_prediction(v, w, k) for v in (162, 170) for w in range(5)
                                for k in (1, 2, 3, 4) if (w, k) != (0, 2)]
reference["lbf_predictions"] = [lbf_prediction(f, k) for f in range(6) for k in (1, 2, 3, 4)]


def lines(items):
    return "[\n" + ",\n".join(json.dumps(item) for item in items) + "\n]"


text = "{\n" + ",\n".join(f'"{key}": {lines(items)}' for key, items in reference.items()) + "\n}\n"
(pathlib.Path(__file__).parent / "reference.json").write_text(text)
