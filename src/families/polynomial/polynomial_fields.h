#pragma once

#include <algorithm>
#include <limits>

#include "families/family_of.h"
#include "pxrom/polynomial.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CPolynomialData> {
  static constexpr E_DataType kType = DT_PolynomialData;
  static constexpr const char* kName = "polynomial";
  static constexpr const char* kRecordName = "CPolynomialData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record);

 private:
  template <class Visitor, class Record>
  static void VariableFields(Visitor& visit, Record& record);
};

template <class Visitor, class Record>
void FamilyOf<CPolynomialData>::VariableFields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attPolyVariableInputs).Optional(), "VariableInputs", record.VariableInputs);
  visit(Key(&Labels::attPolyVariableTransformTypes).Optional(), "VariableTransformTypes",
        record.VariableTransformTypes);
  visit(Key(&Labels::attPolyVariableTransformValues).Optional(), "VariableTransformValues",
        record.VariableTransformValues);
  visit(Key(&Labels::attPolyVariableLambdas).Optional(), "VariableLambdas", record.VariableLambdas);
  visit(Key(&Labels::attPolyVariableSlopes).Optional(), "VariableSlopes", record.VariableSlopes);
  visit(Key(&Labels::attPolyVariableIntercepts).Optional(), "VariableIntercepts",
        record.VariableIntercepts);
  visit(Key(&Labels::attPolyVariableBases).Optional(), "VariableBases", record.VariableBases);
  visit(Key(&Labels::attPolyVariableAlphas).Optional(), "VariableAlphas", record.VariableAlphas);
  visit(Key(&Labels::attPolyVariableBetas).Optional(), "VariableBetas", record.VariableBetas);
}

template <class Visitor, class Record>
int FamilyOf<CPolynomialData>::Fields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attPolyVersion).Version(PolynomialDataVersion1).RefusesOthers(),
        "PolynomialDataVersion", record.PolynomialDataVersion_);
  // What a later version means is not known here.
  if constexpr (Visitor::kReads) {
    if (record.PolynomialDataVersion_ != PolynomialDataVersion1) return 1;
  }
  VariableFields(visit, record);
  visit(Key(&Labels::attPolyRecurrences).Optional(), "Recurrences", record.Recurrences);
  visit(Key(&Labels::attPolyOrthonormal).Optional(), "Orthonormal", record.Orthonormal);
  visit(Key(&Labels::attPolyDegrees).Optional(), "Degrees", record.Degrees);
  visit(Key(&Labels::attPolyCoefficients), "Coefficients", record.Coefficients);
  visit(Key(&Labels::attQRSOutputTransformType).Between(TransformNone, TransformYeo).Optional(),
        "OutputTransformType", record.OutputTransformType);
  visit(Key(&Labels::attQRSOutputTransformValue).Optional(), "OutputTransformValue",
        record.OutputTransformValue);
  visit(Key(&Labels::attQRSOutputLambda).Optional(), "OutputLambda", record.OutputLambda);
  visit(Key(&Labels::attPolySavePredictorError).Optional(), "SavePredictorError",
        record.SavePredictorError);
  if constexpr (Visitor::kWrites) {
    if (!record.SavePredictorError && !record.Covariance.empty()) {
      visit.Text().Refuse("it holds a covariance matrix, but SavePredictorError is not set");
    }
  }
  if (!visit.HasPart(record.SavePredictorError)) return 0;
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  const auto terms = static_cast<int>(std::min(record.Coefficients.size(), kMost));
  return visit.Matrix(Key(&Labels::attPolyCovariance), "Covariance", record.Covariance, terms,
                      terms);
}

}  // namespace Tarvane::Plexura::PXROM
