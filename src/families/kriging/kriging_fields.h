#pragma once

#include "families/family_of.h"
#include "kernels/table.h"
#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CKrigingData> {
  static constexpr E_DataType kType = DT_KrigingData;
  static constexpr const char* kName = "Kriging";
  static constexpr const char* kRecordName = "CKrigingData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record);
  /// The data of the predictor error. A record's own NumberOfSamples gives their shape.
  template <class Visitor, class Record>
  static int ErrorFields(Visitor& visit, Record& record);
};

namespace reading {

/// Fills the data of the predictor error from one `Genome` group, all or nothing. 1 with the record
/// left alone when it is null or no Kriging record, or when a matrix is refused.
int ResumeKrigingDataPredictorError(AttributeRange& in, CRSData* data);

}  // namespace reading

namespace kriging {

/// Whether a field of the error data differs from a new record's.
bool HasErrorData(const CKrigingData& record);

}  // namespace kriging

template <class Visitor, class Record>
int FamilyOf<CKrigingData>::Fields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  const auto version = [&] {
    visit(Key(&Labels::attKrigingVersion).Version(170, KrigingDataVersion192), "KrigingDataVersion",
          record.KrigingDataVersion_);
  };
  // A text begins with the version. It is read after the lists: by then a text that needs too much
  // work has been refused.
  if constexpr (!Visitor::kReads) version();
  visit(Key(&Labels::attKrigingPolynomialType).Between(PolyNone, PolyFullQuadratic),
        "PolynomialType", record.PolynomialType);
  visit(Key(&Labels::attKrigingPolynomialCoefficients), "PolynomialCoefficients",
        record.PolynomialCoefficients);
  visit(
      Key(&Labels::attKrigingCorrelationFunctionType)
          .Between(CorrExponential, kernels::Kernels::Largest<E_KringingCorrelationFunctionType>()),
      "CorrelationFunctionType", record.CorrelationFunctionType);
  visit(Key(&Labels::attKrigingCorrelationCoefficients), "CorrelationCoefficients",
        record.CorrelationCoefficients);
  visit(Key(&Labels::attKrigingCorrelationKernels), "CorrelationKernels",
        record.CorrelationKernels);
  if constexpr (Visitor::kReads) version();

  const bool hasError = visit.HasSince(record.KrigingDataVersion_, KrigingDataVersion192);
  if constexpr (Visitor::kWrites) {
    if (!hasError && record.SavePredictorError) {
      visit.Text().Refuse("a KrigingVersion below 192 has no predictor error");
    }
    if (!record.SavePredictorError && kriging::HasErrorData(record)) {
      visit.Text().Refuse("it holds predictor error data, but SavePredictorError is not set");
    }
  }
  // Older records have no error data, and the attribute is not read.
  if (!hasError) return 0;
  visit(Key(&Labels::attKrigingSavePredictorError).Optional(), "SavePredictorError",
        record.SavePredictorError);
  visit.Unread(Key(&Labels::attKrigingPredictorError));
  if (!visit.HasPart(record.SavePredictorError)) return 0;
  if constexpr (Visitor::kReads) {
    // Deliberate (short-error-data-dropped): the status of the error data is not passed on, since
    // the surface has a value without them. A regression record does the same.
    static_cast<void>(reading::ResumeKrigingDataPredictorError(visit.Text(), &record));
    return 0;
  } else {
    return ErrorFields(visit, record);
  }
}

template <class Visitor, class Record>
int FamilyOf<CKrigingData>::ErrorFields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  const int& n = record.NumberOfSamples;
  const int& p = record.NumberOfPolyCoeff;
  visit(Key(&Labels::attKrigingNumberOfPolyCoeff).Count(), "NumberOfPolyCoeff",
        record.NumberOfPolyCoeff);
  visit(Key(&Labels::attKrigingSigmaSquare), "Sigma2", record.Sigma2);
  if constexpr (Visitor::kWrites) {
    // A reader may have dropped the error data. Without the three lists it drops them again.
    if (!kriging::HasErrorData(record)) return 0;
  }
  if (visit.Matrix(Key(&Labels::attKrigingInverseOfC), "InvC", record.InvC, n, n) != 0 ||
      visit.Matrix(Key(&Labels::attKrigingInverseOfG), "InvG", record.InvG, p, p) != 0 ||
      visit.Matrix(Key(&Labels::attKrigingFTilde), "Ft", record.Ft, p, n) != 0) {
    return 1;
  }
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
