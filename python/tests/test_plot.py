"""Pictures: what they show is what the model predicts."""

import numpy as np
import pytest
from conftest import BEAM

import pxrom
import pxrom.plot

STEEL = {"Material": 1, "Holes": 2}


@pytest.fixture(scope="module")
def beam():
    return pxrom.load(BEAM)


def test_slices_show_values_errors_and_near_samples(beam, tmp_path):
    figure = pxrom.plot.slices(beam, STEEL, {"L": 1.5, "h": 90}, samples=0.3)
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
            assert bool(bands) == (output.name not in result.scaled_errors)
            if bands:
                top = bands[0].get_paths()[0].vertices[:, 1].max()
                assert np.isclose(
                    top, (result.values[output.name] + abs(result.errors[output.name])).max()
                )
            # Only samples whose other inputs lie near are there, with their own values.
            X, y = beam.samples(STEEL, output=output.name)
            shown = np.asarray(dots.get_offsets())
            assert len(shown) <= len(X)
            for x, value in shown:
                assert ((X[:, column] == x) & (y == value)).any()
    figure.savefig(tmp_path / "slices.png")
    assert (tmp_path / "slices.png").stat().st_size > 10000


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
    with pytest.raises(ValueError, match="two inputs"):
        pxrom.plot.contour(beam, STEEL, output="mass", x="L", y="L")
    with pytest.raises(ValueError, match="was not fitted"):
        pxrom.plot.slices(beam, {"Material": 3, "Holes": 2})
