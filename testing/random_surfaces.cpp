#include <algorithm>
#include <limits>
#include <stdexcept>

#include "kernels/kernels.h"
#include "pxrom/constant.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/polynomial.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {

namespace {

template <class Enum>
Enum OneType(Draw& draw, int first, int last) {
  return static_cast<Enum>(draw.Int(first, last));
}

int BasisSize(E_PolynomialType type, int inputs) {
  const int sizes[] = {0, 1, 1 + inputs, 1 + 2 * inputs, 1 + inputs + inputs * (inputs + 1) / 2};
  return sizes[type];
}

// Symmetric and positive definite.
std::vector<std::vector<double>> RandomInverse(Draw& draw, int order) {
  const auto side = static_cast<std::size_t>(order);
  std::vector<std::vector<double>> matrix(side, std::vector<double>(side));
  for (std::size_t i = 0; i < side; ++i) {
    for (std::size_t j = 0; j < i; ++j) matrix[i][j] = matrix[j][i] = draw.Real(-0.01, 0.01);
    matrix[i][i] = draw.Real(0.3, 0.9);
  }
  return matrix;
}

template <class Record>
std::unique_ptr<Record> Base(Draw& draw, int inputs, int samples) {
  auto record = std::make_unique<Record>();
  record->NumberOfInputVariables = inputs;
  record->NumberOfSamples = samples;
  for (int s = 0; s < samples; ++s) record->InputSamples.push_back(draw.Reals(inputs, 0, 1));
  record->OutputSamples = draw.Reals(samples, -5, 5);
  record->InputScaleSlopes = draw.Reals(inputs, 0.5, 1);
  record->InputScaleIntercepts = draw.Reals(inputs, 0.1, 0.2);
  record->OutputScaleSlope = draw.Chance(30) ? draw.Real(-2, -0.1) : draw.Real(0.1, 2);
  record->OutputScaleIntercept = draw.Chance(30) ? -0.0 : draw.Real(-3, 3);
  record->ReadyForSolve = draw.Chance(50);
  record->ReadyForEvaluation = true;
  return record;
}

std::unique_ptr<CRSData> Constant(Draw& draw, int inputs, int samples, bool) {
  auto record = Base<CConstantData>(draw, inputs, samples);
  record->SetConstantValue(draw.Real(-1e-300, 1e-300));
  return record;
}

std::unique_ptr<CRSData> Kriging(Draw& draw, int inputs, int samples, bool errorData) {
  auto record = Base<CKrigingData>(draw, inputs, samples);
  record->CorrelationFunctionType =
      static_cast<E_KringingCorrelationFunctionType>(draw.OneOf(kernels::NumbersOfCorrelations()));
  record->CorrelationCoefficients = draw.Reals(samples, -2, 2);
  record->CorrelationKernels = draw.Reals(draw.Chance(20) ? 1 : inputs, 0.05, 4);
  record->PolynomialType = OneType<E_PolynomialType>(draw, PolyNone, PolyFullQuadratic);
  const int p = BasisSize(record->PolynomialType, inputs);
  record->PolynomialCoefficients = draw.Reals(p, -2, 2);
  if (draw.Chance(15)) record->KrigingDataVersion_ = static_cast<E_CKrigingDataVersion>(170);
  if (!errorData || record->KrigingDataVersion_ < KrigingDataVersion192) return record;
  record->SavePredictorError = true;
  record->NumberOfPolyCoeff = p;
  record->Sigma2 = draw.Real(0.1, 2);
  record->InvC = RandomInverse(draw, samples);
  record->InvG = RandomInverse(draw, p);
  for (int k = 0; k < p; ++k) record->Ft.push_back(draw.Reals(samples, -1, 1));
  return record;
}

std::unique_ptr<CRSData> SupportVector(Draw& draw, int inputs, int samples, bool) {
  auto record = Base<CSVRData>(draw, inputs, samples);
  record->SVRKernType =
      static_cast<E_SVRKernType>(draw.OneOf(kernels::NumbersOfSupportVectorKernels()));
  record->SVRKernCompType = OneType<E_SVRKernCompType>(draw, 0, 3);
  record->SVRLossFuncType = OneType<E_SVRLossFuncType>(draw, 1, 4);
  record->EpsilonValue = draw.Real(0.01, 0.9);
  record->NuValue = draw.Real(0.01, 0.9);
  record->ConstantValue = draw.Real(0.01, 1e6);
  record->Alphas = draw.Reals(samples, 0, 3);
  record->AlphasStar = draw.Reals(samples, 0, 3);
  record->Betas = draw.Reals(samples, -2, 2);
  record->ConstantCoefficient = draw.Real(-3, 3);
  record->KernelArray = draw.Reals(inputs, 0.2, 3);
  return record;
}

std::unique_ptr<CRSData> MovingLeastSquares(Draw& draw, int inputs, int samples, bool) {
  auto record = Base<CMLSData>(draw, inputs, samples);
  record->MLSDataVersion_ = draw.Chance(50) ? MLSDataVersion162 : MLSDataVersion170;
  record->PolynomialType = OneType<E_PolynomialType>(draw, PolyConstant, PolyFullQuadratic);
  // Constant weights are refused with a linear basis.
  record->WeightFunction = OneType<E_WeightFunction>(
      draw, record->PolynomialType == PolyLinear ? WeightGaussian : WeightConstant, WeightInverse);
  record->NumberOfBasisFunctions = BasisSize(record->PolynomialType, inputs);
  // At most one sample is not used. The reference distance is that of the second nearest sample or
  // a farther one, so at least one used sample has a weight.
  record->NumberOfUsedPoints = samples - draw.Int(0, 1);
  const auto option = OneType<E_UsedPointsOption>(draw, UsedPointsOption0, UsedPointsExtraPercent);
  record->SetUsedPointOption(option, draw.Real(0, 100));
  return record;
}

std::unique_ptr<CRSData> LinearBasis(Draw& draw, int inputs, int samples, bool) {
  auto record = Base<CLBFData>(draw, inputs, samples);
  record->BasisFunctionType =
      static_cast<E_LinearBasisFunction>(draw.OneOf(kernels::NumbersOfRadialFunctions()));
  record->PolynomialType = OneType<E_PolynomialType>(draw, PolyConstant, PolyFullQuadratic);
  record->KernelValues = draw.Reals(samples, 0.1, 2);
  record->KernelCoefficients = draw.Reals(samples, -2, 2);
  record->PolynomialCoefficients = draw.Reals(BasisSize(record->PolynomialType, inputs), -2, 2);
  return record;
}

// All terms up to the second order. With inputs between 0.1 and 1.2 their sum stays between 1 and 5
// under any transformation of the inputs, which all back-transformations accept.
void SetTerms(Draw& draw, int inputs, CQRSData& record) {
  std::vector<std::unique_ptr<RegTerm>> terms;
  const auto add = [&](std::unique_ptr<RegTerm> term, const std::vector<int>& indices) {
    const bool isFirst = terms.empty();
    const double coefficient = isFirst ? draw.Real(1.5, 2) : draw.Real(0.0001, 0.001);
    term->SetParamVal(1, &coefficient);
    term->SetUsedInpVarIdx(static_cast<int>(indices.size()), indices.data());
    if (!isFirst && draw.Chance(20)) term->SetInactive();
    terms.push_back(std::move(term));
  };
  add(std::make_unique<ConstTerm>(), {});
  for (int i = 0; i < inputs; ++i) {
    add(std::make_unique<LinearTerm>(), {i});
    add(std::make_unique<PureQuadTerm>(), {i, i});
    for (int j = 0; j < i; ++j) add(std::make_unique<CrossQuadTerm>(), {j, i});
  }
  std::vector<RegTerm*> pointers;
  for (const auto& term : terms) pointers.push_back(term.get());
  record.SetRegTerm(pointers.data(), static_cast<int>(pointers.size()));
  record.NumberOfSelectedRegTerms = 0;
  for (const auto& term : terms) record.NumberOfSelectedRegTerms += term->QryIsActive();
}

// A lambda around 1, or sometimes 0, for which a transformation has another formula.
double Lambda(Draw& draw, E_QRSTransformationType type) {
  const bool canBeZero = type == TransformBox || type == TransformYeo;
  return canBeZero && draw.Chance(30) ? 0.0 : draw.Real(0.8, 1.6);
}

std::unique_ptr<CRSData> Regression(Draw& draw, int inputs, int samples, bool errorData) {
  auto record = Base<CQRSData>(draw, inputs, samples);
  record->InputTransformType = OneType<E_QRSTransformationType>(draw, TransformNone, TransformYeo);
  record->OutputTransformType = OneType<E_QRSTransformationType>(draw, TransformNone, TransformYeo);
  record->InputTransformValues = draw.Reals(inputs, 1.5, 3);
  for (int i = 0; i < inputs; ++i) {
    record->InputLambdas.push_back(Lambda(draw, record->InputTransformType));
  }
  record->OutputTransformValue = draw.Real(1.5, 3);
  record->OutputLambda = Lambda(draw, record->OutputTransformType);
  record->ResponseSurfaceType = OneType<E_SurfaceType>(draw, 0, 4);
  record->RegTermFilterType = OneType<E_RegTermFilterType>(draw, 0, 3);
  record->RegTermFilterConfVal = draw.Real(0.6, 0.99);
  SetTerms(draw, inputs, *record);
  if (draw.Chance(15)) record->QRSDataVersion_ = static_cast<E_CQRSDataVersion>(170);
  if (!errorData || record->QRSDataVersion_ < QRSDataVersion192) return record;
  record->SavePredictorError = true;
  record->Sigma2 = draw.Real(0.1, 2);
  record->InvXtX = RandomInverse(draw, record->NumberOfSelectedRegTerms);
  return record;
}

// A lower triangle, row by row, so small that it leaves most of a variance.
std::vector<double> RandomTriangle(Draw& draw, int order) {
  std::vector<double> triangle;
  for (int row = 0; row < order; ++row) {
    const std::vector<double> left = draw.Reals(row, -0.004, 0.004);
    triangle.insert(triangle.end(), left.begin(), left.end());
    triangle.push_back(draw.Real(0.01, 0.05));
  }
  return triangle;
}

void SetCovariance(Draw& draw, int inputs, CGaussianProcessData& record) {
  const std::vector<int> functions = kernels::NumbersOfCovarianceFunctions();
  const bool isOneLength = draw.Chance(30);
  for (int term = draw.Int(1, 3); term > 0; --term) {
    const int number = static_cast<int>(record.TermAmplitudes.size());
    record.TermAmplitudes.push_back(draw.Real(0.2, 2));
    // Now and then a term has no factor.
    for (int factor = draw.Chance(10) ? 0 : draw.Int(1, 2); factor > 0; --factor) {
      record.FactorTerms.push_back(number);
      record.FactorFunctions.push_back(draw.OneOf(functions));
      record.FactorParameters.push_back(draw.Real(0.3, 2));
      for (int i = 0; i < (isOneLength ? 1 : inputs); ++i) {
        record.FactorLengths.push_back(draw.Chance(15) ? std::numeric_limits<double>::infinity()
                                                       : draw.Real(0.2, 3));
      }
    }
  }
}

std::unique_ptr<CRSData> GaussianProcess(Draw& draw, int inputs, int samples, bool errorData) {
  auto record = Base<CGaussianProcessData>(draw, inputs, samples);
  SetCovariance(draw, inputs, *record);
  record->Weights = draw.Reals(samples, -2, 2);
  record->PolynomialType = OneType<E_PolynomialType>(draw, PolyNone, PolyFullQuadratic);
  const int monomials = draw.Chance(30) ? draw.Int(1, 3) : 0;
  for (int e = monomials * inputs; e > 0; --e) record->Monomials.push_back(draw.Int(0, 4));
  const int p = BasisSize(record->PolynomialType, inputs) + monomials;
  record->PolynomialCoefficients = draw.Reals(p, -2, 2);
  record->NoiseVariance = draw.Chance(50) ? draw.Real(0, 1) : 0.0;
  if (!errorData) return record;
  record->SavePredictorError = true;
  record->ErrorIncludesNoise = draw.Chance(30);
  record->InverseFactor = RandomTriangle(draw, samples);
  if (draw.Chance(50)) return record;
  record->TrendInverseFactor = RandomTriangle(draw, p);
  for (int k = 0; k < p; ++k) record->TrendAtSamples.push_back(draw.Reals(samples, -1, 1));
  return record;
}

// Terms of every degree up to the fourth. With an output transformation their sum stays between 1
// and 5, as that of a regression does.
std::unique_ptr<CRSData> PolynomialOfAnyDegree(Draw& draw, int inputs, int samples,
                                               bool errorData) {
  auto record = Base<CPolynomialData>(draw, inputs, samples);
  const int variables = inputs + draw.Int(0, 1);
  const bool isTransformed = draw.Chance(50);
  const bool hasBases = draw.Chance(70);
  for (int v = 0; v < variables; ++v) {
    record->VariableInputs.push_back(v % inputs);
    if (isTransformed) {
      const auto type = OneType<E_QRSTransformationType>(draw, TransformNone, TransformYeo);
      record->VariableTransformTypes.push_back(type);
      record->VariableLambdas.push_back(Lambda(draw, type));
    }
    if (hasBases) {
      record->VariableBases.push_back(draw.Int(PolyBasisMonomial, PolyBasisRecurrence));
    }
  }
  if (isTransformed) record->VariableTransformValues = draw.Reals(variables, 1.5, 3);
  if (draw.Chance(50)) record->VariableSlopes = draw.Reals(variables, -1, 1);
  if (draw.Chance(50)) record->VariableIntercepts = draw.Reals(variables, -0.5, 0.5);
  if (draw.Chance(50)) record->VariableAlphas = draw.Reals(variables, -0.9, 2);
  if (draw.Chance(50)) record->VariableBetas = draw.Reals(variables, -0.9, 2);
  record->Orthonormal = draw.Chance(50);
  if (draw.Chance(40)) {
    record->OutputTransformType =
        OneType<E_QRSTransformationType>(draw, TransformNone, TransformYeo);
  }
  record->OutputTransformValue = draw.Real(1.5, 3);
  record->OutputLambda = Lambda(draw, record->OutputTransformType);
  const double most = record->OutputTransformType == TransformNone ? 2.0 : 1e-7;
  const int terms = draw.Int(1, 8);
  for (int k = 0; k < terms; ++k) {
    int left = k == 0 ? 0 : 4;
    for (int v = 0; v < variables; ++v) {
      record->Degrees.push_back(draw.Int(0, left));
      left -= record->Degrees.back();
    }
    record->Coefficients.push_back(k == 0 ? draw.Real(1.5, 2) : draw.Real(-most, most));
  }
  // Each variable needs three numbers for each step to its largest degree.
  for (int v = 0; hasBases && v < variables; ++v) {
    if (record->VariableBases[static_cast<std::size_t>(v)] != PolyBasisRecurrence) continue;
    int largest = 0;
    for (auto at = static_cast<std::size_t>(v); at < record->Degrees.size();
         at += record->VariableInputs.size()) {
      largest = std::max(largest, record->Degrees[at]);
    }
    const std::vector<double> steps = draw.Reals(3 * largest, -1, 1);
    record->Recurrences.insert(record->Recurrences.end(), steps.begin(), steps.end());
  }
  record->SavePredictorError = errorData;
  if (errorData) record->Covariance = RandomInverse(draw, terms);
  return record;
}

struct Maker {
  E_DataType family;
  std::unique_ptr<CRSData> (*make)(Draw&, int inputs, int samples, bool errorData);
};

// One row per family. The result of a seed depends on their order.
constexpr Maker kMakers[] = {
    {DT_KrigingData, &Kriging},
    {DT_QRSData, &Regression},
    {DT_SVRData, &SupportVector},
    {DT_MLSData, &MovingLeastSquares},
    {DT_LBFData, &LinearBasis},
    {DT_ConstantData, &Constant},
    {DT_GaussianProcessData, &GaussianProcess},
    {DT_PolynomialData, &PolynomialOfAnyDegree},
};

}  // namespace

std::vector<E_DataType> RandomFamilies() {
  std::vector<E_DataType> families;
  for (const Maker& maker : kMakers) families.push_back(maker.family);
  return families;
}

std::unique_ptr<CRSData> RandomSurface(Draw& draw, E_DataType family, int inputs, int samples,
                                       bool errorData) {
  for (const Maker& maker : kMakers) {
    if (maker.family == family) return maker.make(draw, inputs, samples, errorData);
  }
  throw std::invalid_argument("no maker for this family");
}

}  // namespace Tarvane::Plexura::PXROM::tests
