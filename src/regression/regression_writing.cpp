// Writing of the regression record.

#include <memory>
#include <vector>

#include "pxrom/regression.h"
#include "regression/record_parts.h"
#include "regression/terms.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM::writing {

namespace {

void WriteTerm(AttributeSink& out, const RegTerm& term) {
  E_FuncType type = FuncTypeCrossPoly;
  term.GetFuncType(type);
  const std::unique_ptr<RegTerm> plain =
      type == FuncTypeCrossPoly ? nullptr : TermSum::NewTerm(type);
  int indexCount = 0;
  int plainIndexCount = 0;
  int coefficientCount = 0;
  int plainCoefficientCount = 0;
  term.GetNumUsedInpVar(indexCount);
  term.GetNumParam(coefficientCount);
  if (plain != nullptr) {
    plain->GetNumUsedInpVar(plainIndexCount);
    plain->GetNumParam(plainCoefficientCount);
  }
  // Nothing is asked of a term that is not like one that would be read: its lists have unknown
  // lengths.
  if (plain == nullptr || indexCount != plainIndexCount ||
      coefficientCount != plainCoefficientCount) {
    return out.Refuse("no database holds a term of this kind");
  }
  const int activity = term.QryIsActive();
  if (activity != 0 && activity != 1) out.Refuse("its activity is neither 0 nor 1");

  // What the term does not have, an empty list leaves it without.
  std::vector<int> indices(static_cast<std::size_t>(indexCount));
  if (term.GetUsedInpVarIdx(indices.data()) != 0) indices.clear();
  std::vector<double> coefficients(static_cast<std::size_t>(coefficientCount));
  if (!TermSum::HasCoefficient(term) || term.GetParamVal(coefficients.data()) != 0) {
    coefficients.clear();
  }
  out.Put(Labels::attQRSRegTermFuncType(), type);
  out.Put(Labels::attQRSRegTermIsActive(), activity);
  out.Put(Labels::attQRSRegTermInputVarIdx(), indices);
  out.Put(Labels::attQRSRegTermParameter(), coefficients);
}

void WriteTerms(AttributeSink& out, const CQRSData& record) {
  if (record.NumberOfRegTerms < 0 || !HasTermArray(record)) {
    out.Refuse("it counts terms that are not there");
  }
  for (int k = 0; k < record.NumberOfRegTerms && !out.IsRefused(); ++k) {
    out.PutGroup(Labels::tagQRSRegTerm(), k, [&] {
      const RegTerm* const term = TermOf(record, k);
      if (term == nullptr) return out.Refuse("the term is missing");
      WriteTerm(out, *term);
    });
  }
}

void WritePredictorError(AttributeSink& out, const CQRSData& record) {
  const bool hasData = !record.InvXtX.empty() || !IsUnset(record.Sigma2);
  const bool canHaveError = record.QRSDataVersion_ >= QRSDataVersion192;
  if (!canHaveError && record.SavePredictorError) {
    out.Refuse("a QRSVersion below 192 has no predictor error");
  }
  if (!record.SavePredictorError && hasData) {
    out.Refuse("it holds predictor error data, but SavePredictorError is not set");
  }
  if (!canHaveError) return;
  out.Put(Labels::attQRSSavePredictorError(), record.SavePredictorError);
  if (!record.SavePredictorError) return;
  out.Put(Labels::attQRSSigmaSquare(), record.Sigma2);
  // A list that is missing is read as no matrix.
  if (record.InvXtX.empty()) return;
  const int order = record.NumberOfSelectedRegTerms;
  out.PutMatrix(Labels::attQRSInverseOfXtX(), record.InvXtX, order, order);
}

}  // namespace

void WriteQRSData(AttributeSink& out, const CRSData& data) {
  const auto& record = static_cast<const CQRSData&>(data);
  WriteRSData(out, record);
  out.Put(Labels::attQRSInputTransformType(), record.InputTransformType);
  out.Put(Labels::attQRSInputTransformValues(), record.InputTransformValues);
  out.Put(Labels::attQRSInputLambdas(), record.InputLambdas);
  out.Put(Labels::attQRSOutputTransformType(), record.OutputTransformType);
  out.Put(Labels::attQRSOutputTransformValue(), record.OutputTransformValue);
  out.Put(Labels::attQRSOutputLambda(), record.OutputLambda);
  out.Put(Labels::attQRSVersion(), record.QRSDataVersion_);
  out.Put(Labels::attQRSRespSurfType(), record.ResponseSurfaceType);
  out.Put(Labels::attQRSRegTermFilterType(), record.RegTermFilterType);
  out.Put(Labels::attQRSRegTermFilterConfVal(), record.RegTermFilterConfVal);
  out.Put(Labels::attQRSNumSelRegTerm(), record.NumberOfSelectedRegTerms);
  out.Put(Labels::attQRSMaxRegTerm(), record.NumberOfRegTerms);
  WritePredictorError(out, record);
  WriteTerms(out, record);
}

}  // namespace Tarvane::Plexura::PXROM::writing
