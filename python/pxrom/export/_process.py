"""Gaussian processes, and radial interpolants, which have the same form, on their way to a record.

Rasmussen and Williams, Gaussian Processes for Machine Learning (2006), sections 2.2 and 2.7.
"""

from dataclasses import dataclass, field
from functools import cached_property, partial
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

import numpy as np

from .. import _core
from . import _rounding
from ._covariance import Covariance, joined, product_values
from ._monomials import Term, design, monomial, trend_terms
from ._rounding import STEPS, UNIT
from ._surface import EnsembleScale, NotExportable, Surface, Terms


@dataclass
class ProcessErrorData:
    """The data for the standard deviation (gaussian_process.h). ``includes_noise``: it is that of
    a new measurement, not of the function."""

    inverse: np.ndarray  # inv(L), L L' = covariances of the samples and their noise
    includes_noise: bool = False
    trend_inverse: Optional[np.ndarray] = None
    trend_at_samples: Optional[np.ndarray] = None


def inverse_of(lower: np.ndarray) -> np.ndarray:
    """That of a lower triangular matrix, with zeros above its diagonal: a third of the work of
    solving for each column of the identity."""
    from scipy.linalg.lapack import dtrtri

    # LAPACK stores matrices by columns.
    upper, info = dtrtri(np.ascontiguousarray(lower, dtype=float).T, lower=0)
    if info != 0:
        raise np.linalg.LinAlgError("a triangular matrix has no inverse")
    inverse = upper.T
    for row in range(len(inverse)):  # LAPACK leaves the other triangle as it was
        inverse[row, row + 1 :] = 0.0
    return np.asarray(inverse)


def error_data(
    lower: np.ndarray,
    includes_noise: bool = False,
    trend: Optional[np.ndarray] = None,
    priors: Optional[np.ndarray] = None,
) -> ProcessErrorData:
    """From the lower Cholesky factor of the samples' covariances.

    ``trend``: the trend functions at the samples (n, p), if their coefficients are estimated;
    ``priors`` (p,): the variances of the coefficients before that, where they are random and
    ``lower`` leaves them out (Rasmussen and Williams, equation 2.42).
    """
    from scipy.linalg import solve_triangular

    made = ProcessErrorData(inverse_of(lower), includes_noise)
    if trend is None or trend.shape[1] == 0:
        return made
    at_samples = solve_triangular(lower, trend, lower=True)
    rows = at_samples
    if priors is not None:
        rows = np.vstack([rows, np.diag(1.0 / np.sqrt(priors))])
    upper = np.asarray(np.linalg.qr(rows, mode="r"))
    upper = upper * np.where(np.diag(upper) < 0.0, -1.0, 1.0)[:, None]
    made.trend_inverse = inverse_of(upper.T)
    made.trend_at_samples = at_samples.T
    return made


def posterior(of: Covariance, X: np.ndarray, weights: np.ndarray) -> Dict[Term, float]:
    """The means of the random coefficients of ``of``, which are the trend of a record."""
    return {term: prior * float(monomial(term, X) @ weights) for term, prior in of.priors.items()}


def process_error(of: Covariance, X: np.ndarray, noise: Any, lower: np.ndarray) -> ProcessErrorData:
    """Of a process without an estimated trend. ``lower`` is the factor of the tool, ``noise`` what
    the diagonal of its matrix has in addition to the covariances, by sample or for all."""
    if not of.priors:
        return error_data(lower, of.noise > 0.0)
    # The random coefficients are a trend of the record, so its process is without them.
    terms = in_order(list(of.priors), X.shape[1])[1]
    try:
        lower = np.linalg.cholesky(of.matrix(X) + np.diag(np.broadcast_to(noise, len(X))))
    except np.linalg.LinAlgError:
        raise NotExportable(
            "the kernel without its DotProduct (its linear part) is not positive definite at the "
            "samples; white noise makes it so"
        ) from None
    priors = np.array([of.priors[term] for term in terms])
    return error_data(lower, of.noise > 0.0, design(terms, X), priors)


def in_order(terms: List[Term], inputs: int) -> Tuple[int, List[Term]]:
    """The largest E_PolynomialType within ``terms``, and these in the order of a record."""
    given = [tuple(sorted(term)) for term in terms]
    kind = next((k for k in (4, 3, 2, 1) if set(trend_terms(k, inputs)) <= set(given)), 0)
    first = trend_terms(kind, inputs) if kind else []
    return kind, first + [term for term in given if term not in first]


@dataclass
class ProcessSurface(Surface):
    covariance: Covariance = field(default_factory=Covariance)
    weights: np.ndarray = field(default_factory=lambda: np.empty(0))
    trend: Dict[Term, float] = field(default_factory=dict)
    # A function, since large matrices should not be computed only to count outputs.
    make_error: Optional[Callable[[], ProcessErrorData]] = None
    by_products: bool = False  # whether the tool computes |x - y|^2 as |x|^2 - 2 x y + |y|^2

    def __post_init__(self) -> None:
        """Brings the trend into the order of a record, as ``error_data`` has to have it."""
        self._trend_kind, terms = in_order(list(self.trend), self.inputs)
        self.trend = {term: float(self.trend[term]) for term in terms}

    @cached_property
    def error_data(self) -> Optional[ProcessErrorData]:
        return None if self.make_error is None else self.make_error()

    @property
    def error_scale(self) -> Optional[float]:
        """The variance of a measurement before there were samples."""
        assert self.samples is not None
        spread = self.covariance.variance + self.covariance.noise
        for term, prior in self.covariance.priors.items():
            spread += prior * float((design([term], self.samples) ** 2).max())
        return spread * self.scale**2

    def _away(self, X: np.ndarray) -> Iterator[Tuple[np.ndarray, np.ndarray]]:
        """For each point the kernels' magnitudes at all samples, and how far they may be off."""
        assert self.samples is not None
        of_samples = np.abs(self.samples) + np.abs(self.intercept)
        for point, reach in zip(self.slope * X + self.intercept, self._reach(X)):
            off = 4.0 * UNIT * (reach + of_samples)
            magnitude, error = np.zeros(len(of_samples)), np.zeros(len(of_samples))
            for product, amplitude in self.covariance.terms.items():
                shape = partial(product_values, product)
                values, value_off = _rounding.kernels_off(shape, self.samples, point, off)
                if self.by_products:
                    away = np.abs(point - self.samples)
                    lost = STEPS * UNIT * (reach**2 + of_samples**2)
                    near = np.sqrt(np.maximum(away**2 - lost, 0.0))
                    value_off = value_off + shape(near) - shape(np.sqrt(away**2 + lost))
                magnitude += abs(amplitude) * np.abs(values)
                error += abs(amplitude) * np.abs(value_off)
            yield magnitude, error + len(self.covariance.terms) * UNIT * magnitude

    def _terms(self, X: np.ndarray) -> Terms:
        assert self.samples is not None
        sizes = np.abs(self.weights)
        found = [(sizes @ values, sizes @ off) for values, off in self._away(X)]
        magnitude, error = np.array(found).T
        error = error + len(sizes) * UNIT * magnitude
        if self.trend:
            longest = max(len(term) for term in self.trend)
            more = design(list(self.trend), self._reach(X)) @ np.abs(list(self.trend.values()))
            magnitude = magnitude + more
            error = error + (len(self.trend) + longest + STEPS) * UNIT * more
        for term, prior in self.covariance.priors.items():
            # Here a coefficient, for the tool a sum over the samples, which may cancel.
            sums = sizes @ np.abs(monomial(term, self.samples))
            more = prior * float(sums) * monomial(term, self._reach(X))
            error = error + (len(sizes) + STEPS) * UNIT * more
        return magnitude, error

    def error_rounding(self, X: np.ndarray) -> np.ndarray:
        """As that of a Kriging surface: what the kernels' own errors do to |v|^2 and |T w|^2."""
        data = self.error_data
        if data is None:
            return np.zeros(len(X))
        inverse = np.abs(data.inverse)
        has_trend = data.trend_inverse is not None
        if has_trend:
            assert data.trend_inverse is not None and data.trend_at_samples is not None
            through = np.abs(data.trend_inverse @ data.trend_at_samples)
            functions = design(list(self.trend), self.slope * X + self.intercept)
        found: List[float] = []
        for place, (values, off) in enumerate(self._away(X)):
            v, v_off = data.inverse @ values, inverse @ off
            both = np.abs(v) @ v_off
            if has_trend:
                w = data.trend_inverse @ (functions[place] - data.trend_at_samples @ v)
                both += np.abs(w) @ (through @ v_off)
            found.append(float(2.0 * both))
        return 2.0 * self.scale**2 * np.array(found)

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CGaussianProcessData()
        self._fill(record, ensemble, own_samples=False)
        record.PolynomialType = self._trend_kind
        first = len(trend_terms(self._trend_kind, self.inputs)) if self._trend_kind else 0
        record.Monomials = [
            term.count(i) for term in list(self.trend)[first:] for i in range(self.inputs)
        ]
        record.PolynomialCoefficients = list(self.trend.values())
        products = [(joined(product), size) for product, size in self.covariance.terms.items()]
        record.TermAmplitudes = [size for _, size in products] or [0.0]
        factors = [(place, f) for place, (product, _) in enumerate(products) for f in product]
        record.FactorTerms = [place for place, _ in factors]
        record.FactorFunctions = [factor.function for _, factor in factors]
        record.FactorParameters = [factor.parameter for _, factor in factors]
        # One length is enough where each factor has the same for all inputs.
        taken = 1 if all(len(set(f.lengths)) == 1 for _, f in factors) else self.inputs
        record.FactorLengths = [l for _, factor in factors for l in factor.lengths[:taken]]
        record.Weights = self.weights.tolist()
        record.NoiseVariance = self.covariance.noise
        data = None if self.predict_error is None else self.error_data
        if data is not None:
            record.SavePredictorError = True
            record.ErrorIncludesNoise = data.includes_noise
            record.InverseFactor = _triangle(data.inverse)
            if data.trend_inverse is not None and data.trend_at_samples is not None:
                record.TrendInverseFactor = _triangle(data.trend_inverse)
                record.TrendAtSamples = data.trend_at_samples
        return record


def _triangle(lower: np.ndarray) -> np.ndarray:
    """Row by row."""
    return np.asarray(lower[np.tri(len(lower), dtype=bool)])
