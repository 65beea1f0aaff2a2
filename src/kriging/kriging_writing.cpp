// Writing of the Kriging record.

#include "pxrom/kriging.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM::writing {

namespace {

bool HasErrorData(const CKrigingData& record) {
  return record.NumberOfPolyCoeff != 0 || !IsUnset(record.Sigma2) || !record.InvC.empty() ||
         !record.InvG.empty() || !record.Ft.empty();
}

void WritePredictorError(AttributeSink& out, const CKrigingData& record) {
  const int n = record.NumberOfSamples;
  const int p = record.NumberOfPolyCoeff;
  out.Put(Labels::attKrigingNumberOfPolyCoeff(), p);
  out.Put(Labels::attKrigingSigmaSquare(), record.Sigma2);
  // A record whose error data its reader had to drop: three lists that are missing are dropped
  // again.
  if (!HasErrorData(record)) return;
  out.PutMatrix(Labels::attKrigingInverseOfC(), record.InvC, n, n);
  out.PutMatrix(Labels::attKrigingInverseOfG(), record.InvG, p, p);
  out.PutMatrix(Labels::attKrigingFTilde(), record.Ft, p, n);
}

}  // namespace

void WriteKrigingData(AttributeSink& out, const CRSData& data) {
  const auto& record = static_cast<const CKrigingData&>(data);
  WriteRSData(out, record);
  out.Put(Labels::attKrigingVersion(), record.KrigingDataVersion_);
  out.Put(Labels::attKrigingPolynomialType(), record.PolynomialType);
  out.Put(Labels::attKrigingPolynomialCoefficients(), record.PolynomialCoefficients);
  out.Put(Labels::attKrigingCorrelationFunctionType(), record.CorrelationFunctionType);
  out.Put(Labels::attKrigingCorrelationCoefficients(), record.CorrelationCoefficients);
  out.Put(Labels::attKrigingCorrelationKernels(), record.CorrelationKernels);

  const bool canHaveError = record.KrigingDataVersion_ >= KrigingDataVersion192;
  if (!canHaveError && record.SavePredictorError) {
    out.Refuse("a KrigingVersion below 192 has no predictor error");
  }
  if (!record.SavePredictorError && HasErrorData(record)) {
    out.Refuse("it holds predictor error data, but SavePredictorError is not set");
  }
  if (!canHaveError) return;
  out.Put(Labels::attKrigingSavePredictorError(), record.SavePredictorError);
  if (record.SavePredictorError) WritePredictorError(out, record);
}

}  // namespace Tarvane::Plexura::PXROM::writing
