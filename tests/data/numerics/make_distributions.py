#!/usr/bin/env python3
"""Writes distributions.json: reference values of the distribution functions, from mpmath.

Every value is computed with 40 digits from the definition (a root of the distribution function for
a quantile, started at scipy's value) and stored as the nearest double. Run: ./make_distributions.py

The one exception is "student_iteration": points where the quantile depends on the path of its
iteration, as where that ends early. They come from the same iteration in plain doubles, with the
distribution function exact.
"""
import json
import math
import pathlib

import mpmath as mp
from scipy import stats

mp.mp.dps = 40

DOFS = [1, 2, 3, 5, 10, 30, 100, 341, 342, 343, 499, 499.9, 500, 501, 1000]
LEVELS = [0.001, 0.01, 0.05, 0.25, 0.4, 0.49, 0.499, 0.501, 0.6, 0.8, 0.95, 0.975, 0.99, 0.999]


def student_cdf(dof, x):
    tail = mp.betainc(dof / 2, mp.mpf(1) / 2, 0, dof / (dof + x * x), regularized=True) / 2
    return tail if x < 0 else 1 - tail


def student_pdf(dof, x):
    return mp.exp(mp.loggamma((dof + 1) / 2) - mp.loggamma(dof / 2)) / mp.sqrt(dof * mp.pi) * (
        1 + x * x / dof) ** (-(dof + 1) / 2)


def student_quantile(dof, p):
    x = mp.mpf(float(stats.t.ppf(float(p), float(dof))))
    for _ in range(4):
        x -= (student_cdf(dof, x) - p) / student_pdf(dof, x)
    return x


def gauss_quantile(p):
    x = mp.mpf(float(stats.norm.ppf(float(p))))
    for _ in range(4):
        x -= (mp.ncdf(x) - p) / mp.npdf(x)
    return x


def beta_cdf(a, b, x):
    return mp.betainc(a, b, 0, x, regularized=True)


def beta_quantile(a, b, p):
    x = mp.mpf(float(stats.beta.ppf(float(p), float(a), float(b))))
    for _ in range(4):
        x -= (beta_cdf(a, b, x) - p) / (x ** (a - 1) * (1 - x) ** (b - 1) / mp.beta(a, b))
    return x


def student_iteration(dof, p):
    """The Newton iteration of the quantile below the median, up to its steps of 1e-8 or 1e-6."""
    step = 1e9
    if dof >= 500:
        x = -4.0 if p < 0.001 else -2.0 if p < 0.2 else -0.5
        while abs(step) > 1e-6:
            step = (p - mp.ncdf(x)) / (mp.exp(-x * x / 2) * 0.39894228)
            x += step
        return -abs(x) / mp.sqrt((1 - 1 / dof / 4) ** 2 - x * x / 2 / dof)
    a, b, prob = dof / 2, 0.5, 2 * p
    mean = a / (a + b)
    sd = mp.sqrt(a * b / ((a + b) ** 2 * (a + b + 1)))
    x = mean
    if prob < 0.2:
        x = max(mean / 2, mean - sd)
    if prob > 0.8:
        x = min((mean + 1) / 2, mean + sd)
    while abs(step) >= 1e-8:
        step = (prob - beta_cdf(a, b, x)) / (
            x ** (a - 1) * (1 - x) ** (b - 1) / mp.beta(a, b))
        if x + step <= 0:
            x /= 2
        elif x + step >= 1:
            x = (x + 1) / 2
        else:
            x += step
    return -mp.sqrt(dof / x - dof)


def rows(function, *axes):
    """One row of arguments and value per point of the grid, or per tuple of a single list."""
    points = [[]]
    for axis in axes:
        points = [p + (list(v) if isinstance(v, tuple) else [v]) for p in points for v in axis]
    return [p + [float(function(*map(mp.mpf, p)))] for p in points]


def main():
    shapes = [(0.5, 0.5), (1, 3), (2, 0.5), (5, 5), (50, 0.5), (249.9, 0.5), (30, 80)]
    tables = {
        "student_quantile": rows(student_quantile, DOFS, LEVELS),
        "student_iteration": rows(student_iteration, [
            (0.1, 0.06), (0.1, 0.12), (0.3, 0.0005), (0.5, 0.0005), (2, 0.4999), (10, 0.4999),
            (40, 0.4999), (40, 0.499), (150, 0.4999), (499, 0.4999), (499, 0.49), (600, 0.15)]),
        "student_cdf": rows(student_cdf, DOFS, [-8, -2, -0.3, 0.001, 0.7, 1.5, 12]),
        "student_pdf": rows(student_pdf, DOFS[:9], [-4, -1, 0, 0.5, 3]),
        "gauss_cdf": rows(mp.ncdf, [-37, -12, -8, -7.0001, -7, -6.9999, -5, -2, -1.7, -0.5, -0.0011,
                                    -0.001, -0.0009, 0, 0.0005, 0.3, 1, 3, 6.5, 8]),
        "gauss_quantile": rows(gauss_quantile, [
            1e-79, 1e-78, 1e-61, 1e-60, 1e-31, 1e-30, 1e-21, 1e-20, 1e-7, 1e-6, 1e-4, 0.001, 0.02,
            0.19, 0.2, 0.3, 0.49, 0.51, 0.8, 0.81, 0.975, 0.999, 0.9999999]),
        "beta_cdf": rows(beta_cdf, shapes, [0.001, 0.1, 0.3, 0.5, 0.7, 0.9, 0.995]),
        "beta_quantile": rows(beta_quantile, shapes[:3] + shapes[3:4] + shapes[6:],
                              [0.01, 0.19, 0.21, 0.5, 0.79, 0.81, 0.99]),
        "beta_function": rows(mp.beta, shapes),
        "gamma_ln": rows(mp.loggamma, [0.1, 0.5, 1, 1.5, 2, 3.25, 10, 100.5, 250, 1000]),
        "gamma_p": rows(lambda a, x: mp.gammainc(a, 0, x, regularized=True), [0.5, 1, 3, 20],
                        [0.0001, 0.4, 1.4999, 1.5, 2, 3.99, 4, 20, 21, 40]),
    }
    text = ",\n".join(
        json.dumps(name) + ": [\n" + ",\n".join(map(json.dumps, table)) + "]"
        for name, table in tables.items())
    path = pathlib.Path(__file__).with_name("distributions.json")
    path.write_text("{\n" + text + "\n}\n")


if __name__ == "__main__":
    main()
