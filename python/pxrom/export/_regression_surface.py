"""Sums of products: linear models, polynomials of any degree, polynomial chaos.

What fits into a regression record (terms up to the second degree, one transformation for all
inputs) becomes one, which older readers know; all else becomes a polynomial record.
"""

from dataclasses import dataclass, field, replace
from typing import Dict, List, Optional, Sequence, Tuple

import numpy as np

from .. import _core
from ._features import (
    MOST_TERMS,
    Basis,
    Features,
    Polynomial,
    TooManyTerms,
    Variable,
    by_terms,
    combined,
    multiplied,
    power,
)
from ._functions import Function
from ._monomials import Term
from ._rounding import STEPS, UNIT
from ._surface import EnsembleScale, NotExportable, Surface, Terms, identity

# Beyond these an evaluation would be refused (polynomial.h).
_LARGEST_DEGREE = 1000


@dataclass
class RegressionSurface(Surface):
    """The places of a term are those of variables, which lie in the own space."""

    terms: Dict[Term, float] = field(default_factory=dict)
    variables: Optional[List[Variable]] = None  # None: one for each input
    output_transform: Optional[Function] = None
    covariance: Optional[np.ndarray] = None  # of the coefficients, in the order of the terms
    # The half-width of a prediction interval instead, which a regression record has: the variance
    # of an observation, the inverse normal matrix, a one-sided level and degrees of freedom.
    variance: float = 0.0
    inv_xtx: Optional[np.ndarray] = None
    level: float = 0.95
    freedom: float = 0.0

    def all_variables(self) -> List[Variable]:
        if self.variables is not None:
            return self.variables
        return [Variable(i) for i in range(self.inputs)]

    def after_features(self, features: Features) -> None:
        """Computes features before the surface: its inputs are the columns."""
        inner = features.scaled(self.slope, self.intercept)
        try:
            columns = [_composed(inner, variable) for variable in self.all_variables()]
            products: List[Polynomial] = []
            for term in self.terms:
                product: Polynomial = {(): 1.0}
                for place in sorted(set(term)):
                    product = multiplied(product, power(columns[place], term.count(place)))
                products.append(product)
            made = combined(zip(self.terms.values(), products))
            if len(made) > MOST_TERMS:
                raise TooManyTerms()
        except TooManyTerms:
            raise NotExportable(
                f"written out in the inputs, the model has more than {MOST_TERMS} terms; use a "
                "lower degree or fewer inputs"
            ) from None
        if self.predict_error is not None and self.covariance is not None:
            terms, by_term = by_terms(products)
            made = dict(zip(terms, np.array(list(self.terms.values())) @ by_term))
            self.covariance = by_term.T @ self.covariance @ by_term
            of_columns = self.predict_error
            self.predict_error = lambda X: of_columns(features.values(X))
        self.terms = made
        self.variables = inner.variables
        self.slope, self.intercept = np.ones(inner.inputs), np.zeros(inner.inputs)
        self.samples = None

    def before_output_transform(self, function: Function) -> None:
        """Applies the inverse of a transformation after the surface."""
        if self.output_transform is not None:
            raise NotExportable(
                "the output goes through two transformations, and a record has one; fit the model "
                "to one transformation of the output"
            )
        self.terms = {term: self.scale * value for term, value in self.terms.items()}
        self.terms[()] = self.terms.get((), 0.0) + self.shift
        self.scale, self.shift = 1.0, 0.0
        self.output_transform = function
        self.drop_error("a predicted error can't go back through a transformation of the output")

    def _values(self, X: np.ndarray) -> np.ndarray:
        """Of each term, in columns."""
        own = self.slope * X + self.intercept
        return self._design([variable.values(own) for variable in self.all_variables()], len(X))

    def _design(self, variables: List[np.ndarray], count: int) -> np.ndarray:
        made = np.ones((count, len(self.terms)))
        known = self.all_variables()
        for k, term in enumerate(self.terms):
            for place in set(term):
                degree, basis = term.count(place), known[place].basis
                u = variables[place]
                made[:, k] *= u**degree if basis is None else _polynomial(basis, degree, u)
        return made

    def _terms(self, X: np.ndarray) -> Terms:
        own, reach = self.slope * X + self.intercept, self._reach(X)
        reaches = []
        for variable in self.all_variables():
            if variable.basis is None and variable.function is None:
                reaches.append(variable.reach(reach))
            else:
                reaches.append(np.abs(variable.values(own)) + abs(variable.shift))
        sizes = np.abs(np.array(list(self.terms.values())))
        magnitude = np.abs(self._design(reaches, len(X))) @ sizes
        degree = max((len(term) for term in self.terms), default=0)
        error = (len(self.terms) + STEPS * (1 + degree)) * UNIT * magnitude
        if self.output_transform is None:
            return magnitude, error
        value = self._values(X) @ np.array(list(self.terms.values()))
        slope = self.output_transform.back_slope(value)
        return np.abs(self.output_transform.back(value)), np.abs(slope) * error

    @property
    def error_accuracy(self) -> float:
        # The library iterates for its quantile of Student's t and ends at about 1e-8.
        return 1e-6

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        used = sorted({place for term in self.terms for place in term})
        variables = [self.all_variables()[place] for place in used]
        places = {place: new for new, place in enumerate(used)}
        terms = {
            tuple(places[place] for place in term): value for term, value in self.terms.items()
        }
        scaling, variables = _shared_scaling(variables, self.inputs)
        samples = None if self.samples is None else scaling[0] * self.samples + scaling[1]
        scaled = replace(
            self,
            slope=scaling[0] * self.slope,
            intercept=scaling[0] * self.intercept + scaling[1],
            samples=samples,
        )
        if self._is_regression(variables, terms):
            return scaled._regression_record(ensemble, variables, terms)
        return scaled._polynomial_record(ensemble, variables, terms)

    def _is_regression(self, variables: List[Variable], terms: Dict[Term, float]) -> bool:
        if any(len(term) > 2 for term in terms):
            return False
        if self.covariance is not None and self.predict_error is not None:
            return False
        if any(v.basis is not None or (v.scale, v.shift) != (1.0, 0.0) for v in variables):
            return False
        if any(v.function is None and (v.slope, v.intercept) != (1.0, 0.0) for v in variables):
            return False
        if len({v.input for v in variables}) != len(variables):
            return False
        kinds = {None if v.function is None else v.function.kind for v in variables}
        if self.inv_xtx is not None and self.predict_error is not None:
            if self.samples is None or self.freedom != len(self.samples) - len(terms):
                return False
        return len(kinds) <= 1

    def _regression_record(
        self, ensemble: EnsembleScale, variables: List[Variable], terms: Dict[Term, float]
    ) -> _core.CRSData:
        record = _core.CQRSData()
        self._fill(record, ensemble, own_samples=False)
        functions = [variable.function for variable in variables]
        if functions and functions[0] is not None:
            record.InputTransformType = functions[0].kind
            parameters = np.zeros((self.inputs, 2))
            for variable in variables:
                if variable.function is not None:
                    parameters[variable.input] = (
                        variable.function.value,
                        variable.function.parameter,
                    )
            record.InputTransformValues = parameters[:, 0].tolist()
            record.InputLambdas = parameters[:, 1].tolist()
        self._put_output_transform(record)
        record.SetTerms(
            [
                (sorted(variables[place].input for place in term), float(value))
                for term, value in terms.items()
            ]
        )
        if self.inv_xtx is not None and self.predict_error is not None:
            record.SavePredictorError = True
            record.RegTermFilterConfVal = self.level
            record.Sigma2 = self.variance
            record.InvXtX = self.inv_xtx.tolist()
        return record

    def _polynomial_record(
        self, ensemble: EnsembleScale, variables: List[Variable], terms: Dict[Term, float]
    ) -> _core.CRSData:
        record = _core.CPolynomialData()
        self._fill(record, ensemble, own_samples=False)
        covariance = self._covariance(terms) if self.predict_error is not None else None
        degrees = np.array([[term.count(v) for v in range(len(variables))] for term in terms])
        if degrees.size and degrees.max() > _LARGEST_DEGREE:
            raise NotExportable(
                f"a term has the degree {degrees.max()}, and a database holds degrees up to "
                f"{_LARGEST_DEGREE}; use a lower degree"
            )
        record.VariableInputs = [variable.input for variable in variables]
        functions = [variable.function or Function(0) for variable in variables]
        if any(function.kind != 0 for function in functions):
            record.VariableTransformTypes = [function.kind for function in functions]
            record.VariableTransformValues = [function.value for function in functions]
            record.VariableLambdas = [function.parameter for function in functions]
        after = [
            (v.scale, v.shift) if v.function is not None else (v.slope, v.intercept)
            for v in variables
        ]
        if any(pair != (1.0, 0.0) for pair in after):
            record.VariableSlopes = [float(slope) for slope, _ in after]
            record.VariableIntercepts = [float(intercept) for _, intercept in after]
        self._put_bases(record, variables, degrees)
        record.Degrees = [int(degree) for degree in degrees.ravel()]
        record.Coefficients = [float(value) for value in terms.values()] or [0.0]
        self._put_output_transform(record)
        if covariance is not None:
            record.SavePredictorError = True
            record.Covariance = covariance.tolist()
        return record

    def _put_bases(
        self, record: _core.CRSData, variables: List[Variable], degrees: np.ndarray
    ) -> None:
        bases = [variable.basis for variable in variables]
        if all(basis is None for basis in bases):
            return
        record.Orthonormal = True
        record.VariableBases = [0 if basis is None else basis.kind for basis in bases]
        record.VariableAlphas = [0.0 if basis is None else basis.alpha for basis in bases]
        record.VariableBetas = [0.0 if basis is None else basis.beta for basis in bases]
        steps = [
            number
            for v, basis in enumerate(bases)
            if basis is not None and basis.kind == 5
            for step in basis.steps[: degrees[:, v].max()]
            for number in step
        ]
        record.Recurrences = [float(number) for number in steps]

    def _put_output_transform(self, record: _core.CRSData) -> None:
        if self.output_transform is not None:
            record.OutputTransformType = self.output_transform.kind
            record.OutputTransformValue = self.output_transform.value
            record.OutputLambda = self.output_transform.parameter

    def _covariance(self, terms: Dict[Term, float]) -> Optional[np.ndarray]:
        """Adds a constant term where there is none and the error has a constant part."""
        if self.covariance is not None or self.inv_xtx is None:
            return self.covariance
        from scipy import stats

        quantile = float(stats.t.ppf(self.level, self.freedom))
        made = self.inv_xtx
        if () not in terms:
            terms[()] = 0.0
            made = np.pad(made, (0, 1))
        place = list(terms).index(())
        made = made.copy()
        # The variance of an observation, beside that of the function.
        made[place, place] += 1.0
        return np.asarray(quantile**2 * self.variance * made)


def merged(surfaces: Sequence[Surface], weights: Sequence[float]) -> Optional[RegressionSurface]:
    """The weighted sum of surfaces as one, if all are polynomials without an output
    transformation."""
    features = Features.of_inputs(surfaces[0].inputs)
    parts: List[Tuple[float, Polynomial]] = []
    for surface, weight in zip(surfaces, weights):
        if not isinstance(surface, RegressionSurface) or surface.output_transform is not None:
            return None
        own = replace(surface)
        own.after_features(features)
        parts += [(weight * own.scale, own.terms), (weight * own.shift, {(): 1.0})]
    return RegressionSurface(
        *identity(features.inputs), terms=combined(parts), variables=features.variables
    )


def _composed(features: Features, variable: Variable) -> Polynomial:
    """A variable of a surface whose inputs are features."""
    column = features.columns[variable.input]
    plain = variable.function is None and variable.basis is None
    if plain:
        return combined([(variable.slope, column), (variable.intercept, {(): 1.0})])
    inner = features.variable_of(column)
    if inner is None or (variable.function is not None and inner.function is not None):
        raise NotExportable(
            "a function or a basis of one input follows a step that mixes inputs or applies a "
            "function as well, and a database holds one function for each variable"
        )
    made = inner.scaled(variable.slope, variable.intercept)
    if variable.function is not None:
        made = replace(
            made, function=variable.function, scale=variable.scale, shift=variable.shift
        )
    return features.add(replace(made, basis=variable.basis))


def _shared_scaling(
    variables: List[Variable], inputs: int
) -> Tuple[Tuple[np.ndarray, np.ndarray], List[Variable]]:
    """A record scales each input once, before all functions of it. What that is, and what is left
    for each variable."""
    slopes, intercepts = np.ones(inputs), np.zeros(inputs)
    first: Dict[int, Variable] = {}
    for variable in sorted(variables, key=lambda one: one.function is None):
        first.setdefault(variable.input, variable)
    for i, variable in first.items():
        slopes[i], intercepts[i] = variable.slope, variable.intercept
    left: List[Variable] = []
    for variable in variables:
        i = variable.input
        slope = variable.slope / slopes[i]
        intercept = variable.intercept - slope * intercepts[i]
        if variable is first[i]:
            slope, intercept = 1.0, 0.0
        if variable.function is not None and (abs(slope - 1.0) > 1e-15 or intercept != 0.0):
            raise NotExportable(
                "two functions of one input follow different scalings of it, and a record has one "
                "scaling for each input; scale the input before both alike"
            )
        left.append(replace(variable, slope=slope, intercept=intercept))
    return (slopes, intercepts), left


def _polynomial(basis: Basis, degree: int, u: np.ndarray) -> np.ndarray:
    """An orthonormal polynomial, for estimates of rounding alone."""
    from scipy import special

    if basis.kind == 5:
        last, p = np.zeros_like(u), np.ones_like(u)
        for a, b, c in basis.steps[:degree]:
            last, p = p, (a * u + b) * p - c * last
        return p
    n = degree
    if basis.kind == 1:
        return np.asarray(special.eval_legendre(n, u) * np.sqrt(2 * n + 1))
    if basis.kind == 2:
        return np.asarray(special.eval_hermitenorm(n, u) / np.sqrt(special.factorial(n)))
    a, b = basis.alpha, basis.beta
    if basis.kind == 3:
        return np.asarray(special.eval_genlaguerre(n, a, u) / np.sqrt(special.binom(n + a, n)))
    return np.asarray(special.eval_jacobi(n, a, b, u)) * (n + 1)
