"""Draws the pictures of the manual's pages about families. Every curve is a prediction of the library, from
a database that is written here. The arguments are names of pictures; without one it draws all.
"""

import pathlib
import sys

import matplotlib

matplotlib.use("agg")
import matplotlib.pyplot as plt
import numpy as np
import pxrom

FOLDER = pathlib.Path(__file__).resolve().with_suffix("")
BLUE, GREY, RED = "#1f77b4", "#888888", "#d62728"
FAMILIES = {"regression": 3, "kriging": 4, "support": 5, "moving": 6, "linear": 7, "constant": 8, "process": 101,
            "polynomial": 102}

plt.rcParams.update({"font.size": 9, "axes.spines.top": False, "axes.spines.right": False,
                     "svg.hashsalt": "pxrom", "axes.grid": True, "grid.color": "#e6e6e6"})


def numbers(values):
    return ",".join(repr(float(value)) for value in np.ravel(values))


def database(family, x, y, fields, lower=0.0, upper=1.0):
    """The model of one surface over one input, without any scaling."""
    samples = f"{len(x)}\n{{0}}InputSamples={numbers(x)}\n{{0}}OutputSamples={numbers(y)}"
    genome = "\n".join(f"{key}={value}" for key, value in fields.items() if key != "terms")
    genome += "".join(f"\n<RegTerm ID={k}>\n{term}\n</RegTerm>" for k, term in enumerate(fields.get("terms", [])))
    text = f"""<ParameterRegistry>
IDs=x,y
Causalities=0,1
Types=0,0
Availability=1,1
RegistrationRank={{x;0}},{{y;1}}
LowerBounds={{x;{lower}}}
UpperBounds={{x;{upper}}}
</ParameterRegistry>
<DiscreteSets>
DiscreteSet={{y;0}}
</DiscreteSets>
<PlexuraData ID=0>
CandidateVersion=192
CandidateNumberOfInputVariables=1
CandidateNumberOfSamples={samples.format("Candidate")}
CandidateInputScaleSlopes=1
CandidateInputScaleIntercepts=0
CandidateOutputScaleSlope=1
CandidateOutputScaleIntercept=0
CandidateRSCardinality=1
<Genome ID=0>
DataType={FAMILIES[family]}
GenomeWeight=1
NumberOfInputVariables=1
NumberOfSamples={samples.format("")}
InputScaleSlopes=1
InputScaleIntercepts=0
OutputScaleSlope=1
OutputScaleIntercept=0
IsReadyForSolve=1
IsReadyForEvaluation=1
IsStopped=0
{genome}
</Genome>
</PlexuraData>
"""
    faults = [finding for finding in pxrom.check(text) if finding.severity == "error"]
    if faults:
        raise ValueError(f"{family}: {faults[0]}")
    return pxrom.loads(text)


def curve(model, x, errors=False):
    result = model.predict({"x": x}, return_error=errors)
    if not (result.statuses["y"] == 0).all():
        raise ValueError(f"statuses {set(result.statuses['y'])}")
    return (result["y"], result.errors["y"]) if errors else result["y"]


def figure(panels=1, height=2.4):
    made, axes = plt.subplots(1, panels, figsize=(3.6 * panels + 1.0, height), layout="constrained")
    return made, np.atleast_1d(axes)


def samples(ax, x, y):
    ax.plot(x, y, "o", color="black", markersize=4, zorder=3)
    ax.set_xlabel("x")
    ax.set_ylabel("y")


def hills(x):
    return np.sin(5 * x) + 0.6 * np.cos(14 * x) * x


# ---- Families -------------------------------------------------------------------------------


def regression():
    random = np.random.default_rng(4)
    x = np.linspace(0.02, 0.98, 10)
    y = 1 + 2 * x - 2.4 * x**2 + random.normal(0, 0.09, len(x))
    design = np.stack([np.ones_like(x), x, x**2], axis=1)
    coefficients, residual, *_ = np.linalg.lstsq(design, y, rcond=None)
    kinds = ((1, ""), (2, "0"), (3, "0,0"))
    terms = [
        f"FuncType={kind}\nisActive=1\nInputVariablesIndex={inputs}\ncoefficientValue={numbers(c)}"
        for (kind, inputs), c in zip(kinds, coefficients)
    ]
    model = database("regression", x, y, {
        "InputTransformType": 0, "OutputTransformType": 0, "QRSVersion": 192, "RegTermFilterConfVal": 0.95,
        "MaxRegTerm": 3, "NumSelRegTerm": 3, "QRSSavePredictorError": 1,
        "QRSSigmaSquare": numbers(residual[0] / (len(x) - 3)),
        "QRSInvXtX": numbers(np.linalg.inv(design.T @ design)), "terms": terms,
    })
    made, (ax,) = figure()
    grid = np.linspace(0, 1, 201)
    value, error = curve(model, grid, errors=True)
    ax.fill_between(grid, value - error, value + error, color=BLUE, alpha=0.2, linewidth=0)
    ax.plot(grid, value, color=BLUE)
    samples(ax, x, y)
    return made


def legendre(degrees, coefficients):
    return {
        "PolyVersion": 1, "PolyVariableInputs": 0, "PolyVariableSlopes": 2, "PolyVariableIntercepts": -1,
        "PolyVariableBases": 1, "PolyDegrees": ",".join(map(str, degrees)),
        "PolyCoefficients": numbers(coefficients),
    }


def polynomial():
    made, (left, right) = figure(2)
    grid = np.linspace(0, 1, 401)
    for degree in range(6):
        model = database("polynomial", [], [], legendre([degree], [1.0]))
        left.plot(2 * grid - 1, curve(model, grid), label=str(degree), linewidth=1.2)
    left.set_xlabel("w")
    left.set_title("Legendre polynomials", fontsize=9)
    left.legend(fontsize=7, ncols=3, frameon=False)
    x = 0.5 - 0.5 * np.cos(np.pi * (np.arange(25) + 0.5) / 25)
    y = hills(x)
    design = np.polynomial.legendre.legvander(2 * x - 1, 8)
    coefficients = np.linalg.lstsq(design, y, rcond=None)[0]
    model = database("polynomial", x, y, legendre(range(9), coefficients))
    right.plot(grid, curve(model, grid), color=BLUE)
    right.set_title("Degree 8", fontsize=9)
    samples(right, x, y)
    return made


def kriging_fields(x, y, scale, kernel):
    correlation = np.exp(-scale * (x[:, None] - x[None, :]) ** 2)
    factor = np.linalg.cholesky(correlation)
    inverse = np.linalg.inv(factor)
    ft = inverse @ np.ones((len(x), 1))
    g = np.sqrt(ft.T @ ft)
    beta = float((ft.T @ (inverse @ y)) / (g * g))
    gamma = inverse.T @ (inverse @ (y - beta))
    sigma2 = float((inverse @ (y - beta)) @ (inverse @ (y - beta)) / len(x))
    return {
        "KrigingVersion": 192, "KrigingPolynomialType": 1, "KrigingPolynomialCoefficients": numbers(beta),
        "KrigingCorrelationFunctionType": kernel, "KrigingCorrelationCoefficients": numbers(gamma),
        "KrigingCorrelationKernels": scale, "KrigingSavePredictorError": 1,
        "KrigingNumberOfPolynomialCoefficients": 1, "KrigingSigmaSquare": numbers(sigma2),
        "KrigingInverseOfC": numbers(inverse), "KrigingInverseOfG": numbers(1 / g), "KrigingFTilde": numbers(ft.T),
    }


def kriging():
    x = np.array([0.03, 0.2, 0.38, 0.55, 0.8, 0.97])
    y = hills(x)
    made, (left, right) = figure(2)
    grid = np.linspace(0, 1, 401)
    value, error = curve(database("kriging", x, y, kriging_fields(x, y, 30.0, 2)), grid, errors=True)
    left.fill_between(grid, value - 2 * error, value + 2 * error, color=BLUE, alpha=0.2, linewidth=0)
    left.plot(grid, value, color=BLUE)
    left.plot(grid, hills(grid), color=GREY, linestyle=":", linewidth=1)
    samples(left, x, y)
    for name, kernel in (("exponential", 1), ("Gaussian", 2), ("cubic", 5), ("Matern 5/2", 8)):
        fields = {
            "KrigingVersion": 192, "KrigingPolynomialType": 0, "KrigingPolynomialCoefficients": "",
            "KrigingCorrelationFunctionType": kernel,
            "KrigingCorrelationCoefficients": 1, "KrigingCorrelationKernels": 1.0,
        }
        model = database("kriging", [0.0], [1.0], fields, upper=2.0)
        distance = np.linspace(0, 2, 201)
        right.plot(distance, curve(model, distance), label=name, linewidth=1.2)
    right.set_xlabel("distance, with the kernel scale 1")
    right.set_title("Correlations", fontsize=9)
    right.legend(fontsize=7, frameon=False)
    return made


def process_fields(function, length=1.0, weights=(1.0,), parameter=0.0, amplitude=1.0, **more):
    return {
        "GPVersion": 1, "GPPolynomialType": 0, "GPPolynomialCoefficients": "", "GPTermAmplitudes": amplitude, "GPFactorTerms": 0,
        "GPFactorFunctions": function, "GPFactorParameters": parameter, "GPFactorLengths": length,
        "GPWeights": numbers(weights), **more,
    }


def gaussian_process():
    random = np.random.default_rng(1)
    x = np.sort(random.uniform(0, 1, 22))
    noise, length, amplitude = 0.03, 0.17, 0.8
    y = hills(x) + random.normal(0, np.sqrt(noise), len(x))
    t = np.sqrt(5) * np.abs(x[:, None] - x[None, :]) / length
    covariance = amplitude * (1 + t + t * t / 3) * np.exp(-t) + noise * np.eye(len(x))
    inverse = np.linalg.inv(np.linalg.cholesky(covariance))
    model = database("process", x, y, process_fields(
        3, length, np.linalg.solve(covariance, y), amplitude=amplitude, GPNoiseVariance=noise,
        GPSavePredictorError=1, GPErrorIncludesNoise=0,
        GPInverseFactor=numbers(inverse[np.tril_indices(len(x))]), GPTrendInverseFactor="", GPTrendAtSamples="",
    ))
    made, (left, right) = figure(2)
    grid = np.linspace(0, 1, 401)
    value, error = curve(model, grid, errors=True)
    left.fill_between(grid, value - 2 * error, value + 2 * error, color=BLUE, alpha=0.2, linewidth=0)
    left.plot(grid, value, color=BLUE)
    left.plot(grid, hills(grid), color=GREY, linestyle=":", linewidth=1)
    samples(left, x, y)
    distance = np.linspace(0, 3, 201)
    for name, function, parameter in (
        ("Matern 1/2", 1, 0.0), ("Matern 5/2", 3, 0.0), ("Gaussian", 4, 0.0), ("rational quadratic, a = 0.5", 5, 0.5),
    ):
        kernel = database("process", [0.0], [1.0], process_fields(function, parameter=parameter), upper=3.0)
        right.plot(distance, curve(kernel, distance), label=name, linewidth=1.2)
    right.set_xlabel("r")
    right.set_title("Covariance functions", fontsize=9)
    right.legend(fontsize=7, frameon=False)
    return made


def support_vector():
    from sklearn.svm import SVR

    random = np.random.default_rng(3)
    x = np.sort(random.uniform(0, 1, 40))
    y = hills(x) + random.normal(0, 0.12, len(x))
    y[[9, 27]] += (1.1, -1.2)
    fit = SVR(C=3.0, epsilon=0.25, gamma=18.0).fit(x[:, None], y)
    weights = np.zeros(len(x))
    weights[fit.support_] = fit.dual_coef_[0]
    model = database("support", x, y, {
        "SVRVersion": 171, "SVRKernType": 2, "SVRLossFuncType": 3, "SVRAlphas": numbers(np.maximum(-weights, 0)),
        "SVRAlphasStar": numbers(np.maximum(weights, 0)), "SVRBetas": numbers(np.zeros(len(x))),
        "SVRConstantCoeffcient": numbers(fit.intercept_), "SVRKernelArray": 18.0,
    })
    made, (ax,) = figure()
    grid = np.linspace(0, 1, 401)
    value = curve(model, grid)
    if not np.allclose(value, fit.predict(grid[:, None]), atol=1e-9):
        raise ValueError("the record is not the fit")
    ax.fill_between(grid, value - 0.25, value + 0.25, color=BLUE, alpha=0.15, linewidth=0)
    ax.plot(grid, value, color=BLUE)
    samples(ax, x, y)
    ax.plot(x[fit.support_], y[fit.support_], "o", color=RED, markersize=4, zorder=4)
    return made


def linear_basis():
    x = np.array([0.0, 0.06, 0.11, 0.16, 0.22, 0.3, 0.5, 0.75, 1.0])
    y = np.exp(-x * 4) * np.sin(34 * x) + x
    gaps = np.diff(x)
    widths = np.maximum(np.append(gaps, gaps[-1]), np.insert(gaps, 0, gaps[0])) * 1.3
    basis = np.exp(-((x[:, None] - x[None, :]) ** 2) / widths[None, :] ** 2)
    coefficients = np.linalg.solve(basis, y - 0.5)
    model = database("linear", x, y, {
        "LBFVersion": 170, "LBFFunction": 0, "LBFPolynomialType": 1, "LBFKernelValues": numbers(widths),
        "LBFPolynomialCoefficients": 0.5, "LBFKernelCoefficients": numbers(coefficients),
    })
    made, (ax,) = figure()
    grid = np.linspace(0, 1, 401)
    for centre, width, coefficient in zip(x, widths, coefficients):
        ax.plot(grid, coefficient * np.exp(-((grid - centre) ** 2) / width**2), color=GREY, linewidth=0.5)
    ax.plot(grid, curve(model, grid), color=BLUE)
    samples(ax, x, y)
    return made


def moving_least_squares():
    random = np.random.default_rng(8)
    x = np.sort(random.uniform(0, 1, 26))
    y = hills(x) + random.normal(0, 0.06, len(x))
    model = database("moving", x, y, {
        "MLSVersion": 170, "MLSWeightFunction": 1, "MLSPolynomialType": 2, "MLSUsedPointsOption": 0,
        "MLSNumberOfBasisFunctions": 2, "MLSNumberOfUsedPoints": len(x),
    })
    made, (ax,) = figure()
    grid = np.linspace(0, 1, 401)
    ax.plot(grid, curve(model, grid), color=BLUE)
    for at in (0.32, 0.7):
        order = np.sort(np.abs(x - at))
        root = np.exp(-0.5 * ((x - at) / order[2]) ** 2)
        design = np.stack([np.ones_like(x), x], axis=1)
        line = np.linalg.lstsq(design * root[:, None], y * root, rcond=None)[0]
        near = np.array([at - 0.12, at + 0.12])
        ax.plot(near, line[0] + line[1] * near, color=RED, linewidth=1.2)
        ax.plot(at, curve(model, [at]), "o", color=RED, markersize=4, zorder=4)
    samples(ax, x, y)
    return made


PICTURES = {
    "regression": regression, "polynomial": polynomial, "kriging": kriging, "gaussian-process": gaussian_process,
    "support-vector": support_vector, "linear-basis": linear_basis, "moving-least-squares": moving_least_squares,
}


def main():
    FOLDER.mkdir(exist_ok=True)
    for name in sys.argv[1:] or PICTURES:
        made = PICTURES[name]()
        made.savefig(FOLDER / f"{name}.png", dpi=130, metadata={"Software": None})
        plt.close(made)


main()
