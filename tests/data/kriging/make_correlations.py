"""Correlations to 50 digits, at and around every cut-off: writes correlations.json."""
import json
import random
from mpmath import besselj, exp, mp, mpf, sin, sqrt

mp.dps = 50
J_END, S_END = mpf(3.8317), mpf(4.71238898038469)  # the doubles, exactly
J_SHIFT, S_SHIFT = besselj(0, J_END), sin(S_END) / S_END
FACTORS = [  # of the distance a, the kernel k, z = k a, s = min(z, 1)
    lambda a, k, z, s: exp(-z),
    lambda a, k, z, s: exp(-k * a**2),
    lambda a, k, z, s: max(1 - z, 0),
    lambda a, k, z, s: 1 - 3 * s / 2 + s**3 / 2,
    lambda a, k, z, s: 1 - 3 * s**2 + 2 * s**3,
    lambda a, k, z, s: sqrt(k**2 + a),
    lambda a, k, z, s: 1 - 15 * z**2 + 30 * z**3 if z <= mpf(0.2) else 5 * (1 - s)**3 / 4,
    lambda a, k, z, s: exp(-sqrt(mpf(5)) * z) * (1 + sqrt(mpf(5)) * z + 5 * z**2 / 3),
    lambda a, k, z, s: 1 - s**2,
    lambda a, k, z, s: (besselj(0, z) - J_SHIFT) / (1 - J_SHIFT) if z <= J_END else mpf(0),
    lambda a, k, z, s: mpf(0) if z > S_END else
    mpf(1) if abs(z) <= mpf(1e-06) else (sin(z) / z - S_SHIFT) / (1 - S_SHIFT)]

# With y = 0 and kernel 1 or -1, z is the place itself, exactly.
PLACES = [0.0, 1e-6, 1.1e-6, 0.1, 0.2, 0.20001, 0.5, 0.9999, 1.0, 1.0001, 2.0, 3.8316, 3.8317, 3.8318,
          4.7123, 4.71238898038469, 4.7124, 7.0]
rng = random.Random(5)
draw = lambda low, high, n: [round(rng.uniform(low, high), 3) for _ in range(n)]
points = [([place], [0.0], [k]) for place in PLACES for k in (1.0, -1.0)]
points += [(draw(0, 1, 3), draw(0, 1, 3), draw(0.1, 0.9, n)) for n in (1, 3) for _ in range(4)]
cases = []
for kind, factor in enumerate(FACTORS, 1):
    for x, y, kernels in points:
        r = mpf(1)
        for xi, yi, k in zip(x, y, kernels * (len(x) // len(kernels))):
            a, k = abs(mpf(xi) - mpf(yi)), mpf(k)
            r *= factor(a, k, k * a, min(k * a, mpf(1)))
        cases.append(json.dumps([kind, x, y, kernels, float(r)]))
open("correlations.json", "w").write("[\n" + ",\n".join(cases) + "\n]\n")
