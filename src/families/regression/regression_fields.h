#pragma once

#include <vector>

#include "families/family_of.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

namespace regression {

/// One term as its `RegTerm` group has it.
struct TermText {
  E_FuncType type = static_cast<E_FuncType>(0);
  int isActive = 0;
  std::vector<int> indices;
  std::vector<double> coefficients;
};

template <class Visitor, class Term>
void TermFields(Visitor& visit, Term& term) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attQRSRegTermFuncType).Between(FuncTypeConst, FuncTypeCrossQuad), "type",
        term.type);
  visit(Key(&Labels::attQRSRegTermIsActive).Between(0, 1), "isActive", term.isActive);
  visit(Key(&Labels::attQRSRegTermInputVarIdx).Optional(), "indices", term.indices);
  visit(Key(&Labels::attQRSRegTermParameter), "coefficients", term.coefficients);
}

/// Reads the groups 0 to `count` - 1 into the record. 1 with its terms untouched when a group is
/// missing, ends outside the record's range, or is refused.
int ReadTerms(reading::AttributeRange& in, int count, CQRSData& record);
void WriteTerms(writing::AttributeSink& out, const CQRSData& record);

}  // namespace regression

namespace reading {

/// Fills the data of the predictor error from one `Genome` group. 1 when the record is null or no
/// regression record, which leaves it alone, or when the matrix is refused.
int ResumeQRSDataPredictorError(AttributeRange& in, CRSData* data);

}  // namespace reading

template <>
struct FamilyOf<CQRSData> {
  static constexpr E_DataType kType = DT_QRSData;
  static constexpr const char* kName = "regression";
  static constexpr const char* kRecordName = "CQRSData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record);
  /// The data of the predictor error: a matrix of `order` rows.
  template <class Visitor, class Record>
  static int ErrorFields(Visitor& visit, Record& record, int order);

 private:
  template <class Visitor, class Record>
  static void TransformationFields(Visitor& visit, Record& record);
  template <class Visitor, class Record>
  static void FitFields(Visitor& visit, Record& record);
};

template <class Visitor, class Record>
void FamilyOf<CQRSData>::TransformationFields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attQRSInputTransformType).Between(TransformNone, TransformYeo),
        "InputTransformType", record.InputTransformType);
  visit(Key(&Labels::attQRSInputTransformValues).Optional(), "InputTransformValues",
        record.InputTransformValues);
  visit(Key(&Labels::attQRSInputLambdas).Optional(), "InputLambdas", record.InputLambdas);
  visit(Key(&Labels::attQRSOutputTransformType).Between(TransformNone, TransformYeo),
        "OutputTransformType", record.OutputTransformType);
  visit(Key(&Labels::attQRSOutputTransformValue).Optional(), "OutputTransformValue",
        record.OutputTransformValue);
  visit(Key(&Labels::attQRSOutputLambda).Optional(), "OutputLambda", record.OutputLambda);
}

template <class Visitor, class Record>
void FamilyOf<CQRSData>::FitFields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attQRSVersion).Version(170, QRSDataVersion192), "QRSDataVersion",
        record.QRSDataVersion_);
  visit(Key(&Labels::attQRSRespSurfType).Optional(), "ResponseSurfaceType",
        record.ResponseSurfaceType);
  visit(Key(&Labels::attQRSRegTermFilterType).Optional(), "RegTermFilterType",
        record.RegTermFilterType);
  visit(Key(&Labels::attQRSRegTermFilterConfVal).Optional(), "RegTermFilterConfVal",
        record.RegTermFilterConfVal);
}

template <class Visitor, class Record>
int FamilyOf<CQRSData>::Fields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  // A list of keys begins with the version, as in the other families.
  constexpr bool kLists = !Visitor::kReads && !Visitor::kWrites;
  if constexpr (kLists) FitFields(visit, record);
  TransformationFields(visit, record);
  if constexpr (!kLists) FitFields(visit, record);
  visit(Key(&Labels::attQRSNumSelRegTerm).Count(), "NumberOfSelectedRegTerms",
        record.NumberOfSelectedRegTerms);
  // The count belongs to the array of terms: it is not set without them.
  int terms = record.NumberOfRegTerms;
  visit(Key(&Labels::attQRSMaxRegTerm).Count(), "", terms);
  if constexpr (Visitor::kReads) {
    if (regression::ReadTerms(visit.Text(), terms, record) != 0) return 1;
  }

  const bool hasError = visit.HasSince(record.QRSDataVersion_, QRSDataVersion192);
  if constexpr (Visitor::kWrites) {
    const bool hasData = !record.InvXtX.empty() || !writing::IsUnset(record.Sigma2);
    if (!hasError && record.SavePredictorError) {
      visit.Text().Refuse("a QRSVersion below 192 has no predictor error");
    }
    if (!record.SavePredictorError && hasData) {
      visit.Text().Refuse("it holds predictor error data, but SavePredictorError is not set");
    }
  }
  if (hasError) {
    visit.Kept(Key(&Labels::attQRSSavePredictorError).Optional(), "SavePredictorError",
               record.SavePredictorError);
    if (visit.HasPart(record.SavePredictorError)) {
      if constexpr (Visitor::kReads) {
        // As in a Kriging record, the status is not passed on: the surface has a value without it.
        static_cast<void>(reading::ResumeQRSDataPredictorError(visit.Text(), &record));
      } else {
        ErrorFields(visit, record, record.NumberOfSelectedRegTerms);
      }
    }
  }
  if constexpr (Visitor::kWrites) regression::WriteTerms(visit.Text(), record);
  return 0;
}

template <class Visitor, class Record>
int FamilyOf<CQRSData>::ErrorFields(Visitor& visit, Record& record, int order) {
  using fields::Key;
  using fields::Labels;
  visit.Kept(Key(&Labels::attQRSSigmaSquare), "Sigma2", record.Sigma2);
  if constexpr (Visitor::kWrites) {
    // A missing list is read as an empty matrix.
    if (record.InvXtX.empty()) return 0;
  }
  return visit.Matrix(Key(&Labels::attQRSInverseOfXtX), "InvXtX", record.InvXtX, order, order);
}

}  // namespace Tarvane::Plexura::PXROM
