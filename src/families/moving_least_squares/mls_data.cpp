#include "pxrom/moving_least_squares.h"

namespace Tarvane::Plexura::PXROM {

CMLSData::CMLSData() = default;
CMLSData::CMLSData(const CMLSData&) = default;
CMLSData& CMLSData::operator=(const CMLSData&) = default;
CMLSData* CMLSData::Clone() const { return new CMLSData(*this); }
CMLSData::~CMLSData() = default;

int CMLSData::ResetData() {
  *this = CMLSData();
  return 0;
}

E_DataType CMLSData::DataType() const { return DT_MLSData; }

E_CMLSDataVersion CMLSData::MLSDataVersion() const { return MLSDataVersion_; }

int CMLSData::SetMLSDataVersion(E_CMLSDataVersion version) {
  MLSDataVersion_ = version;
  return 0;
}

int CMLSData::GetWeightFunction(E_WeightFunction& function) const {
  function = WeightFunction;
  return 0;
}

int CMLSData::SetWeightFunction(E_WeightFunction function) {
  WeightFunction = function;
  return 0;
}

int CMLSData::GetPolynomialType(E_PolynomialType& type) const {
  type = PolynomialType;
  return 0;
}

int CMLSData::SetPolynomialType(E_PolynomialType type) {
  PolynomialType = type;
  return 0;
}

int CMLSData::GetUsedPointOption(E_UsedPointsOption& option) const {
  option = UsedPointOption;
  return 0;
}

int CMLSData::SetUsedPointOption(E_UsedPointsOption option, double extraPercent) {
  UsedPointOption = option;
  // -1.0 means no percentage.
  if (option == UsedPointsExtraPercent && extraPercent != -1.0) ExtraPointPercent = extraPercent;
  return 0;
}

int CMLSData::GetExtraPointPercent(double& percent) const {
  percent = ExtraPointPercent;
  return 0;
}

int CMLSData::GetNumberOfBasisFunctions(int& count) const {
  count = NumberOfBasisFunctions;
  return 0;
}

int CMLSData::SetNumberOfBasisFunctions(int count) {
  NumberOfBasisFunctions = count;
  return 0;
}

int CMLSData::GetNumberOfUsedPoints(int& count) const {
  count = NumberOfUsedPoints;
  return 0;
}

int CMLSData::SetNumberOfUsedPoints(int count) {
  NumberOfUsedPoints = count;
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
