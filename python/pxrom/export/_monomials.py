"""Which monomial of the inputs a column of a design matrix is."""

from typing import List, Optional

import numpy as np

from ._surface import Term, quadratic_terms


def monomial(term: Term, X: np.ndarray) -> np.ndarray:
    """The values of a term at the points ``X`` (n, d)."""
    column = np.ones(len(X))
    for i in term:
        column = column * X[:, i]
    return column


def design(terms: List[Term], X: np.ndarray) -> np.ndarray:
    """One column per term."""
    return np.column_stack([monomial(term, X) for term in terms])


def recognised(columns: np.ndarray, X: np.ndarray) -> List[Optional[Term]]:
    """For each column the term up to the second degree that has its values, or None."""
    known = [(term, monomial(term, X)) for term in quadratic_terms(X.shape[1])]
    found: List[Optional[Term]] = []
    for column in columns.T:
        fits = (term for term, values in known if np.allclose(values, column, rtol=1e-12, atol=0.0))
        found.append(next(fits, None))
    return found
