#include "pxrom/linear_basis.h"

namespace Tarvane::Plexura::PXROM {

CLBFData::CLBFData() = default;
CLBFData::CLBFData(const CLBFData&) = default;
CLBFData& CLBFData::operator=(const CLBFData&) = default;
CLBFData* CLBFData::Clone() const { return new CLBFData(*this); }
CLBFData::~CLBFData() = default;

int CLBFData::ResetData() {
  *this = CLBFData();
  return 0;
}

E_DataType CLBFData::DataType() const { return DT_LBFData; }

E_CLBFDataVersion CLBFData::LBFDataVersion() const { return LBFDataVersion_; }

int CLBFData::SetLBFDataVersion(const E_CLBFDataVersion& version) {
  LBFDataVersion_ = version;
  return 0;
}

int CLBFData::GetBasisFunctionType(E_LinearBasisFunction& type) const {
  type = BasisFunctionType;
  return 0;
}

int CLBFData::SetBasisFunctionType(const E_LinearBasisFunction& type) {
  BasisFunctionType = type;
  return 0;
}

int CLBFData::GetPolynomialType(E_PolynomialType& type) const {
  type = PolynomialType;
  return 0;
}

int CLBFData::SetPolynomialType(const E_PolynomialType& type) {
  PolynomialType = type;
  return 0;
}

int CLBFData::GetKernelValues(std::vector<double>& widths) const {
  widths = KernelValues;
  return 0;
}

int CLBFData::SetKernelValues(const std::vector<double>& widths) {
  KernelValues = widths;
  return 0;
}

int CLBFData::GetPolynomialCoefficients(std::vector<double>& coefficients) const {
  coefficients = PolynomialCoefficients;
  return 0;
}

int CLBFData::SetPolynomialCoefficients(const std::vector<double>& coefficients) {
  PolynomialCoefficients = coefficients;
  return 0;
}

int CLBFData::GetKernelCoefficients(std::vector<double>& coefficients) const {
  coefficients = KernelCoefficients;
  return 0;
}

int CLBFData::SetKernelCoefficients(const std::vector<double>& coefficients) {
  KernelCoefficients = coefficients;
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
