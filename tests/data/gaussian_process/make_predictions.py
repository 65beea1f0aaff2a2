"""Gaussian processes to 50 digits: writes predictions.json. Each prediction is one dense solve of the
bordered system, without the factors that a record holds; derivatives are central differences over
1e-20, so that at a kink they are the mean of both sides. Needs mpmath."""
import json
import random
from mpmath import mp, mpf, cholesky, exp, inf, log, lu_solve, matrix, sqrt

mp.dps = 70
FUNCTIONS = {
    1: lambda r, a: exp(-r),
    2: lambda r, a: (1 + sqrt(3) * r) * exp(-sqrt(3) * r),
    3: lambda r, a: (1 + sqrt(5) * r + 5 * r**2 / 3) * exp(-sqrt(5) * r),
    4: lambda r, a: exp(-r**2 / 2),
    5: lambda r, a: (1 + r**2 / (2 * a))**-a,
    6: lambda r, a: exp(-r**a),
    7: lambda r, a: mpf(1),
    8: lambda r, a: r**2 * log(r) if r else mpf(0),
    9: lambda r, a: -r,
    10: lambda r, a: r**3,
    11: lambda r, a: -r**5,
    12: lambda r, a: -sqrt(1 + r**2),
    13: lambda r, a: 1 / sqrt(1 + r**2),
    14: lambda r, a: 1 / (1 + r**2)}
TRENDS = {0: [], 1: [(0, 0)], 2: [(0, 0), (1, 0), (0, 1)],
          4: [(0, 0), (1, 0), (0, 1), (2, 0), (1, 1), (0, 2)]}
rng = random.Random(7)


def draw(low, high):
    return rng.uniform(low, high)


# Terms of (amplitude, [(function, parameter, lengths), ...]), trend, monomials, noise, whether the
# error is that of a measurement, whether there is one, whether the trend is estimated.
CASES = [
    ([(1.7, [(1, 0, (0.8, 1.1))])], 0, [], 0.01, False, True, False),
    ([(1.7, [(2, 0, (0.8, 1.1))])], 1, [], 0.01, False, True, True),
    ([(0.6, [(3, 0, (0.5, 0.7))])], 2, [], 0.0, False, True, True),
    ([(2.5, [(4, 0, (0.9, 0.6))])], 1, [], 0.02, True, True, False),
    ([(1.1, [(5, 0.7, (0.7, 1.3))])], 0, [], 0.01, False, True, False),
    ([(1.1, [(6, 1.4, (0.7, 1.3))])], 0, [(1, 2)], 0.01, False, True, True),
    ([(0.7, [(13, 0, (0.4, 0.5))]), (0.5, [(14, 0, (0.6, 0.5))])], 0, [], 0.01, False, True, False),
    ([(1.2, [(4, 0, (0.8, inf)), (3, 0, (inf, 0.6))]), (0.3, [(5, 2.5, (0.9, 0.9))]),
      (0.2, [])], 4, [(3, 0), (1, 2)], 0.01, False, True, True),
    ([(1.0, [(8, 0, (0.5,))])], 2, [], 0.0, False, False, False),
    ([(1.0, [(9, 0, (0.5,))])], 1, [], 0.0, False, False, False),
    ([(1.0, [(10, 0, (0.5,))])], 2, [], 0.1, False, False, False),
    ([(1.0, [(11, 0, (0.5,))])], 4, [], 0.0, False, False, False),
    ([(1.0, [(12, 0, (0.5,))]), (0.4, [(7, 0, (1.0,))])], 1, [], 0.0, False, False, False),
]


def number(value):
    value = float(value)
    return "0" if value == inf else repr(value) if value % 1 else str(int(value))


def words(values):
    return ",".join(number(v) for v in values)


def make(terms, trend, monomials, noise, measured, has_error, is_estimated):
    n = 14
    slopes, intercepts = [draw(0.3, 0.6) for _ in range(2)], [draw(-1, 1) for _ in range(2)]
    samples = [[draw(0, 6), draw(0, 6)] for _ in range(n)]
    points = [[draw(0, 6), draw(0, 6)] for _ in range(2)] + [samples[3]]
    outputs = [mpf(draw(-1, 1)) for _ in range(n)]
    exponents = TRENDS[trend] + monomials
    p = len(exponents)

    def scaled(x):
        return [mpf(s) * v + mpf(i) for s, v, i in zip(slopes, x, intercepts)]

    def covariance(u, v):
        total = mpf(0)
        for amplitude, factors in terms:
            product = mpf(amplitude)
            for function, a, lengths in factors:
                lengths = lengths * 2 if len(lengths) == 1 else lengths
                r2 = sum(((s - t) / mpf(length))**2 for s, t, length in zip(u, v, lengths)
                         if length != inf)
                product *= FUNCTIONS[function](sqrt(r2), mpf(a))
            total += product
        return total

    def basis(u):
        return [u[0]**e * u[1]**f for e, f in exponents]

    centres = [scaled(s) for s in samples]
    K = matrix(n, n)
    for i in range(n):
        for j in range(n):
            K[i, j] = covariance(centres[i], centres[j]) + (mpf(noise) if i == j else 0)
    F = matrix(n, p) if p else None
    bordered = matrix(n + p, n + p)
    for i in range(n):
        for j in range(n):
            bordered[i, j] = K[i, j]
        for j, value in enumerate(basis(centres[i])):
            F[i, j] = bordered[i, n + j] = bordered[n + j, i] = value
    dual = lu_solve(bordered, matrix(outputs + [0] * p))

    def predict(x):
        u = scaled(x)
        k = [covariance(u, c) for c in centres]
        f = basis(u)
        value = sum(a * b for a, b in zip(k + f, dual))
        if not has_error:
            return (value - mpf(0.25)) / mpf(-0.5), None
        right = matrix(k + f) if is_estimated else matrix(k)
        weights = lu_solve(bordered if is_estimated else K, right)
        variance = covariance(u, u) - sum(a * b for a, b in zip(right, weights))
        variance = max(variance, mpf(0)) + (mpf(noise) if measured else 0)
        return (value - mpf(0.25)) / mpf(-0.5), sqrt(variance) / mpf(0.5)

    def gradients(x):
        h = mpf(10)**-20
        pairs = []
        for i in range(2):
            x = [mpf(v) for v in x]
            ends = [predict([v + (step if j == i else 0) for j, v in enumerate(x)])
                    for step in (h, -h)]
            pairs.append([None if a is None else float((a - b) / (2 * h)) for a, b in zip(*ends)])
        return [list(column) for column in zip(*pairs)]

    factors = [(t, *factor) for t, (_, own) in enumerate(terms) for factor in own]
    text = {"NumberOfInputVariables": number(2), "NumberOfSamples": number(n),
            "InputSamples": words(v for s in samples for v in s), "OutputSamples": "",
            "InputScaleSlopes": words(slopes), "InputScaleIntercepts": words(intercepts),
            "OutputScaleSlope": "-0.5", "OutputScaleIntercept": "0.25",
            "IsReadyForEvaluation": "1", "IsStopped": "0", "GPVersion": "1",
            "GPPolynomialType": number(trend), "GPMonomials": words(e for m in monomials for e in m),
            "GPPolynomialCoefficients": words(dual[n:]),
            "GPTermAmplitudes": words(a for a, _ in terms),
            "GPFactorTerms": words(f[0] for f in factors),
            "GPFactorFunctions": words(f[1] for f in factors),
            "GPFactorParameters": words(f[2] for f in factors),
            "GPFactorLengths": words(length for f in factors for length in f[3]),
            "GPWeights": words(dual[:n]), "GPNoiseVariance": number(noise)}
    if has_error:
        L = cholesky(K)
        inverse = L**-1
        text |= {"GPSavePredictorError": "1", "GPErrorIncludesNoise": number(measured),
                 "GPInverseFactor": words(inverse[i, j] for i in range(n) for j in range(i + 1))}
        if is_estimated:
            half = inverse * F
            inner = cholesky(half.T * half)**-1
            text |= {"GPTrendInverseFactor": words(inner[i, j] for i in range(p) for j in range(i + 1)),
                     "GPTrendAtSamples": words(half[i, j] for j in range(p) for i in range(n))}
    predictions = [predict(x) for x in points]
    slopes_of = [gradients(x) for x in points]
    return {"text": "".join(f"{key}={value}\n" for key, value in text.items()), "x": points,
            "y": [float(y) for y, _ in predictions],
            "error": [float(e) for _, e in predictions] if has_error else None,
            "gradient": [g[0] for g in slopes_of],
            "error_gradient": [g[1] for g in slopes_of] if has_error else None}


json.dump([make(*case) for case in CASES], open("predictions.json", "w"), indent=0)
