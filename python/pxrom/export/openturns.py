"""OpenTURNS: Kriging results as Kriging surfaces, with their trend and conditional variance;
functional chaos and linear model results as polynomials (:mod:`._openturns_polynomials`)."""

from typing import Any, Dict, List, Tuple

import numpy as np

from . import _monomials
from ._monomials import Term, trend_of
from ._openturns_polynomials import chaos, linear_algorithms, linear_model
from ._options import Options
from ._surface import KrigingErrorData, KrigingSurface, NotExportable, Surface, identity

_EXPONENTIAL, _GAUSSIAN, _SPHERICAL, _MATERN52 = 1, 2, 4, 8


def surfaces(fitted: Any, options: Options) -> List[Surface]:
    """A result, or an algorithm that has run."""
    import openturns as ot

    if isinstance(fitted, (ot.KrigingAlgorithm, ot.FunctionalChaosAlgorithm, *linear_algorithms())):
        fitted = fitted.getResult()
    if isinstance(fitted, ot.FunctionalChaosResult):
        return chaos(fitted)
    if isinstance(fitted, ot.LinearModelResult):
        return linear_model(fitted)
    if not isinstance(fitted, ot.KrigingResult):
        raise NotExportable(
            f"a {type(fitted).__name__} has no counterpart; the exporter accepts KrigingResult, "
            "FunctionalChaosResult, LinearModelResult, and the algorithms that have run for them"
        )
    model = fitted.getCovarianceModel()
    if model.getOutputDimension() != 1:
        raise NotExportable("a Kriging of several outputs together has no counterpart: fit each")
    X = np.array(fitted.getInputSample())
    y = np.array(fitted.getOutputSample()).ravel()
    kind, kernels = _correlation(_implementation(model), X.shape[1])
    variance = float(model.getAmplitude()[0]) ** 2
    trend, terms, coefficients = _trend(fitted, X)

    surface = KrigingSurface(
        *identity(X.shape[1]),
        samples=X,
        outputs=y,
        trend=trend,
        trend_coefficients=[coefficients.get(term, 0.0) for term in terms],
        correlation=kind,
        coefficients=variance * np.array(fitted.getCovarianceCoefficients()).ravel(),
        kernels=kernels,
    )
    # The tool adds its nugget at a sample; a product adds it for every equal coordinate.
    sizes = np.abs(surface.coefficients)
    is_product = _implementation(model).getClassName() == "ProductCovarianceModel"
    touched = X.shape[1] * sizes.sum() if is_product else sizes.max()
    surface.off = float(model.getNuggetFactor() * touched)
    metamodel = fitted.getMetaModel()
    surface.predict = lambda points: np.array(metamodel(ot.Sample(points))).ravel()
    surface.error_data = _error_data(model, X, variance, terms, coefficients)
    surface.predict_error = lambda points: np.sqrt(
        np.abs(np.array(fitted.getConditionalMarginalVariance(ot.Sample(points))).ravel())
    )
    return [surface]


def _implementation(model: Any) -> Any:
    return model.getImplementation() if hasattr(model, "getImplementation") else model


def _correlation(model: Any, inputs: int) -> Tuple[int, np.ndarray]:
    name = model.getClassName()
    if name == "ProductCovarianceModel":
        parts = [_correlation(_implementation(m), 1) for m in model.getCollection()]
        kinds = {kind for kind, _ in parts}
        if len(kinds) != 1:
            raise NotExportable(
                "a product of covariance models of different kinds has no counterpart"
            )
        return kinds.pop(), np.concatenate([kernels for _, kernels in parts])
    scale = np.array(model.getScale())
    if name == "SquaredExponential":
        return _GAUSSIAN, 0.5 / scale**2
    if name == "AbsoluteExponential" or (name == "ExponentialModel" and inputs == 1):
        return _EXPONENTIAL, 1.0 / scale
    if name == "SphericalModel" and inputs == 1:
        return _SPHERICAL, 1.0 / (scale * model.getRadius())
    if name == "MaternModel" and model.getNu() == 2.5 and inputs == 1:
        return _MATERN52, 1.0 / scale
    if name in ("MaternModel", "ExponentialModel", "SphericalModel"):
        raise NotExportable(
            f"a {name} takes the distance over all inputs, and the library multiplies one factor "
            "per input (Matern with nu=2.5): fit a ProductCovarianceModel of models of one input"
        )
    raise NotExportable(
        f"the covariance model {name} has no counterpart; the exporter accepts SquaredExponential, "
        "AbsoluteExponential, and products of MaternModel(nu=2.5)"
    )


def _trend(fitted: Any, X: np.ndarray) -> Tuple[int, List[Term], Dict[Term, float]]:
    """The type of the trend, its terms in order, and the coefficients that it has."""
    import openturns as ot

    collection = fitted.getBasisCollection()
    basis = collection[0] if len(collection) > 0 else []
    size = basis.getSize() if len(collection) > 0 else 0
    if size == 0:
        return 1, [()], {}
    # Points at which all monomials differ.
    points = np.random.default_rng(1).uniform(0.5, 1.5, (7, X.shape[1])) * (1 + np.ptp(X, axis=0))
    columns = np.column_stack(
        [np.array(basis.build(i)(ot.Sample(points))).ravel() for i in range(size)]
    )
    found = _monomials.recognised(columns, points)
    coefficients: Dict[Term, float] = {}
    for term, value in zip(found, np.array(fitted.getTrendCoefficients()).ravel()):
        if term is None or term in coefficients:
            raise NotExportable(
                "a function of the trend is not a constant, input, square or product of two inputs"
            )
        coefficients[term] = float(value)
    kind, terms = trend_of(coefficients, X.shape[1])
    return kind, terms, coefficients


def _error_data(
    model: Any, X: np.ndarray, variance: float, terms: List[Term], used: Dict[Term, float]
) -> KrigingErrorData:
    """Universal Kriging. Terms that the fit did not have contribute zeros."""
    import openturns as ot

    # The matrix of the tool, with the factor that it adds to the diagonal.
    covariance = np.array(model.discretize(ot.Sample(X)))
    nugget = 1.0 + float(model.getNuggetFactor())
    lower = np.linalg.cholesky(covariance / variance)
    inverse = np.linalg.solve(lower, np.eye(len(X)))
    ft = np.zeros((len(terms), len(X)))
    inv_g = np.zeros((len(terms), len(terms)))
    places = [place for place, term in enumerate(terms) if term in used]
    if places:
        ft[places] = (inverse @ _monomials.design([terms[p] for p in places], X)).T
        # |g| = |InvG w| only depends on InvG' InvG, the inverse of Ft Ft'.
        orthogonal = np.asarray(np.linalg.qr(ft[places].T, mode="r"))
        inv_g[np.ix_(places, places)] = np.linalg.solve(orthogonal.T, np.eye(len(places)))
    return KrigingErrorData(
        variance=variance * nugget,
        inv_c=inverse / np.sqrt(nugget),
        inv_g=inv_g / np.sqrt(nugget),
        ft=ft * np.sqrt(nugget),
    )
