"""Validation: the scores are those of scikit-learn and of the command."""

import json
import subprocess

import numpy as np
import pandas
import pytest
from conftest import BEAM
from sklearn import metrics

import pxrom
import pxrom.plot

MEASURED = BEAM.with_name("measured.csv")


@pytest.fixture(scope="module")
def beam():
    return pxrom.load(BEAM)


@pytest.fixture(scope="module")
def table():
    return pandas.read_csv(MEASURED)


def test_scores_are_those_of_scikit_learn(beam, table):
    validation = beam.validate(table)
    assert validation.outputs == ("deflection", "stress")
    for output in validation.outputs:
        measured = table[output].to_numpy()
        known = ~np.isnan(measured)
        measured, predicted = measured[known], validation.predicted[output][known]
        scores = validation[output]
        close = {"rel": 1e-12}
        assert scores.count == known.sum()
        assert scores.missing == (~known).sum()
        assert scores.r2 == pytest.approx(metrics.r2_score(measured, predicted), **close)
        squared = metrics.mean_squared_error(measured, predicted)
        assert scores.rmse == pytest.approx(np.sqrt(squared), **close)
        absolute = metrics.mean_absolute_error(measured, predicted)
        assert scores.mean_absolute_error == pytest.approx(absolute, **close)
        assert scores.largest_absolute_error == metrics.max_error(measured, predicted)
        assert scores.bias == pytest.approx(np.mean(predicted - measured), **close)
        errors = validation.errors[output][known]
        away = np.abs(predicted - measured)
        assert scores.with_error == np.isfinite(errors).sum()
        assert scores.within == tuple(np.sum(away <= k * errors) for k in (1, 2, 3))


def test_a_large_mean_takes_no_digits(beam):
    draw = np.random.default_rng(3)
    measured = 1e9 + draw.random(1000)
    predicted = measured + 0.1 * draw.standard_normal(1000)
    scores = pxrom._core.compare(measured, predicted, np.full(1000, np.nan))
    assert scores["r2"] == pytest.approx(metrics.r2_score(measured, predicted), rel=1e-12)


def test_scores_are_those_of_the_command(beam, table, command):
    run = subprocess.run(
        [command, "validate", "--json", BEAM, MEASURED], capture_output=True, check=True
    )
    validation = beam.validate(table)
    for entry in json.loads(run.stdout)["outputs"]:
        whole = validation[entry["id"]]
        assert {name: entry[name] for name in whole._fields} == {
            **whole._asdict(), "within": list(whole.within)
        }
        assert len(entry["combinations"]) == 6
        for part in entry["combinations"]:
            assert part["r2"] == validation.scores(entry["id"], part["discrete"]).r2
        lines = [worst["line"] for worst in entry["worst"]]
        assert lines == [row + 2 for row in validation.worst(entry["id"])]


def test_takes_mappings_and_constant_discrete_inputs(beam, table):
    steel = table[(table.Material == 1) & (table.Holes == 2)]
    columns = {name: steel[name].to_numpy() for name in ("L", "b", "h", "F", "stress")}
    validation = beam.validate(columns, {"Material": 1, "Holes": 2})
    assert validation["stress"] == beam.validate(steel)["stress"]
    assert list(validation.frame()["count"]) == [3]


def test_undefined_scores_are_nan(beam, table):
    one = beam.validate(table.head(1))
    assert np.isnan(one["stress"].r2)
    assert one["stress"].rmse == one["stress"].largest_absolute_error
    none = beam.validate(table.assign(stress=None))
    assert none["stress"].missing == len(table)
    assert np.isnan(none["stress"].rmse)


def test_refuses_what_does_not_fit(beam, table):
    with pytest.raises(ValueError, match="no column has measured values"):
        beam.validate(table.drop(columns=["deflection", "stress"]))
    with pytest.raises(ValueError, match="no column for the input 'L'"):
        beam.validate(table.drop(columns="L"))
    with pytest.raises(ValueError, match="Holes=3 in row 0 was not fitted"):
        beam.validate(table.assign(Holes=3))
    with pytest.raises(ValueError, match="the discrete input 'Holes' is missing"):
        beam.validate(table.drop(columns="Holes"))
    with pytest.raises(ValueError, match="1 and 2 for 'Material', but the combination says Material=1"):
        beam.validate(table, {"Material": 1})


def test_pictures_show_the_pairs(beam, table, tmp_path):
    validation = beam.validate(table)
    actual = pxrom.plot.predicted_actual(validation, outputs="stress")
    points = actual.axes[0].lines[0].get_xydata()
    known = ~np.isnan(table.stress)
    assert np.array_equal(points[known, 0], table.stress[known])
    assert np.array_equal(points[known, 1], validation.predicted["stress"][known])
    away = pxrom.plot.residuals(validation).axes[0].lines[1].get_xydata()
    assert np.array_equal(away[:, 1], validation.predicted["deflection"] - table.deflection)
    actual.savefig(tmp_path / "actual.png")
