"""The table of docs/exporters.md: for each tool and model, what it becomes, and how far the export
is from the tool at the samples, between them and 10 % outside. As a program it writes the table.

Hyperparameters are given, not fitted, so that every machine compares the same fits. A bound of the
table is at least a hundred times what was measured, since the last digits depend on the machine.
"""

import re
import sys
import warnings
from dataclasses import dataclass
from typing import Any, Callable, List, Optional, Tuple

import numpy as np
import openturns as ot
import pandas
import stand_ins as si
import statsmodels.api as sm
import statsmodels.formula.api as formula
from conftest import ROOT
from scipy import interpolate
from sklearn import decomposition, ensemble, kernel_ridge, linear_model, model_selection
from sklearn import multioutput, neighbors, neural_network, svm
from sklearn.compose import TransformedTargetRegressor
from sklearn.cross_decomposition import PLSRegression
from sklearn.gaussian_process import GaussianProcessRegressor
from sklearn.gaussian_process import kernels as k
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import PolynomialFeatures, StandardScaler

import pxrom
from pxrom.export import NotExportable, to_text

ot.Log.Show(ot.Log.NONE)
PAGE = ROOT / "docs" / "exporters.md"
DRAW = np.random.default_rng(11)
X = DRAW.random((30, 3)) * [2, 30, 1] + [1, 20, 0.5]
Y = np.sin(3 * X[:, 0]) + 0.1 * X[:, 1] + X[:, 2] ** 2 + 0.05 * DRAW.standard_normal(30) + 5
BOTH = np.c_[Y, X[:, 0] * X[:, 1]]
LENGTHS = [1.0, 10.0, 1.0]


def _points() -> np.ndarray:
    lower, width = X.min(axis=0), np.ptp(X, axis=0)
    between = np.random.default_rng(12).random((60, 3))
    outside = np.random.default_rng(13).uniform(-0.1, 1.1, (60, 3))
    outside[np.arange(60), np.arange(60) % 3] = np.where(np.arange(60) % 2, -0.1, 1.1)
    return np.vstack([X, lower + width * between, lower + width * outside])


POINTS = _points()
Parts = Tuple[np.ndarray, Optional[np.ndarray]]
FAMILIES = {
    3: "regression",
    4: "Kriging",
    5: "support vector",
    7: "linear basis",
    8: "constant",
    101: "Gaussian process",
    102: "polynomial",
}


@dataclass
class Row:
    tool: str
    model: str
    make: Callable[[], Any]  # the fitted object
    own: Callable[[Any], Parts]  # values (n, k) and deviations of the tool at POINTS
    given: Tuple[Any, ...] = ()  # what else the export takes


def _learned(fitted: Any) -> Parts:
    if isinstance(fitted, GaussianProcessRegressor):
        return fitted.predict(POINTS, return_std=True)
    return fitted.predict(POINTS), None


def _kriged(fitted: Any) -> Parts:
    sample = ot.Sample(POINTS)
    values = np.array(fitted.getMetaModel()(sample))
    variances = [
        np.array(fitted.getConditionalMarginalVariance(sample, j)).ravel()
        for j in range(values.shape[1])
    ]
    return values, np.sqrt(np.abs(np.array(variances).T))


def _trained(fitted: Any) -> Parts:
    return fitted.predict_values(POINTS), np.sqrt(fitted.predict_variances(POINTS))


def _regressed(fitted: Any) -> Parts:
    mean, variance = fitted.predict(POINTS)
    return mean, np.sqrt(variance)


def _one_by_one(fitted: Any) -> Parts:
    spread = fitted.ynormRange[1] - fitted.ynormRange[0]
    deviations = spread * np.array([fitted.predict_var(x) for x in POINTS])
    return np.array([fitted.predict(x) for x in POINTS]), deviations


def _interval(fitted: Any) -> Parts:
    frame = fitted.get_prediction(sm.add_constant(POINTS)).summary_frame()
    return frame["mean"].to_numpy(), (frame.obs_ci_upper - frame.obs_ci_lower).to_numpy() / 2


def _mean(fitted: Any) -> Parts:
    return fitted.predict(sm.add_constant(POINTS)), None


def _scikit_learn() -> List[Row]:
    noise = k.WhiteKernel(0.1)
    radial, rough = k.RBF(LENGTHS), k.Matern(LENGTHS, nu=1.5)
    kernels = {
        "RBF + WhiteKernel": radial + noise,
        "Matern 1/2": k.Matern(LENGTHS, nu=0.5),
        "Matern 3/2": rough,
        "Matern 5/2, one length": k.Matern(5.0, nu=2.5) + noise,
        "RationalQuadratic": k.RationalQuadratic(5.0, 0.7) + noise,
        "RBF + Matern 3/2": radial + 3.0 * rough + noise,
        "ConstantKernel * RBF * Matern 3/2": 2.0 * radial * rough + noise,
        "(RBF + Matern 3/2) * RBF": (radial + rough) * k.RBF(20.0) + noise,
        "RBF ** 2": radial**2 + noise,
        "(RBF + Matern 3/2) ** 2": (radial + rough) ** 2 + noise,
        "RBF + ConstantKernel": radial + k.ConstantKernel(3.0) + noise,
        "RBF + DotProduct": radial + k.DotProduct(2.0) + noise,
        "Matern 3/2 + DotProduct ** 2": rough + 0.01 * k.DotProduct(1.0) ** 2 + noise,
        "ExpSineSquared": k.ExpSineSquared() + k.WhiteKernel(9.0),
        "DotProduct * RBF": k.DotProduct(2.0) * radial + noise,
        "Matern, nu=1": k.Matern(LENGTHS, nu=1.0) + noise,
    }

    def process(kernel: Any) -> Callable[[], Any]:
        return lambda: GaussianProcessRegressor(
            kernel, alpha=1e-6, optimizer=None, normalize_y=True
        ).fit(X, Y)

    def fit(estimator: Any) -> Callable[[], Any]:
        return lambda: estimator.fit(X, Y)

    cubic = make_pipeline(StandardScaler(), PolynomialFeatures(3), linear_model.Ridge())

    estimators = {
        "SVR": make_pipeline(StandardScaler(), svm.SVR(C=10)),
        "SVR, kernel Matern 3/2 + RBF": svm.SVR(kernel=rough + radial, C=10),
        "KernelRidge, laplacian": kernel_ridge.KernelRidge(kernel="laplacian", gamma=0.02),
        "KernelRidge, kernel Matern 3/2": kernel_ridge.KernelRidge(kernel=rough),
        "KernelRidge, chi2": kernel_ridge.KernelRidge(kernel="chi2", gamma=1.0),
        "LinearRegression": linear_model.LinearRegression(),
        "PolynomialFeatures(2), Ridge": make_pipeline(PolynomialFeatures(2), linear_model.Ridge()),
        "PolynomialFeatures(3), Ridge": cubic,
        "PCA, PolynomialFeatures(3), Ridge": make_pipeline(
            StandardScaler(), decomposition.PCA(2), PolynomialFeatures(3), linear_model.Ridge()
        ),
        "PLSRegression": PLSRegression(2),
        "TransformedTargetRegressor, log1p": TransformedTargetRegressor(
            linear_model.LinearRegression(), func=np.log1p, inverse_func=np.expm1
        ),
        "KernelRidge, polynomial of degree 3": make_pipeline(
            StandardScaler(), kernel_ridge.KernelRidge(kernel="poly", degree=3)
        ),
        "SVR, polynomial of degree 3": make_pipeline(
            StandardScaler(), svm.SVR(kernel="poly", degree=3, coef0=1.0)
        ),
        "VotingRegressor": ensemble.VotingRegressor(
            [("cubic", cubic), ("kernel", kernel_ridge.KernelRidge(kernel=rough))], weights=[3, 1]
        ),
        "BaggingRegressor": ensemble.BaggingRegressor(cubic, 3, random_state=0),
        "GridSearchCV": model_selection.GridSearchCV(cubic, {"ridge__alpha": [0.1, 1.0]}),
        "RandomForestRegressor": ensemble.RandomForestRegressor(3),
        "GradientBoostingRegressor": ensemble.GradientBoostingRegressor(n_estimators=3),
        "KNeighborsRegressor": neighbors.KNeighborsRegressor(),
        "MLPRegressor": neural_network.MLPRegressor(3, max_iter=5),
    }
    rows = [
        Row("scikit-learn", f"GaussianProcessRegressor, {name}", process(kernel), _learned)
        for name, kernel in kernels.items()
    ]
    both = GaussianProcessRegressor(rough + noise, optimizer=None, normalize_y=True)
    rows.append(
        Row(
            "scikit-learn",
            "GaussianProcessRegressor, 2 outputs",
            lambda: both.fit(X, BOTH),
            _learned,
        )
    )
    each = multioutput.MultiOutputRegressor(cubic)
    rows.append(
        Row("scikit-learn", "MultiOutputRegressor", lambda: each.fit(X, BOTH), _learned)
    )
    return rows + [
        Row("scikit-learn", name, fit(estimator), _learned)
        for name, estimator in estimators.items()
    ]


def _openturns() -> List[Row]:
    def bases(name: str) -> Any:
        return getattr(ot, f"{name}BasisFactory")(3).build() if name else ot.Basis(0)

    def make(model: Any, trend: str, outputs: np.ndarray) -> Callable[[], Any]:
        def fitted() -> Any:
            algorithm = ot.KrigingAlgorithm(ot.Sample(X), ot.Sample(outputs), model, bases(trend))
            algorithm.setOptimizeParameters(False)
            algorithm.run()
            return algorithm.getResult()

        return fitted

    parts = [ot.MaternModel([1.0, 10.0], [1.0], 1.5), ot.AbsoluteExponential([1.0], [1.0])]
    correlated = ot.CorrelationMatrix([[1.0, 0.4], [0.4, 1.0]])
    smooth, rough = ot.SquaredExponential(LENGTHS, [1.0]), ot.MaternModel(LENGTHS, [1.0], 1.5)
    one = [
        (smooth, "Constant"),
        (ot.AbsoluteExponential(LENGTHS, [1.0]), "Linear"),
        (ot.MaternModel(LENGTHS, [1.0], 0.5), "Constant"),
        (rough, "Linear"),
        (ot.MaternModel(LENGTHS, [1.0], 2.5), "Quadratic"),
        (ot.ExponentialModel(LENGTHS, [1.0]), ""),
        (ot.GeneralizedExponential(LENGTHS, [1.0], 1.7), "Linear"),
        (ot.ProductCovarianceModel(parts), "Linear"),
        (ot.IsotropicCovarianceModel(ot.MaternModel([5.0], [1.0], 1.5), 3), "Constant"),
        (ot.SphericalModel(LENGTHS, [1.0], 2.0), "Constant"),
    ]
    two = [
        (ot.TensorizedCovarianceModel([rough, ot.SquaredExponential(LENGTHS, [2.0])]), "Linear"),
        (ot.ExponentialModel(LENGTHS, [1.0, 2.0], correlated), "Linear"),
        (ot.KroneckerCovarianceModel(rough, [1.0, 2.0], correlated), "Linear"),
    ]
    rows = []
    for outputs, cases in ((Y[:, None], one), (BOTH, two)):
        for model, trend in cases:
            name = model.getClassName()
            if name == "MaternModel":
                name += f"({model.getNu():g})"
            shown = f"{name}, {trend.lower() or 'no'} trend" + ", 2 outputs" * (outputs is BOTH)
            rows.append(Row("OpenTURNS", f"Kriging, {shown}", make(model, trend, outputs), _kriged))

    def run(algorithm: Any) -> Any:
        algorithm.run()
        return algorithm.getResult()

    def chaos() -> Any:
        sides = zip(X.min(axis=0) - 0.5, X.max(axis=0) + 0.5)
        inputs = ot.ComposedDistribution([ot.Uniform(low, high) for low, high in sides])
        basis = ot.OrthogonalProductPolynomialFactory([ot.LegendreFactory()] * 3)
        return run(
            ot.FunctionalChaosAlgorithm(
                ot.Sample(X),
                ot.Sample(Y[:, None]),
                inputs,
                ot.FixedStrategy(basis, 15),
                ot.LeastSquaresStrategy(),
            )
        )

    def surrogate(fitted: Any) -> Parts:
        return np.array(fitted.getMetaModel()(ot.Sample(POINTS))), None

    sample, output = ot.Sample(X), ot.Sample(Y[:, None])
    rows.append(Row("OpenTURNS", "functional chaos, Legendre", chaos, surrogate))
    rows.append(
        Row(
            "OpenTURNS",
            "linear model",
            lambda: run(ot.LinearModelAlgorithm(sample, output)),
            surrogate,
        )
    )
    quadratic, covariance = ot.QuadraticBasisFactory(3).build(), ot.SquaredExponential(LENGTHS)
    rows.append(
        Row(
            "OpenTURNS",
            "general linear model, 2 outputs",
            lambda: run(
                ot.GeneralLinearModelAlgorithm(
                    sample,
                    ot.Sample(BOTH),
                    ot.TensorizedCovarianceModel([covariance, covariance]),
                    [quadratic, quadratic],
                )
            ),
            surrogate,
        )
    )
    return rows


def _scipy() -> List[Row]:
    kernels = "thin_plate_spline linear cubic quintic multiquadric inverse_multiquadric"
    cases: List[Tuple[str, dict]] = [(name, {}) for name in kernels.split()]
    cases += [("gaussian", {}), ("inverse_quadratic", {}), ("gaussian", {"degree": 3})]
    cases += [("cubic", {"degree": 3, "smoothing": 1e-2}), ("thin_plate_spline", {"neighbors": 9})]

    def make(kernel: str, options: dict) -> Callable[[], Any]:
        return lambda: interpolate.RBFInterpolator(X, Y, kernel=kernel, epsilon=0.3, **options)

    rows = []
    for kernel, options in cases:
        shown = ", ".join([kernel, *(f"{key}={value:g}" for key, value in options.items())])
        rows.append(
            Row(
                "scipy",
                f"RBFInterpolator, {shown}",
                make(kernel, options),
                lambda f: (f(POINTS), None),
            )
        )
    return rows


def _others() -> List[Row]:
    y, theta, dims = Y[:, None], [0.5, 0.3, 0.2], [0, 1, 2]
    design, frame = sm.add_constant(X), pandas.DataFrame(X, columns=list("abc"))
    rows = [
        Row("SMT", "KRG, squar_exp, constant", lambda: si.KRG(X, y, theta), _trained),
        Row(
            "SMT",
            "KRG, abs_exp, linear",
            lambda: si.KRG(X, y, theta, "abs_exp", "linear"),
            _trained,
        ),
        Row("SMT", "KRG, pow_exp", lambda: si.KRG(X, y, theta, "pow_exp"), _trained),
        Row("SMT", "KRG, matern32", lambda: si.KRG(X, y, theta, "matern32"), _trained),
        Row(
            "SMT",
            "KRG, matern52, quadratic, 2 outputs",
            lambda: si.KRG(X, BOTH, theta, "matern52", "quadratic"),
            _trained,
        ),
        Row(
            "SMT",
            "KPLS, squar_exp",
            lambda: si.KPLS(X, y, [0.5, 0.3], pls=[[0.7, 0.1], [0.2, 0.9], [0.6, 0.4]]),
            _trained,
        ),
        Row("pyKriging", "kriging", lambda: si.kriging(X, Y, theta, [1.9, 1.0, 1.3]), _one_by_one),
        Row("statsmodels", "OLS", lambda: sm.OLS(Y, design).fit(), _interval, (X,)),
        Row("statsmodels", "WLS", lambda: sm.WLS(Y, design, weights=X[:, 0]).fit(), _mean, (X,)),
        Row("statsmodels", "GLS", lambda: sm.GLS(Y, design, sigma=X[:, 0]).fit(), _mean, (X,)),
        Row(
            "statsmodels",
            "OLS, fit_regularized",
            lambda: sm.OLS(Y, design).fit_regularized(alpha=0.1),
            _mean,
            (X,),
        ),
        Row(
            "statsmodels",
            "formula y ~ np.log(a) * b + I(c**3)",
            lambda: formula.ols("y ~ np.log(a) * b + I(c**3)", frame.assign(y=Y)).fit(),
            lambda f: (f.predict(dict(zip("abc", POINTS.T))).to_numpy(), None),
            (frame,),
        ),
    ]
    radial = si.RBF(dims, 2.0, LENGTHS)
    kernels = {
        "RBF": radial,
        "Matern32": si.Matern32(dims, 2.0, LENGTHS),
        "Matern52 + Bias + White": si.Add(
            si.Matern52(dims, 2.0, 5.0), si.Bias(dims, 3.0), si.White(dims, 0.1)
        ),
        "RatQuad": si.RatQuad(dims, 2.0, 5.0, 1.5),
        "RBF + Linear": si.Add(radial, si.Linear(dims, [0.1, 0.001, 0.1])),
        "RBF[0] * Matern52[1, 2]": si.Prod(
            si.RBF([0], 2.0, [1.0]), si.Matern52([1, 2], 1.0, [10.0, 1.0])
        ),
        "StdPeriodic": si.StdPeriodic(dims, 1.0),
    }

    def regression(kernel: Any) -> Callable[[], Any]:
        return lambda: si.GPRegression(
            X, Y, kernel, 9.0 if "Periodic" in str(kernel) else 0.05, True
        )

    return rows + [
        Row("GPy", f"GPRegression, {name}", regression(kernel), _regressed)
        for name, kernel in kernels.items()
    ]


ROWS = _scikit_learn() + _openturns() + _scipy() + _others()


@dataclass
class Outcome:
    """What a row becomes, the largest difference of values relative to their range, and that of
    squared errors relative to the largest; or the sentence of a refusal."""

    family: str = ""
    value: float = 0.0
    error: Optional[float] = None
    refused: str = ""


def outcome(row: Row) -> Outcome:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        fitted = row.make()
        try:
            text = to_text(fitted, *row.given)
        except NotExportable as refusal:
            return Outcome(refused=str(refusal))
        values, errors = row.own(fitted)
    model = pxrom.loads(text)
    has_error = errors is not None
    got = model.predict(None, POINTS, return_error=has_error)
    numbers = sorted({int(number) for number in re.findall(r"\bDataType=\s*(\d+)", text)})
    made = Outcome(", ".join(FAMILIES[number] for number in numbers))
    for column, name in enumerate(got.values):
        own = np.reshape(values, (len(POINTS), -1))[:, column]
        made.value = max(made.value, float(np.abs(got.values[name] - own).max() / np.ptp(own)))
        if has_error:
            squares = np.reshape(errors, (len(POINTS), -1))[:, column] ** 2
            away = float(np.abs(got.errors[name] ** 2 - squares).max() / squares.max())
            made.error = max(made.error or 0.0, away)
    return made


def _bound(measured: Optional[float]) -> str:
    if measured is None:
        return ""
    return f"1e{int(np.ceil(np.log10(max(measured, 1e-14)))) + 2:d}"


def cells(row: Row) -> List[str]:
    found = outcome(row)
    if found.refused:
        return [row.tool, row.model, f"refused: {found.refused}", "", ""]
    return [row.tool, row.model, found.family, _bound(found.value), _bound(found.error)]


def written() -> List[List[str]]:
    """The rows of the page."""
    lines = [line for line in PAGE.read_text().splitlines() if line.startswith("| ")]
    return [[cell.strip() for cell in line.strip("|").split(" | ")] for line in lines[1:]]


def main() -> None:
    head, rest = PAGE.read_text().split("|---", 1)
    after = rest[rest.index("\n\n") :] if "\n\n" in rest else "\n"
    table = ["|---|---|---|---|---|"] + ["| " + " | ".join(cells(row)) + " |" for row in ROWS]
    PAGE.write_text(head + "\n".join(table) + after)


if __name__ == "__main__":
    sys.exit(main())
