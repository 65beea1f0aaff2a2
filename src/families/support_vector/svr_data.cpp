#include <cstddef>
#include <utility>

#include "kernels/kernels.h"
#include "pxrom/support_vector.h"
#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

bool IsStrictlyBetween0And1(double value) { return value > 0.0 && value < 1.0; }

}  // namespace

CSVRData::CSVRData() = default;
CSVRData::CSVRData(const CSVRData&) = default;
CSVRData& CSVRData::operator=(const CSVRData&) = default;
CSVRData* CSVRData::Clone() const { return new CSVRData(*this); }
CSVRData::~CSVRData() = default;

int CSVRData::ResetData() {
  *this = CSVRData();
  return 0;
}

bool CSVRData::IsAllRight() {
  return IsSamplingCorrect() && IsScalingCorrect() && AreMultipliersCorrect() &&
         IsKernelArrayCorrect();
}

E_DataType CSVRData::DataType() const { return DT_SVRData; }

E_CSVRDataVersion CSVRData::SVRDataVersion() const { return SVRDataVersion_; }

int CSVRData::SetSVRDataVersion(E_CSVRDataVersion version) {
  SVRDataVersion_ = version;
  return 0;
}

int CSVRData::GetSVRKernType(E_SVRKernType& type) const {
  type = SVRKernType;
  return 0;
}

int CSVRData::SetSVRKernType(const E_SVRKernType& type) {
  SVRKernType = type;
  return 0;
}

int CSVRData::GetSVRKernCompType(E_SVRKernCompType& type) const {
  type = SVRKernCompType;
  return 0;
}

int CSVRData::SetSVRKernCompType(const E_SVRKernCompType& type) {
  SVRKernCompType = type;
  return 0;
}

int CSVRData::GetSVRLossFuncType(E_SVRLossFuncType& type) const {
  type = SVRLossFuncType;
  return 0;
}

int CSVRData::SetSVRLossFuncType(const E_SVRLossFuncType& type) {
  SVRLossFuncType = type;
  return 0;
}

int CSVRData::GetEpsilonValue(double& epsilon) const {
  epsilon = EpsilonValue;
  return 0;
}

int CSVRData::SetEpsVal(const double& epsilon) {
  if (!IsStrictlyBetween0And1(epsilon)) return 1;
  EpsilonValue = epsilon;
  return 0;
}

int CSVRData::GetNuValue(double& nu) const {
  nu = NuValue;
  return 0;
}

int CSVRData::SetNuVal(const double& nu) {
  if (!IsStrictlyBetween0And1(nu)) return 1;
  NuValue = nu;
  return 0;
}

int CSVRData::GetConstantValue(double& constant) const {
  constant = ConstantValue;
  return 0;
}

int CSVRData::SetConstVal(const double& constant) {
  if (constant <= 0.0) return 1;
  ConstantValue = constant;
  return 0;
}

int CSVRData::GetAlphas(std::vector<double>& alphas) const {
  alphas = Alphas;
  return 0;
}

int CSVRData::SetAlpha(const std::vector<double>& alphas) {
  Alphas = alphas;
  return 0;
}

int CSVRData::GetAlphasStar(std::vector<double>& alphasStar) const {
  alphasStar = AlphasStar;
  return 0;
}

int CSVRData::SetAlphaStar(const std::vector<double>& alphasStar) {
  AlphasStar = alphasStar;
  return 0;
}

int CSVRData::GetBetas(std::vector<double>& betas) const {
  betas = Betas;
  return 0;
}

int CSVRData::SetBeta(const std::vector<double>& betas) {
  Betas = betas;
  return 0;
}

int CSVRData::GetConstantCoefficient(double& bias) const {
  bias = ConstantCoefficient;
  return 0;
}

int CSVRData::SetConstCoeff(double bias) {
  ConstantCoefficient = bias;
  return 0;
}

int CSVRData::GetKernelArray(std::vector<double>& widths) const {
  widths = KernelArray;
  return 0;
}

int CSVRData::SetKernelArray(const std::vector<double>& widths) {
  KernelArray = widths;
  return 0;
}

int CSVRData::EvaluateSVRKernel(const E_SVRKernType& type, const std::vector<double>& x,
                                const std::vector<double>& y, double& value) const {
  const std::size_t inputs = KernelArray.size();
  if (inputs == 0 || x.size() != inputs || y.size() != inputs) return 1;
  kernels::RowKernels call;
  call.kernel = kernels::FindKernel(type);
  if (call.kernel == nullptr) return 1;
  const double* const row = y.data();
  call.inputs = inputs;
  call.constants = call.kernel->constants(static_cast<double>(inputs));
  call.x = x.data();
  call.scales = KernelArray.data();
  call.rows = &row;
  call.count = 1;
  call.values = &value;
  call.kernel->rows(call);
  return 0;
}

int CSVRData::EvaluateKernelMatrix(const std::vector<std::vector<double>>& a,
                                   const std::vector<std::vector<double>>& b,
                                   std::vector<std::vector<double>>& out) const {
  if (IsStoppedNow(*this) || !IsThisRectangularMatrix(a)) return 1;
  // Apart from `out`, so that a caller may pass one object twice.
  std::vector<std::vector<double>> matrix(a.size(), std::vector<double>(b.size(), 0.0));
  int status = 0;
  for (std::size_t i = 0; i < a.size() && status == 0; ++i) {
    for (std::size_t j = 0; j < b.size() && !IsStoppedNow(*this); ++j) {
      status = EvaluateSVRKernel(SVRKernType, a[i], b[j], matrix[i][j]);
      if (status != 0) break;
    }
  }
  out = std::move(matrix);
  return status;
}

int CSVRData::EvaluateKernelArray(const std::vector<std::vector<double>>& rows,
                                  std::vector<double>& out) const {
  out.clear();
  // The diagonal has the same bits as that of the whole covariance matrix, which could be far
  // larger than the samples.
  const std::vector<double> variances = GetDiagVarianceCovarianceMatrix(rows);
  const double mean = ComputeMean(variances);
  if (mean == 0.0) return 1;
  out.assign(variances.size(), 0.5 / mean);
  return 0;
}

bool CSVRData::AreMultipliersCorrect() {
  return Alphas.size() == AlphasStar.size() && Alphas.size() == Betas.size();
}

bool CSVRData::IsKernelArrayCorrect() {
  // A test for a difference: see the header.
  return KernelArray.size() != InputSamples.size();
}

}  // namespace Tarvane::Plexura::PXROM
