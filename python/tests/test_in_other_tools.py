"""A model inside scikit-learn and OpenTURNS."""

import numpy as np
import openturns as ot
import pandas
import pytest
import sklearn.base
from conftest import BEAM
from sklearn.ensemble import VotingRegressor
from sklearn.gaussian_process import GaussianProcessRegressor
from sklearn.gaussian_process.kernels import Matern
from sklearn.inspection import PartialDependenceDisplay, partial_dependence, permutation_importance
from sklearn.linear_model import LinearRegression
from sklearn.utils.estimator_checks import check_estimator

import pxrom
import pxrom.export
import pxrom.openturns
from pxrom.sklearn import Surrogate

STEEL = {"Material": 1, "Holes": 2}
NAMES = ["h", "F", "L", "b"]


@pytest.fixture(scope="module")
def beam():
    return pxrom.load(BEAM)


def frame_of(beam, rows):
    draw = np.random.default_rng(6)
    columns = {p.name: draw.uniform(*p.bounds, rows) for p in beam.inputs}
    return pandas.DataFrame(columns).assign(
        Material=draw.choice([1, 2], rows), Holes=draw.choice([0, 2, 4], rows)
    )


def test_has_the_standard_deviation_of_the_exported_process():
    X = np.random.default_rng(1).random((30, 2)) * [1, 50]
    process = GaussianProcessRegressor(Matern([0.5, 30.0], nu=2.5), alpha=1e-3, normalize_y=True)
    fitted = process.fit(X, 200 + 40 * np.sin(5 * X[:, 0]) + X[:, 1])
    new = np.random.default_rng(2).random((20, 2)) * [1, 50]
    wanted = fitted.predict(new, return_std=True)
    model = pxrom.loads(pxrom.export.to_text(fitted))
    assert np.allclose(Surrogate(model).predict(new, return_std=True), wanted, rtol=1e-6)
    assert model.predict(new, return_error=True).error_origin == {"y": "all surfaces"}


def linear(inputs):
    X = np.random.default_rng(0).random((30, inputs))
    return pxrom.loads(pxrom.export.to_text(LinearRegression().fit(X, X[:, 0]), X, X[:, 0]))


@pytest.mark.filterwarnings("ignore")
def test_passes_the_checks_of_scikit_learn():
    """Each check has points with its own number of columns, which only a model with as many inputs
    can take."""
    failed = {}
    for inputs in (1, 2, 3, 4, 5, 10):
        checks = check_estimator(Surrogate(linear(inputs)), generate_only=True)
        for place, (estimator, check) in enumerate(checks):
            name = f"{place} {getattr(check, 'func', check).__name__}"
            try:
                check(estimator)
                failed[name] = None
            except Exception as error:
                failed.setdefault(name, error)
    # It is fitted from the start.
    assert [name.split()[1] for name, error in failed.items() if error is not None] == [
        "check_fit_check_is_fitted"
    ]


def test_predicts_what_the_model_predicts(beam):
    frame = frame_of(beam, 20)
    wanted = beam.predict(frame, return_error=True)
    stress = Surrogate(beam, output="stress")
    assert stress.feature_names == ("Holes", "Material", *NAMES)
    assert np.array_equal(stress.predict(frame), wanted["stress"])
    array = frame[list(stress.feature_names)].to_numpy()
    values, errors = stress.predict(array, return_std=True)
    assert np.array_equal(values, wanted["stress"])
    assert np.array_equal(errors, wanted.errors["stress"])
    steel = Surrogate(beam, STEEL)
    assert steel.feature_names == tuple(NAMES)
    assert np.array_equal(steel.predict(frame[NAMES]), beam.predict(STEEL, frame[NAMES]))
    assert sklearn.base.clone(steel).model is beam


@pytest.mark.parametrize(
    "act, said",
    [
        (lambda beam, X: Surrogate().predict(X), "model has to be a pxrom.Model, not NoneType"),
        (lambda beam, X: Surrogate(beam, STEEL).predict(X[:, 1:]), "3 features, but Surrogate is"),
        (lambda beam, X: Surrogate(beam, STEEL).predict(X * np.nan), "Input X contains NaN"),
        (
            lambda beam, X: Surrogate(linear(4)).predict(X, return_std=True),
            "there is a point without a predicted error of 'y'",
        ),
        (
            lambda beam, X: Surrogate(beam, STEEL).predict(pandas.DataFrame(X, columns=list("hFLB"))),
            "no column for the input 'b'; did you mean 'B'?",
        ),
    ],
)
def test_refusals_say_what_would_be_right(beam, act, said):
    X = frame_of(beam, 3)[NAMES].to_numpy()
    with pytest.raises(ValueError) as refusal:
        act(beam, X)
    assert said in str(refusal.value)


def test_works_in_what_scikit_learn_does_with_regressors(beam):
    frame = frame_of(beam, 60)
    mass = Surrogate(beam, output="mass")
    y = mass.predict(frame)
    other = LinearRegression().fit(frame, y)
    both = VotingRegressor([("model", mass), ("line", LinearRegression())]).fit(frame, y)
    mean = (y + other.predict(frame)) / 2
    assert np.allclose(both.predict(frame), mean)
    importance = permutation_importance(mass, frame, y, random_state=0).importances_mean
    ranked = [frame.columns[place] for place in np.argsort(importance)[::-1]]
    assert ranked[0] == "Material"
    assert ranked[-1] == "F"  # the load weighs nothing
    dependence = partial_dependence(mass, frame, ["Material"], kind="average")
    for value, average in zip([1, 2], dependence["average"][0]):
        assert np.isclose(average, mass.predict(frame.assign(Material=value)).mean())
    shown = PartialDependenceDisplay.from_estimator(mass, frame, ["L", ("h", "b")])
    assert len(shown.pd_results) == 2


def test_is_a_function_of_openturns(beam):
    X = frame_of(beam, 5)[NAMES].to_numpy()
    wanted = beam.predict(STEEL, X, gradient=True)
    everything = pxrom.openturns.function(beam, STEEL)
    assert list(everything.getInputDescription()) == NAMES
    assert list(everything.getOutputDescription()) == list(wanted.outputs)
    assert np.array_equal(everything(X), wanted)
    assert np.array_equal(everything(X[0]), np.asarray(wanted)[0])
    assert np.array_equal(np.array(everything.gradient(X[0])).T, wanted.gradients.array[0])
    stress = pxrom.openturns.function(beam, STEEL, "stress")
    assert np.array_equal(np.ravel(stress(ot.Sample(X))), wanted["stress"])
    assert np.array_equal(np.ravel(stress.gradient(X[1])), wanted.gradients["stress"][1])
    constant = pxrom.load(BEAM.with_name("constant.pxdb"))
    assert pxrom.openturns.function(constant)([0.5])[0] == 7.5
