"""Each exporter against the live tool: what it predicts, at points that the fit did not see."""

import json
import subprocess
import warnings

import numpy as np
import openturns as ot
import pandas
import pytest
import statsmodels.api as sm
import statsmodels.formula.api as formula
from scipy import interpolate
from sklearn import clone, decomposition, dummy, ensemble, kernel_ridge, linear_model, svm
from sklearn.compose import TransformedTargetRegressor as Target
from sklearn.gaussian_process import GaussianProcessRegressor as Process
from sklearn.gaussian_process.kernels import RBF, ConstantKernel, Matern, WhiteKernel
from sklearn.model_selection import GridSearchCV
from sklearn.pipeline import make_pipeline as pipe
from sklearn.preprocessing import MaxAbsScaler, MinMaxScaler, PolynomialFeatures, PowerTransformer
from sklearn.preprocessing import RobustScaler
from sklearn.preprocessing import StandardScaler as Standard

import pxrom
from pxrom.export import NotExportable, to_text
from pxrom.export._convert import Options, convert
from pxrom.export._monomials import trend_of, trend_terms
from pxrom.export._rounding import correlation, kernels_off

ot.Log.Show(ot.Log.NONE)
DRAW = np.random.default_rng(7)
X = DRAW.random((40, 3)) * [2, 30, 1] + [1, 20, 0.5]
Y = np.sin(3 * X[:, 0]) + 0.1 * X[:, 1] + X[:, 2] ** 2 + 0.05 * DRAW.standard_normal(40) + 5
NEW = DRAW.random((60, 3)) * [2.2, 33, 1.1] + [0.9, 18.5, 0.45]
INF = np.inf


def quiet(fit, *args):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return fit(*args)


def read(text):
    """The model of a text in which the doctor finds nothing to complain of."""
    assert [str(found) for found in pxrom.check(text) if found.severity != "note"] == []
    return pxrom.loads(text)


def assert_near(got, wanted, tolerance=1e-10):
    wanted = np.asarray(wanted, dtype=float).reshape(got.shape)
    assert np.abs(got - wanted).max() <= tolerance * max(
        np.ptp(wanted), 1e-4 * np.abs(wanted).max()
    )


def sklearn_fits():
    """Name to what is to be fitted, all of one output."""
    fixed = {"length_scale_bounds": "fixed", "nu": 2.5}
    product = (
        Matern([0.7, INF, INF], **fixed)
        * Matern([INF, 9.0, INF], **fixed)
        * Matern([INF, INF, 1.0], **fixed)
    )
    return {
        "process, one length": Process(RBF(5.0) + WhiteKernel(0.1)),
        "process, anisotropic": Process(
            2.0 * RBF([1, 10, 1]) + WhiteKernel(0.01), normalize_y=True
        ),
        "process, interpolating": Process(RBF([1, 10, 1]), normalize_y=True),
        "process, alpha by sample": Process(RBF([1, 10, 1]), alpha=np.linspace(0.01, 0.1, 40)),
        "process, constant added": Process(
            RBF([1, 10, 1]) + WhiteKernel(0.1) + ConstantKernel(3.0)
        ),
        "process, factored": Process((ConstantKernel(2.0) + WhiteKernel(0.1)) * RBF([1, 9, 1])),
        "process, product of Matern": Process(3.0 * product + WhiteKernel(0.01), normalize_y=True),
        "process, scaled": pipe(
            Standard(), Process(1.0 * RBF([1, 1, 1], (0.1, 9)) + WhiteKernel(0.1))
        ),
        "svr, rbf": pipe(Standard(), svm.SVR(C=10)),
        "svr, linear": pipe(MaxAbsScaler(), svm.SVR(kernel="linear")),
        "svr, quadratic": pipe(Standard(), svm.SVR(kernel="poly", degree=2, coef0=1.5)),
        "svr, affine": pipe(Standard(), svm.SVR(kernel="poly", degree=1, coef0=-0.5)),
        "svr, sigmoid": pipe(Standard(), svm.SVR(kernel="sigmoid", coef0=-np.e)),
        "nu svr": pipe(RobustScaler(), svm.NuSVR(C=10, nu=0.4)),
        "linear svr": pipe(Standard(), svm.LinearSVR(random_state=0)),
        "ridge, rbf": pipe(Standard(), kernel_ridge.KernelRidge(kernel="rbf", alpha=0.1)),
        "ridge, laplacian": kernel_ridge.KernelRidge(kernel="laplacian", gamma=0.02),
        "ridge, linear": kernel_ridge.KernelRidge(),
        "ridge, quadratic": pipe(
            MinMaxScaler(), kernel_ridge.KernelRidge(kernel="poly", degree=2, coef0=0.7)
        ),
        "linear": linear_model.LinearRegression(),
        "linear, no intercept": linear_model.LinearRegression(fit_intercept=False),
        "lasso": linear_model.Lasso(0.01),
        "log link": linear_model.GammaRegressor(),
        "quadratic": pipe(PolynomialFeatures(2), linear_model.LinearRegression()),
        "quadratic, scaled twice": pipe(
            MinMaxScaler(),
            PolynomialFeatures(2, include_bias=False),
            Standard(),
            linear_model.Ridge(0.1),
        ),
        "interactions": pipe(
            "passthrough", PolynomialFeatures(2, interaction_only=True), linear_model.Ridge()
        ),
        "target scaled": Target(pipe(Standard(), svm.SVR()), transformer=MinMaxScaler()),
        "target, process": Target(
            pipe(Standard(), Process(RBF([1, 1, 1]) + WhiteKernel(0.1))),
            transformer=Standard(),
        ),
        "target under log": Target(
            pipe(Standard(), PolynomialFeatures(2), linear_model.LinearRegression()),
            func=np.log,
            inverse_func=np.exp,
        ),
        "target under sqrt": Target(
            linear_model.LinearRegression(), func=np.sqrt, inverse_func=np.square
        ),
    }


SKLEARN = list(sklearn_fits())


@pytest.mark.parametrize("name", SKLEARN)
def test_scikit_learn(name):
    fitted = quiet(sklearn_fits()[name].fit, X, Y)
    for given in ((), (X, Y)):
        model = read(to_text(fitted, *given))
        assert_near(model.predict(None, NEW).values["y"], fitted.predict(NEW))


@pytest.mark.parametrize("name", [n for n in SKLEARN if n.startswith("process")])
def test_deviation_of_a_process(name):
    fitted = quiet(sklearn_fits()[name].fit, X, Y)
    model = read(to_text(fitted, error=True))
    result = model.predict(None, NEW, return_error=True)
    deviation = quiet(lambda: fitted.predict(NEW, return_std=True))[1]
    assert np.all(result.statuses.array == 0)
    assert np.abs(result.errors["y"] ** 2 - deviation**2).max() <= 1e-9 * np.var(Y)


def test_deviation_goes_through_the_scaler_of_a_target():
    fitted = quiet(sklearn_fits()["target, process"].fit, X, Y)
    result = read(to_text(fitted)).predict(None, NEW, return_error=True)
    deviation = fitted.regressor_.predict(NEW, return_std=True)[1] * fitted.transformer_.scale_[0]
    assert_near(result.errors["y"], deviation, 1e-8)


def test_several_outputs_and_names():
    both = np.c_[Y, 2 * Y + X[:, 0]]
    frame = pandas.DataFrame(X, columns=["a", "b", "c"])
    kernel = RBF([1, 10, 1]) + WhiteKernel(0.1)
    fitted = quiet(Process(kernel, normalize_y=True).fit, frame, both)
    model = read(to_text(fitted, outputs=["u", "v"]))
    assert [p.name for p in model.inputs] == ["a", "b", "c"]
    new = pandas.DataFrame(NEW, columns=["a", "b", "c"])
    wanted, deviation = fitted.predict(new, return_std=True)
    result = model.predict(None, new, return_error=True)
    for column, name in enumerate("uv"):
        assert_near(result.values[name], wanted[:, column])
        assert_near(result.errors[name], deviation[:, column], 1e-8)
    median = dummy.DummyRegressor(strategy="median").fit(X, both)
    got = read(to_text(median, X, both)).predict(None, NEW).values.array
    assert np.all(got == np.median(both, 0))


def ols(columns, y=Y, **options):
    return sm.OLS(y, sm.add_constant(columns)).fit(**options)


KEPT = svm.SVR(C=10).fit(X, Y)
LINE = linear_model.LinearRegression().fit(X, Y)
KRIGED = Process(RBF([1, 10, 1]) + WhiteKernel(0.1), optimizer=None, normalize_y=True).fit(X, Y)


@pytest.mark.parametrize(
    "fitted, given, stored",
    [
        (KEPT, (), 0),
        (KEPT, (X,), 0),
        (KEPT, (X, Y), 40),
        (kernel_ridge.KernelRidge().fit(X, Y), (), 0),
        (LINE, (X,), 0),
        (LINE, (X, Y), 40),
        (KRIGED, (), 40),
        (KRIGED, (X,), 40),
        (ols(X), (X,), 40),
    ],
)
def test_samples_are_stored_with_their_outputs_or_not_at_all(
    fitted, given, stored, command, tmp_path
):
    path = tmp_path / "model.pxdb"
    pxrom.export.save(path, fitted, *given)
    model = read(path.read_text())
    points, outputs = model.samples(output="y")
    assert len(points) == stored
    assert np.allclose(points, X[:stored], rtol=1e-14)
    assert np.allclose(outputs, Y[:stored], rtol=1e-14)
    # Everything else that reads a model copes without.
    assert read(model.to_text()).samples(output="y")[0].shape == (stored, 3)
    page = tmp_path / "page.html"
    for arguments in (["info", "--json", path], ["check", path], ["report", path, "-o", page]):
        run = subprocess.run([command, *arguments], capture_output=True, text=True)
        assert run.returncode == 0, run.stderr
        if arguments[0] == "info":
            assert json.loads(run.stdout)["ensembles"][0]["samples"] == stored


@pytest.mark.parametrize(
    "fitted, given, said",
    [
        (KEPT, (2 * X, Y), "X is not what the SVR was fitted to: it holds"),
        (KEPT, (X[:30], Y[:30]), "X has 30 rows, but the SVR was fitted to 40 samples"),
        (KEPT, (X, 7 * Y), "X and y are not what the SVR was fitted to: a new fit"),
        (LINE, (2 * X, Y), "X and y are not what the LinearRegression was fitted to"),
        (LINE, (X, 7 * Y), "X and y are not what the LinearRegression was fitted to"),
        (linear_model.GammaRegressor().fit(X, Y), (X, -Y), "since a fit to them fails (Some"),
        (KRIGED, (X[::-1], Y[::-1]), "X is not what the GaussianProcessRegressor was fitted to"),
        (KRIGED, (X, 7 * Y), "y is not what the GaussianProcessRegressor was fitted to"),
        (ols(X), (X, 7 * Y), "y is not what the RegressionResultsWrapper was fitted to"),
    ],
)
def test_what_is_given_beside_a_fit_is_compared_with_it(fitted, given, said):
    with pytest.raises(NotExportable) as refusal:
        to_text(fitted, *given)
    assert said in str(refusal.value)
    assert "or leave X and y out" in str(refusal.value)


def test_weights_of_samples_are_no_contradiction():
    weights = np.linspace(0.1, 5, 40)
    for kind in (linear_model.LinearRegression(), svm.SVR(C=10), kernel_ridge.KernelRidge()):
        read(to_text(kind.fit(X, Y, sample_weight=weights), X, Y))


def noise_free(n, length):
    """One input, evenly spaced: coefficients of 1e9 cancel."""
    line = np.linspace(0, 1, n)[:, None]
    kernel = RBF(length, "fixed")
    return Process(kernel, normalize_y=True).fit(line, np.sin(4 * line[:, 0]))


@pytest.mark.parametrize("n", [20, 30, 60])
def test_what_rounding_explains_is_exported_with_a_warning(n):
    fitted = noise_free(n, 3.0)
    with pytest.warns(UserWarning, match="agrees with the tool to .* is only defined to"):
        model = read(to_text(fitted))
    line = np.linspace(0, 1, 37)[:, None]
    # In long doubles, of which the library's and the tool's values are both roundings.
    distances = (line.astype(np.longdouble) - fitted.X_train_.T) / fitted.kernel_.length_scale
    sums = (np.exp(-0.5 * distances**2) * fitted.alpha_).sum(axis=1)
    wanted = sums * fitted._y_train_std + fitted._y_train_mean
    sizes = np.abs(fitted.alpha_).sum() * fitted._y_train_std
    assert np.abs(model.predict(line).values["y"] - wanted).max() <= 2.3e-16 * (n + 8) * sizes

    # What it does not explain is refused in such a fit as well.
    fitted.alpha_ = fitted.alpha_.copy()
    fitted.predict = (
        Process(fitted.kernel, normalize_y=True)
        .fit(fitted.X_train_, np.sin(4.001 * fitted.X_train_[:, 0]))
        .predict
    )
    with pytest.raises(NotExportable, match="and rounding explains"):
        to_text(fitted)


@pytest.mark.parametrize(
    "kind, model",
    [
        (1, lambda k: ot.AbsoluteExponential([1 / k])),
        (2, lambda k: ot.SquaredExponential([np.sqrt(0.5 / k)])),
        (4, lambda k: ot.SphericalModel([1 / k], [1.0], 1.0)),
        (8, lambda k: ot.MaternModel([1 / k], [1.0], 2.5)),
    ],
)
def test_rounding_of_kernels(kind, model):
    """The kernels are those of the tools, and what moves them is as much as moving a point does."""
    scales, off = np.array([0.7, 1.2]), 1e-10
    samples, point = np.array([[0, 0.1], [0.3, 1.0], [1.9, 0.4]]), np.array([0.6, 0.2])

    def product(moved):
        away = np.abs(point - samples) + moved
        return [np.prod([model(k)([a])[0, 0] for k, a in zip(scales, row)]) for row in away]

    values, bound = kernels_off(correlation(kind, scales), samples, point, np.full((3, 2), off))
    np.testing.assert_allclose(values, product(0.0), rtol=1e-13)
    np.testing.assert_allclose(bound, np.subtract(product(-off), product(off)), rtol=1e-3)
    still = kernels_off(correlation(kind, scales), samples, point, np.zeros((3, 2)))[1]
    assert np.all((2.2e-16 * 8 * values < still) & (still < 2.2e-16 * 16 * values))


@pytest.mark.parametrize(
    "fit",
    [
        kernel_ridge.KernelRidge(kernel="poly", degree=2, gamma=0.1),
        kernel_ridge.KernelRidge(kernel="rbf"),
        Process(RBF([1, 10, 1]) + WhiteKernel(0.1), optimizer=None, normalize_y=True),
    ],
)
def test_rounding_grows_with_sums_and_outputs(fit):
    """A sum of n terms is off by n u times their magnitude, and all is linear in the outputs."""
    one, large = (
        convert(clone(fit).fit(X, c * Y), Options(), "auto", INF, INF)[0] for c in (1, 1000)
    )
    np.testing.assert_allclose(large.rounding(NEW), 1e3 * one.rounding(NEW), rtol=1e-6)
    np.testing.assert_allclose(large.error_rounding(NEW), 1e6 * one.error_rounding(NEW), rtol=1e-6)
    magnitude, error = one._terms(NEW)
    assert np.all(error >= 40 * 2.2e-16 * magnitude)
    assert np.all(one.rounding(NEW) > 2 * abs(one.scale) * error)


def test_rounding_of_errors_grows_with_the_variance():
    def surface(c):
        kernel = ConstantKernel(c) * RBF([1, 10, 1]) + WhiteKernel(0.1 * c)
        fitted = Process(kernel, optimizer=None, normalize_y=True).fit(X, Y)
        return convert(fitted, Options(), "auto", INF, INF)[0]

    of_four = surface(4.0).error_rounding(NEW)
    np.testing.assert_allclose(of_four, 4 * surface(1.0).error_rounding(NEW), rtol=1e-6)


def test_rounding_of_an_ensemble_is_that_of_its_parts(monkeypatch):
    seen = []
    monkeypatch.setattr("pxrom.export.study.compare", lambda *given: seen.append(given[3]()))
    for weight in (0.5, 0.25):
        to_text([(KRIGED, weight), (KRIGED, 1 - weight)])
    np.testing.assert_allclose(seen[1], seen[0], rtol=1e-12)


FRAME = pandas.DataFrame(X, columns=["a", "b", "c"])
BOTH = pandas.DataFrame({"u": Y, "v": 2 * Y})
PAIR = linear_model.LinearRegression().fit(X, BOTH.to_numpy())
AVERAGES = dummy.DummyRegressor().fit(X, BOTH.to_numpy())
PIPED = pipe(Standard(), dummy.DummyRegressor()).fit(X, BOTH.to_numpy())


@pytest.mark.parametrize(
    "fitted, given, named, inputs, outputs",
    [
        (LINE, (FRAME, pandas.Series(Y, name="flow")), {}, ["a", "b", "c"], ["flow"]),
        (LINE, (X, pandas.Series(Y)), {}, ["x0", "x1", "x2"], ["y"]),
        (LINE, (), {"inputs": FRAME.columns, "outputs": "flow"}, ["a", "b", "c"], ["flow"]),
        (PAIR, (X, BOTH), {}, ["x0", "x1", "x2"], ["u", "v"]),
        (PAIR, (X, BOTH[["v", "u"]]), {"outputs": ["u", "v"]}, ["x0", "x1", "x2"], ["u", "v"]),
        (AVERAGES, (X,), {}, ["x0", "x1", "x2"], ["y0", "y1"]),
        # Without X it knows neither its inputs nor how many outputs it has.
        (PIPED, (X, BOTH.to_numpy()), {}, ["x0", "x1", "x2"], ["y0", "y1"]),
    ],
)
def test_names_come_from_where_there_are_some(fitted, given, named, inputs, outputs):
    model = read(to_text(fitted, *given, **named))
    assert [p.name for p in model.inputs] == inputs
    assert [p.name for p in model.outputs] == outputs


def test_every_export_checks_itself():
    fitted = svm.SVR(C=10).fit(X, Y)
    fitted.dual_coef_ = fitted.dual_coef_ * (1 + 1e-9)  # libsvm goes on with its own copy
    with pytest.raises(NotExportable, match="differs from the tool's own prediction"):
        to_text(fitted)
    to_text(fitted, tolerance=1e-7)

    process = quiet(Process(RBF([1, 10, 1]) + WhiteKernel(0.1)).fit, X, Y)
    process.L_ = process.L_.copy()
    process.kernel_.k2.noise_level *= 1 + 1e-6

    class Other(Process):
        def predict(self, X, return_std=False, return_cov=False):
            answer = super().predict(X, return_std, return_cov)
            return (answer[0], answer[1] * (1 + 1e-6)) if return_std else answer

    process.__class__ = Other
    with pytest.raises(NotExportable, match="predicted error differs"):
        to_text(process)
    to_text(process, error=False)


def trend(factory):
    return factory(3).build()


def product(scales):
    return ot.ProductCovarianceModel([ot.MaternModel([s], [1.0], 2.5) for s in scales])


def kriged(covariance, basis):
    algorithm = ot.KrigingAlgorithm(ot.Sample(X), ot.Sample(Y[:, None]), covariance, basis)
    algorithm.run()
    return algorithm


SCALES = [0.5, 10.0, 0.5]
QUADRATIC = trend(ot.QuadraticBasisFactory)


@pytest.mark.parametrize(
    "covariance, basis",
    [
        (ot.SquaredExponential(SCALES, [1.0]), trend(ot.ConstantBasisFactory)),
        (ot.AbsoluteExponential(SCALES, [1.0]), trend(ot.LinearBasisFactory)),
        (product(SCALES), QUADRATIC),
        (product(SCALES), ot.Basis([QUADRATIC.build(i) for i in (9, 0, 2)])),
        (ot.AbsoluteExponential(SCALES, [2.0]), ot.Basis(0)),
    ],
)
def test_openturns(covariance, basis):
    algorithm = kriged(covariance, basis)
    fitted = algorithm.getResult()
    result = read(to_text(algorithm, error=True)).predict(None, NEW, return_error=True)
    assert_near(result.values["y"], np.array(fitted.getMetaModel()(ot.Sample(NEW))))
    variance = np.array(fitted.getConditionalMarginalVariance(ot.Sample(NEW))).ravel()
    sill = fitted.getCovarianceModel().getAmplitude()[0] ** 2
    assert np.abs(result.errors["y"] ** 2 - np.abs(variance)).max() <= 1e-9 * sill
    assert np.all(result.statuses.array == 0)


@pytest.mark.parametrize(
    "name", ["sklearn 5/2", "sklearn 1/2", "matern", "exponential", "spherical"]
)
def test_processes_of_one_input(name):
    """With one input, distances over all inputs and products of one per input are the same."""
    one, new = X[::4, :1], NEW[:, :1]  # few, so that nothing cancels
    y = np.sin(3 * one[:, 0])
    if name.startswith("sklearn"):
        nu = 2.5 if name.endswith("5/2") else 0.5
        kernel = Matern(0.6, nu=nu) + WhiteKernel(1e-3)
        fitted = Process(kernel, optimizer=None).fit(one, y)
        wanted, deviation = fitted.predict(new, return_std=True)
    else:
        covariance = {
            "matern": ot.MaternModel([0.6], [1.5], 2.5),
            "exponential": ot.ExponentialModel([0.6], [1.5]),
            "spherical": ot.SphericalModel([0.6], [1.5], 1.2),
        }[name]
        basis = ot.LinearBasisFactory(1).build()
        algorithm = ot.KrigingAlgorithm(ot.Sample(one), ot.Sample(y[:, None]), covariance, basis)
        algorithm.setOptimizeParameters(False)
        algorithm.run()
        fitted = algorithm.getResult()
        wanted = fitted.getMetaModel()(ot.Sample(new))
        deviation = np.sqrt(np.abs(fitted.getConditionalMarginalVariance(ot.Sample(new))))
    result = read(to_text(fitted, error=True)).predict(None, new, return_error=True)
    assert_near(result.values["y"], wanted)
    assert np.abs(result.errors["y"] ** 2 - np.ravel(deviation) ** 2).max() <= 1e-9


@pytest.mark.parametrize("kernel", ["gaussian", "inverse_quadratic"])
@pytest.mark.parametrize("degree", [-1, 0, 1, 2])
def test_scipy(kernel, degree):
    both = np.c_[Y, Y**2]
    options = {"kernel": kernel, "epsilon": 0.7, "degree": degree, "smoothing": 1e-3}
    fitted = quiet(lambda: interpolate.RBFInterpolator(X, both, **options))
    result = read(to_text(fitted)).predict(None, NEW)
    for column, name in enumerate(("y0", "y1")):
        assert_near(result.values[name], fitted(NEW)[:, column])


@pytest.mark.parametrize("kind", [1, 2, 3, 4])
def test_the_smallest_trend(kind):
    terms = trend_terms(kind, 2)
    assert trend_of({term: 1.0 for term in terms}, 2) == (kind, terms)


@pytest.mark.parametrize("level", [0.5, 0.95, 0.99])
def test_statsmodels_interval(level):
    def design(P):
        return np.c_[P, P[:, 1] * P[:, 0], P[:, 2] ** 2]

    fitted = ols(design(X))
    result = read(to_text(fitted, X, level=level, error=True)).predict(None, NEW, return_error=True)
    exog = np.c_[np.ones(len(NEW)), design(NEW)]
    assert_near(result.values["y"], fitted.predict(exog))
    interval = fitted.get_prediction(exog).summary_frame(alpha=1 - level)
    assert_near(result.errors["y"], (interval.obs_ci_upper - interval.obs_ci_lower) / 2, 1e-6)


def test_statsmodels_logarithms_and_formulas():
    double = ols(np.log(X), np.log(Y))
    model = read(to_text(double, X, output_transform="log"))
    exog = np.c_[np.ones(len(NEW)), np.log(NEW)]
    wanted = np.exp(double.predict(exog))
    result = model.predict(NEW, return_error=True)
    assert_near(result.values["y"], wanted)
    interval = double.get_prediction(exog).summary_frame(alpha=0.05)
    half = (interval.obs_ci_upper - interval.obs_ci_lower) / 2
    assert_near(result.errors["y"], wanted * half, 1e-6)
    assert_near(result.upper["y"], np.exp(interval.obs_ci_upper), 1e-6)

    frame = pandas.DataFrame(np.c_[X, Y], columns=["a", "b", "c", "y"])
    new = pandas.DataFrame(NEW, columns=["a", "b", "c"])
    for text in ("y ~ a * b + I(c**2)", "y ~ np.log(a) * np.log(b) + np.log(c)"):
        fitted = formula.ols(text, frame).fit()
        model = read(to_text(fitted, frame[["a", "b", "c"]]))
        assert_near(model.predict(None, new).values["y"], fitted.predict(new))

    # A formula goes by the names of a frame, in whatever order a study declares them.
    study = pxrom.export.Study().input("c").input("a").input("b").output("y")
    study.add("y", formula.ols("y ~ a * b + c", frame).fit(), frame[["a", "b", "c"]])
    wanted = formula.ols("y ~ a * b + c", frame).fit().predict(new)
    assert_near(study.to_model().predict(None, new).values["y"], wanted)


def odd_trend():
    sine = ot.SymbolicFunction(["a", "b", "c"], ["sin(a)"])
    return to_text(kriged(product(SCALES), ot.Basis([sine])))


def rbf(**options):
    return to_text(interpolate.RBFInterpolator(X, Y, **options))


REFUSED = [
    # What can't be exported once it is fitted,
    (svm.SVR(kernel="sigmoid"), "coef0 has to be -e"),
    (kernel_ridge.KernelRidge(kernel="cosine"), "'cosine' has no counterpart"),
    (kernel_ridge.KernelRidge(kernel=np.dot), "a kernel that is a function of one's own has no"),
    (svm.SVR(kernel=lambda a, b: a @ b.T), "a kernel that is a function of one's own has no"),
    (lambda: to_text(svm.SVR(kernel="precomputed").fit(X @ X.T, Y)), "a precomputed kernel has no"),
    (pipe(PowerTransformer(), svm.SVR()), "a PowerTransformer, is not a slope and an intercept"),
    (pipe(PolynomialFeatures(2), svm.SVR()), "has to be a linear model"),
    (
        pipe(decomposition.PCA(2), svm.SVR()),
        "'pca', a PCA, is not a slope and an intercept per input",
    ),
    (Target(svm.SVR(), func=np.log, inverse_func=np.exp), "has to be a linear model"),
    (Target(svm.SVR(), func=np.cbrt, inverse_func=lambda t: t**3), "has no counterpart"),
    (ensemble.RandomForestRegressor(3), "a RandomForestRegressor has no counterpart"),
    (linear_model.TweedieRegressor(power=1.5), "differs from the tool's own prediction"),
    # and what is refused for another reason.
    (lambda: to_text(Process()), "is not fitted; call fit first"),
    (lambda: to_text(linear_model.LinearRegression()), "is not fitted; call fit first"),
    (lambda: to_text(svm.SVR()), "is not fitted; call fit first"),
    (lambda: to_text(object()), "not from a known tool"),
    (lambda: to_text(svm.SVR().fit(X, Y), error=True), "no predicted error to export"),
    (
        lambda: to_text(svm.SVR().fit(X, Y), X[:, :2], Y),
        "X has 2 columns, but the fit has 3 inputs",
    ),
    (odd_trend, "a function of the trend is not a constant"),
    (lambda: rbf(kernel="gaussian", epsilon=1.0, neighbors=9), "neighbors=None"),
    (lambda: to_text(ols(np.c_[X, np.sin(X[:, 0])]), X), "'x4' is not a product of inputs of X"),
    (lambda: to_text(sm.OLS(Y, np.ones(40)).fit()), "design is a constant: pass the inputs as X"),
    (lambda: to_text(ols(X, cov_type="HC3"), error=True), "'HC3' has no counterpart"),
    (
        lambda: to_text(sm.Logit(Y > Y.mean(), X).fit(disp=0)),
        "no counterpart; the exporter accepts the results of OLS",
    ),
]


@pytest.mark.parametrize("refused, said", REFUSED)
def test_refusals_say_why(refused, said):
    with pytest.raises(NotExportable) as refusal:
        refused() if callable(refused) else to_text(quiet(refused.fit, X, Y))
    assert said in str(refusal.value)
