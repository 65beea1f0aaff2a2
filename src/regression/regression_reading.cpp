#include <memory>

#include "pxrom/database_reader.h"
#include "pxrom/regression.h"
#include "reading/resume.h"
#include "records/evaluation_frame.h"
#include "regression/terms.h"

namespace Tarvane::Plexura::PXROM {

namespace reading {

namespace {

double CatchDouble(AttributeRange& in, const std::string& key) {
  double value = 0.0;
  in.Catch(key, value);
  return value;
}

int CatchInt(AttributeRange& in, const std::string& key) {
  int value = 0;
  in.Catch(key, value);
  return value;
}

/// A term from its group, or null for a type that no database holds. Indices or a coefficient whose
/// number does not fit the term are passed over in silence; its evaluation refuses then.
std::unique_ptr<RegTerm> ReadTerm(AttributeRange& in) {
  const auto type = in.CatchEnum<E_FuncType>(Labels::attQRSRegTermFuncType());
  const int isActive = CatchInt(in, Labels::attQRSRegTermIsActive());
  std::vector<int> indices;
  in.Catch(Labels::attQRSRegTermInputVarIdx(), indices);
  std::vector<double> coefficients;
  in.Catch(Labels::attQRSRegTermParameter(), coefficients);

  // A product of any list has no known number of indices that a database's list could match.
  if (type == FuncTypeCrossPoly) return nullptr;
  std::unique_ptr<RegTerm> term = TermSum::NewTerm(type);
  if (!term) return nullptr;
  if (isActive == 1) {
    term->SetActive();
  } else {
    term->SetInactive();
  }
  int count = 0;
  term->GetNumUsedInpVar(count);
  if (count != 0 && indices.size() == static_cast<std::size_t>(count)) {
    term->SetUsedInpVarIdx(count, indices.data());
  }
  term->GetNumParam(count);
  if (coefficients.size() == static_cast<std::size_t>(count)) {
    term->SetParamVal(count, coefficients.data());
  }
  return term;
}

/// The groups 0 to `count` - 1 into the record. 1 with its terms untouched when one is missing,
/// reaches out of the record's range, or is refused.
int ReadTerms(AttributeRange& in, int count, CQRSData& record) {
  if (count < 0) return 1;
  // Grows with the groups that are there: the number alone is worth nothing.
  std::vector<std::unique_ptr<RegTerm>> terms;
  for (int k = 0; k < count; ++k) {
    Bounds bounds;
    const bool isThere =
        in.Text().FindGroupInside(Labels::tagQRSRegTerm(), k, in.Range(), bounds) &&
        bounds.upper > bounds.lower && bounds.upper <= in.Range().upper;
    if (!isThere || in.Text().IsExhausted()) return 1;
    AttributeRange group(in.Text(), bounds);
    terms.push_back(ReadTerm(group));
    if (!terms.back()) return 1;
  }
  std::vector<RegTerm*> pointers;
  pointers.reserve(terms.size());
  for (const std::unique_ptr<RegTerm>& term : terms) pointers.push_back(term.get());
  return record.SetRegTerm(pointers.data(), count);
}

}  // namespace

int ResumeQRSData(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CQRSData>(data, DT_QRSData);
  if (record == nullptr || ResumeRSData(in, record) != 0) return 1;
  record->InputTransformType =
      in.CatchEnum<E_QRSTransformationType>(Labels::attQRSInputTransformType());
  in.Catch(Labels::attQRSInputTransformValues(), record->InputTransformValues);
  in.Catch(Labels::attQRSInputLambdas(), record->InputLambdas);
  record->OutputTransformType =
      in.CatchEnum<E_QRSTransformationType>(Labels::attQRSOutputTransformType());
  record->OutputTransformValue = CatchDouble(in, Labels::attQRSOutputTransformValue());
  record->OutputLambda = CatchDouble(in, Labels::attQRSOutputLambda());
  record->QRSDataVersion_ = in.CatchEnum<E_CQRSDataVersion>(Labels::attQRSVersion());
  record->ResponseSurfaceType = in.CatchEnum<E_SurfaceType>(Labels::attQRSRespSurfType());
  record->RegTermFilterType = in.CatchEnum<E_RegTermFilterType>(Labels::attQRSRegTermFilterType());
  record->RegTermFilterConfVal = CatchDouble(in, Labels::attQRSRegTermFilterConfVal());
  record->NumberOfSelectedRegTerms = CatchInt(in, Labels::attQRSNumSelRegTerm());
  if (ReadTerms(in, CatchInt(in, Labels::attQRSMaxRegTerm()), *record) != 0) return 1;
  if (record->QRSDataVersion_ >= QRSDataVersion192) {
    in.Catch(Labels::attQRSSavePredictorError(), record->SavePredictorError);
    // Its status is not read, on purpose: without a fitting matrix the surface still has values.
    if (record->SavePredictorError) ResumeQRSDataPredictorError(in, record);
  }
  return 0;
}

int ResumeQRSDataPredictorError(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CQRSData>(data, DT_QRSData);
  if (record == nullptr) return 1;
  const int order = CatchInt(in, Labels::attQRSNumSelRegTerm());
  in.Catch(Labels::attQRSSigmaSquare(), record->Sigma2);
  return in.CatchMatrix(Labels::attQRSInverseOfXtX(), order, order, record->InvXtX);
}

}  // namespace reading

int CReaderPXROMDatabase::ResumeQRSData(CRSData* data, std::size_t lower, std::size_t upper) const {
  return ResumeInRange(&reading::ResumeQRSData, data, lower, upper);
}

int CReaderPXROMDatabase::ResumeQRSDataPredictorError(CRSData* data, std::size_t lower,
                                                      std::size_t upper) const {
  return ResumeInRange(&reading::ResumeQRSDataPredictorError, data, lower, upper);
}

}  // namespace Tarvane::Plexura::PXROM
