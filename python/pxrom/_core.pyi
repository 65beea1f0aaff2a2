from typing import Any, Dict, List, Optional, Sequence, Tuple

import numpy as np

__version__: str

class Combinations:
    def parameters(self) -> List[Dict[str, Any]]: ...
    def combinations(self) -> List[Tuple[Tuple[int, ...], Tuple[str, ...]]]: ...
    def samples(
        self, key: Sequence[int], output: str
    ) -> Tuple[List[List[float]], List[float]]: ...
    def prepare(self, values: Sequence[Tuple[str, int]]) -> Prepared: ...
    def to_text(self) -> str: ...

def read(text: str) -> Combinations: ...

class Prepared:
    inputs: Tuple[str, ...]
    outputs: Tuple[str, ...]
    def evaluate(
        self, points: np.ndarray, fast: bool, errors: bool
    ) -> Tuple[np.ndarray, Optional[np.ndarray], np.ndarray]: ...
    def gradients(self, points: np.ndarray) -> Tuple[np.ndarray, np.ndarray]: ...

def inspect(text: str) -> List[Dict[str, Any]]: ...

class CRSData:
    NumberOfInputVariables: int
    NumberOfSamples: int
    InputSamples: Any
    OutputSamples: Any
    InputScaleSlopes: Any
    InputScaleIntercepts: Any
    OutputScaleSlope: float
    OutputScaleIntercept: float
    ReadyForSolve: bool
    ReadyForEvaluation: bool

class CKrigingData(CRSData):
    PolynomialType: int
    PolynomialCoefficients: Any
    CorrelationFunctionType: int
    CorrelationCoefficients: Any
    CorrelationKernels: Any
    SavePredictorError: bool
    NumberOfPolyCoeff: int
    Sigma2: float
    InvC: Any
    InvG: Any
    Ft: Any

class CQRSData(CRSData):
    RegTermFilterConfVal: float
    InputTransformType: int
    InputTransformValues: Any
    InputLambdas: Any
    OutputTransformType: int
    OutputTransformValue: float
    OutputLambda: float
    SavePredictorError: bool
    Sigma2: float
    InvXtX: Any
    def SetTerms(self, terms: Sequence[Tuple[Sequence[int], float]]) -> None: ...

class CSVRData(CRSData):
    SVRKernType: int
    SVRLossFuncType: int
    Alphas: Any
    AlphasStar: Any
    Betas: Any
    ConstantCoefficient: float
    KernelArray: Any
    def SetEpsVal(self, epsilon: float) -> int: ...
    def SetNuVal(self, nu: float) -> int: ...
    def SetConstVal(self, constant: float) -> int: ...

class CLBFData(CRSData):
    BasisFunctionType: int
    PolynomialType: int
    KernelValues: Any
    PolynomialCoefficients: Any
    KernelCoefficients: Any

class CConstantData(CRSData):
    def SetConstantValue(self, value: float) -> int: ...

class Candidate:
    def add_surface(self, surface: CRSData, weight: float) -> None: ...
    def add_sub_surface(self, surface: CRSData) -> None: ...
    def set_scaling(
        self,
        slopes: Sequence[float],
        intercepts: Sequence[float],
        output_slope: float,
        output_intercept: float,
    ) -> None: ...
    def set_samples(self, inputs: Any, outputs: Any) -> None: ...
    def set_folds(self, sorted_rows: Any, rows_per_fold: Sequence[int]) -> None: ...

class Study:
    def add_parameter(
        self,
        id: str,
        is_input: bool,
        type: int,
        unit: str,
        caption: str,
        lower: float,
        upper: float,
    ) -> None: ...
    def add_combination(
        self, values: Sequence[Tuple[str, int]], outputs: Sequence[Tuple[str, Candidate]]
    ) -> None: ...
    def to_text(self) -> str: ...
