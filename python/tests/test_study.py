"""A whole study: parameters, combinations, ensembles, errors from cross-validation."""

import os
import resource
import stat

import numpy as np
import pandas
import pytest
import scipy.sparse
import sklearn
from sklearn.dummy import DummyRegressor
from sklearn.gaussian_process import GaussianProcessRegressor
from sklearn.gaussian_process.kernels import RBF, WhiteKernel
from sklearn.linear_model import LinearRegression
from sklearn.model_selection import KFold, ShuffleSplit
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import PolynomialFeatures, StandardScaler
from sklearn.svm import SVR

import pxrom
from pxrom.export import NotExportable, Study

DRAW = np.random.default_rng(3)
X = DRAW.random((30, 2)) * [1, 50] + [1, 30]
NEW = DRAW.random((40, 2)) * [1, 50] + [1, 30]


def mass(points, material):
    return material * points[:, 0] * points[:, 1] + 3.0 * np.sin(4 * points[:, 0])


def process():
    kernel = RBF([1.0, 1.0]) + WhiteKernel(0.1)
    return make_pipeline(
        StandardScaler(), GaussianProcessRegressor(kernel, optimizer=None, normalize_y=True)
    )


def two_inputs():
    return Study().input("L").input("b").output("mass")


def at_of(*materials):
    return pandas.DataFrame(X, columns=["L", "b"]).assign(Material=np.resize(materials, len(X)))


def declared():
    study = Study()
    study.input("L", unit="m", caption="Length", bounds=(1, 2)).input("b", unit="mm")
    study.discrete("Material", caption="1 steel - 2 aluminium")
    study.output("mass", unit="kg", caption="Mass").output("cost")
    return study


def test_check_points_say_whether_a_saved_study_has_changed(tmp_path):
    study = two_inputs().add("mass", LinearRegression().fit(X, X[:, 0]), X, X[:, 0])
    path = tmp_path / "study.pxdb"
    study.save(path, answers=2)
    text = path.read_text()
    assert text.startswith(study.to_text())
    assert text == pxrom.format(study.to_text(), answers=2)
    assert pxrom.check(text)[-1].code == "answers-same"
    assert pxrom.check(text.replace("ID=0", "ID=7"))[-1].code == "text-changed"
    assert np.array_equal(pxrom.loads(text).predict(X=NEW), study.to_model().predict(X=NEW))
    with pytest.raises(ValueError, match="answers has to be a number from 0 to 1000, not -1"):
        study.to_text(answers=-1)


def test_saves_as_a_whole_or_not_at_all(tmp_path):
    study = two_inputs().add("mass", LinearRegression().fit(X, X[:, 0]), X, X[:, 0])
    path, link = tmp_path / "study.pxdb", tmp_path / "link.pxdb"
    path.write_text("kept")
    path.chmod(0o640)
    link.symlink_to("study.pxdb")
    limits = resource.getrlimit(resource.RLIMIT_FSIZE)
    resource.setrlimit(resource.RLIMIT_FSIZE, (100, limits[1]))
    try:
        with pytest.raises(OSError, match="^can't write .*: the file would be larger than"):
            study.save(link)
    finally:
        resource.setrlimit(resource.RLIMIT_FSIZE, limits)
    assert path.read_text() == "kept"
    study.save(link)
    assert pxrom.load(path).text == study.to_text()
    assert link.is_symlink()
    assert stat.S_IMODE(path.stat().st_mode) == 0o640
    assert sorted(os.listdir(tmp_path)) == ["link.pxdb", "study.pxdb"]
    with pytest.raises(FileNotFoundError, match="there is no such file or folder$"):
        study.save(tmp_path / "nowhere" / "study.pxdb")


def test_holds_what_was_declared(tmp_path):
    study = declared()
    wanted = {}
    for material in (2, 1):
        y = mass(X, material)
        fits = {"mass": SVR(C=100).fit(X, y), "cost": LinearRegression().fit(X, 2 * y)}
        for name, fitted in fits.items():
            observed = y if name == "mass" else 2 * y
            study.add(
                name, fitted, {"b": X[:, 1], "L": X[:, 0]}, observed, at={"Material": material}
            )
            wanted[material, name] = fitted.predict(NEW)
    study.save(tmp_path / "study.pxdb")
    assert repr(study) == "<Study mass, cost of Material, L, b in 2 combinations>"
    model = pxrom.load(tmp_path / "study.pxdb")
    assert [str(f) for f in pxrom.check(model.text) if f.severity != "note"] == []
    assert [(p.name, p.unit, p.caption, p.bounds) for p in model.inputs] == [
        ("L", "m", "Length", (1.0, 2.0)),
        ("b", "mm", "", (X[:, 1].min(), X[:, 1].max())),  # of the samples
    ]
    assert [(p.name, p.values) for p in model.discrete] == [("Material", (1, 2))]
    assert [(p.name, p.unit, p.caption) for p in model.outputs] == [
        ("cost", "", ""),
        ("mass", "kg", "Mass"),
    ]
    assert model.combinations == ({"Material": 1}, {"Material": 2})
    for (material, name), values in wanted.items():
        got = model.predict({"Material": material}, NEW).values[name]
        assert np.abs(got - values).max() <= 1e-10 * np.ptp(values)


def cross_validated_error(members, weights, X, y, parts, points):
    """The spread of the predictions without one fold each, from the tools' own predictions: the
    method of the library written out, with all samples and the output scaled to 0 to 1."""
    lower, width = X.min(axis=0), np.ptp(X, axis=0)
    spread = np.ptp(y)
    scaled = (X - lower) / width

    def predicted(fits, P):
        return sum(w * (f.predict(P) - y.min()) / spread for w, f in zip(weights, fits))

    fits_without = []
    for part in parts:
        rest = np.setdiff1d(np.arange(len(X)), part)
        fits_without.append([sklearn.clone(m).fit(X[rest], y[rest]) for m in members])
    order = scaled[np.concatenate(parts)]
    squares = ((order[:, None] - order[None]) ** 2).sum(axis=2)
    np.fill_diagonal(squares, np.inf)
    rho = squares.min(axis=1)[1:].max()
    errors = []
    for point in points:
        q = (((point - lower) / width - scaled) ** 2).sum(axis=1)
        raw = np.array([1 - np.exp(-10 * (q[part].min() / rho) ** 2) for part in parts])
        share = raw / raw.sum()
        without = np.array([predicted(fits, point[None])[0] for fits in fits_without])
        value = predicted(members, point[None])[0]
        mean = (len(parts) * (share * without).sum() + value) / (len(parts) + 1)
        deviation = np.sqrt((share * (without - mean) ** 2).sum())
        damping = min(1.0, np.log(1 + 10 * q.min() / (rho + 0.0001)))
        errors.append((0.005 * q.min() + deviation) * damping * spread * 3)
    return np.array(errors)


def test_weighted_ensemble_with_cross_validation():
    y = mass(X, 1)
    members = [
        process().fit(X, y),
        make_pipeline(StandardScaler(), SVR(C=100)).fit(X, y),
        make_pipeline(PolynomialFeatures(2), LinearRegression()).fit(X, y),
    ]
    weights = [0.5, 0.3, 0.2]
    study = two_inputs()
    study.add("mass", list(zip(members, weights)), X, y, folds=5)
    text = study.to_text()
    assert [str(f) for f in pxrom.check(text) if f.severity != "note"] == []
    result = pxrom.loads(text).predict(None, NEW, return_error=True)
    wanted = sum(w * m.predict(NEW) for w, m in zip(weights, members))
    assert np.abs(result.values["mass"] - wanted).max() <= 1e-10 * np.ptp(y)
    parts = [test for _, test in KFold(5, shuffle=True, random_state=0).split(X)]
    errors = cross_validated_error(members, weights, X, y, parts, NEW)
    assert np.abs(result.errors["mass"] - errors).max() <= 1e-9 * errors.max()
    assert result.scaled_errors == frozenset() and np.all(result.statuses.array == 0)


def test_folds_of_ones_own_and_constants():
    y = mass(X, 2)
    members = [DummyRegressor().fit(X, y), process().fit(X, y)]
    asked = []

    def refit(fitted, X, y):
        asked.append(len(X))
        return sklearn.clone(fitted).fit(X, y)

    study = two_inputs()
    study.add("mass", [(members[0], 0.25), (members[1], 0.75)], X, y, folds=KFold(3), refit=refit)
    assert asked == [20] * 6
    result = study.to_model().predict(None, NEW, return_error=True)
    parts = [test for _, test in KFold(3).split(X)]
    errors = cross_validated_error(members, [0.25, 0.75], X, y, parts, NEW)
    assert np.abs(result.errors["mass"] - errors).max() <= 1e-9 * errors.max()


def test_inputs_stand_in_the_order_of_the_fit():
    frame = pandas.DataFrame(X, columns=["L", "b"])
    fitted = SVR().fit(frame, mass(X, 1))
    two_inputs().add("mass", fitted)
    Study().input("length").input("width").output("mass").add("mass", fitted)
    with pytest.raises(NotExportable, match="in the order 'L' and 'b', the study in"):
        Study().input("b").input("L").output("mass").add("mass", fitted)


def test_an_ensemble_has_the_errors_of_its_members_if_all_have_one():
    y = mass(X, 1)
    pair = [(process().fit(X, y), 0.25), (process().fit(X, 1.1 * y), 0.75)]
    result = two_inputs().add("mass", pair).to_model().predict(NEW, return_error=True)
    deviations = [weight * fitted.predict(NEW, return_std=True)[1] for fitted, weight in pair]
    assert result.error_origin == {"mass": "all surfaces"}
    assert np.allclose(result.errors["mass"], sum(deviations), rtol=1e-6)
    mixed = [pair[0], (SVR().fit(X, y), 0.75)]
    without = two_inputs().add("mass", mixed).to_model().predict(NEW, return_error=True)
    assert np.all(without.statuses.array == -2)
    with pytest.raises(NotExportable):
        two_inputs().add("mass", mixed, error=True)


@pytest.mark.parametrize(
    "act, said",
    [
        (lambda s, f, y: s.input("L"), "there is already a parameter 'L'"),
        (lambda s, f, y: s.input("w", bounds=(2, 1)), "have to be (lower, upper)"),
        (lambda s, f, y: s.input("w", bounds=(0, np.inf)), "have to be (lower, upper)"),
        (lambda s, f, y: s.input(""), "a parameter needs a name"),
        (lambda s, f, y: s.to_text(), "has no fitted model"),
        (lambda s, f, y: s.add("Mass", f, at={"Material": 1}), "did you mean 'mass'?"),
        (lambda s, f, y: s.add("mass", f), "lacks a value of the discrete input 'Material'"),
        (lambda s, f, y: s.add("mass", f, at={"Materials": 1}), "did you mean 'Material'?"),
        (lambda s, f, y: s.add("mass", f, at={"Material": 1.5}), "has to be a whole number"),
        (
            lambda s, f, y: s.add("mass", f, at={"Material": "steel"}),
            "Material='steel' has to be a whole number, such as at={'Material': 1}",
        ),
        (
            lambda s, f, y: s.discrete("Alloy", caption="1 steel, 2 aluminium"),
            'the caption of "Alloy" holds ",", which separates values',
        ),
        (lambda s, f, y: s.input("w", unit="N;m"), 'the unit of "w" holds ";"'),
        (lambda s, f, y: s.output("a,b"), 'the ID "a,b" holds ","'),
        (
            lambda s, f, y: two_inputs().add("mass", f, scipy.sparse.csr_matrix(X), y),
            "a sparse matrix was given for points; pass its toarray()",
        ),
        (
            lambda s, f, y: s.add("mass", f, at_of(1, 2), y, at={"Material": 1}),
            "the points hold 1 and 2 for 'Material', but the combination says Material=1; pass the "
            "rows of that combination alone: X[X['Material'] == 1]",
        ),
        (
            lambda s, f, y: s.add("mass", f, X, pandas.Series(y, name="cost"), at={"Material": 1}),
            "y holds 'cost' where the output 'mass' is added",
        ),
        (lambda s, f, y: s.add("mass", f, y=y, at={"Material": 1}), "pass X as well"),
        (
            lambda s, f, y: Study().input("ab").output("mass").add("mass", f),
            "the fit has 2 inputs, but the inputs are 'ab'; name each, as in inputs=['x0'",
        ),
        (
            lambda s, f, y: s.add(["mass", "cost"], f, at={"Material": 1}),
            "has 1 output, but the outputs are 'mass' and 'cost'",
        ),
        (lambda s, f, y: s.add("mass", [(f, 0.5)], at={"Material": 1}), "add up to 1, not 0.5"),
        (lambda s, f, y: s.add("mass", [f], at={"Material": 1}), "pairs (fitted, weight)"),
        (lambda s, f, y: s.add("mass", f, X, y[:9], at={"Material": 1}), "one row per point"),
        (lambda s, f, y: s.add("mass", f, X, 5.0, at={"Material": 1}), "y has the shape ()"),
        (lambda s, f, y: s.add("mass", f, at={"Material": 1}, folds=5), "pass X and y"),
        (lambda s, f, y: s.add("mass", f, X, y, at={"Material": 1}, folds=99), "2 to 30"),
        (
            lambda s, f, y: s.add("mass", f, X, y, at={"Material": 1}, folds=ShuffleSplit(3)),
            "the folds have to hold each sample once",
        ),
        (lambda s, f, y: s.add("mass", f, at={"Material": 1}, error="yes"), "True or False, not"),
        (
            lambda s, f, y: s.add("mass", f, at={"Material": 1}).to_text(),
            "output 'cost' at Material=1",
        ),
        (lambda s, f, y: s.add("mass", f, at={"Material": 1}).input("w"), "before the first model"),
    ],
)
def test_refusals_say_what_would_be_right(act, said):
    y = mass(X, 1)
    with pytest.raises(ValueError) as refusal:
        act(declared(), SVR().fit(X, y), y)
    assert said in str(refusal.value)
