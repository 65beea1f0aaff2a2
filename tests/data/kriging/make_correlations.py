"""Correlations to 50 digits, at and around every cut-off: writes correlations.json."""
import json
import random
from mpmath import besselj, exp, log, mp, mpf, sin, sqrt

mp.dps = 50
J_END, S_END = mpf(3.8317), mpf(4.71238898038469)  # the doubles, exactly
J_SHIFT, S_SHIFT = besselj(0, J_END), sin(S_END) / S_END


def factor(kind, a, k):
    z = k * a
    s = min(z, mpf(1))
    t = sqrt(mpf(5)) * z
    if kind == 1: return exp(-z)
    if kind == 2: return exp(-k * a**2)
    if kind == 3: return max(1 - z, mpf(0))
    if kind == 4: return 1 - 3 * s / 2 + s**3 / 2
    if kind == 5: return 1 - 3 * s**2 + 2 * s**3
    if kind == 6: return sqrt(k**2 + a)
    if kind == 7: return 1 - 15 * z**2 + 30 * z**3 if z <= mpf(0.2) else (max(1 - z, mpf(0)))**3 * 5 / 4
    if kind == 8: return exp(-t) * (1 + t + t**2 / 3)
    if kind == 9: return max(1 - z**2, mpf(0)) if z > 0 else 1 - z**2
    if kind == 10: return (besselj(0, z) - J_SHIFT) / (1 - J_SHIFT) if z <= J_END else mpf(0)
    if z > S_END: return mpf(0)
    return (sin(z) / z - S_SHIFT) / (1 - S_SHIFT) if abs(z) > mpf(1e-06) else mpf(1)


# With y = 0 and kernel 1 (or -1) z is x itself, exactly.
PLACES = [0.0, 1e-6, 1.1e-6, 1e-3, 0.1, 0.19999, 0.2, 0.20001, 0.5, 0.9999, 1.0, 1.0001, 2.0, 3.8316,
          3.8317, 3.8318, 4.7123, 4.71238898038469, 4.7124, 7.0]
rng = random.Random(5)
draw = lambda low, high, n: [round(rng.uniform(low, high), 3) for _ in range(n)]
cases = []
for kind in range(1, 12):
    points = [([place], [0.0], [k]) for place in PLACES for k in (1.0, -1.0)]
    points += [(draw(0, 1, 3), draw(0, 1, 3), draw(0.1, 0.9, n)) for n in (1, 3) for _ in range(4)]
    for x, y, kernels in points:
        r = mpf(1)
        for i in range(len(x)):
            r *= factor(kind, abs(mpf(x[i]) - mpf(y[i])), mpf(kernels[i if len(kernels) > 1 else 0]))
        cases.append([kind, x, y, kernels, float(r)])
with open("correlations.json", "w") as out:
    out.write("[\n" + ",\n".join(json.dumps(case) for case in cases) + "\n]\n")
