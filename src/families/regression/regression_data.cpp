#include <memory>
#include <utility>

#include "families/regression/record_parts.h"
#include "families/regression/terms.h"
#include "families/regression/transformers.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

namespace {

/// Owns the copies until all of them exist.
using Terms = std::vector<std::unique_ptr<RegTerm>>;

Terms CopiesOf(const RegTerm* const* terms, int count) {
  Terms copies;
  copies.reserve(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) {
    copies.push_back(terms[k] != nullptr ? CopyOfTerm(*terms[k]) : nullptr);
  }
  return copies;
}

RegTerm** ReleasedArray(Terms terms) {
  auto* const array = new RegTerm*[terms.size()];
  for (std::size_t k = 0; k < terms.size(); ++k) array[k] = terms[k].release();
  return array;
}

void DeleteTerms(CQRSData& record) {
  if (record.RegTerms == nullptr) return;
  for (int k = 0; k < record.NumberOfRegTerms; ++k) delete record.RegTerms[k];
  delete[] record.RegTerms;
  record.RegTerms = nullptr;
}

/// Each value through `transform`, which gives the status; 1 at the first that fails.
template <class Transform>
int TransformEach(std::vector<double>& ys, Transform transform) {
  for (double& y : ys) {
    if (transform(y) != 0) return 1;
  }
  return 0;
}

}  // namespace

CQRSData::CQRSData() = default;

CQRSData::CQRSData(const CQRSData& other) : CRSData(other) { *this = other; }

// Clones the terms, since two records must not delete one array.
CQRSData& CQRSData::operator=(const CQRSData& other) {
  if (this == &other) return *this;
  CRSData::operator=(other);
  ResponseSurfaceType = other.ResponseSurfaceType;
  RegTermFilterType = other.RegTermFilterType;
  RegTermFilterConfVal = other.RegTermFilterConfVal;
  NumberOfSelectedRegTerms = other.NumberOfSelectedRegTerms;
  InputTransformType = other.InputTransformType;
  InputTransformValues = other.InputTransformValues;
  InputLambdas = other.InputLambdas;
  OutputTransformType = other.OutputTransformType;
  OutputTransformValue = other.OutputTransformValue;
  OutputLambda = other.OutputLambda;
  QRSDataVersion_ = other.QRSDataVersion_;
  SavePredictorError = other.SavePredictorError;
  Sigma2 = other.Sigma2;
  InvXtX = other.InvXtX;
  // Last, so that a copy that fails leaks nothing.
  SetRegTerm(other.RegTerms, other.NumberOfRegTerms);
  return *this;
}

CQRSData* CQRSData::Clone() const { return new CQRSData(*this); }
CQRSData::~CQRSData() { DeleteTerms(*this); }

int CQRSData::ResetData() {
  CRSData::ResetData();
  InputTransformType = TransformNone;
  OutputTransformType = TransformNone;
  OutputTransformValue = 0.0;
  OutputLambda = 0.0;
  InputTransformValues.clear();
  InputLambdas.clear();
  DeleteTerms(*this);
  NumberOfRegTerms = 0;
  NumberOfSelectedRegTerms = 0;
  ResponseSurfaceType = SurfaceTypeNone;
  RegTermFilterType = RegTermFilterNone;
  RegTermFilterConfVal = 0.95;
  QRSDataVersion_ = QRSDataVersion192;
  SavePredictorError = false;
  return 0;
}

bool CQRSData::IsAllRight() {
  return IsSamplingCorrect() && IsTransformingCorrect() && IsScalingCorrect();
}

bool CQRSData::IsTransformingCorrect() {
  if (InputTransformType == TransformNone) return true;
  const auto inputs = static_cast<std::size_t>(NumberOfInputVariables);
  if (InputLambdas.size() == inputs && InputTransformValues.size() == inputs) return true;
  Stopped = true;
  return false;
}

E_DataType CQRSData::DataType() const { return DT_QRSData; }

int CQRSData::GetResponseSurfaceType(E_SurfaceType& type) const {
  type = ResponseSurfaceType;
  return 0;
}

int CQRSData::SetResponseSurfaceType(const E_SurfaceType& type) {
  ResponseSurfaceType = type;
  return 0;
}

int CQRSData::GetRegTermFilterType(E_RegTermFilterType& type) const {
  type = RegTermFilterType;
  return 0;
}

int CQRSData::SetRegTermFilterType(const E_RegTermFilterType& type) {
  RegTermFilterType = type;
  return 0;
}

int CQRSData::GetRegTermFilterConfVal(double& value) const {
  switch (RegTermFilterType) {
    case RegTermFilterConfidence1:
    case RegTermFilterConfidence2:
    case RegTermFilterConfidence3:
      value = RegTermFilterConfVal;
      return 0;
    case RegTermFilterNone:
      break;
  }
  return 1;
}

int CQRSData::SetRegTermFilterConfVal(const double& value) {
  RegTermFilterConfVal = value;
  return 0;
}

int CQRSData::GetNumberOfRegTerms(int& count) const {
  count = NumberOfRegTerms;
  return 0;
}

int CQRSData::GetNumberOfSelectedRegTerms(int& count) const {
  count = NumberOfSelectedRegTerms;
  return 0;
}

int CQRSData::SetNumberOfSelectedRegTerms(const int& count) {
  NumberOfSelectedRegTerms = count;
  return 0;
}

int CQRSData::GetInputTransformType(E_QRSTransformationType& type) const {
  type = InputTransformType;
  return 0;
}

int CQRSData::SetInputTransformType(E_QRSTransformationType type) {
  InputTransformType = type;
  return 0;
}

int CQRSData::GetInputTransformValues(std::vector<double>& values) const {
  values = InputTransformValues;
  return 0;
}

int CQRSData::SetInputTransformValues(const std::vector<double>& values) {
  InputTransformValues = values;
  return 0;
}

int CQRSData::GetInputLambdas(std::vector<double>& lambdas) const {
  lambdas = InputLambdas;
  return 0;
}

int CQRSData::SetInputLambdas(const std::vector<double>& lambdas) {
  InputLambdas = lambdas;
  return 0;
}

int CQRSData::GetOutputTransformType(E_QRSTransformationType& type) const {
  type = OutputTransformType;
  return 0;
}

int CQRSData::SetOutputTransformType(E_QRSTransformationType type) {
  OutputTransformType = type;
  return 0;
}

int CQRSData::GetOutputTransformValue(double& value) const {
  value = OutputTransformValue;
  return 0;
}

int CQRSData::SetOutputTransformValue(double value) {
  OutputTransformValue = value;
  return 0;
}

int CQRSData::GetOutputLambda(double& lambda) const {
  lambda = OutputLambda;
  return 0;
}

int CQRSData::SetOutputLambda(double lambda) {
  OutputLambda = lambda;
  return 0;
}

E_CQRSDataVersion CQRSData::QRSDataVersion() const { return QRSDataVersion_; }

int CQRSData::SetQRSDataVersion(E_CQRSDataVersion version) {
  QRSDataVersion_ = version;
  return 0;
}

int CQRSData::GetSavePredictorError(bool& save) const {
  save = SavePredictorError;
  return 0;
}

int CQRSData::SetSavePredictorError(bool save) {
  SavePredictorError = save;
  return 0;
}

int CQRSData::GetSigma2(double& sigma2) const {
  sigma2 = Sigma2;
  return 0;
}

int CQRSData::SetSigma2(double sigma2) {
  Sigma2 = sigma2;
  return 0;
}

int CQRSData::GetInvXtX(std::vector<std::vector<double>>& rows) const {
  rows = InvXtX;
  return 0;
}

int CQRSData::SetInvXtX(std::vector<std::vector<double>> rows) {
  InvXtX = std::move(rows);
  return 0;
}

int CQRSData::GetRegTermFuncType(const int& k, E_FuncType& type) const {
  const RegTerm* const term = TermOf(*this, k);
  return term != nullptr ? term->GetFuncType(type) : 1;
}

int CQRSData::GetRegTermNumParam(const int& k, int& count) const {
  const RegTerm* const term = TermOf(*this, k);
  return term != nullptr ? term->GetNumParam(count) : 1;
}

int CQRSData::GetRegTermNumUsedInpVar(const int& k, int& count) const {
  const RegTerm* const term = TermOf(*this, k);
  return term != nullptr ? term->GetNumUsedInpVar(count) : 1;
}

int CQRSData::GetRegTermParamVal(const int& k, double* values) const {
  const RegTerm* const term = TermOf(*this, k);
  return term != nullptr ? term->GetParamVal(values) : 1;
}

int CQRSData::GetRegTermUsedInpVarIdx(const int& k, int* const indices) const {
  const RegTerm* const term = TermOf(*this, k);
  return term != nullptr ? term->GetUsedInpVarIdx(indices) : 1;
}

int CQRSData::QryRegTermIsActive(const int& k) const {
  const RegTerm* const term = TermOf(*this, k);
  return term != nullptr ? term->QryIsActive() : 0;
}

int CQRSData::SetAllRegTermActive() {
  if (!HasTermArray(*this)) return 1;
  for (int k = 0; k < NumberOfRegTerms; ++k) {
    const int status = RegTerms[k] != nullptr ? RegTerms[k]->SetActive() : 1;
    if (status != 0) return status;
  }
  return 0;
}

int CQRSData::SetRegTerm(RegTerm** terms, int count) {
  RegTerm** const copies =
      terms != nullptr && count > 0 ? ReleasedArray(CopiesOf(terms, count)) : nullptr;
  DeleteTerms(*this);
  RegTerms = copies;
  NumberOfRegTerms = count;
  return 0;
}

RegTerm** CQRSData::CloneRegTerm() const {
  if (RegTerms == nullptr || NumberOfRegTerms <= 0) return nullptr;
  return ReleasedArray(CopiesOf(RegTerms, NumberOfRegTerms));
}

int TransformInputs(const CQRSData& record, std::size_t count, double* x) {
  if (record.InputTransformType == TransformNone) return 0;
  const BlockTransform transform = FindBlockTransform(record.InputTransformType);
  const bool hasParameters =
      record.InputTransformValues.size() >= count && record.InputLambdas.size() >= count;
  if (transform == nullptr || !hasParameters) return 1;
  transform(count, x, record.InputTransformValues.data(), record.InputLambdas.data());
  return 0;
}

int CQRSData::TransformAndOverwriteInputSample(std::vector<double>& x) const {
  return TransformInputs(*this, x.size(), x.data());
}

int CQRSData::TransformAndOverwriteInputSamples(std::vector<std::vector<double>>& rows) const {
  for (std::vector<double>& row : rows) {
    if (TransformAndOverwriteInputSample(row) != 0) return 1;
  }
  return 0;
}

int CQRSData::TransformAndOverwriteOutputSample(double& y) const {
  const CTransformer* const transformer = FindTransformer(OutputTransformType);
  if (transformer == nullptr) return 1;
  return transformer->TransformAndOverwrite(y, OutputTransformValue, OutputLambda);
}

int CQRSData::TransformAndOverwriteOutputSamples(std::vector<double>& ys) const {
  return TransformEach(ys, [&](double& y) { return TransformAndOverwriteOutputSample(y); });
}

int CQRSData::BacktransformAndOverwriteOutputSample(double& y) const {
  const CTransformer* const transformer = FindTransformer(OutputTransformType);
  if (transformer == nullptr) return 1;
  return transformer->BacktransformAndOverwrite(y, OutputTransformValue, OutputLambda);
}

int CQRSData::BacktransformAndOverwriteOutputSample(std::vector<double>& ys) const {
  return TransformEach(ys, [&](double& y) { return BacktransformAndOverwriteOutputSample(y); });
}

}  // namespace Tarvane::Plexura::PXROM
