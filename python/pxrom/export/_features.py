"""Features: columns that a model computes from its inputs before it is linear in them.

A feature is a polynomial in variables, and a variable is a function of one input. The steps of a
pipeline are followed from the inputs on, so that scalers, linear maps, products and functions may
come in any order as long as the result has this form.
"""

from dataclasses import dataclass, field, replace
from typing import Dict, Iterable, List, Optional, Sequence, Tuple

import numpy as np

from ._functions import Function, Recognised
from ._monomials import Term

# Coefficients by term; here the places of a term are those of variables.
Polynomial = Dict[Term, float]

# More terms than any fit has samples for.
MOST_TERMS = 20000


class TooManyTerms(ValueError):
    """A product of polynomials has more than MOST_TERMS terms."""


class NoVariable(ValueError):
    """A function is applied to something else than one input."""


@dataclass(frozen=True)
class Basis:
    """The polynomials of a variable: an E_PolynomialBasis with its parameters, orthonormal; or (5)
    the steps of a recurrence, p(n + 1) = (a u + b) p(n) - c p(n - 1)."""

    kind: int
    alpha: float = 0.0
    beta: float = 0.0
    steps: Tuple[Tuple[float, float, float], ...] = ()


@dataclass(frozen=True)
class Variable:
    """scale function(slope x + intercept) + shift of the input x; without a function it has
    neither scale nor shift."""

    input: int
    slope: float = 1.0
    intercept: float = 0.0
    function: Optional[Function] = None
    scale: float = 1.0
    shift: float = 0.0
    basis: Optional[Basis] = None

    def scaled(self, scale: float, shift: float) -> "Variable":
        if self.function is None:
            return replace(
                self, slope=scale * self.slope, intercept=scale * self.intercept + shift
            )
        return replace(self, scale=scale * self.scale, shift=scale * self.shift + shift)

    def values(self, X: np.ndarray) -> np.ndarray:
        z = self.slope * X[:, self.input] + self.intercept
        if self.function is not None:
            z = self.scale * self.function.forward(z) + self.shift
        return np.asarray(z)

    def reach(self, X: np.ndarray) -> np.ndarray:
        """Magnitudes before anything cancels; ``X`` holds those of the inputs."""
        z = np.abs(self.slope) * X[:, self.input] + abs(self.intercept)
        return np.asarray(z)


@dataclass
class Features:
    """Columns over the variables of ``inputs`` inputs."""

    inputs: int
    variables: List[Variable] = field(default_factory=list)
    columns: List[Polynomial] = field(default_factory=list)
    places: Dict[Variable, int] = field(default_factory=dict)  # of the variables

    @staticmethod
    def of_inputs(inputs: int) -> "Features":
        made = Features(inputs)
        return made.with_columns([made.add(Variable(i)) for i in range(inputs)])

    def with_columns(self, columns: List[Polynomial]) -> "Features":
        """Other columns over the same variables, which grow together."""
        return Features(self.inputs, self.variables, columns, self.places)

    def values(self, X: np.ndarray) -> np.ndarray:
        """Of the columns (n, columns), at points (n, inputs)."""
        of_variables = [variable.values(X) for variable in self.variables]
        made = np.zeros((len(X), len(self.columns)))
        for k, column in enumerate(self.columns):
            for term, coefficient in column.items():
                product = np.full(len(X), coefficient)
                for place in term:
                    product = product * of_variables[place]
                made[:, k] += product
        return made

    def add(self, variable: Variable) -> Polynomial:
        """The column of one variable."""
        place = self.places.setdefault(variable, len(self.variables))
        if place == len(self.variables):
            self.variables.append(variable)
        return {(place,): 1.0}

    def variable_of(self, column: Polynomial) -> Optional[Variable]:
        """The variable that a column is, up to a slope and an intercept; None for any other."""
        if len(column) == 0 or not set(column) - {()}:
            return None
        (term, *more) = [term for term in column if term]
        if more or len(term) != 1 or self.variables[term[0]].basis is not None:
            return None
        return self.variables[term[0]].scaled(column[term], column.get((), 0.0))

    def affine(self) -> Optional[Tuple[np.ndarray, np.ndarray]]:
        """Slopes and intercepts, if each column is one of its own input."""
        found = [self.variable_of(column) for column in self.columns]
        if len(found) != self.inputs:
            return None
        for place, one in enumerate(found):
            if one is None or one.input != place or one.function is not None:
                return None
        slopes = np.array([one.slope for one in found if one is not None])
        return slopes, np.array([one.intercept for one in found if one is not None])

    def scaled(self, slopes: Sequence[float], intercepts: Sequence[float]) -> "Features":
        made: List[Polynomial] = []
        # Before products, so that these are of scaled variables. Among products they would be
        # further variables of the same inputs.
        known = [self.variable_of(column) for column in self.columns]
        are_alone = all(variable is not None for variable in known)
        for column, variable, slope, intercept in zip(self.columns, known, slopes, intercepts):
            if variable is None or not are_alone or slope == 0.0:
                made.append(combined([(float(slope), column), (float(intercept), {(): 1.0})]))
            else:
                made.append(self.add(variable.scaled(float(slope), float(intercept))))
        return self.with_columns(made)

    def mapped(self, matrix: np.ndarray) -> "Features":
        """``matrix`` (columns, new columns)."""
        return self.with_columns(
            [
                combined((float(w), c) for w, c in zip(weights, self.columns) if w != 0.0)
                for weights in np.asarray(matrix, dtype=float).T
            ]
        )

    def selected(self, places: Iterable[int]) -> "Features":
        return self.with_columns([self.columns[int(place)] for place in places])

    def products(self, powers: np.ndarray) -> "Features":
        """One row of exponents per new column."""
        made: List[Polynomial] = []
        for row in np.asarray(powers, dtype=int):
            product: Polynomial = {(): 1.0}
            for place in np.flatnonzero(row):
                product = multiplied(product, power(self.columns[place], int(row[place])))
            made.append(product)
        return self.with_columns(made)

    def under(self, known: Sequence[Recognised]) -> "Features":
        """A function of each column."""
        made: List[Polynomial] = []
        for column, one in zip(self.columns, known):
            if one.function is None:
                inner = combined([(one.slope, column), (one.intercept, {(): 1.0})])
                own = power(inner, one.power)
                made.append(combined([(one.scale, own), (one.shift, {(): 1.0})]))
                continue
            variable = self.variable_of(column)
            if variable is None or variable.function is not None:
                raise NoVariable()
            inside = variable.scaled(one.slope, one.intercept)
            outside = replace(inside, function=one.function, scale=one.scale, shift=one.shift)
            made.append(self.add(outside))
        return self.with_columns(made)


def combined(parts: Iterable[Tuple[float, Polynomial]]) -> Polynomial:
    """A weighted sum. Terms with the coefficient 0 are left out."""
    made: Polynomial = {}
    for weight, polynomial in parts:
        for term, coefficient in polynomial.items():
            made[term] = made.get(term, 0.0) + weight * coefficient
    return {term: coefficient for term, coefficient in made.items() if coefficient != 0.0}


def by_terms(columns: Sequence[Polynomial]) -> Tuple[List[Term], np.ndarray]:
    """All terms that columns have, and the coefficients (columns, terms)."""
    terms = list(dict.fromkeys(term for column in columns for term in column))
    return terms, np.array([[column.get(term, 0.0) for term in terms] for column in columns])


def multiplied(a: Polynomial, b: Polynomial) -> Polynomial:
    made: Polynomial = {}
    for left, p in a.items():
        for right, q in b.items():
            term = tuple(sorted(left + right))
            made[term] = made.get(term, 0.0) + p * q
        if len(made) > MOST_TERMS:
            raise TooManyTerms()
    return made


def power(base: Polynomial, exponent: int) -> Polynomial:
    made: Polynomial = {(): 1.0}
    for _ in range(exponent):
        made = multiplied(made, base)
    return made
