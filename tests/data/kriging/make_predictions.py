"""Kriging by one dense solve of its bordered system, without the factors that a record holds:
writes predictions.json. The factors for the records come from numpy's Cholesky decomposition."""
import json
import numpy as np

KERNELS = {1: lambda a, k: np.exp(-(k * a).sum(-1)),
           5: lambda a, k: np.prod([(1 - s) ** 2 * (1 + 2 * s) for s in np.moveaxis(np.minimum(k * a, 1), -1, 0)], 0),
           8: lambda a, k: np.prod(np.exp(-5**.5 * k * a) * (1 + 5**.5 * k * a + 5 / 3 * (k * a) ** 2), -1)}


def basis(kind, u):
    columns = [np.ones(len(u))] + ([*u.T] if kind > 1 else []) + ([*(u**2).T] if kind == 3 else [])
    d = u.shape[1]
    columns += [u[:, i] * u[:, j] for i in range(d) for j in range(i, d)] if kind == 4 else []
    return np.stack(columns, 1)


rng = np.random.default_rng(3)
records = []
for corr, trend, n, d in ((1, 1, 9, 1), (8, 2, 21, 2), (5, 3, 26, 3), (1, 4, 34, 2)):
    k = rng.uniform(0.4, 0.9, d)
    slopes, intercepts = rng.uniform(0.3, 0.6, d), rng.uniform(-1, 1, d)
    samples, x = rng.uniform(0, 9, (n, d)), rng.uniform(0, 9, (6, d))
    u, v = samples * slopes + intercepts, x * slopes + intercepts
    out_slope, out_intercept, sigma2 = 0.25, 1.5, 1.75
    t = np.sin(u).sum(1) + u[:, 0]
    R = KERNELS[corr](abs(u[:, None] - u[None]), k)
    F, r, f = basis(trend, u), KERNELS[corr](abs(v[:, None] - u[None]), k), basis(trend, v)
    p = F.shape[1]
    bordered = np.block([[R, F], [F.T, np.zeros((p, p))]])
    weights = np.linalg.solve(bordered, np.concatenate([r, f], 1).T)   # universal Kriging weights
    dual = np.linalg.solve(bordered, np.concatenate([t, np.zeros(p)]))
    mse = sigma2 * (1 - (weights * np.concatenate([r, f], 1).T).sum(0))
    inv_c = np.linalg.inv(np.linalg.cholesky(R))
    ft = (inv_c @ F).T
    inv_g = np.linalg.inv(np.linalg.cholesky(ft @ ft.T))
    records.append({
        "correlation": corr, "trend": trend, "samples": samples.tolist(), "kernels": k.tolist(),
        "slopes": slopes.tolist(), "intercepts": intercepts.tolist(), "output_slope": out_slope,
        "output_intercept": out_intercept, "coefficients": dual[:n].tolist(), "beta": dual[n:].tolist(),
        "sigma2": sigma2, "inv_c": inv_c.tolist(), "inv_g": inv_g.tolist(), "ft": ft.tolist(),
        "x": x.tolist(), "y": ((weights[:n].T @ t - out_intercept) / out_slope).tolist(),
        "error": np.sqrt(mse).tolist()})
with open("predictions.json", "w") as out:
    json.dump(records, out)
