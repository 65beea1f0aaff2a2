#include "pxrom/constant.h"

#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

CConstantData::CConstantData() = default;
CConstantData::CConstantData(const CConstantData&) = default;
CConstantData& CConstantData::operator=(const CConstantData&) = default;
CConstantData* CConstantData::Clone() const { return new CConstantData(*this); }
CConstantData::~CConstantData() = default;

int CConstantData::ResetData() {
  CRSData::ResetData();
  ConstantValue = 0.0;
  ConstantDataVersion_ = ConstantDataVersion170;
  return 0;
}

E_DataType CConstantData::DataType() const { return DT_ConstantData; }

int CConstantData::GetConstantValue(double& value) const {
  value = ConstantValue;
  return 0;
}

int CConstantData::SetConstantValue(double value) {
  ConstantValue = value;
  return 0;
}

E_CConstantDataVersion CConstantData::ConstantDataVersion() const { return ConstantDataVersion_; }

int CConstantData::SetConstantDataVersion(E_CConstantDataVersion version) {
  ConstantDataVersion_ = version;
  return 0;
}

CConstantEvaluator* CConstantEvaluator::Clone() const { return new CConstantEvaluator(*this); }
CConstantEvaluator::~CConstantEvaluator() = default;

int CConstantEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                                double& y, double& predictorError) const {
  const int status = EvaluateResponseSurface(data, x, y);
  if (status != 0) return status;
  // Deliberate (constant-error): only a constant without inputs reports an error.
  if (data->NumberOfInputVariables != 0) return -2;
  predictorError = 0.0;
  return 0;
}

int CConstantEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                                double& y) const {
  if (!IsEvaluable(data, DT_ConstantData, x)) return 1;
  static_cast<const CConstantData*>(data)->GetConstantValue(y);
  return 0;
}

int CConstantEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(
    const CRSData*, const std::vector<double>&, std::vector<double>&) const {
  return 1;
}

}  // namespace Tarvane::Plexura::PXROM
