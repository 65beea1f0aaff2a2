// Accessors return what was set, in the record and in its copies, and setting changes nothing else.

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
  template <class Owner, class Parameter, class Getter, class Value>
  Field(int (Owner::*setter)(Parameter), Getter getter, const Value& value)
      : set([=](Record& record) {
          auto own = static_cast<std::decay_t<Parameter>>(value);
          return (record.*setter)(own);
        }),
        get([=](const Record& record) {
          if constexpr (std::is_invocable_v<Getter, const Record&>) {
            return testing::PrintToString((record.*getter)());
          } else {
            std::decay_t<Parameter> own{};
            EXPECT_EQ((record.*getter)(own), 0);
            return testing::PrintToString(own);
          }
        }) {}

  std::function<int(Record&)> set;
  std::function<std::string(const Record&)> get;
};

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
      {&R::SetNumberOfInputVariables, &R::GetNumberOfInputVariables, 3},
      {&R::SetNumberOfSamples, &R::GetNumberOfSamples, 4},
      {&R::SetInputSamples, &R::GetInputSamples, Matrix{{1, 2}, {3, 4}}},
      {&R::SetOutputSamples, &R::GetOutputSamples, Vector{1.5}},
      {&R::SetInputScaleSlopes, &R::GetInputScaleSlopes, Vector{2.5}},
      {&R::SetInputScaleIntercepts, &R::GetInputScaleIntercepts, Vector{3.5}},
      {&R::SetOutputScaleSlope, &R::GetOutputScaleSlope, 4.5},
      {&R::SetOutputScaleIntercept, &R::GetOutputScaleIntercept, 5.5},
      {&R::SetRSDataVersion, &R::RSDataVersion, 7},
      {&R::SetStatusReadyForSolve, &R::IsReadyForSolve, true},
      {&R::SetStatusReadyForEvaluation, &R::IsReadyForEvaluation, true},
      {&R::SetStatusStopped, &R::IsStopped, true},
  });
}

TEST(Accessors, OfConstants) {
  using R = CConstantData;
  ExpectIndependent<R>({
      {&R::SetConstantDataVersion, &R::ConstantDataVersion, 7},
      {&R::SetConstantValue, &R::GetConstantValue, 2.5},
  });
}

TEST(Accessors, OfKriging) {
  using R = CKrigingData;
  ExpectIndependent<R>({
      {&R::SetKrigingDataVersion, &R::KrigingDataVersion, 7},
      {&R::SetPolynomialType, &R::GetPolynomialType, PolyFullQuadratic},
      {&R::SetPolynomialCoefficients, &R::GetPolynomialCoefficients, Vector{1}},
      {&R::SetCorrelationFunctionType, &R::GetCorrelationFunctionType, 9},
      {&R::SetCorrelationCoefficients, &R::GetCorrelationCoefficients, Vector{2}},
      {&R::SetCorrelationKernels, &R::GetCorrelationKernels, Vector{3}},
      {&R::SetSavePredictorError, &R::GetSavePredictorError, true},
      {&R::SetNumberOfPolyCoeff, &R::GetNumberOfPolyCoeff, 5},
      {&R::SetSigma2, &R::GetSigma2, 6.5},
      {&R::SetInvC, &R::GetInvC, Matrix{{7}}},
      {&R::SetInvG, &R::GetInvG, Matrix{{8}}},
      {&R::SetFt, &R::GetFt, Matrix{{9}}},
  });
}

TEST(Accessors, OfRegression) {
  using R = CQRSData;
  ExpectIndependent<R>({
      {&R::SetResponseSurfaceType, &R::GetResponseSurfaceType, 9},
      {&R::SetRegTermFilterType, &R::GetRegTermFilterType, 9},
      {&R::SetNumberOfSelectedRegTerms, &R::GetNumberOfSelectedRegTerms, 4},
      {&R::SetInputTransformType, &R::GetInputTransformType, TransformBox},
      {&R::SetInputTransformValues, &R::GetInputTransformValues, Vector{1.5}},
      {&R::SetInputLambdas, &R::GetInputLambdas, Vector{2.5}},
      {&R::SetOutputTransformType, &R::GetOutputTransformType, TransformYeo},
      {&R::SetOutputTransformValue, &R::GetOutputTransformValue, 3.5},
      {&R::SetOutputLambda, &R::GetOutputLambda, 4.5},
      {&R::SetQRSDataVersion, &R::QRSDataVersion, 7},
      {&R::SetSavePredictorError, &R::GetSavePredictorError, true},
      {&R::SetSigma2, &R::GetSigma2, 5.5},
      {&R::SetInvXtX, &R::GetInvXtX, Matrix{{6}}},
  });
}

TEST(Accessors, OfSupportVectors) {
  using R = CSVRData;
  ExpectIndependent<R>({
      {&R::SetSVRDataVersion, &R::SVRDataVersion, 7},
      {&R::SetSVRKernType, &R::GetSVRKernType, SVRKernSigmoid},
      {&R::SetSVRKernCompType, &R::GetSVRKernCompType, 2},
      {&R::SetSVRLossFuncType, &R::GetSVRLossFuncType, SVRLossFuncPaired4},
      {&R::SetEpsVal, &R::GetEpsilonValue, 0.75},
      {&R::SetNuVal, &R::GetNuValue, 0.25},
      {&R::SetConstVal, &R::GetConstantValue, 3.5},
      {&R::SetAlpha, &R::GetAlphas, Vector{1}},
      {&R::SetAlphaStar, &R::GetAlphasStar, Vector{2}},
      {&R::SetBeta, &R::GetBetas, Vector{3}},
      {&R::SetConstCoeff, &R::GetConstantCoefficient, 4.5},
      {&R::SetKernelArray, &R::GetKernelArray, Vector{5}},
  });
}

TEST(Accessors, OfMovingLeastSquares) {
  using R = CMLSData;
  ExpectIndependent<R>({
      {&R::SetMLSDataVersion, &R::MLSDataVersion, 7},
      {&R::SetWeightFunction, &R::GetWeightFunction, 9},
      {&R::SetPolynomialType, &R::GetPolynomialType, 9},
      {&R::SetNumberOfBasisFunctions, &R::GetNumberOfBasisFunctions, 77},
      {&R::SetNumberOfUsedPoints, &R::GetNumberOfUsedPoints, 78},
  });
}

TEST(Accessors, OfLinearBasisFunctions) {
  using R = CLBFData;
  ExpectIndependent<R>({
      {&R::SetLBFDataVersion, &R::LBFDataVersion, 7},
      {&R::SetBasisFunctionType, &R::GetBasisFunctionType, LBFTanh},
      {&R::SetPolynomialType, &R::GetPolynomialType, 9},
      {&R::SetKernelValues, &R::GetKernelValues, Vector{1}},
      {&R::SetPolynomialCoefficients, &R::GetPolynomialCoefficients, Vector{2}},
      {&R::SetKernelCoefficients, &R::GetKernelCoefficients, Vector{3}},
  });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
