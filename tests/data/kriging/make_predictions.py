"""Kriging by one dense solve of its bordered system, without the factors that a record holds:
writes predictions.json. The factors for the records come from numpy's Cholesky decomposition."""
import json
import numpy as np

R5 = 5**.5
CORRELATIONS = {1: lambda z: np.exp(-z), 5: lambda z: np.where(z < 1, (1 - z)**2 * (1 + 2 * z), 0),
                8: lambda z: np.exp(-R5 * z) * (1 + R5 * z + 5 / 3 * z**2)}
rng = np.random.default_rng(3)
cases = []
for kind, trend, n, d in ((1, 1, 9, 1), (8, 2, 21, 2), (5, 3, 26, 3), (1, 4, 34, 2)):
    def basis(u):
        pairs = {3: [(i, i) for i in range(d)], 4: [(i, j) for i in range(d) for j in range(i, d)]}
        return np.stack([np.ones(len(u)), *(u.T if trend > 1 else []),
                         *(u[:, i] * u[:, j] for i, j in pairs.get(trend, []))], 1)

    k, slopes, intercepts = rng.uniform(0.4, 0.9, d), rng.uniform(0.3, 0.6, d), rng.uniform(-1, 1, d)
    samples, x = rng.uniform(0, 9, (n, d)), rng.uniform(0, 9, (6, d))
    u, v = samples * slopes + intercepts, x * slopes + intercepts
    corr = lambda at: CORRELATIONS[kind](k * abs(at[:, None] - u[None])).prod(-1)
    R, F, right = corr(u), basis(u), np.concatenate([corr(v), basis(v)], 1).T
    p = F.shape[1]
    bordered = np.block([[R, F], [F.T, np.zeros((p, p))]])
    t = np.sin(u).sum(1) + u[:, 0]
    dual = np.linalg.solve(bordered, np.concatenate([t, np.zeros(p)]))
    weights = np.linalg.solve(bordered, right)  # of universal Kriging
    inv_c = np.linalg.inv(np.linalg.cholesky(R))
    ft = (inv_c @ F).T
    inv_g = np.linalg.inv(np.linalg.cholesky(ft @ ft.T))
    text = {"NumberOfInputVariables": d, "NumberOfSamples": n, "InputSamples": samples,
            "InputScaleSlopes": slopes, "InputScaleIntercepts": intercepts, "OutputScaleSlope": 0.5,
            "OutputScaleIntercept": 0.25, "IsReadyForEvaluation": 1, "IsStopped": 0,
            "KrigingPolynomialType": trend, "KrigingPolynomialCoefficients": dual[n:],
            "KrigingCorrelationFunctionType": kind, "KrigingCorrelationCoefficients": dual[:n],
            "KrigingCorrelationKernels": k, "KrigingVersion": 192, "KrigingSavePredictorError": 1,
            "KrigingNumberOfPolynomialCoefficients": p, "KrigingSigmaSquare": 2.0,
            "KrigingInverseOfC": inv_c, "KrigingInverseOfG": inv_g, "KrigingFTilde": ft}
    cases.append({"text": "".join(f"{key}={','.join(repr(float(e)) if e % 1 else str(int(e)) for e in np.ravel(value))}\n"
                                  for key, value in text.items()),
                  "x": x.tolist(), "y": ((weights[:n].T @ t - 0.25) / 0.5).tolist(),
                  "error": np.sqrt(2.0 * (1 - (weights * right).sum(0))).tolist()})
json.dump(cases, open("predictions.json", "w"))
