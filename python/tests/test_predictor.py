"""One point after the other: the same numbers as a prediction at many points."""

import concurrent.futures
import pickle

import numpy as np
import pytest
import scipy.optimize
from conftest import BEAM, MODELS, cases_of
from expensive_model import expensive_model

import pxrom

STEEL = {"Material": 1, "Holes": 2}
POINT = [90.0, 3000.0, 1.5, 45.0]


@pytest.fixture(scope="module")
def beam():
    return pxrom.load(BEAM)


@pytest.mark.parametrize("name", MODELS)
def test_gives_what_predict_gives(name):
    path, cases = cases_of(name)
    model = pxrom.load(path)
    for case in cases:
        x = np.array([case["continuous"][p.name] for p in model.inputs], dtype=float)
        wanted = model.predict(case["discrete"], x[None], return_error=True, gradient=True)
        names = list(reversed(wanted.outputs))
        several = model.at(case["discrete"], names)
        values, errors = several.value_and_error(x)
        gradients = several.gradient(x)
        for place, output in enumerate(names):
            one = model.at(case["discrete"], output)
            assert type(one(x)) is float
            assert one(x) == wanted.values[output][0]
            assert values[place] == wanted.values[output][0]
            assert several(x)[place] == wanted.values[output][0]
            assert np.array_equal(one.value_and_error(x)[1], wanted.errors[output][0], True)
            assert np.array_equal(errors[place], wanted.errors[output][0], True)
            assert np.array_equal(one.gradient(x), wanted.gradients[output][0], True)
            assert np.array_equal(gradients[place], wanted.gradients[output][0], True)
            value, gradient = one.value_and_gradient(x)
            assert value == wanted.values[output][0]
            assert np.array_equal(gradient, wanted.gradients[output][0], True)


def test_takes_what_numpy_takes(beam):
    mass = beam.at(STEEL, "mass")
    wanted = mass(np.array(POINT))
    beside = np.array([POINT, POINT], order="F")[1]
    unaligned = np.frombuffer(b"-" + np.array(POINT).tobytes(), "u1")[1:].view(float)
    unpickled = pickle.loads(pickle.dumps(np.array(POINT)))
    foreign = np.array(POINT, ">f8")
    for x in (POINT, tuple(POINT), np.array(POINT, "f4"), beside, unaligned, unpickled, foreign):
        assert mass(x) == wanted
    assert mass(x=POINT) == wanted


def test_nan_and_what_a_family_lacks(beam):
    x = np.array(POINT)
    x[1] = np.nan
    values, errors = beam.at(STEEL).value_and_error(x)
    assert np.isnan(values).all()
    assert np.isnan(errors).all()
    assert np.isnan(beam.at(STEEL).gradient(x)).all()
    assert np.isnan(beam.at(STEEL, "mass")(x))
    path, cases = cases_of("svr_sk_eps_rbf")
    without_error = pxrom.load(path).at()
    value, error = without_error.value_and_error(list(cases[0]["continuous"].values()))
    assert np.isfinite(value)
    assert np.isnan(error)


@pytest.mark.parametrize(
    "x, said",
    [
        ([1, 2, 3], r"shape \(4,\), with the inputs 'h', 'F', 'L' and 'b', but it has the shape \(3,\)"),
        ([POINT], r"\(1, 4\); Model.predict takes tables"),
        ({"L": 1}, "the point can't be read as real numbers"),
        ([1j, 2, 3, 4], "the point can't be read as real numbers"),
    ],
)
def test_refuses_what_is_no_point(beam, x, said):
    for function in (beam.at(STEEL), beam.at(STEEL, "mass").value_and_gradient):
        with pytest.raises(ValueError, match=said):
            function(x)


def test_refuses_other_names(beam):
    with pytest.raises(ValueError, match="no output 'mas'; did you mean 'mass'?"):
        beam.at(STEEL, "mas")
    with pytest.raises(ValueError, match="'Holes' is missing"):
        beam.at({"Material": 1}, "mass")


def test_keeps_the_limit_of_its_model():
    text = expensive_model(3)
    cost = pxrom.loads(text).cost().operations
    with pytest.raises(ValueError, match=r"and the limit is .* \(limit= and memory_limit= of "):
        pxrom.loads(text, limit=cost - 1).at()
    within = pxrom.loads(text, limit=cost).at()
    assert np.isfinite(within([1, 1, 1]))
    with pytest.raises(ValueError, match=r"Gradients: An .* \(limit= and memory_limit= of "):
        within.gradient([1, 1, 1])


def test_minimises_with_scipy(beam):
    mass, stress = (beam.at(STEEL, name) for name in ("mass", "stress"))
    assert mass.bounds == [parameter.bounds for parameter in beam.inputs]
    found = scipy.optimize.minimize(
        mass.value_and_gradient, POINT, jac=True, bounds=mass.bounds, method="SLSQP",
        constraints={"type": "ineq", "fun": lambda x: 150 - stress(x),
                     "jac": lambda x: -stress.gradient(x)},
    )
    assert found.success
    assert found.fun < mass(POINT)
    assert stress(found.x) <= 150 + 1e-6


def test_describes_itself_and_pickles(beam):
    one, two = beam.at(STEEL, "mass"), beam.at(STEEL, ["stress", "mass"])
    assert repr(one) == "<Predictor mass of h, F, L, b at Holes=2, Material=1>"
    assert two.outputs == ("stress", "mass")
    assert one.inputs == ("h", "F", "L", "b")
    assert two.scaled_errors == {"mass"}
    assert one.discrete == STEEL
    for predictor in (one, two):
        again = pickle.loads(pickle.dumps(predictor))
        assert repr(again) == repr(predictor)
        assert np.array_equal(again(POINT), predictor(POINT))
        assert again.model == beam


def test_serves_many_threads(beam):
    everything = beam.at(STEEL)  # long enough to release the lock
    wanted = everything.value_and_error(POINT)
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        for got in pool.map(everything.value_and_error, [POINT] * 200):
            assert np.array_equal(got, wanted)
