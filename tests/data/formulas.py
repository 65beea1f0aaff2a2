"""The surfaces' formulas, one kernel, weight or correlation at a time, with mpmath to as many digits
as the script that imports them asks for (python3-mpmath)."""

import random

from mpmath import besselj, exp, fabs, log, lu_solve, matrix, mpf, sin, sqrt, tanh

SINC_CUT = mpf(4.71238898038469)  # the doubles, exactly
BESSEL_CUT = mpf(3.8317)


def drawer(seed):
    """Draws numbers that are exact doubles, with few digits."""
    rng = random.Random(seed)
    return lambda count, low, high: [rng.randint(int(low * 4096), int(high * 4096)) / 4096
                                     for _ in range(count)]


def exact(values):
    return [mpf(v) for v in values]


def dot(a, b):
    return sum((p * q for p, q in zip(a, b)), mpf(0))


def squared_distance(a, b):
    return sum(((p - q)**2 for p, q in zip(a, b)), mpf(0))


def basis(kind, x):
    f = ([mpf(1)] if kind >= 1 else []) + (list(x) if kind >= 2 else [])
    if kind == 3:
        f += [v * v for v in x]
    if kind == 4:
        f += [x[i] * x[j] for i in range(len(x)) for j in range(i, len(x))]
    return f


def sinc(z):
    """Shifted and scaled to end at its cut-off with 0."""
    c = sin(SINC_CUT) / SINC_CUT
    if z > SINC_CUT:
        return mpf(0)
    return (sin(z) / z - c) / (1 - c) if fabs(z) > mpf(1e-06) else mpf(1)


def correlation(kind, k, a):
    """What one input contributes as a factor, for the kernel k and the distance a."""
    z = k * a
    s = min(z, mpf(1))
    if kind == 1:
        return exp(-z)
    if kind == 2:
        return exp(-k * a * a)
    if kind == 3:
        return 1 - s
    if kind == 4:
        return 1 - 3 * s / 2 + s**3 / 2
    if kind == 5:
        return 1 - 3 * s**2 + 2 * s**3
    if kind == 6:
        return sqrt(k * k + a)
    if kind == 7:
        return 1 - 15 * z**2 + 30 * z**3 if z <= mpf(0.2) else mpf(5) / 4 * (1 - s)**3
    if kind == 8:
        t = sqrt(mpf(5)) * z
        return exp(-t) * (1 + t + t * t / 3)
    if kind == 9:
        return 1 - s * s
    if kind == 10:
        c = besselj(0, BESSEL_CUT)
        return (besselj(0, z) - c) / (1 - c) if z <= BESSEL_CUT else mpf(0)
    return sinc(z)


def svr_kernel(kind, x, y, w):
    if kind in (0, 1):
        return (1 + dot(x, y))**(kind + 1)
    if kind == 2:
        return exp(-sum(k * (p - q)**2 for k, p, q in zip(w, x, y)))
    if kind == 3:
        return tanh(exp(mpf(1)) / len(x) * dot(x, y) - exp(mpf(1)))
    if kind == 5:
        return exp(-sum(k * fabs(p - q) for k, p, q in zip(w, x, y)))
    s = squared_distance(x, y)
    return mpf(0) if s >= 1 else mpf(3) / 4 * (1 - s * s)


def compact(t):
    return (1 - t)**4 * (4 * t + 1)


def mls_weight(version, kind, d, r, rho):
    z = r / rho
    if kind == 0:
        return mpf(1)
    if kind == 1:
        return exp(-20 * z * z) if version == 162 else exp(-z * z)
    if kind == 2:
        return compact(min(mpf(1), r / (2 * sqrt(mpf(d)) * rho)))
    if kind == 3:
        return 1 / ((r / 2)**2 + 1) if version == 162 else 1 / (z * z + 1)
    return 1 / fabs(z + mpf(0.01))


def mls_value(version, kind, trend, x, samples, outputs, used):
    """The whole prediction; the weights and the fit take the first `used` samples."""
    f = basis(trend, x)
    p = len(f)
    distances = [sqrt(squared_distance(x, row)) for row in samples]
    rho = sorted(distances)[min(p, len(samples) - 1)]
    w = [mls_weight(version, kind, len(x), r, rho) for r in distances[:used]]
    w = [v / sum(w) for v in w]
    rows = [basis(trend, row) for row in samples[:used]]
    A = matrix(p, p)
    b = matrix(p, 1)
    for i in range(p):
        b[i] = sum(row[i] * v * y for row, v, y in zip(rows, w, outputs))
        for k in range(p):
            A[i, k] = sum(v * row[i] * row[k] for row, v in zip(rows, w))
        A[i, i] += sqrt(mpf(p)) * mpf(1e-08) + (p + 10) * mpf(1e-14)
    return dot(f, list(lu_solve(A, b)))


def lbf_function(kind, d, r, h):
    if kind == 0:
        return exp(-((r / h)**2))
    if kind in (1, 2):
        t = r / (2 * h)
        if t > 1:
            return mpf(0)
        return compact(t) if kind == 1 else 1 - 3 * t**2 + 2 * t**3
    if kind == 3:
        return sinc(2 * r / h)
    if kind == 4:
        return 1 / ((r / h)**2 + 1)
    return tanh(r / d / h)


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
