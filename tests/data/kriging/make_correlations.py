"""Correlations to 50 digits, at and around every cut-off: writes correlations.json."""
import json
import pathlib
import random
import sys

from mpmath import mp, mpf

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from formulas import correlation

mp.dps = 50

# With y = 0 and kernel 1 or -1, z is the place itself, exactly.
PLACES = [0.0, 1e-6, 1.1e-6, 0.1, 0.2, 0.20001, 0.5, 0.9999, 1.0, 1.0001, 2.0, 3.8316, 3.8317, 3.8318,
          4.7123, 4.71238898038469, 4.7124, 7.0]
rng = random.Random(5)
draw = lambda low, high, n: [round(rng.uniform(low, high), 3) for _ in range(n)]
points = [([place], [0.0], [k]) for place in PLACES for k in (1.0, -1.0)]
points += [(draw(0, 1, 3), draw(0, 1, 3), draw(0.1, 0.9, n)) for n in (1, 3) for _ in range(4)]
cases = []
for kind in range(1, 12):
    for x, y, kernels in points:
        r = mpf(1)
        for xi, yi, k in zip(x, y, kernels * (len(x) // len(kernels))):
            r *= correlation(kind, mpf(k), abs(mpf(xi) - mpf(yi)))
        cases.append(json.dumps([kind, x, y, kernels, float(r)]))
open("correlations.json", "w").write("[\n" + ",\n".join(cases) + "\n]\n")
