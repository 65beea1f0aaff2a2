#!/usr/bin/env python3
"""Writes reference.json: kernels, weights, radial functions and whole predictions of the support
vector, moving least squares and linear basis surfaces, computed with mpmath to 50 digits from the
formulas alone (python3-mpmath; numbers are chosen by a fixed seed and are exact doubles)."""

import json
import pathlib
import random

from mpmath import mp, mpf, exp, fabs, lu_solve, matrix, pi, sin, sqrt, tanh

mp.dps = 50
rng = random.Random(20)
SINC_CUT = mpf(4.71238898038469)


def doubles(count, low, high):
    return [rng.randint(int(low * 4096), int(high * 4096)) / 4096 for _ in range(count)]


def exact(values):
    return [mpf(v) for v in values]


def dot(a, b):
    return sum((p * q for p, q in zip(a, b)), mpf(0))


def squared_distance(a, b):
    return sum(((p - q) ** 2 for p, q in zip(a, b)), mpf(0))


def svr_kernel(kind, x, y, w):
    s = dot(x, y)
    if kind == 0:
        return 1 + s
    if kind == 1:
        return (1 + s) ** 2
    if kind == 2:
        return exp(-sum(k * (p - q) ** 2 for k, p, q in zip(w, x, y)))
    if kind == 3:
        return tanh(exp(mpf(1)) / len(x) * s - exp(mpf(1)))
    if kind == 5:
        return exp(-sum(k * fabs(p - q) for k, p, q in zip(w, x, y)))
    s = squared_distance(x, y)
    return mpf(0) if s >= 1 else mpf(3) / 4 * (1 - s * s)


def mls_weight(version, kind, d, r, rho):
    z = r / rho
    if kind == 0:
        return mpf(1)
    if kind == 1:
        return exp(-20 * z * z) if version == 162 else exp(-z * z)
    if kind == 2:
        t = min(mpf(1), r / (2 * sqrt(mpf(d)) * rho))
        return (1 - t) ** 4 * (4 * t + 1)
    if kind == 3:
        return 1 / ((r / 2) ** 2 + 1) if version == 162 else 1 / (z * z + 1)
    return 1 / fabs(z + mpf(0.01))


def lbf_function(kind, d, r, h):
    if kind == 0:
        return exp(-((r / h) ** 2))
    if kind in (1, 2):
        t = r / (2 * h)
        if t > 1:
            return mpf(0)
        return (1 - t) ** 4 * (4 * t + 1) if kind == 1 else 1 - 3 * t**2 + 2 * t**3
    if kind == 3:
        z = 2 * r / h
        if z > SINC_CUT:
            return mpf(0)
        c = sin(SINC_CUT) / SINC_CUT
        return (sin(z) / z - c) / (1 - c) if z > mpf(1e-06) else mpf(1)
    if kind == 4:
        return 1 / ((r / h) ** 2 + 1)
    return tanh(r / d / h)


def basis(kind, x):
    f = [mpf(1)] + (list(x) if kind >= 2 else [])
    if kind == 3:
        f += [v * v for v in x]
    if kind == 4:
        f += [x[i] * x[j] for i in range(len(x)) for j in range(i, len(x))]
    return f


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
    n, d, u = 12, 2, 9
    r = base_record(n, d)
    x = exact(r["x"])
    f = basis(kind, x)
    p = len(f)
    r.update(version=version, function=weight, basis=kind, p=p, used=u)
    distances = [sqrt(squared_distance(exact(row), x)) for row in r["samples"]]
    rho = sorted(distances)[min(p, n - 1)]
    w = [mls_weight(version, weight, d, distances[j], rho) for j in range(u)]
    w = [v / sum(w) for v in w]
    rows = [basis(kind, exact(row)) for row in r["samples"][:u]]
    A = matrix(p, p)
    b = matrix(p, 1)
    for i in range(p):
        b[i] = sum(rows[j][i] * w[j] * mpf(r["outputs"][j]) for j in range(u))
        for k in range(p):
            A[i, k] = sum(w[j] * rows[j][i] * rows[j][k] for j in range(u))
        A[i, i] += sqrt(mpf(p)) * mpf(1e-08) + (p + 10) * mpf(1e-14)
    c = lu_solve(A, b)
    r["value"] = float(sum(f[k] * c[k] for k in range(p)))
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
