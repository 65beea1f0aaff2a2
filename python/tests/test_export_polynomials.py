"""Polynomials of any degree, and what comes before them, against the live tools: at the samples,
between them and 10 % outside."""

import warnings

import numpy as np
import openturns as ot
import pandas
import pytest
import statsmodels.api as sm
import statsmodels.formula.api as formula
from sklearn import decomposition, ensemble, kernel_ridge, linear_model, svm
from sklearn.compose import ColumnTransformer
from sklearn.compose import TransformedTargetRegressor as Target
from sklearn.cross_decomposition import PLSRegression
from sklearn.feature_selection import SelectKBest, f_regression
from sklearn.impute import SimpleImputer
from sklearn.model_selection import GridSearchCV, RandomizedSearchCV
from sklearn.multioutput import MultiOutputRegressor
from sklearn.pipeline import FeatureUnion
from sklearn.pipeline import make_pipeline as pipe
from sklearn.preprocessing import (
    FunctionTransformer,
    MinMaxScaler,
    PolynomialFeatures,
    PowerTransformer,
)
from sklearn.preprocessing import StandardScaler as Standard

import pxrom
from pxrom.export import NotExportable, to_text

ot.Log.Show(ot.Log.NONE)
DRAW = np.random.default_rng(11)
X = DRAW.random((60, 3)) * [2, 30, 1] + [1, 20, 0.5]
Y = np.sin(3 * X[:, 0]) + 0.1 * X[:, 1] + X[:, 2] ** 2 + 0.05 * DRAW.standard_normal(60) + 5
# At the samples, between them and 10 % outside.
NEW = np.vstack([X, DRAW.random((60, 3)) * [2.4, 36, 1.2] + [0.8, 17, 0.4]])
LINE = linear_model.LinearRegression


def read(text):
    """The model of a text in which the doctor finds nothing to complain of."""
    assert [str(found) for found in pxrom.check(text) if found.severity != "note"] == []
    return pxrom.loads(text)


def assert_near(got, wanted, tolerance=1e-10):
    wanted = np.asarray(wanted, dtype=float).reshape(got.shape)
    assert np.abs(got - wanted).max() <= tolerance * np.ptp(wanted)


def function(of, back=None):
    return FunctionTransformer(of, back)


def columns(*blocks):
    return ColumnTransformer([(str(k), step, at) for k, (step, at) in enumerate(blocks)])


FITS = {
    "cubic": pipe(PolynomialFeatures(3), LINE()),
    "cubic, scaled": pipe(Standard(), PolynomialFeatures(3), linear_model.Ridge(0.1)),
    "fifth degree": pipe(MinMaxScaler((-1, 1)), PolynomialFeatures(5), linear_model.Ridge(0.01)),
    "nested": pipe(
        pipe(Standard(), pipe(PolynomialFeatures(3))), pipe(Standard(), linear_model.Lasso(0.01))
    ),
    "twice squared": pipe(Standard(), PolynomialFeatures(2), PolynomialFeatures(2), LINE()),
    "principal components": pipe(Standard(), decomposition.PCA(2), LINE()),
    "cubic in whitened components": pipe(
        decomposition.PCA(3, whiten=True), PolynomialFeatures(3), LINE()
    ),
    "singular vectors": pipe(Standard(), decomposition.TruncatedSVD(2), LINE()),
    "selected": pipe(SelectKBest(f_regression, k=2), PolynomialFeatures(3), LINE()),
    "imputed": pipe(SimpleImputer(), Standard(), LINE()),
    "partial least squares": PLSRegression(2),
    "partial least squares, cubic": pipe(PolynomialFeatures(3), PLSRegression(3)),
    "power": pipe(PowerTransformer(), PolynomialFeatures(3), LINE()),
    "box cox": pipe(PowerTransformer("box-cox", standardize=False), LINE()),
    "logarithms": pipe(function(np.log), Standard(), PolynomialFeatures(3), LINE()),
    "exponential": pipe(MinMaxScaler(), function(np.expm1), LINE()),
    "a function of one's own": pipe(function(lambda x: x**3), LINE()),
    "columns": pipe(
        columns(
            (pipe(function(np.log1p), Standard()), [1]),
            (PolynomialFeatures(3), [0, 2]),
            (function(np.sqrt), slice(2, 3)),
            ("drop", [1]),
        ),
        linear_model.Ridge(1e-3),
    ),
    "the rest passes": pipe(
        ColumnTransformer([("a", Standard(), [2])], remainder="passthrough"),
        PolynomialFeatures(3),
        LINE(),
    ),
    "union": pipe(
        FeatureUnion(
            [("a", Standard()), ("b", PolynomialFeatures(3))], transformer_weights={"a": 2}
        ),
        linear_model.Ridge(0.1),
    ),
    "ridge, cubic kernel": pipe(Standard(), kernel_ridge.KernelRidge(kernel="poly", degree=3)),
    "ridge, square without a constant": pipe(
        Standard(), kernel_ridge.KernelRidge(kernel="poly", degree=2, coef0=0)
    ),
    "svr, cubic": pipe(Standard(), svm.SVR(kernel="poly", degree=3, coef0=1, C=10)),
    "svr, fifth, no constant": pipe(MinMaxScaler(), svm.NuSVR(kernel="poly", degree=5)),
    "svr of components": pipe(
        Standard(), decomposition.PCA(2), svm.SVR(kernel="poly", degree=3, coef0=-0.5)
    ),
    "target under log1p": Target(
        pipe(Standard(), PolynomialFeatures(3), LINE()), func=np.log1p, inverse_func=np.expm1
    ),
    "target squared": Target(pipe(Standard(), LINE()), func=np.square, inverse_func=np.sqrt),
    "target to a power": Target(
        pipe(Standard(), PolynomialFeatures(2), LINE()), transformer=PowerTransformer()
    ),
    "target reciprocal": Target(
        pipe(Standard(), LINE()), func=np.reciprocal, inverse_func=np.reciprocal
    ),
    "target under log, cubic kernel": Target(
        pipe(Standard(), kernel_ridge.KernelRidge(kernel="poly", degree=3)),
        func=np.log,
        inverse_func=np.exp,
    ),
    "voting": ensemble.VotingRegressor(
        [("a", pipe(Standard(), svm.SVR(C=9))), ("b", LINE())], weights=[3, 1]
    ),
    "voting of votes": ensemble.VotingRegressor(
        [("a", ensemble.VotingRegressor([("b", svm.SVR()), ("c", LINE())])), ("d", LINE())]
    ),
    "bagging": pipe(Standard(), ensemble.BaggingRegressor(svm.SVR(), 4, random_state=0)),
    "bagging, few columns": ensemble.BaggingRegressor(
        pipe(PolynomialFeatures(3), linear_model.Ridge()), 3, max_features=2, random_state=0
    ),
    "an average inside": Target(
        ensemble.VotingRegressor([("a", pipe(PolynomialFeatures(3), LINE())), ("b", LINE())]),
        func=np.log,
        inverse_func=np.exp,
    ),
    "search": GridSearchCV(pipe(Standard(), svm.SVR()), {"svr__C": [1, 9]}, cv=3),
    "search in a pipeline": pipe(
        PolynomialFeatures(3), RandomizedSearchCV(linear_model.Ridge(), {"alpha": [1, 2]}, n_iter=2)
    ),
    "robust": linear_model.RANSACRegressor(random_state=0),
}


@pytest.mark.parametrize("name", FITS)
def test_scikit_learn(name):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        fitted = FITS[name].fit(X, Y)
    model = read(to_text(fitted, X))
    assert_near(model.predict(NEW).values["y"], fitted.predict(NEW))


@pytest.mark.parametrize("kind", [linear_model.BayesianRidge, linear_model.ARDRegression])
@pytest.mark.parametrize("degree", [1, 3])
def test_deviations(kind, degree):
    steps = pipe(Standard(), PolynomialFeatures(degree, include_bias=False), Standard())
    fitted = Target(pipe(steps, kind()), transformer=Standard()).fit(X, Y)
    result = read(to_text(fitted, X, error=True)).predict(NEW, return_error=True)
    assert_near(result.values["y"], fitted.predict(NEW))
    inner = fitted.regressor_
    deviation = inner[-1].predict(inner[:-1].transform(NEW), return_std=True)[1]
    assert_near(result.errors["y"], deviation * fitted.transformer_.scale_[0], 1e-9)


def test_names_of_columns():
    frame = pandas.DataFrame(X, columns=["a", "b", "c"])
    step = columns((function(np.log), ["b"]), (PolynomialFeatures(3), ["c", "a"]))
    fitted = pipe(step, LINE()).fit(frame, Y)
    new = pandas.DataFrame(NEW, columns=["a", "b", "c"])
    assert_near(read(to_text(fitted, frame)).predict(new).values["y"], fitted.predict(new))
    with pytest.raises(NotExportable, match="is checked: pass X, the samples of the fit"):
        to_text(fitted)


def test_several_outputs():
    both = np.c_[Y, X[:, 0] * Y]
    fits = (
        MultiOutputRegressor(svm.SVR()),
        PLSRegression(2),
        pipe(PolynomialFeatures(3), LINE()),
        kernel_ridge.KernelRidge(kernel="poly", degree=3, gamma=1e-3),
    )
    for fitted in fits:
        result = read(to_text(fitted.fit(X, both), X)).predict(NEW)
        for column in range(2):
            assert_near(result.values[f"y{column}"], fitted.predict(NEW)[:, column])


QUADRATIC = {
    "scaled twice": pipe(Standard(), PolynomialFeatures(2), Standard(), linear_model.Ridge(0.1)),
    **{name: FITS[name] for name in ("principal components", "target to a power", "box cox")},
}


@pytest.mark.parametrize("name", QUADRATIC)
def test_quadratic_models_stay_regressions(name):
    """Readers of before know them."""
    assert "DataType=3\n" in to_text(QUADRATIC[name].fit(X, Y), X)


def chaos(distribution, basis=None, outputs=1):
    points = distribution.getSample(150)
    values = [[np.sin(x[0]) + x[0] * x[1] ** 2, x[1]][:outputs] for x in points]
    if basis is None:
        algorithm = ot.FunctionalChaosAlgorithm(points, ot.Sample(values), distribution)
    else:
        strategy = ot.FixedStrategy(basis, 35)
        algorithm = ot.FunctionalChaosAlgorithm(
            points, ot.Sample(values), distribution, strategy, ot.LeastSquaresStrategy()
        )
    algorithm.run()
    return algorithm


DISTRIBUTIONS = {
    "uniform and normal": [ot.Uniform(1, 3), ot.Normal(2, 0.5)],
    "lognormal and gamma": [ot.LogNormal(0.1, 0.2, 0.5), ot.Gamma(2.5, 1.5, 0.2)],
    "beta and triangular": [ot.Beta(2.0, 1.5, -1, 2), ot.Triangular(1, 2, 4)],
    "truncated and exponential": [
        ot.TruncatedDistribution(ot.Normal(1, 1), 0.0, 2.5),
        ot.Exponential(2.0, 0.5),
    ],
}


@pytest.mark.parametrize("name", DISTRIBUTIONS)
def test_functional_chaos(name):
    ot.RandomGenerator.SetSeed(0)
    distribution = ot.ComposedDistribution(DISTRIBUTIONS[name])
    result = chaos(distribution, outputs=2).getResult()
    model = read(to_text(result))
    points = distribution.getSample(50)
    wanted = np.array(result.getMetaModel()(points))
    for column in range(2):
        assert_near(model.predict(np.array(points)).values[f"y{column}"], wanted[:, column])


def test_functional_chaos_of_logarithms():
    ot.RandomGenerator.SetSeed(0)
    distribution = ot.ComposedDistribution([ot.LogNormal(0.1, 0.2), ot.Uniform(1, 3)])
    families = [ot.HermiteFactory(), ot.LegendreFactory()]
    algorithm = chaos(distribution, ot.OrthogonalProductPolynomialFactory(families))
    text = to_text(algorithm)
    assert "PolyVariableTransformTypes=3,0\n" in text
    points = distribution.getSample(50)
    wanted = np.array(algorithm.getResult().getMetaModel()(points))
    assert_near(read(text).predict(np.array(points)).values["y"], wanted)


def test_linear_models_of_openturns():
    sample, outputs = ot.Sample(X), ot.Sample(Y[:, None])
    plain = ot.LinearModelAlgorithm(sample, outputs)
    texts = ("1", "a", "b^3", "a*b*c", "log(b)", "sqrt(c)", "exp(a)*c")
    basis = ot.Basis([ot.SymbolicFunction(["a", "b", "c"], [text]) for text in texts])
    rich = ot.LinearModelAlgorithm(sample, basis, outputs)
    for algorithm in (plain, rich):
        algorithm.run()
        result = algorithm.getResult()
        wanted = np.array(result.getMetaModel()(ot.Sample(NEW))).ravel()
        assert_near(read(to_text(result)).predict(NEW).values["y"], wanted)


FRAME = pandas.DataFrame(np.c_[X, Y], columns=["a", "b", "c", "y"])
NEW_FRAME = pandas.DataFrame(NEW, columns=["a", "b", "c"])


@pytest.mark.parametrize(
    "text",
    [
        "y ~ a + I(a**2) + I(a**3) + b",
        "y ~ a * b * c",
        "y ~ np.log(a) + b + I(c**4)",
        "y ~ a + np.log(a) + np.sqrt(b):c",
        "y ~ np.exp(a) + np.log1p(b) + I(1 / c)",
        "y ~ center(a) + standardize(b) + I(a * b**2)",
        "y ~ 0 + a + I(b**3)",
    ],
)
def test_formulas_with_their_interval(text):
    fitted = formula.ols(text, FRAME).fit()
    model = read(to_text(fitted, FRAME[["a", "b", "c"]], error=True, level=0.9))
    result = model.predict(NEW_FRAME, return_error=True)
    assert_near(result.values["y"], fitted.predict(NEW_FRAME))
    interval = fitted.get_prediction(NEW_FRAME).summary_frame(alpha=0.1)
    assert_near(result.errors["y"], (interval.obs_ci_upper - interval.obs_ci_lower) / 2, 1e-6)


@pytest.mark.parametrize(
    "fit",
    [
        lambda exog: sm.WLS(Y, exog, weights=X[:, 0]).fit(),
        lambda exog: sm.GLS(Y, exog, sigma=X[:, 0]).fit(),
        lambda exog: sm.RLM(Y, exog).fit(),
        lambda exog: sm.OLS(Y, exog).fit_regularized(alpha=0.1),
        lambda exog: sm.WLS(Y, exog, weights=X[:, 0]).fit_regularized(alpha=0.1, L1_wt=0.0),
    ],
)
def test_other_linear_models(fit):
    def design(P):
        return np.c_[np.ones(len(P)), P, P[:, 0] ** 3, P[:, 0] * P[:, 1] * P[:, 2], np.log(P[:, 1])]

    fitted = fit(design(X))
    model = read(to_text(fitted, X))
    assert_near(model.predict(NEW).values["y"], design(NEW) @ fitted.params)
    with pytest.raises(NotExportable, match="there is no predicted error to export"):
        to_text(fitted, X, error=True)


def knots():
    return formula.ols("y ~ bs(a, df=4)", FRAME).fit()


def copula():
    ot.RandomGenerator.SetSeed(0)
    marginals = [ot.Normal(2, 0.5), ot.Normal(1, 1)]
    related = ot.ComposedDistribution(marginals, ot.ClaytonCopula(2.0))
    basis = ot.OrthogonalProductPolynomialFactory([ot.HermiteFactory()] * 2)
    return to_text(chaos(related, basis))


def harmonics():
    ot.RandomGenerator.SetSeed(0)
    distribution = ot.ComposedDistribution([ot.Uniform(0, 1), ot.Uniform(1, 2)])
    basis = ot.OrthogonalProductFunctionFactory([ot.HaarWaveletFactory()] * 2)
    return to_text(chaos(distribution, basis))


def two_scalings():
    blocks = [("a", pipe(Standard(), function(np.exp))), ("b", function(np.exp))]
    return to_text(pipe(FeatureUnion(blocks), linear_model.Ridge()).fit(X, Y))


WIDE = DRAW.random((40, 30))
CATEGORIES = FRAME.assign(k=["u", "v"] * 30)
REFUSED = [
    (pipe(function(np.sin), LINE()), "the function 'sin' of a FunctionTransformer is not one"),
    (pipe(PolynomialFeatures(2), function(np.log), LINE()), "takes a function of a step that"),
    (pipe(decomposition.PCA(2), PowerTransformer(), LINE()), "'powertransformer', a PowerTr"),
    (pipe(decomposition.KernelPCA(2), LINE()), "'kernelpca', a KernelPCA, is not a slope and"),
    (pipe(PolynomialFeatures(3), svm.SVR()), "a PolynomialFeatures, is not a slope and"),
    (Target(LINE(), func=np.cbrt, inverse_func=lambda t: t**3), "the transformer of the target"),
    (
        Target(
            ensemble.VotingRegressor([("a", svm.SVR()), ("b", LINE())]), transformer=Standard()
        ),
        "a VotingRegressor inside another estimator is exported only if",
    ),
    (pipe(decomposition.PCA(2), pipe(PowerTransformer(), LINE())), "a function or a basis of one"),
    (
        lambda: to_text(
            pipe(MinMaxScaler(), PolynomialFeatures((1001, 1001)), LINE()).fit(X[:, :1], Y)
        ),
        "a term has the degree 1001, and a database holds degrees up to 1000",
    ),
    (
        Target(linear_model.GammaRegressor(), func=np.log, inverse_func=np.exp),
        "the output goes through two transformations",
    ),
    (GridSearchCV(LINE(), {"positive": [True]}, refit=False), "search with refit=True"),
    (svm.SVR(kernel="poly", degree=0), "of the degree 0 has no counterpart; take a whole number"),
    (two_scalings, "two functions of one input follow different scalings of it"),
    (harmonics, "the basis OrthogonalProductFunctionFactory has no counterpart"),
    (
        lambda: to_text(pipe(PolynomialFeatures(4), linear_model.Ridge()).fit(WIDE, WIDE[:, 0])),
        "the model has more than 20000 terms",
    ),
    (
        lambda: to_text(svm.SVR(kernel="poly", degree=5).fit(WIDE, WIDE[:, 0])),
        "a polynomial kernel of the degree 5 in 30 inputs has 324632 monomials",
    ),
    (lambda: to_text(knots(), FRAME[["a", "b", "c"]]), "'bs(a, df=4)' in the formula is not a"),
    (
        lambda: to_text(formula.ols("y ~ k + a", CATEGORIES).fit(), FRAME[["a"]]),
        "the formula has the categories k",
    ),
    (copula, "reaches its polynomials by a function that a database has not"),
]


@pytest.mark.parametrize("refused, said", REFUSED)
def test_refusals_say_why(refused, said):
    with warnings.catch_warnings(), pytest.raises(NotExportable) as refusal:
        warnings.simplefilter("ignore")
        refused() if callable(refused) else to_text(refused.fit(X, Y))
    assert said in str(refusal.value)
