"""Pictures: what they show is what the model predicts."""

import numpy as np
import pytest
from conftest import BEAM
from sklearn.svm import SVR

import pxrom
import pxrom.export
import pxrom.plot

STEEL = {"Material": 1, "Holes": 2}


@pytest.fixture(scope="module")
def beam():
    return pxrom.load(BEAM)


def test_slices_show_values_errors_and_near_samples(beam, tmp_path):
    figure = pxrom.plot.slices(beam, STEEL, {"L": 1.5, "h": 90}, samples=5)
    axes = np.array(figure.axes).reshape(len(beam.outputs), len(beam.inputs))
    centre = {p.name: np.mean(p.bounds) for p in beam.inputs} | {"L": 1.5, "h": 90}
    for column, varied in enumerate(beam.inputs):
        for row, output in enumerate(beam.outputs):
            line = axes[row, column].lines[0]
            points = {
                **{k: np.full(101, v) for k, v in centre.items()},
                varied.name: line.get_xdata(),
            }
            result = beam.predict(STEEL, points, return_error=True)
            assert np.array_equal(line.get_ydata(), result.values[output.name])
            bands = axes[row, column].collections[:-1]
            dots = axes[row, column].collections[-1]
            assert bool(bands) == bool(np.isfinite(result.errors[output.name]).any())
            if bands:
                top = bands[0].get_paths()[0].vertices[:, 1].max()
                assert np.isclose(
                    top, (result.values[output.name] + abs(result.errors[output.name])).max()
                )
            # The nearest samples in the other inputs are there, the nearest the darkest.
            X, y = beam.samples(STEEL, output=output.name)
            bounds = np.array([p.bounds for p in beam.inputs])
            away = (X - list(centre.values())) / np.ptp(bounds, axis=1)
            away[:, column] = 0.0
            near = np.argsort((away**2).sum(axis=1))[:5]
            assert np.array_equal(dots.get_offsets(), np.c_[X[near, column], y[near]][::-1])
            assert np.all(np.diff(dots.get_alpha()) > 0)
            # So is the point.
            mark = axes[row, column].lines[-1]
            assert mark.get_xdata() == centre[varied.name]
            at = beam.predict(STEEL, centre).values[output.name]
            assert np.array_equal(np.ravel(mark.get_ydata()), at)
    figure.savefig(tmp_path / "slices.png")
    assert (tmp_path / "slices.png").stat().st_size > 10000


def test_many_inputs_go_on_in_further_rows():
    X = np.random.default_rng(5).random((50, 12))
    model = pxrom.loads(pxrom.export.to_text(SVR().fit(X, X.sum(axis=1)), X, X.sum(axis=1)))
    figure = pxrom.plot.slices(model)
    assert max(figure.get_size_inches()) < 14
    rows = [ax.get_subplotspec().rowspan.start for ax in figure.axes]
    assert [rows.count(row) for row in range(3)] == [5, 5, 2]
    assert all(len(ax.collections[-1].get_offsets()) == 12 for ax in figure.axes)
    # Without samples there is the line alone.
    bare = pxrom.plot.slices(pxrom.loads(pxrom.export.to_text(SVR().fit(X, X.sum(axis=1)))))
    assert all(ax.collections[1:] == [] for ax in bare.axes)


def test_inputs_without_bounds_vary_around_the_point():
    text = BEAM.with_name("constant.pxdb").read_text()
    model = pxrom.loads(text.replace("UpperBounds={x;1}", "UpperBounds={x;0}"))
    with pytest.raises(ValueError, match="the input 'x' has no bounds: the point has to name it"):
        pxrom.plot.slices(model)
    for value, ends in ((2.0, [1.0, 3.0]), (0.0, [-0.5, 0.5])):
        line = pxrom.plot.slices(model, point={"x": value}).axes[0].lines[0]
        assert list(line.get_xdata()[[0, -1]]) == ends


def test_contour_is_the_prediction_over_two_inputs(beam, tmp_path):
    figure = pxrom.plot.contour(beam, STEEL, {"F": 3000}, output="stress", x="L", y="h", steps=21)
    figure.savefig(tmp_path / "contour.png")
    corners = beam.predict(
        STEEL, {"L": [1, 2], "h": [120, 60], "b": 45, "F": 3000}, return_error=False
    ).values["stress"]
    low, high = figure.axes[1].get_ylim()
    assert low <= corners.min() and corners.max() <= high


def test_refuses_what_there_is_not(beam):
    with pytest.raises(ValueError, match="no output 'stres'; did you mean 'stress'"):
        pxrom.plot.slices(beam, STEEL, outputs="stres")
    with pytest.raises(ValueError, match="no input 'l'"):
        pxrom.plot.slices(beam, STEEL, {"l": 1.5})
    with pytest.raises(ValueError, match="samples=0.15 has to be a number of samples, 0 for none"):
        pxrom.plot.slices(beam, STEEL, samples=0.15)
    with pytest.raises(ValueError, match="there is no output to show"):
        pxrom.plot.slices(beam, STEEL, outputs=[])
    with pytest.raises(ValueError, match="no input 'l'; did you mean 'L'"):
        pxrom.plot.contour(beam, STEEL, output="mass", x="L", y="l")
    with pytest.raises(ValueError, match="two inputs"):
        pxrom.plot.contour(beam, STEEL, output="mass", x="L", y="L")
    with pytest.raises(ValueError, match="was not fitted"):
        pxrom.plot.slices(beam, {"Material": 3, "Holes": 2})
