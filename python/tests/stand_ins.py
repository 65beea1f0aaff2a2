"""Fits of packages that need not be installed: the attributes that they document, and predictions
by their own formulas, which the exporters do not share."""

from types import SimpleNamespace

import numpy as np


class KRG:
    """SMT: universal Kriging of scaled inputs with a correlation of distances per input."""

    __module__ = "smt.surrogate_models.krg"

    def __init__(self, X, y, theta, corr="squar_exp", poly="constant", power=1.9, pls=None):
        self.options = {"corr": corr, "poly": poly, "pow_exp_power": power, "is_ri": False}
        if pls is not None:
            self.coeff_pls = np.array(pls)
        self.optimal_theta = np.array(theta)
        self.X_offset, self.X_scale = X.mean(axis=0), X.std(axis=0)
        self.y_mean, self.y_std = y.mean(axis=0), y.std(axis=0)
        self.X_norma, self.y_norma = (X - self.X_offset) / self.X_scale, (
            y - self.y_mean
        ) / self.y_std
        C = np.linalg.cholesky(self._correlations(self.X_norma) + 1e-6 * np.eye(len(X)))
        Ft = np.linalg.solve(C, self._functions(self.X_norma))
        Yt = np.linalg.solve(C, self.y_norma)
        Q, G = np.linalg.qr(Ft)
        beta = np.linalg.solve(G, Q.T @ Yt)
        rho = Yt - Ft @ beta
        variance = (rho**2).sum(axis=0) / len(X) * self.y_std**2
        gamma = np.linalg.solve(C.T, rho)
        self.optimal_par = dict(C=C, G=G, Ft=Ft, beta=beta, gamma=gamma, sigma2=variance)

    def _functions(self, Z):
        columns = [np.ones(len(Z))]
        if self.options["poly"] != "constant":
            columns += list(Z.T)
        if self.options["poly"] == "quadratic":
            columns += [Z[:, i] * Z[:, j] for i in range(Z.shape[1]) for j in range(i, Z.shape[1])]
        return np.column_stack(columns)

    def _correlations(self, Z):
        away, corr, theta = (
            np.abs(Z[:, None] - self.X_norma),
            self.options["corr"],
            self.optimal_theta,
        )
        if corr == "matern52":
            t = np.sqrt(5) * theta * away
            return np.prod((1 + t + t**2 / 3) * np.exp(-t), axis=2)
        if corr == "matern32":
            t = np.sqrt(3) * theta * away
            return np.prod((1 + t) * np.exp(-t), axis=2)
        power = {"abs_exp": 1, "squar_exp": 2}.get(corr, self.options["pow_exp_power"])
        away = away**power
        if hasattr(self, "coeff_pls"):
            away = away @ np.abs(self.coeff_pls) ** power
        return np.exp(-away @ theta)

    def predict_values(self, X):
        Z, found = (X - self.X_offset) / self.X_scale, self.optimal_par
        scaled = self._functions(Z) @ found["beta"] + self._correlations(Z) @ found["gamma"]
        return self.y_mean + self.y_std * scaled.reshape(len(X), -1)

    def predict_variances(self, X):
        Z, found = (X - self.X_offset) / self.X_scale, self.optimal_par
        rt = np.linalg.solve(found["C"], self._correlations(Z).T)
        u = np.linalg.solve(found["G"].T, found["Ft"].T @ rt - self._functions(Z).T)
        left = 1 - (rt**2).sum(axis=0) + (u**2).sum(axis=0)
        return np.maximum(np.outer(left, found["sigma2"]), 0)


class KPLS(KRG):
    __module__ = "smt.applications.kpls"


class kriging:
    """pyKriging: ordinary Kriging of inputs and output from 0 to 1, one point at a time."""

    __module__ = "pyKriging.krige"

    def __init__(self, X, y, theta, powers):
        self.normRange, self.ynormRange = list(zip(X.min(axis=0), X.max(axis=0))), [
            y.min(),
            y.max(),
        ]
        self.X = np.array([self._scaled(x) for x in X])
        self.y = (y - y.min()) / np.ptp(y)
        self.theta, self.pl = np.array(theta), np.array(powers)
        n = len(X)
        self.U = np.linalg.cholesky(np.array([self._psi(x) for x in self.X]) + 1e-6 * np.eye(n)).T
        ones = np.ones(n)
        self.mu = ones @ self._solved(self.y) / (ones @ self._solved(ones))
        self.SigmaSqr = (self.y - self.mu) @ self._solved(self.y - self.mu) / n

    def _scaled(self, x):
        return np.array(
            [(v - least) / (most - least) for v, (least, most) in zip(x, self.normRange)]
        )

    def _psi(self, z):
        return np.exp(-np.sum(self.theta * np.abs(self.X - z) ** self.pl, axis=1))

    def _solved(self, right):
        return np.linalg.solve(self.U, np.linalg.solve(self.U.T, right))

    def predict(self, x):
        scaled = self.mu + self._psi(self._scaled(x)) @ self._solved(self.y - self.mu)
        return scaled * (self.ynormRange[1] - self.ynormRange[0]) + self.ynormRange[0]

    def predict_var(self, x):
        psi = self._psi(self._scaled(x))
        return np.sqrt(np.abs(self.SigmaSqr * (1 - psi @ self._solved(psi))))


def _gpy_kernel(name, value):
    """A class of GPy's kernels: ``value`` of the kernel's parameters and the inputs."""

    def set_up(self, dims, *parameters):
        self.active_dims = np.array(dims)
        for key, parameter in zip(value.__code__.co_varnames, parameters):
            setattr(self, key, np.atleast_1d(np.array(parameter, dtype=float)))
        self._parameters = parameters

    def K(self, X, Z=None):
        given = (
            self._parameters,
            X[:, self.active_dims],
            None if Z is None else Z[:, self.active_dims],
        )
        return value(*map(np.asarray, given[0]), *given[1:])

    return type(name, (), {"__init__": set_up, "K": K, "__module__": "GPy.kern.src"})


def _r(X, Z, lengthscale):
    X, Z = X / lengthscale, (X if Z is None else Z) / lengthscale
    squares = (X**2).sum(axis=1)[:, None] + (Z**2).sum(axis=1) - 2 * X @ Z.T
    return np.sqrt(np.maximum(squares, 0))


def _rbf(variance, lengthscale, X, Z):
    return variance * np.exp(-0.5 * _r(X, Z, lengthscale) ** 2)


def _matern32(variance, lengthscale, X, Z):
    t = np.sqrt(3) * _r(X, Z, lengthscale)
    return variance * (1 + t) * np.exp(-t)


def _matern52(variance, lengthscale, X, Z):
    r = _r(X, Z, lengthscale)
    return variance * (1 + np.sqrt(5) * r + 5 / 3 * r**2) * np.exp(-np.sqrt(5) * r)


def _rat_quad(variance, lengthscale, power, X, Z):
    return variance * np.exp(-power * np.log1p(_r(X, Z, lengthscale) ** 2 / 2))


RBF = _gpy_kernel("RBF", _rbf)
Matern32 = _gpy_kernel("Matern32", _matern32)
Matern52 = _gpy_kernel("Matern52", _matern52)
RatQuad = _gpy_kernel("RatQuad", _rat_quad)
Linear = _gpy_kernel("Linear", lambda variances, X, Z: X * variances @ (X if Z is None else Z).T)
White = _gpy_kernel(
    "White",
    lambda variance, X, Z: variance * (np.eye(len(X)) if Z is None else np.zeros((len(X), len(Z)))),
)
Bias = _gpy_kernel(
    "Bias", lambda variance, X, Z: variance * np.ones((len(X), len(X if Z is None else Z)))
)
StdPeriodic = _gpy_kernel(
    "StdPeriodic", lambda variance, X, Z: variance * np.exp(-np.sin(_r(X, Z, 1.0)) ** 2)
)


class Add:
    __module__ = "GPy.kern.src.add"

    def __init__(self, *parts):
        self.parts = list(parts)

    def K(self, X, Z=None):
        return sum(part.K(X, Z) for part in self.parts)


class Prod(Add):
    __module__ = "GPy.kern.src.prod"

    def K(self, X, Z=None):
        return np.prod([part.K(X, Z) for part in self.parts], axis=0)


class Gaussian:
    __module__ = "GPy.likelihoods.gaussian"

    def __init__(self, variance):
        self.variance = np.array([variance])


class GPRegression:
    """GPy: a process with one noise variance; outputs share the kernel."""

    __module__ = "GPy.models.gp_regression"

    def __init__(self, X, Y, kern, noise, normalizer=False):
        self.X, self.Y, self.kern, self.likelihood = X, Y.reshape(len(X), -1), kern, Gaussian(noise)
        self.mean_function, self.normalizer, scaled = None, None, self.Y
        if normalizer:
            self.normalizer = SimpleNamespace(mean=self.Y.mean(axis=0), std=self.Y.std(axis=0))
            scaled = (self.Y - self.normalizer.mean) / self.normalizer.std
        lower = np.linalg.cholesky(kern.K(X) + (noise + 1e-8) * np.eye(len(X)))
        alpha = np.linalg.solve(lower.T, np.linalg.solve(lower, scaled))
        self.posterior = SimpleNamespace(woodbury_chol=lower, woodbury_vector=alpha)

    def predict(self, X):
        between = self.kern.K(X, self.X)
        v = np.linalg.solve(self.posterior.woodbury_chol, between.T)
        prior = np.array([self.kern.K(x[None])[0, 0] for x in X])
        mean = between @ self.posterior.woodbury_vector
        variance = (prior - (v**2).sum(axis=0) + self.likelihood.variance)[:, None]
        if self.normalizer is None:
            return mean, variance
        return (
            mean * self.normalizer.std + self.normalizer.mean,
            variance * self.normalizer.std**2,
        )
