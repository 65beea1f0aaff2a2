"""Reading and predicting: equal to the tools that fitted, to the command, and to itself."""

import concurrent.futures
import copy
import gzip
import io
import json
import pickle
import re
import signal
import subprocess

import numpy as np
import pandas
import pytest
import scipy.sparse
from conftest import BEAM, MODELS, cases_of
from expensive_model import expensive_model
from sklearn.linear_model import LinearRegression

import pxrom
import pxrom.export

STEEL = {"Material": 1, "Holes": 2}
POINT = {"L": 1.5, "b": 45, "h": 90, "F": 3000}


@pytest.fixture(scope="module")
def beam():
    return pxrom.load(BEAM)


def points(model, rows, seed=0):
    draw = np.random.default_rng(seed)
    lower, upper = np.array([parameter.bounds for parameter in model.inputs]).T
    return lower + (upper - lower) * draw.random((rows, len(lower)))


@pytest.mark.parametrize("name", MODELS)
def test_predicts_what_the_tools_predict(name):
    path, cases = cases_of(name)
    model = pxrom.load(path)
    for case in cases:
        asked = case["errors"] is not None
        result = model.predict(case["discrete"], case["continuous"], return_error=asked)
        for output, wanted in case["outputs"].items():
            allowed = case["tolerance"] * max(1.0, abs(wanted))
            assert abs(result.values[output][0] - wanted) <= allowed
        if not asked:
            continue
        for output in result.outputs:
            wanted = case["errors"].get(output)
            has_error = result.error_origin[output] != "none"
            assert result.statuses[output][0] == (0 if has_error else -2)
            assert np.isnan(result.errors[output][0]) == (not has_error)
            if wanted is None:
                continue
            allowed = case["error_tolerance"] * max(1.0, abs(wanted))
            assert abs(result.raw_errors[output][0] - wanted) <= allowed
            if result.error_origin[output] == "all surfaces" and name != "study_beam":
                assert result.errors[output][0] == result.raw_errors[output][0]


def test_a_model_that_costs_too_much_is_refused_before_it_is_evaluated(command, tmp_path):
    path = tmp_path / "expensive.pxdb"
    path.write_text(expensive_model(60))
    said = (
        "An evaluation takes about 9.1e9 floating-point operations at each point, and the limit is "
        "2e9: the model is evaluated with a limit of 9.1e9 operations or more, or with none."
    )
    model = pxrom.load(path, limit=2e9)
    assert 9e9 < model.cost().operations < 9.1e9
    for limited in (model, pickle.loads(pickle.dumps(model))):
        with pytest.raises(ValueError, match=re.escape(said + " (limit= and memory_limit= of ")):
            limited.predict(X=np.zeros((1000000, 60)))
    with pytest.raises(ValueError, match="bytes of memory, and the limit is 1e7"):
        pxrom.load(path, memory_limit=1e7).predict(X=np.zeros((1, 60)))
    with pytest.raises(ValueError, match="limit has to be a number from 0"):
        pxrom.loads("", limit=-1)

    names = [f"x{k}" for k in range(60)]
    table = tmp_path / "points.csv"
    table.write_text(",".join(names) + "\n" + "0," * 59 + "0\n")
    for points in ([f"{name}=0" for name in names], ["--points", table]):
        run = subprocess.run([command, "eval", path, *points], capture_output=True, text=True)
        assert (run.returncode, run.stderr) == (1, f"pxrom eval: {said} --limit sets it.\n")

    # A limit above the cost changes nothing, and gradients have a cost of their own.
    small = tmp_path / "small.pxdb"
    small.write_text(expensive_model(3))
    point = [*(f"{name}=1" for name in names[:3])]
    evaluated = [command, "eval", small, *point]
    free = subprocess.run([*evaluated, "--limit", "none"], capture_output=True, check=True)
    assert subprocess.run([*evaluated, "--limit", "1e5"], capture_output=True).stdout == free.stdout
    assert subprocess.run([*evaluated, "--limit", "1e3"], capture_output=True).returncode == 1
    assert b'"many" is not a number' in subprocess.run(
        [*evaluated, "--limit", "many"], capture_output=True
    ).stderr
    within = pxrom.load(small, limit=pxrom.load(small).cost().operations)
    assert within.predict(X=[[1, 1, 1]]).statuses["f"][0] == 0
    with pytest.raises(ValueError, match="Gradients: An evaluation takes about"):
        within.predict(X=[[1, 1, 1]], gradient=True)


def test_equals_the_command_to_the_last_bit(beam, command):
    arguments = [f"{name}={value}" for name, value in {**STEEL, **POINT}.items()]
    run = subprocess.run(
        [command, "eval", "--json", str(BEAM), *arguments], capture_output=True, check=True
    )
    result = beam.predict(STEEL, POINT, return_error=True)
    outputs = json.loads(run.stdout)["outputs"]
    assert {entry["id"] for entry in outputs} == set(result.outputs)
    for entry in outputs:
        assert entry["value"] == result.values[entry["id"]][0]
        for key, numbers in (
            ("error", result.errors), ("raw_error", result.raw_errors), ("lower", result.lower),
            ("upper", result.upper), ("inside", result.inside), ("distance", result.distance),
        ):
            assert entry[key] == numbers[entry["id"]][0]


def test_takes_arrays_mappings_and_frames(beam):
    names = [parameter.name for parameter in beam.inputs]
    assert names == ["h", "F", "L", "b"]
    X = points(beam, 7)
    wanted = beam.predict(STEEL, X).values.array
    frame = pandas.DataFrame(X, columns=names, index=list("abcdefg"))
    frame.insert(2, "beside", "text")
    shuffled = frame[["beside", *sorted(names)]]
    of_frame = beam.predict(STEEL, shuffled, return_error=True, gradient=True)
    for got in (
        beam.predict(STEEL, np.asfortranarray(X)).values,
        beam.predict(STEEL, X.tolist()).values,
        beam.predict(dict(reversed(STEEL.items())), dict(zip(names, X.T))).values,
        of_frame.values,
    ):
        assert np.array_equal(np.asarray(got), wanted)
    assert len(of_frame.values) == 3
    made = of_frame.frame()
    assert list(made.index) == list("abcdefg")
    assert ",".join(made.columns[:5]) == "deflection,mass,stress,deflection error,mass error"
    assert np.array_equal(made["dstress/dL"], of_frame.gradients["stress"][:, 2])
    # A single value is used for all points.
    one = beam.predict(STEEL, {**dict(zip(names, X.T)), "L": 1.25}).values["mass"]
    X[:, 2] = 1.25
    assert np.array_equal(one, beam.predict(STEEL, X)["mass"])
    assert beam.predict(STEEL, np.empty((0, 4))).values.array.shape == (0, 3)


def test_gradients_are_the_slopes_of_the_values(beam):
    X = points(beam, 5, seed=1)
    result = beam.predict(STEEL, X, gradient=True)
    assert result.gradients.array.shape == (5, 3, 4)
    for place in range(4):
        step = np.zeros(4)
        step[place] = 1e-5 * (beam.inputs[place].upper - beam.inputs[place].lower)
        ahead = beam.predict(STEEL, X + step).values.array
        behind = beam.predict(STEEL, X - step).values.array
        slopes = (ahead - behind) / (2 * step[place])
        assert np.allclose(result.gradients.array[:, :, place], slopes, rtol=1e-5, atol=1e-7)


@pytest.mark.parametrize("mode", ["exact", "fast"])
def test_results_are_the_same_with_any_number_of_jobs(beam, mode):
    X = points(beam, 3000)
    X[700] = np.nan
    alone = beam.predict(STEEL, X, return_error=True, gradient=True, mode=mode)
    many = beam.predict(STEEL, X, return_error=True, gradient=True, mode=mode, jobs=3)
    assert np.array_equal(many.values, alone.values, True)
    assert np.array_equal(many.errors, alone.errors, True)
    assert np.array_equal(many.gradients, alone.gradients, True)
    assert np.array_equal(many.statuses, alone.statuses)


def test_a_signal_ends_a_long_prediction(beam):
    def alarm(*_):
        raise InterruptedError

    X = points(beam, 500000)
    before = signal.signal(signal.SIGALRM, alarm)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.2)
        with pytest.raises(InterruptedError):
            beam.predict(STEEL, X, return_error=True, jobs=2)
    finally:
        signal.signal(signal.SIGALRM, before)


def test_fast_mode_is_near(beam):
    X = points(beam, 200)
    exact, fast = (beam.predict(STEEL, X, mode=mode).values.array for mode in ("exact", "fast"))
    assert np.all(np.abs(exact - fast) <= 1e-11 * np.abs(exact).max(axis=0))


def test_values_do_not_depend_on_asking_for_errors():
    model = pxrom.load(cases_of("svr_sk_eps_rbf")[0])
    X = points(model, 4)
    plain, asked = model.predict(None, X), model.predict(None, X, return_error=True)
    assert np.array_equal(plain.values.array, asked.values.array)
    assert np.all(asked.statuses.array == -2) and np.all(np.isnan(asked.errors.array))
    assert asked.error_origin == {asked.outputs[0]: "none"}
    assert plain.errors is None and np.all(plain.statuses.array == 0)


def test_errors_are_in_the_unit_of_the_output(beam):
    result = beam.predict(STEEL, POINT, return_error=True)
    assert result.scaled_errors == {"mass"}
    assert result.error_origin == {
        "deflection": "cross-validation", "mass": "all surfaces", "stress": "cross-validation"
    }
    assert beam.at(STEEL).error_origin == result.error_origin
    # Half a percent of 47 kg: in kg, as the other outputs have it in their unit.
    assert 0.2 < result.errors["mass"][0] < 0.4
    assert result.lower["mass"] == result.values["mass"] - result.errors["mass"]
    assert result.upper["mass"] == result.values["mass"] + result.errors["mass"]
    assert np.array_equal(result.errors["stress"], result.raw_errors["stress"])


def test_says_where_points_are_relative_to_the_samples(beam):
    samples, _ = beam.samples(STEEL, output="stress")
    names = [p.name for p in beam.inputs]
    ranges = beam.sample_ranges(STEEL, output="stress")
    assert list(ranges) == names
    assert np.allclose(list(ranges.values()), [(c.min(), c.max()) for c in samples.T], rtol=1e-12)
    X = np.vstack([samples[:2], samples.mean(axis=0), samples.max(axis=0)])
    X[3, 2] = 50.0
    result = beam.predict(STEEL, X)
    X[:] = np.nan  # what was predicted counts
    assert result.inside["stress"].tolist() == [True, True, True, False]
    assert result.sides["stress"].tolist() == [[0] * 4] * 3 + [[0, 0, 1, 0]]
    scaled = (samples - samples.min(axis=0)) / np.ptp(samples, axis=0)
    apart = np.sqrt(((scaled[:, None] - scaled) ** 2).sum(axis=2))
    spacing = np.median(np.where(np.eye(len(scaled)), np.inf, apart).min(axis=1))
    centre = (samples.mean(axis=0) - samples.min(axis=0)) / np.ptp(samples, axis=0)
    nearest = np.sqrt(((scaled - centre) ** 2).sum(axis=1)).min() / spacing
    assert np.allclose(result.distance["stress"][:3], [0, 0, nearest], rtol=1e-9, atol=1e-9)
    again = pickle.loads(pickle.dumps(beam.predict(STEEL, samples)))
    assert again.inside["mass"].all()


def test_locates_each_row_at_its_own_combination(beam):
    frame = pandas.DataFrame(points(beam, 12, seed=3), columns=[p.name for p in beam.inputs])
    frame["L"] += np.arange(12) % 2 * 1.5
    frame["Material"], frame["Holes"] = [1, 2] * 6, [0, 0, 2, 2, 4, 4] * 2
    result = beam.predict(frame, return_error=True)
    for row in range(12):
        key = {name: int(frame[name].iloc[row]) for name in ("Material", "Holes")}
        alone = beam.predict(key, frame.iloc[[row]], return_error=True)
        assert np.array_equal(result.inside.array[row], alone.inside.array[0])
        assert np.array_equal(result.distance.array[row], alone.distance.array[0])
        assert np.array_equal(result.sides.array[row], alone.sides.array[0])
        assert np.array_equal(result.raw_errors.array[row], alone.raw_errors.array[0], True)
    kinds = {beam.at(key).error_origin["deflection"] for key in beam.combinations}
    assert set(result.error_origin["deflection"].split(" or ")) == kinds


def test_without_samples_nothing_is_known_to_be_inside():
    model = pxrom.loads(pxrom.export.to_text(LinearRegression().fit([[0.0], [1.0]], [0.0, 1.0])))
    result = model.predict([[0.5]])
    assert not result.inside.array.any()
    assert np.isnan(result.distance.array).all()
    assert model.sample_ranges(output=model.outputs[0].name) == {}


def test_lists_what_the_model_holds(beam):
    assert {p.name: p.values for p in beam.discrete} == {"Holes": (0, 2, 4), "Material": (1, 2)}
    assert len(beam.combinations) == 6
    assert beam.combinations[0] == {"Holes": 0, "Material": 1}
    length = next(p for p in beam.inputs if p.name == "L")
    assert (length.unit, length.bounds, length.caption) == ("m", (1.0, 2.0), "Beam length")
    assert [p.name for p in beam.outputs] == ["deflection", "mass", "stress"]
    kinds = {p.name: (p.kind, p.enabled) for p in beam.parameters}
    assert kinds["Slenderness"] == ("derived", True)
    assert kinds["Finish"] == ("discrete", False)
    for combination in beam.combinations:
        assert np.all(beam.predict(combination, POINT).statuses.array == 0)


@pytest.mark.parametrize(
    "discrete, X, said",
    [
        ({"Materiel": 1}, POINT, "no discrete input 'Materiel'; did you mean 'Material'?"),
        ({"Material": 1}, POINT, "'Holes' is missing; it takes 0, 2 or 4"),
        ({"Material": 3, "Holes": 2}, POINT, "Material=3 was not fitted; it takes 1 or 2"),
        ({"Material": 1.5, "Holes": 2}, POINT, "Material=1.5 was not fitted"),
        ([1, 2], POINT, "is a mapping by name: {'Holes': ..., 'Material': ...}, not list"),
        (np.ones((2, 4)), None, "points and is a mapping by name: {'Holes': ..., 'Material'"),
        ({**STEEL, "L": 1}, POINT, "'L' is a continuous input: it goes into the points X"),
        ({**STEEL, "Holes": np.array([2, 4])}, POINT, "put it among the points of predict"),
        (
            {"Material": 1},
            pandas.DataFrame({**POINT, "Material": [1, 2], "Holes": 2}),
            "the points hold 1 and 2 for 'Material', but the combination says Material=1; leave "
            "'Material' out of the combination",
        ),
        (
            None,
            pandas.DataFrame({**POINT, "Material": [1, 3], "Holes": 2}, index=["a", "b"]),
            "Material=3 in row 'b' was not fitted; it takes 1 or 2",
        ),
        (None, {**POINT, "Material": [1, "steel"], "Holes": 2}, "='steel' in row 1 was not"),
        (None, {**POINT, "Material": [1, 1.5], "Holes": 2}, "Material=1.5 in row 1 was not"),
        (None, {**POINT, "Material": [1, 2]}, "'Holes' is missing; it takes 0, 2 or 4"),
        (STEEL, {**POINT, "Material": [[1]]}, "'Material' has 2 dimensions"),
        (None, {**POINT, "Material": [1, 2], "L": [1] * 3, "Holes": 2}, "2 values for 'Material'"),
        (STEEL, scipy.sparse.eye(4), "a sparse matrix was given for points; pass its toarray()"),
        (STEEL, None, "X is missing"),
        (STEEL, [[1, 2, 3]], "3 columns, but the model has 4 inputs, in this order: 'h', 'F'"),
        (STEEL, [1, 2, 3, 4], "1 dimension(s); for one point write [[...]]"),
        (STEEL, [["a", 2, 3, 4]], "can't be read as real numbers"),
        (STEEL, [[1j, 2, 3, 4]], "can't be read as real numbers"),
        (STEEL, {**POINT, "l": 1}, "no input 'l'; did you mean 'L'?"),
        (STEEL, {"L": 1, "b": 2, "h": 3}, "input 'F' is missing"),
        (STEEL, {**POINT, "L": [[1, 2]]}, "'L' has 2 dimensions; give one value per point"),
        (STEEL, {**POINT, "L": [1, 2], "F": [1, 2, 3]}, "length: 2 values for 'L', 3 for 'F'"),
        (STEEL, pandas.DataFrame({"L": [1], "b": [2], "h": [3], "f": [4]}), "did you mean 'f'?"),
    ],
)
def test_refusals_say_what_would_be_right(beam, discrete, X, said):
    with pytest.raises(ValueError) as refusal:
        beam.predict(discrete, X)
    assert said in str(refusal.value)


def test_refuses_combinations_that_were_not_fitted(beam, monkeypatch):
    monkeypatch.setattr("pxrom._model._MOST_SHOWN", 5)  # as many as there are
    lines = [line for line in beam.text.splitlines(True) if "{Material;2},{Holes;4}" not in line]
    with pytest.raises(ValueError, match="there are: Holes=0, .*; Holes=4, Material=1$"):
        pxrom.loads("".join(lines)).predict({"Material": 2, "Holes": 4}, POINT)
    with pytest.raises(ValueError, match="'Material': 2} in row 1 was not fitted; there are: "):
        pxrom.loads("".join(lines)).predict({**POINT, "Material": [1, 2], "Holes": 4})


def test_predicts_each_row_at_its_own_combination(beam):
    frame = pandas.DataFrame(points(beam, 40), columns=[p.name for p in beam.inputs])
    draw = np.random.default_rng(4)
    frame["Material"] = draw.choice([1.0, 2.0], 40)
    frame["Holes"] = pandas.Categorical(draw.choice([0, 2, 4], 40))
    frame.index = frame.index[::-1]
    frame.iloc[7, 0] = np.nan
    result = beam.predict(frame, return_error=True, gradient=True)
    assert list(result.frame().index) == list(frame.index)
    for row in range(40):
        key = {"Material": int(frame.Material.iloc[row]), "Holes": int(frame.Holes.iloc[row])}
        alone = beam.predict(key, frame.iloc[[row]], return_error=True, gradient=True)
        assert np.array_equal(result.values.array[row], alone.values.array[0], True)
        assert np.array_equal(result.errors.array[row], alone.errors.array[0], True)
        assert np.array_equal(result.gradients.array[row], alone.gradients.array[0], True)
        assert np.array_equal(result.statuses.array[row], alone.statuses.array[0])
    # One of them may be the same for all points.
    partly = beam.predict({"Holes": 2}, frame.assign(Holes=2), return_error=True)
    assert np.array_equal(partly["mass"], beam.predict(frame.assign(Holes=2))["mass"], True)
    of_mapping = beam.predict({**POINT, "Material": [2, 1], "Holes": 2})["mass"]
    assert of_mapping[1] == beam.predict(STEEL, POINT)["mass"][0]
    assert beam.predict(frame.iloc[:0], gradient=True).gradients.array.shape == (0, 3, 4)


def test_refuses_other_arguments(beam):
    with pytest.raises(ValueError, match="'exact' or 'fast', not 'quick'"):
        beam.predict(STEEL, POINT, mode="quick")
    for jobs in (0, 1025, "2"):
        with pytest.raises(ValueError, match="jobs has to be a number from 1 to 1024"):
            beam.predict(STEEL, POINT, jobs=jobs)
    with pytest.raises(KeyError, match="did you mean 'mass'"):
        beam.predict(STEEL, POINT)["Mass"]
    with pytest.raises(ValueError, match="no output 'Mass'; did you mean 'mass'"):
        beam.samples(STEEL, output="Mass")
    for act, said in (
        (lambda: pxrom.load(7), "load takes a path, bytes or an open file, not int"),
        (lambda: pxrom.loads(BEAM), f"call pxrom.load('{BEAM}')"),
        (lambda: pxrom.check(7), "the text of a database is a str, bytes or an open file, not int"),
    ):
        with pytest.raises(TypeError) as refusal:
            act()
        assert said in str(refusal.value)
    with pytest.raises(ValueError, match=r"to read a file, call pxrom.load\('beam.pxdb'\)"):
        pxrom.loads("beam.pxdb")
    with pytest.raises(ValueError, match="but this is a text: call pxrom.loads$"):
        pxrom.load(beam.text)


def test_takes_what_is_clear(beam):
    """A path to check, points alone without discrete inputs, a frame that agrees."""
    assert pxrom.check(BEAM) == pxrom.check(beam.text)
    result = beam.predict(STEEL, POINT)
    assert np.array_equal(np.asarray(result), result.values.array)
    assert list(result) == [{name: result[name][0] for name in result.outputs}]
    assert copy.deepcopy(beam) is beam
    agrees = beam.predict(STEEL, pandas.DataFrame({**POINT, "Material": [1]}))
    assert np.array_equal(agrees.values.array, result.values.array)
    alone = pxrom.load(cases_of("svr_sk_eps_rbf")[0])
    X = points(alone, 3)
    wanted = alone.predict(None, X).values.array
    assert np.array_equal(alone.predict(X).values.array, wanted)
    named = dict(zip((parameter.name for parameter in alone.inputs), X.T))
    assert np.array_equal(alone.predict(named).values.array, wanted)


@pytest.mark.parametrize("name", MODELS)
@pytest.mark.parametrize("return_error", [False, True])
def test_a_point_with_nan_has_no_value_from_any_family(name, return_error):
    model = pxrom.load(cases_of(name)[0])
    combination = model.combinations[0]
    X = np.vstack([points(model, 2)] * 2)
    wanted = model.predict(combination, X, return_error=return_error, gradient=True)
    X[1, -1] = np.nan
    result = model.predict(combination, X, return_error=return_error, gradient=True)
    assert np.all(result.statuses.array[1] == 1)
    for got, was in zip(
        (result.values, result.errors, result.gradients),
        (wanted.values, wanted.errors, wanted.gradients),
    ):
        if got is not None:
            assert np.all(np.isnan(got.array[1]))
            assert np.array_equal(got.array[[0, 2, 3]], was.array[[0, 2, 3]], equal_nan=True)
    assert np.array_equal(result.statuses.array[[0, 2, 3]], wanted.statuses.array[[0, 2, 3]])


def test_says_why_a_text_is_refused(tmp_path, beam):
    for text in ("", "nothing", beam.text.replace("RegistrationRank=", "RegistrationRank=,")):
        with pytest.raises(ValueError, match=r"^line \d+: "):
            pxrom.loads(text)
    broken = tmp_path / "broken.pxdb"
    broken.write_text("nothing")
    with pytest.raises(ValueError, match="broken.pxdb: line 1"):
        pxrom.load(broken)
    with pytest.raises(FileNotFoundError, match="^can't read .*: there is no such file or folder$"):
        pxrom.load(tmp_path / "absent.pxdb")
    with pytest.raises(IsADirectoryError, match="it is a folder$"):
        pxrom.load(tmp_path)


def test_reads_bytes_open_files_and_gzip(tmp_path, beam, monkeypatch):
    raw = BEAM.read_bytes()
    packed = gzip.compress(raw)
    for read in (pxrom.load, pxrom.loads):
        for given in (raw, bytearray(raw), packed, io.BytesIO(packed), io.StringIO(beam.text)):
            assert read(given) == beam
    assert pxrom.check(packed) == pxrom.check(beam.text)
    beam.save(tmp_path / "beam.pxdb")
    beam.save(tmp_path / "beam.pxdb.gz")
    assert (tmp_path / "beam.pxdb").read_bytes() == raw
    assert (tmp_path / "beam.pxdb.gz").stat().st_size < len(raw) / 2
    assert pxrom.load(tmp_path / "beam.pxdb.gz") == beam
    for damaged in (packed[:-9], packed[:-6] + b"abcdef", packed[:40] + b"----" + packed[44:]):
        with pytest.raises(ValueError, match="the compressed text is damaged"):
            pxrom.loads(damaged)
    (tmp_path / "latin").write_bytes(b"\xe4")
    with open(tmp_path / "latin", encoding="utf-8") as file:
        with pytest.raises(ValueError, match="open it with 'rb'"):
            pxrom.load(file)
    monkeypatch.setattr("pxrom._files._MOST_UNPACKED", 1000)
    with pytest.raises(ValueError, match="holds more than 1000 bytes: decompress it first"):
        pxrom.loads(packed)


def test_shows_no_character_that_changes_the_direction(beam):
    turned = pxrom.loads(beam.text.replace("Beam length", "a\u202eb").replace("Holes", "Ho\u2066"))
    assert turned.inputs[2].caption == "a\u202eb"
    with pytest.raises(ValueError) as refused:
        turned.predict({"Material": 1, "Ho\u2066": 7}, [[1, 1, 1, 1]])
    findings = " ".join(map(str, pxrom.check(turned.text.replace("{Ho\u2066;2}", "{Hx\u2066;2}"))))
    assert "Hx\\u2066" in findings
    for shown in (repr(turned), turned._repr_html_(), str(refused.value), findings):
        assert "\u202e" not in shown and "\u2066" not in shown


def test_pickles_by_its_text(beam):
    X = points(beam, 3)
    again = pickle.loads(pickle.dumps(beam))
    assert again == beam and again.text == beam.text
    assert np.array_equal(again.predict(STEEL, X).values.array, beam.predict(STEEL, X).values.array)
    assert len(pickle.dumps(beam)) < len(beam.text) + 200


def test_serves_many_threads(beam):
    fresh = pxrom.loads(beam.text)
    tables = [points(fresh, 300, seed) for seed in range(24)]
    keys = [fresh.combinations[seed % 6] for seed in range(24)]

    def run(place):
        return fresh.predict(keys[place], tables[place], return_error=True)

    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        results = list(pool.map(run, range(24)))
    for place, result in enumerate(results):
        alone = beam.predict(keys[place], tables[place], return_error=True)
        assert np.array_equal(result.values.array, alone.values.array)
        assert np.array_equal(result.errors.array, alone.errors.array, equal_nan=True)


def test_check_and_format(beam):
    assert not [found for found in pxrom.check(beam.text) if found.severity != "note"]
    damaged = beam.text.replace("GenomeWeight=", "GenomWeight=", 1)
    found = next(f for f in pxrom.check(damaged) if f.severity == "error")
    assert "GenomeWeight=" in found.sentence
    assert str(found).startswith(f"{found.line}:{found.column}: error: {found.sentence} [")
    canonical = pxrom.format(beam.text)
    assert pxrom.format(canonical) == canonical == beam.to_text()
    X = points(beam, 5)
    again = pxrom.loads(canonical)
    for combination in beam.combinations:
        wanted = beam.predict(combination, X).values
        assert np.array_equal(again.predict(combination, X).values, wanted)


def test_texts_of_any_encoding_survive(tmp_path):
    path = tmp_path / "latin.pxdb"
    raw = BEAM.read_bytes().replace(b"Beam length", "Länge".encode("latin-1"))
    path.write_bytes(raw)
    model = pxrom.load(path)
    caption = next(p.caption for p in model.inputs if p.name == "L")
    assert caption.encode("utf-8", "surrogateescape") == "Länge".encode("latin-1")
    assert model.to_text().encode("utf-8", "surrogateescape").count(b"L\xe4nge") == 1


def test_prints_in_a_notebook(beam):
    text = beam.text.replace("Beam length", "<b>&")
    page = pxrom.loads(text)._repr_html_()
    assert "&lt;b&gt;&amp;" in page and "<b>" not in page
    assert "1 to 2" in page and "0, 2, 4" in page
    assert repr(beam) == (
        "<Model deflection, mass, stress of Holes, Material, h, F, L, b in 6 combinations>"
    )
    result = beam.predict(STEEL, points(beam, 20), return_error=True)
    assert result._repr_html_().count("<tr>") == 13
    assert ", the first 12" in result._repr_html_()
    assert "the first" not in beam.predict(STEEL, points(beam, 12))._repr_html_()
    assert repr(result) == "<Prediction of deflection, mass, stress at 20 point(s) with errors>"


def test_writes_code_and_fmus_as_the_command_does(tmp_path, beam, command):
    needs = beam.code(tmp_path, name="beam", combination={"Material": 1, "Holes": 2}, errors=True)
    beam.fmu(tmp_path / "beam.fmu", fmi=3, outputs=["mass"])
    other = tmp_path / "other"
    chosen = ["--combination", "Material=1,Holes=2", "--errors"]
    subprocess.run([command, "code", BEAM, "-o", other, *chosen], check=True, capture_output=True)
    exported = ["--export", other / "beam.fmu", "--fmi", "3", "--outputs", "mass"]
    subprocess.run([command, "fmu", BEAM, *exported], check=True, capture_output=True)
    for name in ("beam.h", "beam.c", "beam.fmu"):
        assert (tmp_path / name).read_bytes() == (other / name).read_bytes()
    assert f"{needs.table_bytes} bytes of constants" in (other / "beam.h").read_text()


def test_writes_no_code_that_it_refuses(tmp_path, beam):
    with pytest.raises(ValueError, match='no code for the model: The model has no output "cost"'):
        beam.code(tmp_path / "none", outputs=["cost"])
    with pytest.raises(ValueError, match="There are FMUs of FMI 2 and 3, but not of 4"):
        beam.fmu(tmp_path / "none.fmu", fmi=4)
    assert not list(tmp_path.iterdir())
