"""OpenTURNS' polynomials: functional chaos, linear and general linear models."""

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from ._columns import Columns
from ._features import Basis, Features, Variable, combined
from ._functions import NAMED
from ._monomials import Term
from ._regression_surface import RegressionSurface
from ._surface import NotExportable, Surface, identity

_LEGENDRE, _HERMITE, _RECURRENCE = 1, 2, 5


def linear_algorithms() -> Tuple[Any, ...]:
    import openturns as ot

    return (
        ot.LinearModelAlgorithm,
        ot.LinearModelStepwiseAlgorithm,
        ot.GeneralLinearModelAlgorithm,
    )


def chaos(result: Any) -> List[Surface]:
    """A functional chaos expansion: one surface per output."""
    import openturns as ot

    basis = result.getOrthogonalBasis().getImplementation()
    if basis.getClassName() != "OrthogonalProductPolynomialFactory":
        raise NotExportable(
            f"the basis {basis.getClassName()} has no counterpart; expand in an "
            "OrthogonalProductPolynomialFactory"
        )
    enumerate_function = basis.getEnumerateFunction()
    indices = [np.array(enumerate_function(int(k)), dtype=int) for k in result.getIndices()]
    families = basis.getPolynomialFamilyCollection()
    variables = []
    for i, variable in enumerate(_variables(result)):
        highest = max(index[i] for index in indices)
        variables.append(_with_basis(variable, families[i], int(highest)))
    coefficients = np.array(result.getCoefficients())
    X, y = np.array(result.getInputSample()), np.array(result.getOutputSample())
    metamodel = result.getMetaModel()
    made: List[Surface] = []
    for column in range(coefficients.shape[1]):
        terms: Dict[Term, float] = {}
        for index, coefficient in zip(indices, coefficients[:, column]):
            terms[tuple(int(i) for i in np.repeat(np.arange(len(index)), index))] = coefficient
        surface = RegressionSurface(
            *identity(len(variables)),
            samples=X if len(X) > 0 else None,
            outputs=y[:, column] if len(y) > 0 else None,
            terms=terms,
            variables=variables,
        )
        surface.predict = lambda points, at=column: np.array(metamodel(ot.Sample(points)))[:, at]
        made.append(surface)
    return made


def _variables(result: Any) -> List[Variable]:
    """What leads from each input to its polynomials."""
    import openturns as ot

    distribution, transformation = result.getDistribution(), result.getTransformation()
    inputs = distribution.getDimension()
    levels = np.random.default_rng(5).uniform(0.05, 0.95, (11, inputs))
    marginals = [distribution.getMarginal(i) for i in range(inputs)]
    points = np.column_stack(
        [[m.computeQuantile(float(p))[0] for p in levels[:, i]] for i, m in enumerate(marginals)]
    )
    images = np.array(transformation(ot.Sample(points)))
    made = []
    for i, marginal in enumerate(marginals):
        x, u = points[:, i], images[:, i]
        variable = _affine(Variable(i), x, u)
        lower = marginal.getRange().getLowerBound()[0]
        for start in (0.0, lower):
            if variable is None and np.all(x > start):
                log = Variable(i, 1.0, -start, NAMED["log"])
                variable = _affine(log, np.log(x - start), u)
        if variable is None:
            raise NotExportable(
                f"the input {i}, distributed as {marginal}, reaches its polynomials by a function "
                "that a database has not (a copula, or a basis of another distribution); expand "
                "in the basis of the inputs' own independent distributions "
                "(StandardDistributionPolynomialFactory)"
            )
        made.append(variable)
    return made


def _affine(variable: Variable, z: np.ndarray, u: np.ndarray) -> Optional[Variable]:
    low, high = int(np.argmin(z)), int(np.argmax(z))
    slope = float((u[high] - u[low]) / (z[high] - z[low]))
    intercept = float(u[low] - slope * z[low])
    if not np.allclose(slope * z + intercept, u, rtol=0.0, atol=1e-10 * np.ptp(u)):
        return None
    return variable.scaled(slope, intercept)


def _with_basis(variable: Variable, family: Any, highest: int) -> Variable:
    """The tool's recurrence is P(n + 1) = (a x + b) P(n) + c P(n - 1)."""
    steps = np.array([np.array(family.getRecurrenceCoefficients(n)) for n in range(highest)])
    steps = steps.reshape(highest, 3) * [1.0, 1.0, -1.0] + 0.0  # no -0
    basis = Basis(_RECURRENCE, steps=tuple(tuple(map(float, step)) for step in steps))
    n = np.arange(highest)
    spread = {
        _LEGENDRE: lambda k: k**2 / (4.0 * k**2 - 1.0),
        _HERMITE: lambda k: 1.0 * k,
    }
    for kind, of in spread.items():
        root = np.sqrt(of(n + 1))
        named = np.column_stack([1.0 / root, 0.0 * n, np.sqrt(of(n)) / root])
        if np.allclose(steps, named, rtol=1e-13, atol=1e-13):
            basis = Basis(kind)
    return Variable(**{**vars(variable), "basis": basis})


def linear_model(result: Any) -> List[Surface]:
    """A linear model over any basis whose functions are recognised."""
    return [_combination(result, result.getBasis(), result.getCoefficients(), 0)]


def trends(result: Any) -> List[Surface]:
    """A general linear model, whose metamodel is its trend: one surface per output."""
    bases, coefficients = result.getBasisCollection(), result.getTrendCoefficients()
    if len(bases) == 0:
        raise NotExportable("a general linear model without a trend is 0 everywhere: fit a Kriging")
    return [_combination(result, bases[k], coefficients[k], k) for k in range(len(bases))]


def _combination(result: Any, basis: Any, coefficients: Any, column: int) -> Surface:
    """The combination of the functions of a basis that predicts an output."""
    import openturns as ot

    X, y = np.array(result.getInputSample()), np.array(result.getOutputSample())
    inputs = X.shape[1]
    # Points at which all functions differ.
    points = np.random.default_rng(1).uniform(0.5, 1.5, (15, inputs)) * (1 + np.ptp(X, axis=0))
    functions = [basis.build(k) for k in range(basis.getSize())]
    values = np.column_stack([np.array(of(ot.Sample(points))).ravel() for of in functions])
    features = Features.of_inputs(inputs)
    columns = Columns(features, points).all_of(values, [str(of) for of in functions])
    surface = RegressionSurface(
        *identity(inputs),
        samples=X,
        outputs=y[:, column],
        terms=combined(zip(np.array(coefficients).ravel(), columns)),
        variables=features.variables,
    )
    metamodel = result.getMetaModel()
    surface.predict = lambda where: np.array(metamodel(ot.Sample(where)))[:, column]
    return surface
