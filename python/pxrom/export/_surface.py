"""A fitted surface on its way from a tool to a record.

There are three spaces. A point x in physical units becomes u = a x + b in the space of its
ensemble, and z = slope x + intercept in the surface's own space, where the tool's formula holds.
The surface's result t becomes y = scale t + shift. Each class below represents one family of the
library, with all of its numbers in its own space, and writes a record for any ensemble.
"""

from dataclasses import dataclass, field
from functools import cached_property
from typing import Callable, Dict, Iterator, List, Optional, Sequence, Tuple

import numpy as np

from .. import _core
from . import _rounding
from ._monomials import design, trend_terms
from ._rounding import STEPS, UNIT

# Sums of the magnitudes of all terms, and bounds of their error, by point.
Terms = Tuple[np.ndarray, np.ndarray]
Predict = Callable[[np.ndarray], np.ndarray]


class NotExportable(ValueError):
    """A database can't hold the fit; the message says why."""


@dataclass(frozen=True)
class EnsembleScale:
    """u = slopes x + intercepts, v = slope y + intercept: the space of an ensemble."""

    slopes: np.ndarray
    intercepts: np.ndarray
    slope: float = 1.0
    intercept: float = 0.0

    @staticmethod
    def identity(inputs: int) -> "EnsembleScale":
        return EnsembleScale(np.ones(inputs), np.zeros(inputs))


@dataclass
class Surface:
    """What all families share.

    ``predict`` and ``predict_error`` are those of the tool, at points in physical units; they check
    the export. ``no_error`` says why there is no predicted error.
    """

    slope: np.ndarray
    intercept: np.ndarray
    scale: float = 1.0
    shift: float = 0.0
    samples: Optional[np.ndarray] = None  # in the own space, (n, d)
    outputs: Optional[np.ndarray] = None  # in the own space, (n,)
    targets: Optional[np.ndarray] = None  # instead, in physical units, where only the caller knows
    rows: Optional[np.ndarray] = None  # which samples of the fit these are; None: all
    sample_count: int = 0  # how many the fit had, beside rows
    predict: Optional[Predict] = None
    predict_error: Optional[Predict] = None
    no_error: str = "the tool predicts no error for it"
    off: float = 0.0  # what _terms doesn't see: by how much a value may be off, in the own space

    @property
    def inputs(self) -> int:
        return len(self.slope)

    def physical_samples(self) -> Optional[np.ndarray]:
        if self.samples is None or not np.all(self.slope != 0.0):
            return None
        return (self.samples - self.intercept) / self.slope

    def physical_outputs(self) -> Optional[np.ndarray]:
        if self.outputs is None:
            return self.targets
        return self.scale * self.outputs + self.shift

    def after_inputs(self, slope: np.ndarray, intercept: np.ndarray) -> None:
        """Applies x' = slope x + intercept before the surface, as a scaler of a pipeline does."""
        self.intercept = self.slope * intercept + self.intercept
        self.slope = self.slope * slope
        if self.predict_error is not None:
            inner = self.predict_error
            self.predict_error = lambda X: inner(X * slope + intercept)

    def before_output(self, scale: float, shift: float) -> None:
        """Applies y' = scale y + shift after the surface, as the inverse of a target's scaler
        does."""
        self.shift = scale * self.shift + shift
        self.scale = scale * self.scale
        if self.predict_error is not None:
            inner = self.predict_error
            self.predict_error = lambda X: abs(scale) * inner(X)

    def drop_error(self, why: str) -> None:
        self.predict_error = None
        self.no_error = why

    def rounding(self, X: np.ndarray) -> np.ndarray:
        """How far the tool's value and the library's may be apart at points in physical units
        because both round (:mod:`._rounding`)."""
        magnitude, error = self._terms(X)
        own = np.abs(self.scale) * (self.off + error + STEPS * UNIT * magnitude)
        return np.asarray(2.0 * (own + STEPS * UNIT * abs(self.shift)))

    def error_rounding(self, X: np.ndarray) -> np.ndarray:
        """The same for the square of the predicted error."""
        return np.zeros(len(X))

    def _terms(self, X: np.ndarray) -> Terms:
        """In the own space, at points in physical units."""
        raise NotImplementedError

    def _reach(self, X: np.ndarray) -> np.ndarray:
        """Magnitudes of the coordinates in the own space before anything cancels."""
        return np.asarray(np.abs(self.slope * X) + np.abs(self.intercept))

    def _kernels_off(
        self, shape: _rounding.Shape, X: np.ndarray
    ) -> Iterator[Tuple[np.ndarray, np.ndarray]]:
        """For each point the kernel values with all samples, and by how much each may be off."""
        assert self.samples is not None
        of_samples = np.abs(self.samples) + np.abs(self.intercept)
        for point, reach in zip(self.slope * X + self.intercept, self._reach(X)):
            off = 4.0 * UNIT * (reach + of_samples)
            yield _rounding.kernels_off(shape, self.samples, point, off)

    def _kernel_terms(self, shape: _rounding.Shape, weights: np.ndarray, X: np.ndarray) -> Terms:
        sizes = np.abs(weights)
        found = [(sizes @ values, sizes @ off) for values, off in self._kernels_off(shape, X)]
        magnitude, error = np.array(found).T
        return magnitude, error + len(sizes) * UNIT * magnitude

    def _with_trend(
        self, terms: Terms, kind: int, weights: Sequence[float], X: np.ndarray
    ) -> Terms:
        more = design(trend_terms(kind, self.inputs), self._reach(X)) @ np.abs(weights)
        return terms[0] + more, terms[1] + (len(weights) + STEPS) * UNIT * more

    @property
    def error_scale(self) -> Optional[float]:
        """The square that squares of errors are compared with; None: their largest."""
        return None

    @property
    def error_accuracy(self) -> float:
        """The accuracy of the library for the squares of errors, relative to that scale."""
        return 0.0

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        raise NotImplementedError

    def _fill(self, record: _core.CRSData, ensemble: EnsembleScale, own_samples: bool) -> None:
        """The base of a record. ``own_samples``: the family scales no samples, so they are stored
        in the own space."""
        slope = self.slope / ensemble.slopes
        intercept = self.intercept - slope * ensemble.intercepts
        record.NumberOfInputVariables = self.inputs
        record.InputScaleSlopes = slope.tolist()
        record.InputScaleIntercepts = intercept.tolist()
        record.OutputScaleSlope = 1.0 / (self.scale * ensemble.slope)
        record.OutputScaleIntercept = -(
            (self.shift + ensemble.intercept / ensemble.slope) / self.scale
        )
        record.ReadyForSolve = True
        record.ReadyForEvaluation = True
        if self.samples is None:
            return
        record.NumberOfSamples = len(self.samples)
        samples = self.samples if own_samples else (self.samples - intercept) / slope
        record.InputSamples = samples
        outputs = self.physical_outputs()
        if outputs is not None:  # else none are stored: no value needs them
            record.OutputSamples = (ensemble.slope * outputs + ensemble.intercept).tolist()


@dataclass
class KrigingErrorData:
    """The data for the mean squared error of a Kriging predictor (kriging.h)."""

    variance: float
    inv_c: np.ndarray
    inv_g: np.ndarray
    ft: np.ndarray


@dataclass
class KrigingSurface(Surface):
    trend: int = 1  # E_PolynomialType
    trend_coefficients: Sequence[float] = (0.0,)
    correlation: int = 2  # E_KringingCorrelationFunctionType
    coefficients: np.ndarray = field(default_factory=lambda: np.empty(0))
    kernels: np.ndarray = field(default_factory=lambda: np.empty(0))
    # A function, since large matrices should not be computed only to count outputs.
    make_error: Optional[Callable[[], KrigingErrorData]] = None

    @cached_property
    def error_data(self) -> Optional[KrigingErrorData]:
        return None if self.make_error is None else self.make_error()

    @property
    def error_scale(self) -> Optional[float]:
        return None if self.error_data is None else self.error_data.variance * self.scale**2

    def _terms(self, X: np.ndarray) -> Terms:
        shape = _rounding.correlation(self.correlation, self.kernels)
        terms = self._kernel_terms(shape, self.coefficients, X)
        return self._with_trend(terms, self.trend, self.trend_coefficients, X)

    def error_rounding(self, X: np.ndarray) -> np.ndarray:
        """Only what the kernels' own errors do to |v|^2 and |g|^2, for v = InvC k and
        g = InvG (Ft v - f): triangular solutions are far more accurate than their worst case
        (Higham, chapter 8), and the tolerance holds what is left."""
        if self.error_data is None:
            return np.zeros(len(X))
        data = self.error_data
        shape = _rounding.correlation(self.correlation, self.kernels)
        trend = design(trend_terms(self.trend, self.inputs), self.slope * X + self.intercept)
        inverse, through_trend = np.abs(data.inv_c), np.abs(data.inv_g @ data.ft)
        found: List[float] = []
        for f, (values, off) in zip(trend, self._kernels_off(shape, X)):
            v, v_off = data.inv_c @ values, inverse @ off
            g = data.inv_g @ (data.ft @ v - f)
            g_off = through_trend @ v_off
            found.append(float(2.0 * (np.abs(v) @ v_off + np.abs(g) @ g_off)))
        return 2.0 * data.variance * self.scale**2 * np.array(found)

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CKrigingData()
        self._fill(record, ensemble, own_samples=False)
        coefficients, trend = self.coefficients, np.array(self.trend_coefficients, dtype=float)
        if self.predict_error is not None and self.error_data is not None:
            # A reader may scale the error back or not, so the record has no output scale: the
            # coefficients are in the unit of the output, and so are both kinds of error.
            scale = self.scale * ensemble.slope
            coefficients, trend = scale * coefficients, scale * trend
            trend[0] += self.shift * ensemble.slope + ensemble.intercept
            record.OutputScaleSlope, record.OutputScaleIntercept = 1.0, 0.0
            record.SavePredictorError = True
            record.NumberOfPolyCoeff = len(trend)
            record.Sigma2 = self.error_data.variance * scale**2
            record.InvC = self.error_data.inv_c
            record.InvG = self.error_data.inv_g
            record.Ft = self.error_data.ft
        record.PolynomialType = self.trend
        record.PolynomialCoefficients = trend.tolist()
        record.CorrelationFunctionType = self.correlation
        record.CorrelationCoefficients = coefficients.tolist()
        record.CorrelationKernels = self.kernels.tolist()
        return record


@dataclass
class SupportVectorSurface(Surface):
    kernel: int = 2  # E_SVRKernType
    width: float = 1.0
    multipliers: np.ndarray = field(default_factory=lambda: np.empty(0))
    bias: float = 0.0
    settings: Dict[str, float] = field(default_factory=dict)  # epsilon, nu, C: kept, not used
    by_products: bool = False  # whether the tool computes |x - y|^2 as |x|^2 - 2 x y + |y|^2

    def _terms(self, X: np.ndarray) -> Terms:
        assert self.samples is not None
        sizes = np.abs(self.multipliers)
        if self.kernel in (2, 5):  # distances: Gaussian, exponential
            kind = 2 if self.kernel == 2 else 1
            shape = _rounding.correlation(kind, np.full(self.inputs, self.width))
            magnitude, error = self._kernel_terms(shape, self.multipliers, X)
            if self.by_products:
                squares = (self._reach(X) ** 2).sum(axis=1) + (self.samples**2).sum(axis=1).max()
                error = error + STEPS * UNIT * self.width * squares * magnitude
        else:  # products of coordinates: 1 + x y, its square, tanh((e / d) x y - e)
            sums = 1.0 + self._reach(X) @ np.abs(self.samples).T
            sums = sums**2 if self.kernel == 1 else sums * np.e
            magnitude = sums @ sizes
            error = (len(sizes) + self.inputs + STEPS) * UNIT * magnitude
        return magnitude + abs(self.bias), error

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CSVRData()
        self._fill(record, ensemble, own_samples=False)
        record.SVRKernType = self.kernel
        # Pairs of multipliers; one of each pair is 0, as after training.
        record.SVRLossFuncType = 3
        record.Alphas = np.where(self.multipliers < 0, -self.multipliers, 0.0).tolist()
        record.AlphasStar = np.where(self.multipliers > 0, self.multipliers, 0.0).tolist()
        record.Betas = [0.0] * len(self.multipliers)
        record.ConstantCoefficient = float(self.bias)
        record.KernelArray = [float(self.width)] * self.inputs
        # Values outside the range of a record, such as an epsilon of 0, keep its defaults.
        for name, carry in (
            ("epsilon", record.SetEpsVal),
            ("nu", record.SetNuVal),
            ("C", record.SetConstVal),
        ):
            if name in self.settings:
                carry(self.settings[name])
        return record


@dataclass
class LinearBasisSurface(Surface):
    function: int = 0  # E_LinearBasisFunction
    width: float = 1.0
    coefficients: np.ndarray = field(default_factory=lambda: np.empty(0))
    trend: int = 1  # E_PolynomialType
    trend_coefficients: Sequence[float] = (0.0,)

    def _terms(self, X: np.ndarray) -> Terms:
        def shape(away: np.ndarray) -> np.ndarray:
            squares = (away**2).sum(axis=1) / self.width**2
            return np.asarray(np.exp(-squares) if self.function == 0 else 1.0 / (1.0 + squares))

        terms = self._kernel_terms(shape, self.coefficients, X)
        return self._with_trend(terms, self.trend, self.trend_coefficients, X)

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CLBFData()
        self._fill(record, ensemble, own_samples=True)
        record.BasisFunctionType = self.function
        record.KernelValues = [float(self.width)] * len(self.coefficients)
        record.KernelCoefficients = self.coefficients.tolist()
        record.PolynomialType = self.trend
        record.PolynomialCoefficients = [float(c) for c in self.trend_coefficients]
        return record


@dataclass
class ConstantSurface(Surface):
    value: float = 0.0

    def _terms(self, X: np.ndarray) -> Terms:
        return np.full(len(X), abs(self.value)), np.zeros(len(X))

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CConstantData()
        record.NumberOfInputVariables = self.inputs
        record.InputScaleSlopes = [1.0] * self.inputs
        record.InputScaleIntercepts = [0.0] * self.inputs
        record.OutputScaleSlope = 1.0
        record.ReadyForSolve = True
        record.ReadyForEvaluation = True
        # The library does not apply a scaling of its own to a constant, but that of the ensemble.
        physical = self.scale * self.value + self.shift
        record.SetConstantValue(ensemble.slope * physical + ensemble.intercept)
        return record


def identity(inputs: int) -> Tuple[np.ndarray, np.ndarray]:
    """Slopes and intercepts that change nothing."""
    return np.ones(inputs), np.zeros(inputs)
