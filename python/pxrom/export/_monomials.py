"""Terms of polynomials in the inputs: their order, their values, and how to recognise them."""

from typing import Dict, List, Optional, Tuple

import numpy as np

# The inputs that a term multiplies, ascending; none, one or two.
Term = Tuple[int, ...]


def quadratic_terms(inputs: int) -> List[Term]:
    """The full quadratic basis in the library's order."""
    pairs: List[Term] = [(i, j) for i in range(inputs) for j in range(i, inputs)]
    return [(), *[(i,) for i in range(inputs)], *pairs]


def trend_terms(kind: int, inputs: int) -> List[Term]:
    """The terms of an E_PolynomialType in order."""
    linear: List[Term] = [(), *[(i,) for i in range(inputs)]]
    squares: List[Term] = [(i, i) for i in range(inputs)]
    return {1: linear[:1], 2: linear, 3: linear + squares}.get(kind) or quadratic_terms(inputs)


def trend_of(monomials: Dict[Term, float], inputs: int) -> Tuple[int, List[Term]]:
    """The smallest E_PolynomialType with all of ``monomials``, and its terms in order."""
    kind = next(k for k in (1, 2, 3, 4) if k == 4 or set(monomials) <= set(trend_terms(k, inputs)))
    return kind, trend_terms(kind, inputs)


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
