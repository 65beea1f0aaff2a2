"""Exports to the family of Gaussian processes, beside the table of test_exporters_table.py."""

import warnings

import numpy as np
import pytest
import stand_ins as si
from exporters_table import BOTH, LENGTHS, POINTS, X, Y
from scipy import interpolate
from sklearn.compose import TransformedTargetRegressor
from sklearn.gaussian_process import GaussianProcessRegressor as Process
from sklearn.gaussian_process import kernels as k
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import StandardScaler

import pxrom
from pxrom.export import NotExportable, to_text

ROUGH, NOISE = k.Matern(LENGTHS, nu=1.5), k.WhiteKernel(0.1)


def fit(kernel, **options):
    return Process(kernel, optimizer=None, **options).fit(X, Y)


def away(got, wanted):
    return np.abs(got - wanted).max() / np.ptp(wanted)


def test_scalers_of_inputs_and_target():
    inner = make_pipeline(
        StandardScaler(), Process(k.Matern([1, 1, 1], nu=1.5) + NOISE, optimizer=None)
    )
    fitted = TransformedTargetRegressor(inner, transformer=StandardScaler()).fit(X, Y)
    result = pxrom.loads(to_text(fitted, X, Y)).predict(None, POINTS, return_error=True)
    assert away(result.values["y"], fitted.predict(POINTS)) <= 1e-12
    deviation = fitted.regressor_.predict(POINTS, return_std=True)[1] * np.std(Y)
    assert away(result.errors["y"], deviation) <= 1e-12


def test_cross_validation_scales_the_ensemble():
    fitted = fit(ROUGH + k.DotProduct(2.0) + NOISE)
    result = pxrom.loads(to_text(fitted, X, Y, folds=3)).predict(None, POINTS, return_error=True)
    assert away(result.values["y"], fitted.predict(POINTS)) <= 1e-12
    assert np.ptp(result.errors["y"]) > 0.0


@pytest.mark.parametrize(
    "kernel, options, includes, variance",
    [(ROUGH, {"alpha": 0.1}, "0", 0.0), (2.0 * (ROUGH + NOISE), {"alpha": 0.3}, "1", 0.2)],
)
def test_the_text_says_whose_error_it_is(kernel, options, includes, variance):
    text = to_text(fit(kernel, **options), error=True)
    lines = dict(line.strip().split("=", 1) for line in text.splitlines() if "=" in line)
    assert lines["GPErrorIncludesNoise"] == includes
    assert float(lines["GPNoiseVariance"]) == pytest.approx(variance, rel=1e-14)


def test_without_an_error():
    assert "GPSavePredictorError=0" in to_text(fit(ROUGH), error=False)


@pytest.mark.parametrize("power", [0.5, 1.5, 3.0])
@pytest.mark.parametrize(
    "kernel",
    [k.RBF(LENGTHS), k.Matern(LENGTHS, nu=0.5), k.RationalQuadratic(5.0, 0.7), ROUGH],
    ids=lambda kernel: type(kernel).__name__,
)
def test_powers(kernel, power):
    fitted = fit(1.0 + (2.0 * kernel) ** power + NOISE)
    if kernel is ROUGH and power != 3.0:
        with pytest.raises(NotExportable, match=f"a kernel to the power {power:g}"):
            to_text(fitted)
        return
    result = pxrom.loads(to_text(fitted, error=True)).predict(None, POINTS)
    assert away(result.values["y"], fitted.predict(POINTS)) <= 1e-12


def test_correlations_of_a_joint_fit():
    """Of the outputs of GPy that share a kernel, each has its own scale."""
    fitted = si.GPRegression(X, BOTH, si.Matern32([0, 2], 1.0, [1.0, 1.0]), 0.1, True)
    result = pxrom.loads(to_text(fitted)).predict(None, POINTS, return_error=True)
    mean, variance = fitted.predict(POINTS)
    assert away(result.values["y1"], mean[:, 1]) <= 1e-12
    assert away(result.errors["y1"] ** 2, variance[:, 1]) <= 1e-12


def test_what_rounding_explains_is_exported_with_a_warning():
    line = np.linspace(0, 1, 30)[:, None]
    fitted = Process(k.RationalQuadratic(3.0, 0.5), optimizer=None).fit(
        line, np.sin(4 * line[:, 0])
    )
    with pytest.warns(UserWarning, match="agrees with the tool to .* is only defined to"):
        to_text(fitted)


def noise_free():
    return fit(k.DotProduct())


def reread(attribute, value):
    """A stand-in with something that the exporter can't take."""
    fitted = si.GPRegression(X, Y, si.RBF([0, 1, 2], 2.0, LENGTHS), 0.05)
    setattr(fitted, attribute, value)
    return fitted


def components(correlation):
    fitted = si.KPLS(X, Y[:, None], [0.5, 0.3, 0.1], pls=np.eye(3))
    fitted.options["corr"] = correlation
    return fitted


def bare(kind):
    return kind.__new__(kind)


@pytest.mark.parametrize(
    "make, said",
    [
        (noise_free, "since large coefficients cancel and leave few digits"),
        (lambda: fit((k.RBF() + ROUGH) ** 1.5), "a sum to the power 1.5 has no counterpart"),
        (
            lambda: fit(sum([k.RBF(s) for s in range(2, 11)], k.RBF()) ** 4 + 9.0 * NOISE),
            "a sum of more than 100 products",
        ),
        (lambda: reread("mean_function", len), "a mean_function has no counterpart"),
        (lambda: reread("likelihood", None), "GPRegression with a Gaussian likelihood"),
        (lambda: components("matern52"), "correlation 'matern52' of a KPLS has no counterpart"),
        (lambda: components("act_exp"), "correlation 'act_exp' of a KPLS has no counterpart"),
        (lambda: bare(si.KRG), "the KRG is not trained; call train first"),
        (lambda: bare(si.kriging), "the kriging is not trained; call train first"),
        (lambda: interpolate.Rbf(X[:, 0], X[:, 1], Y), "a Rbf has no counterpart"),
        (lambda: interpolate.RBFInterpolator(X, Y * 1j), "complex outputs have no counterpart"),
    ],
)
def test_refusals(make, said):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        fitted = make()
    with pytest.raises(NotExportable) as refusal:
        to_text(fitted)
    assert said in str(refusal.value)
