// What is set is what is got, in the record and in its copies, and setting touches nothing else.

#include <functional>

#include "pxrom/constant.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

/// One field by its two operations, and a value that is not its default.
template <class Record>
struct Field {
  std::function<int(Record&)> set;
  std::function<std::string(const Record&)> get;
};

template <class Record, class Set, class Get, class Value>
Field<Record> With(Set set, Get get, Value value) {
  return {[=](Record& record) {
            Value own = value;
            return (record.*set)(own);
          },
          [=](const Record& record) {
            Value own{};
            EXPECT_EQ((record.*get)(own), 0);
            return testing::PrintToString(own);
          }};
}

template <class Record, class Set, class Get, class Value>
Field<Record> Returned(Set set, Get get, Value value) {
  return {[=](Record& record) { return (record.*set)(value); },
          [=](const Record& record) { return testing::PrintToString((record.*get)()); }};
}

template <class Record>
void ExpectIndependent(const std::vector<Field<Record>>& fields) {
  const auto all = [&](const Record& record) {
    std::vector<std::string> values;
    for (const auto& field : fields) values.push_back(field.get(record));
    return values;
  };
  const std::vector<std::string> defaults = all(Record());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    SCOPED_TRACE("field " + std::to_string(i));
    Record record;
    EXPECT_EQ(fields[i].set(record), 0);
    const std::vector<std::string> values = all(record);
    for (std::size_t k = 0; k < fields.size(); ++k) {
      EXPECT_EQ(values[k] == defaults[k], k != i) << "field " << k;
    }
    const std::unique_ptr<const Record> clone(record.Clone());
    EXPECT_EQ(all(*clone), values);
    Record assigned;
    assigned = record;
    EXPECT_EQ(all(assigned), values);
  }
}

TEST(Accessors, OfTheBase) {
  using R = CRSData;
  ExpectIndependent<R>({
      With<R>(&R::SetNumberOfInputVariables, &R::GetNumberOfInputVariables, 3),
      With<R>(&R::SetNumberOfSamples, &R::GetNumberOfSamples, 4),
      With<R>(&R::SetInputSamples, &R::GetInputSamples, Matrix{{1, 2}, {3, 4}}),
      With<R>(&R::SetOutputSamples, &R::GetOutputSamples, Vector{1.5}),
      With<R>(&R::SetInputScaleSlopes, &R::GetInputScaleSlopes, Vector{2.5}),
      With<R>(&R::SetInputScaleIntercepts, &R::GetInputScaleIntercepts, Vector{3.5}),
      With<R>(&R::SetOutputScaleSlope, &R::GetOutputScaleSlope, 4.5),
      With<R>(&R::SetOutputScaleIntercept, &R::GetOutputScaleIntercept, 5.5),
      Returned<R>(&R::SetRSDataVersion, &R::RSDataVersion, static_cast<E_CRSDataVersion>(7)),
      Returned<R>(&R::SetStatusReadyForSolve, &R::IsReadyForSolve, true),
      Returned<R>(&R::SetStatusReadyForEvaluation, &R::IsReadyForEvaluation, true),
      Returned<R>(&R::SetStatusStopped, &R::IsStopped, true),
  });
}

TEST(Accessors, OfConstants) {
  using R = CConstantData;
  ExpectIndependent<R>({With<R>(&R::SetConstantValue, &R::GetConstantValue, 2.5)});
}

TEST(Accessors, OfKriging) {
  using R = CKrigingData;
  ExpectIndependent<R>({
      Returned<R>(&R::SetKrigingDataVersion, &R::KrigingDataVersion,
                  static_cast<E_CKrigingDataVersion>(7)),
      With<R>(&R::SetPolynomialType, &R::GetPolynomialType, PolyFullQuadratic),
      With<R>(&R::SetPolynomialCoefficients, &R::GetPolynomialCoefficients, Vector{1}),
      With<R>(&R::SetCorrelationFunctionType, &R::GetCorrelationFunctionType,
              static_cast<E_KringingCorrelationFunctionType>(9)),
      With<R>(&R::SetCorrelationCoefficients, &R::GetCorrelationCoefficients, Vector{2}),
      With<R>(&R::SetCorrelationKernels, &R::GetCorrelationKernels, Vector{3}),
      With<R>(&R::SetSavePredictorError, &R::GetSavePredictorError, true),
      With<R>(&R::SetNumberOfPolyCoeff, &R::GetNumberOfPolyCoeff, 5),
      With<R>(&R::SetSigma2, &R::GetSigma2, 6.5),
      With<R>(&R::SetInvC, &R::GetInvC, Matrix{{7}}),
      With<R>(&R::SetInvG, &R::GetInvG, Matrix{{8}}),
      With<R>(&R::SetFt, &R::GetFt, Matrix{{9}}),
  });
}

TEST(Accessors, OfRegression) {
  using R = CQRSData;
  ExpectIndependent<R>({
      With<R>(&R::SetResponseSurfaceType, &R::GetResponseSurfaceType,
              static_cast<E_SurfaceType>(9)),
      With<R>(&R::SetRegTermFilterType, &R::GetRegTermFilterType,
              static_cast<E_RegTermFilterType>(9)),
      With<R>(&R::SetNumberOfSelectedRegTerms, &R::GetNumberOfSelectedRegTerms, 4),
      With<R>(&R::SetInputTransformType, &R::GetInputTransformType, TransformBox),
      With<R>(&R::SetInputTransformValues, &R::GetInputTransformValues, Vector{1.5}),
      With<R>(&R::SetInputLambdas, &R::GetInputLambdas, Vector{2.5}),
      With<R>(&R::SetOutputTransformType, &R::GetOutputTransformType, TransformYeo),
      With<R>(&R::SetOutputTransformValue, &R::GetOutputTransformValue, 3.5),
      With<R>(&R::SetOutputLambda, &R::GetOutputLambda, 4.5),
      Returned<R>(&R::SetQRSDataVersion, &R::QRSDataVersion, static_cast<E_CQRSDataVersion>(7)),
      With<R>(&R::SetSavePredictorError, &R::GetSavePredictorError, true),
      With<R>(&R::SetSigma2, &R::GetSigma2, 5.5),
      With<R>(&R::SetInvXtX, &R::GetInvXtX, Matrix{{6}}),
  });
}

TEST(Accessors, OfSupportVectors) {
  using R = CSVRData;
  ExpectIndependent<R>({
      Returned<R>(&R::SetSVRDataVersion, &R::SVRDataVersion, static_cast<E_CSVRDataVersion>(7)),
      With<R>(&R::SetSVRKernType, &R::GetSVRKernType, SVRKernSigmoid),
      With<R>(&R::SetSVRKernCompType, &R::GetSVRKernCompType, static_cast<E_SVRKernCompType>(2)),
      With<R>(&R::SetSVRLossFuncType, &R::GetSVRLossFuncType, SVRLossFuncPaired4),
      With<R>(&R::SetEpsVal, &R::GetEpsilonValue, 0.75),
      With<R>(&R::SetNuVal, &R::GetNuValue, 0.25),
      With<R>(&R::SetConstVal, &R::GetConstantValue, 3.5),
      With<R>(&R::SetAlpha, &R::GetAlphas, Vector{1}),
      With<R>(&R::SetAlphaStar, &R::GetAlphasStar, Vector{2}),
      With<R>(&R::SetBeta, &R::GetBetas, Vector{3}),
      With<R>(&R::SetConstCoeff, &R::GetConstantCoefficient, 4.5),
      With<R>(&R::SetKernelArray, &R::GetKernelArray, Vector{5}),
  });
}

TEST(Accessors, OfMovingLeastSquares) {
  using R = CMLSData;
  ExpectIndependent<R>({
      Returned<R>(&R::SetMLSDataVersion, &R::MLSDataVersion, static_cast<E_CMLSDataVersion>(7)),
      With<R>(&R::SetWeightFunction, &R::GetWeightFunction, static_cast<E_WeightFunction>(9)),
      With<R>(&R::SetPolynomialType, &R::GetPolynomialType, static_cast<E_PolynomialType>(9)),
      With<R>(&R::SetNumberOfBasisFunctions, &R::GetNumberOfBasisFunctions, 77),
      With<R>(&R::SetNumberOfUsedPoints, &R::GetNumberOfUsedPoints, 78),
  });
}

TEST(Accessors, OfLinearBasisFunctions) {
  using R = CLBFData;
  ExpectIndependent<R>({
      Returned<R>(&R::SetLBFDataVersion, &R::LBFDataVersion, static_cast<E_CLBFDataVersion>(7)),
      With<R>(&R::SetBasisFunctionType, &R::GetBasisFunctionType, LBFTanh),
      With<R>(&R::SetPolynomialType, &R::GetPolynomialType, static_cast<E_PolynomialType>(9)),
      With<R>(&R::SetKernelValues, &R::GetKernelValues, Vector{1}),
      With<R>(&R::SetPolynomialCoefficients, &R::GetPolynomialCoefficients, Vector{2}),
      With<R>(&R::SetKernelCoefficients, &R::GetKernelCoefficients, Vector{3}),
  });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
