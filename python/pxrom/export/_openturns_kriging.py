"""OpenTURNS: Kriging results, as Kriging surfaces where one holds them, else as processes.

The exported error is the root of the conditional variance of the tool, which holds the nugget
factor of the covariance model.
"""

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from . import _covariance as c
from . import _process
from ._covariance import Covariance, Factor, Product
from ._monomials import Term, design, trend_of
from ._process import ProcessSurface
from ._surface import KrigingErrorData, KrigingSurface, NotExportable, Surface, identity

_EXPONENTIAL, _GAUSSIAN, _SPHERICAL, _MATERN52 = 1, 2, 4, 8


def surfaces(fitted: Any) -> List[Surface]:
    """One surface per output of a ``KrigingResult``."""
    outputs = int(fitted.getCovarianceModel().getOutputDimension())
    return [_surface(fitted, column) for column in range(outputs)]


def _surface(fitted: Any, column: int) -> Surface:
    import openturns as ot

    X = np.array(fitted.getInputSample())
    inputs = X.shape[1]
    model = _marginal(fitted.getCovarianceModel(), column)
    trend = _trend(fitted, X, column)
    variance = float(model.getAmplitude()[0]) ** 2
    weights = _weights(fitted, column, variance)
    correlation = None if any(len(term) > 2 for term in trend) else _correlation(model, inputs)
    nugget = float(model.getNuggetFactor())
    sizes = variance * np.abs(weights)
    made: Surface
    if correlation is not None:
        kind, terms = trend_of(trend, inputs) if trend else (1, [()])
        made = KrigingSurface(
            *identity(inputs),
            trend=kind,
            trend_coefficients=[trend.get(term, 0.0) for term in terms],
            correlation=correlation[0],
            coefficients=variance * weights,
            kernels=correlation[1],
            make_error=lambda: _kriging_error(
                _discretized(model, X), nugget, X, variance, terms, trend
            ),
        )
    else:
        made = ProcessSurface(
            *identity(inputs),
            covariance=Covariance({_product(model, inputs): variance}, variance * nugget),
            weights=weights,
            trend=trend,
        )
        functions = design(list(made.trend), X) if trend else None
        made.make_error = lambda: _process.error_data(
            np.linalg.cholesky(_discretized(model, X)), nugget > 0.0, functions
        )
    made.samples, made.outputs = X, np.array(fitted.getOutputSample())[:, column]
    # The tool adds its nugget at a sample; a product adds it for every equal coordinate.
    is_product = model.getClassName() == "ProductCovarianceModel"
    made.off = nugget * float(inputs * sizes.sum() if is_product else sizes.max())
    metamodel = fitted.getMetaModel()
    made.predict = lambda points: np.array(metamodel(ot.Sample(points)))[:, column]
    made.predict_error = lambda points: np.sqrt(
        np.abs(np.array(fitted.getConditionalMarginalVariance(ot.Sample(points), column)).ravel())
    )
    return made


def _discretized(model: Any, X: np.ndarray) -> np.ndarray:
    """The matrix of the tool, with the factor that it adds to the diagonal."""
    import openturns as ot

    return np.array(model.discretize(ot.Sample(X)))


def _implementation(model: Any) -> Any:
    return model.getImplementation() if hasattr(model, "getImplementation") else model


def _marginal(model: Any, column: int) -> Any:
    """That of one output alone."""
    inner = _implementation(model)
    if inner.getClassName() == "KroneckerCovarianceModel":
        raise NotExportable(
            "a KroneckerCovarianceModel does not say what its correlation is; fit the outputs with "
            "a TensorizedCovarianceModel, or one by one"
        )
    return inner if inner.getOutputDimension() == 1 else _implementation(model.getMarginal(column))


def _weights(fitted: Any, column: int, variance: float) -> np.ndarray:
    """By sample. All outputs have one correlation if they depend on one another, and each has the
    weighted sum of the others' coefficients."""
    model = fitted.getCovarianceModel()
    coefficients = np.array(fitted.getCovarianceCoefficients())
    if not np.any(np.triu(np.array(model.getOutputCorrelation()), 1)):
        return np.asarray(coefficients[:, column])
    amplitudes = np.array(model.getAmplitude())
    shares = amplitudes * amplitudes[column] * np.array(model.getOutputCorrelation())[:, column]
    return np.asarray(coefficients @ shares / variance)


def _correlation(model: Any, inputs: int) -> Optional[Tuple[int, np.ndarray]]:
    """That of a Kriging surface, if there is one."""
    name = model.getClassName()
    if name == "ProductCovarianceModel":
        parts = [_correlation(_implementation(m), 1) for m in model.getCollection()]
        found = [part for part in parts if part is not None and len(part[1]) == 1]
        if len(found) < inputs or len({kind for kind, _ in found}) != 1:
            return None
        return found[0][0], np.concatenate([kernels for _, kernels in found])
    scale = np.array(model.getScale())
    if name == "SquaredExponential":
        return _GAUSSIAN, 0.5 / scale**2
    if name == "AbsoluteExponential" or (name == "ExponentialModel" and inputs == 1):
        return _EXPONENTIAL, 1.0 / scale
    if name == "SphericalModel" and inputs == 1:
        return _SPHERICAL, 1.0 / (scale * model.getRadius())
    if name == "MaternModel" and model.getNu() == 2.5 and inputs == 1:
        return _MATERN52, 1.0 / scale
    return None


def _product(model: Any, inputs: int) -> Product:
    """Its correlation."""
    name = model.getClassName()
    scale = tuple(float(length) for length in model.getScale())
    if name == "ProductCovarianceModel":
        made: Product = ()
        before = 0
        for part in map(_implementation, model.getCollection()):
            taken = int(part.getInputDimension())
            for factor in _product(part, taken):
                aside = (np.inf,) * before, (np.inf,) * (inputs - before - taken)
                lengths = aside[0] + factor.lengths + aside[1]
                made += (Factor(factor.function, lengths, factor.parameter),)
            before += taken
        return made
    if name == "IsotropicCovarianceModel":
        (factor,) = _product(_implementation(model.getKernel()), 1)
        return (Factor(factor.function, factor.lengths * inputs, factor.parameter),)
    if name == "SquaredExponential":
        return (Factor(c.GAUSSIAN, scale),)
    if name == "AbsoluteExponential":
        return c.per_input(c.MATERN12, scale)
    if name == "ExponentialModel":
        return (Factor(c.MATERN12, scale),)
    if name == "GeneralizedExponential":
        return (Factor(c.EXPONENTIAL, scale, float(model.getP())),)
    if name == "MaternModel" and model.getNu() in c.MATERN:
        return (Factor(c.MATERN[model.getNu()], scale),)
    if name == "MaternModel":
        raise NotExportable(
            f"a MaternModel with nu={model.getNu():g} has no counterpart; nu=0.5, 1.5 and 2.5 have"
        )
    raise NotExportable(
        f"the covariance model {name} has no counterpart; the exporter accepts MaternModel, "
        "SquaredExponential, AbsoluteExponential, ExponentialModel, GeneralizedExponential, and "
        "products of them"
    )


def _trend(fitted: Any, X: np.ndarray, column: int) -> Dict[Term, float]:
    """The coefficients by monomial; empty without a trend."""
    collection = fitted.getBasisCollection()
    if len(collection) == 0:
        return {}
    basis = collection[column if len(collection) > 1 else 0]
    values = np.array(fitted.getTrendCoefficients()[column]).ravel()
    coefficients: Dict[Term, float] = {}
    for i in range(basis.getSize()):
        term = _monomial(basis.build(i), X)
        if term is None or term in coefficients:
            raise NotExportable(
                "a function of the trend is not a constant, or an input or product of inputs and "
                "their powers"
            )
        coefficients[term] = float(values[i])
    return coefficients


def _monomial(function: Any, X: np.ndarray) -> Optional[Term]:
    """The monomial that a function is, by what it does when one input doubles."""
    import openturns as ot

    points = np.random.default_rng(1).uniform(0.5, 1.5, (7, X.shape[1])) * (1 + np.ptp(X, axis=0))
    values = np.array(function(ot.Sample(points))).ravel()
    if not np.all(values != 0.0):
        return None
    term: Term = ()
    for i in range(X.shape[1]):
        doubled = points * np.where(np.arange(X.shape[1]) == i, 2.0, 1.0)
        ratio = np.abs(np.array(function(ot.Sample(doubled))).ravel()[0] / values[0])
        power = np.log2(ratio) if 0.5 < ratio < 2.0**20 else -1.0
        if abs(power - round(power)) > 1e-9 or power < -0.5:
            return None
        term += (i,) * round(power)
    is_it = np.allclose(design([term], points)[:, 0], values, rtol=1e-12, atol=0.0)
    return term if is_it else None


def _kriging_error(
    covariance: np.ndarray,
    nugget: float,
    X: np.ndarray,
    variance: float,
    terms: List[Term],
    used: Dict[Term, float],
) -> KrigingErrorData:
    """Universal Kriging. Terms that the fit did not have contribute zeros."""
    nugget = 1.0 + nugget
    inverse = _process.inverse_of(np.linalg.cholesky(covariance))
    inverse *= np.sqrt(variance)
    ft = np.zeros((len(terms), len(X)))
    inv_g = np.zeros((len(terms), len(terms)))
    places = [place for place, term in enumerate(terms) if term in used]
    if places:
        ft[places] = (inverse @ design([terms[p] for p in places], X)).T
        # |g| = |InvG w| only depends on InvG' InvG, the inverse of Ft Ft'.
        orthogonal = np.asarray(np.linalg.qr(ft[places].T, mode="r"))
        inv_g[np.ix_(places, places)] = np.linalg.solve(orthogonal.T, np.eye(len(places)))
    inverse /= np.sqrt(nugget)
    return KrigingErrorData(
        variance=variance * nugget,
        inv_c=inverse,
        inv_g=inv_g / np.sqrt(nugget),
        ft=ft * np.sqrt(nugget),
    )
