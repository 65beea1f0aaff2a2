"""A fitted surface on its way from a tool to a record.

Three spaces meet here. A point x in physical units becomes u = a x + b in the space of its
ensemble, and z = slope x + intercept in the surface's own, where the tool's formula holds; the
surface's result t becomes y = scale t + shift. Each class below knows one family of the library,
with all of its numbers in its own space, and writes a record for any ensemble.
"""

from dataclasses import dataclass, field
from typing import Callable, Dict, List, Optional, Sequence, Tuple

import numpy as np

from .. import _core

Predict = Callable[[np.ndarray], np.ndarray]


class NotExportable(ValueError):
    """What was fitted can't be held by a database; the message says why."""


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

    ``predict`` and ``predict_error`` are the tool's own, at points in physical units; they check
    what was exported. ``no_error`` says why there is no predicted error.
    """

    slope: np.ndarray
    intercept: np.ndarray
    scale: float = 1.0
    shift: float = 0.0
    samples: Optional[np.ndarray] = None  # in the own space, (n, d)
    outputs: Optional[np.ndarray] = None  # in the own space, (n,)
    predict: Optional[Predict] = None
    predict_error: Optional[Predict] = None
    no_error: str = "the tool predicts no error for it"

    @property
    def inputs(self) -> int:
        return len(self.slope)

    def physical_samples(self) -> Optional[np.ndarray]:
        if self.samples is None or not np.all(self.slope != 0.0):
            return None
        return (self.samples - self.intercept) / self.slope

    def after_inputs(self, slope: np.ndarray, intercept: np.ndarray) -> None:
        """Puts x' = slope x + intercept in front, as a scaler of a pipeline does."""
        self.intercept = self.slope * intercept + self.intercept
        self.slope = self.slope * slope
        if self.predict_error is not None:
            inner = self.predict_error
            self.predict_error = lambda X: inner(X * slope + intercept)

    def before_output(self, scale: float, shift: float) -> None:
        """Puts y' = scale y + shift behind, as the inverse of a target's scaler does."""
        self.shift = scale * self.shift + shift
        self.scale = scale * self.scale
        if self.predict_error is not None:
            inner = self.predict_error
            self.predict_error = lambda X: abs(scale) * inner(X)

    def drop_error(self, why: str) -> None:
        self.predict_error = None
        self.no_error = why

    @property
    def error_scale(self) -> Optional[float]:
        """The square that squares of errors are compared with; None: their largest."""
        return None

    @property
    def error_accuracy(self) -> float:
        """What the library itself grants for the squares of errors, relative to that scale."""
        return 0.0

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        raise NotImplementedError

    def _fill(self, record: _core.CRSData, ensemble: EnsembleScale, own_samples: bool) -> None:
        """The base of a record. ``own_samples``: the family scales no samples, so that they stand
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
        record.InputSamples = samples.tolist()
        if self.outputs is None:
            record.OutputSamples = [0.0] * len(self.samples)
        else:
            back = self.scale * self.outputs + self.shift
            record.OutputSamples = (ensemble.slope * back + ensemble.intercept).tolist()


@dataclass
class KrigingErrorData:
    """What the mean squared error of a Kriging predictor rests on (kriging.h)."""

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
    error_data: Optional[KrigingErrorData] = None

    @property
    def error_scale(self) -> Optional[float]:
        return None if self.error_data is None else self.error_data.variance * self.scale**2

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CKrigingData()
        self._fill(record, ensemble, own_samples=False)
        record.PolynomialType = self.trend
        record.PolynomialCoefficients = [float(c) for c in self.trend_coefficients]
        record.CorrelationFunctionType = self.correlation
        record.CorrelationCoefficients = self.coefficients.tolist()
        record.CorrelationKernels = self.kernels.tolist()
        if self.error_data is not None and self.predict_error is not None:
            record.SavePredictorError = True
            record.NumberOfPolyCoeff = len(self.trend_coefficients)
            # The error of a record is not scaled back: in physical units from the start.
            record.Sigma2 = self.error_data.variance * (self.scale * ensemble.slope) ** 2
            record.InvC = self.error_data.inv_c.tolist()
            record.InvG = self.error_data.inv_g.tolist()
            record.Ft = self.error_data.ft.tolist()
        return record


# A term: the inputs that it multiplies, ascending; none, one or two.
Term = Tuple[int, ...]

# E_QRSTransformationType by the function that leads into the space of the regression.
TRANSFORMS: Dict[str, int] = {"log": 3, "log10": 4, "sqrt": 5}


@dataclass
class RegressionSurface(Surface):
    terms: Dict[Term, float] = field(default_factory=dict)
    input_transform: Optional[str] = None
    output_transform: Optional[str] = None
    variance: float = 0.0
    inv_xtx: Optional[np.ndarray] = None  # in the order of the terms
    level: float = 0.95  # one-sided

    def fold(self) -> None:
        """Takes the scale of the output, and of the inputs of linear terms, into the terms."""
        folded: Dict[Term, float] = {(): self.shift}
        for term, coefficient in self.terms.items():
            if len(term) > 1:
                raise NotExportable(
                    "polynomial features stand behind terms of the second degree: databases hold "
                    "no terms above that"
                )
            if not term:
                folded[()] += self.scale * coefficient
                continue
            (i,) = term
            folded[()] += self.scale * coefficient * self.intercept[i]
            folded[term] = folded.get(term, 0.0) + self.scale * coefficient * self.slope[i]
        self.terms = folded
        self.scale, self.shift = 1.0, 0.0
        self.slope, self.intercept = np.ones(self.inputs), np.zeros(self.inputs)

    def after_polynomial(self, powers: np.ndarray) -> None:
        """Puts features in front that are monomials: one row of exponents per feature."""
        self.fold()
        made: Dict[Term, float] = {}
        for term, coefficient in self.terms.items():
            monomial: Term = ()
            if term:
                row = powers[term[0]]
                monomial = tuple(int(i) for i in np.repeat(np.arange(len(row)), row))
            if len(monomial) > 2 and coefficient != 0.0:
                raise NotExportable(
                    f"a polynomial feature has the degree {len(monomial)}: a database holds terms "
                    "up to the second degree (PolynomialFeatures(degree=2))"
                )
            if len(monomial) <= 2:
                made[monomial] = made.get(monomial, 0.0) + coefficient
        self.terms = made
        self.slope, self.intercept = np.ones(powers.shape[1]), np.zeros(powers.shape[1])
        self.samples = None

    def before_output_transform(self, name: str) -> None:
        """Puts the inverse of a transformation behind."""
        self.terms = {term: self.scale * value for term, value in self.terms.items()}
        self.terms[()] = self.terms.get((), 0.0) + self.shift
        self.scale, self.shift = 1.0, 0.0
        self.output_transform = name
        self.drop_error("an error is not led back through a transformation of the output")

    @property
    def error_accuracy(self) -> float:
        # The library iterates for its quantile of Student's t and ends at about 1e-8.
        return 1e-6

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CQRSData()
        self._fill(record, ensemble, own_samples=False)
        if self.input_transform is not None:
            record.InputTransformType = TRANSFORMS[self.input_transform]
            record.InputTransformValues = [0.0] * self.inputs
            record.InputLambdas = [0.0] * self.inputs
        if self.output_transform is not None:
            record.OutputTransformType = TRANSFORMS[self.output_transform]
        record.SetTerms([(list(term), float(value)) for term, value in self.terms.items()])
        if self.inv_xtx is not None and self.predict_error is not None:
            record.SavePredictorError = True
            record.RegTermFilterConfVal = self.level
            record.Sigma2 = self.variance
            record.InvXtX = self.inv_xtx.tolist()
        return record


@dataclass
class SupportVectorSurface(Surface):
    kernel: int = 2  # E_SVRKernType
    width: float = 1.0
    multipliers: np.ndarray = field(default_factory=lambda: np.empty(0))
    bias: float = 0.0
    settings: Dict[str, float] = field(default_factory=dict)  # epsilon, nu, C: carried

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CSVRData()
        self._fill(record, ensemble, own_samples=False)
        record.SVRKernType = self.kernel
        # Pairs of multipliers, one of each pair 0, as training leaves them.
        record.SVRLossFuncType = 3
        record.Alphas = np.where(self.multipliers < 0, -self.multipliers, 0.0).tolist()
        record.AlphasStar = np.where(self.multipliers > 0, self.multipliers, 0.0).tolist()
        record.Betas = [0.0] * len(self.multipliers)
        record.ConstantCoefficient = float(self.bias)
        record.KernelArray = [float(self.width)] * self.inputs
        # Values out of the range of a record, such as an epsilon of 0, leave its defaults.
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

    def record(self, ensemble: EnsembleScale) -> _core.CRSData:
        record = _core.CConstantData()
        record.NumberOfInputVariables = self.inputs
        record.InputScaleSlopes = [1.0] * self.inputs
        record.InputScaleIntercepts = [0.0] * self.inputs
        record.OutputScaleSlope = 1.0
        record.ReadyForSolve = True
        record.ReadyForEvaluation = True
        # No scale of its own is applied to a constant; that of the ensemble is.
        physical = self.scale * self.value + self.shift
        record.SetConstantValue(ensemble.slope * physical + ensemble.intercept)
        return record


def identity(inputs: int) -> Tuple[np.ndarray, np.ndarray]:
    """Slopes and intercepts that change nothing."""
    return np.ones(inputs), np.zeros(inputs)


def quadratic_terms(inputs: int) -> List[Term]:
    """The full quadratic basis in the library's order."""
    pairs: List[Term] = [(i, j) for i in range(inputs) for j in range(i, inputs)]
    return [(), *[(i,) for i in range(inputs)], *pairs]


def trend_of(monomials: Dict[Term, float], inputs: int) -> Tuple[int, List[Term]]:
    """The smallest E_PolynomialType with all of ``monomials``, and its terms in order."""
    linear: List[Term] = [(), *[(i,) for i in range(inputs)]]
    squares: List[Term] = [(i, i) for i in range(inputs)]
    for kind, terms in ((1, linear[:1]), (2, linear), (3, linear + squares)):
        if set(monomials) <= set(terms):
            return kind, terms
    return 4, quadratic_terms(inputs)
