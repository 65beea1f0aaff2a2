"""Columns of a design or functions of a basis, recognised by their values at points."""

from itertools import combinations, combinations_with_replacement
from typing import Iterator, List, Optional, Tuple

import numpy as np

from ._features import Features, Polynomial, multiplied, power
from ._functions import KNOWN, recognise
from ._surface import NotExportable

_HIGHEST_POWER = 8

# A column as a polynomial, and its values at the points.
Column = Tuple[Polynomial, np.ndarray]


class Columns:
    """Recognises columns by their values at the observations."""

    def __init__(self, features: Features, X: np.ndarray) -> None:
        self._features = features
        self._X = X

    def all_of(self, exog: np.ndarray, names: List[str]) -> List[Polynomial]:
        found = [self.find(column) for column in exog.T]
        unknown = [name for name, column in zip(names, found) if column is None]
        if unknown:
            raise NotExportable(
                f"in the design, {', '.join(map(repr, unknown))} is not a product of inputs of X "
                f"and of functions that a database has ({KNOWN}); X holds the inputs as points, "
                "one row per observation; make other columns inputs of their own"
            )
        return [column for column in found if column is not None]

    def find(self, values: np.ndarray) -> Optional[Polynomial]:
        if np.ptp(values) == 0.0:
            return {(): float(values[0])} if values[0] != 0.0 else {}
        single = self._single(values)
        if single is not None:
            return single
        for polynomial, known in self._products():
            if np.allclose(known, values, rtol=1e-12, atol=0.0):
                return polynomial
        return None

    def _single(self, values: np.ndarray) -> Optional[Polynomial]:
        """A function or power of one input, or a slope and an intercept of it."""
        for i in range(self._X.shape[1]):
            x = self._X[:, i]
            known = recognise(x, values)
            if known is not None:
                one = self._features.with_columns([{(i,): 1.0}]).under([known])
                return one.columns[0]
            for exponent in range(4, _HIGHEST_POWER + 1):
                if np.allclose(x**exponent, values, rtol=1e-12, atol=0.0):
                    return power({(i,): 1.0}, exponent)
        for i in range(self._X.shape[1]):
            x = self._X[:, i]
            low, high = int(np.argmin(x)), int(np.argmax(x))
            if x[low] == x[high]:
                continue
            slope = (values[high] - values[low]) / (x[high] - x[low])
            intercept = float(values[low] - slope * x[low])
            if np.allclose(slope * x + intercept, values, rtol=0, atol=1e-13 * np.ptp(values)):
                return self._features.add(self._features.variables[i].scaled(slope, intercept))
        return None

    def _products(self) -> Iterator[Column]:
        inputs = range(self._X.shape[1])
        for degree in (2, 3, 4):
            for term in combinations_with_replacement(inputs, degree):
                yield {term: 1.0}, np.prod(self._X[:, term], axis=1)
        singles = [self._functions_of(i) for i in inputs]
        for a, b in combinations(inputs, 2):
            for p, u in singles[a]:
                for q, v in singles[b]:
                    yield multiplied(p, q), u * v

    def _functions_of(self, i: int) -> List[Column]:
        made: List[Column] = []
        with np.errstate(all="ignore"):
            for function in (np.asarray, np.square, np.log, np.log10, np.sqrt, np.exp):
                values = np.asarray(function(self._X[:, i]))
                if np.all(np.isfinite(values)):
                    polynomial = self._single(values)
                    assert polynomial is not None
                    made.append((polynomial, values))
        return made
