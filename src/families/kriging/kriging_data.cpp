#include <algorithm>
#include <cstddef>
#include <utility>

#include "families/kriging/correlation.h"
#include "numerics/bessel.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

bool IsRagged(const Matrix& rows) {
  return std::any_of(rows.begin(), rows.end(),
                     [&](const Vector& row) { return row.size() != rows.front().size(); });
}

/// Whether `rows` has columns 0 to count - 1; always true for a negative count.
bool HasColumns(const Matrix& rows, int count) {
  const auto columns = static_cast<std::size_t>(std::max(count, 0));
  return std::all_of(rows.begin(), rows.end(),
                     [&](const Vector& row) { return row.size() >= columns; });
}

bool IsCount(std::size_t size, int count) {
  return count >= 0 && size == static_cast<std::size_t>(count);
}

double SlopeOfNormInf(double norm) { return norm < 1e-08 || norm > 1e+30 ? 1.0 : 1.0 / norm; }

}  // namespace

CKrigingData::CKrigingData() = default;
CKrigingData::CKrigingData(const CKrigingData&) = default;
CKrigingData& CKrigingData::operator=(const CKrigingData&) = default;
CKrigingData* CKrigingData::Clone() const { return new CKrigingData(*this); }
CKrigingData::~CKrigingData() = default;

int CKrigingData::ResetData() {
  CRSData::ResetData();
  KrigingDataVersion_ = KrigingDataVersion192;
  PolynomialType = PolyNone;
  PolynomialCoefficients.clear();
  CorrelationFunctionType = CorrNone;
  CorrelationCoefficients.clear();
  CorrelationKernels.clear();
  SavePredictorError = false;
  return 0;
}

bool CKrigingData::IsAllRight() {
  return IsSamplingCorrect() && IsScalingCorrect() && AreCorrelationCoefficientsCorrect() &&
         ArePolynomialCoefficientsCorrect() && AreCorrelationKernelsCorrect();
}

E_DataType CKrigingData::DataType() const { return DT_KrigingData; }

E_CKrigingDataVersion CKrigingData::KrigingDataVersion() const { return KrigingDataVersion_; }

int CKrigingData::SetKrigingDataVersion(E_CKrigingDataVersion version) {
  KrigingDataVersion_ = version;
  return 0;
}

int CKrigingData::GetPolynomialType(E_PolynomialType& type) const {
  type = PolynomialType;
  return 0;
}

int CKrigingData::SetPolynomialType(E_PolynomialType type) {
  PolynomialType = type;
  return 0;
}

int CKrigingData::GetPolynomialCoefficients(Vector& coefficients) const {
  coefficients = PolynomialCoefficients;
  return 0;
}

int CKrigingData::SetPolynomialCoefficients(const Vector& coefficients) {
  PolynomialCoefficients = coefficients;
  return 0;
}

int CKrigingData::GetCorrelationFunctionType(E_KringingCorrelationFunctionType& type) const {
  type = CorrelationFunctionType;
  return 0;
}

int CKrigingData::SetCorrelationFunctionType(E_KringingCorrelationFunctionType type) {
  CorrelationFunctionType = type;
  return 0;
}

int CKrigingData::GetCorrelationCoefficients(Vector& coefficients) const {
  coefficients = CorrelationCoefficients;
  return 0;
}

int CKrigingData::SetCorrelationCoefficients(const Vector& coefficients) {
  CorrelationCoefficients = coefficients;
  return 0;
}

int CKrigingData::GetCorrelationKernels(Vector& kernels) const {
  kernels = CorrelationKernels;
  return 0;
}

int CKrigingData::SetCorrelationKernels(const Vector& kernels) {
  CorrelationKernels = kernels;
  return 0;
}

int CKrigingData::GetSavePredictorError(bool& save) const {
  save = SavePredictorError;
  return 0;
}

int CKrigingData::SetSavePredictorError(const bool& save) {
  SavePredictorError = save;
  return 0;
}

int CKrigingData::GetNumberOfPolyCoeff(int& count) const {
  count = NumberOfPolyCoeff;
  return 0;
}

int CKrigingData::SetNumberOfPolyCoeff(int& count) {
  NumberOfPolyCoeff = count;
  return 0;
}

int CKrigingData::GetSigma2(double& variance) const {
  variance = Sigma2;
  return 0;
}

int CKrigingData::SetSigma2(double& variance) {
  Sigma2 = variance;
  return 0;
}

int CKrigingData::GetInvC(Matrix& rows) const {
  rows = InvC;
  return 0;
}

int CKrigingData::SetInvC(const Matrix& rows) {
  InvC = rows;
  return 0;
}

int CKrigingData::GetInvG(Matrix& rows) const {
  rows = InvG;
  return 0;
}

int CKrigingData::SetInvG(const Matrix& rows) {
  InvG = rows;
  return 0;
}

int CKrigingData::GetFt(Matrix& rows) const {
  rows = Ft;
  return 0;
}

int CKrigingData::SetFt(const Matrix& rows) {
  Ft = rows;
  return 0;
}

int CKrigingData::ComputeVandermondePolynomialVector(const Vector& x, E_PolynomialType type,
                                                     Vector& out) const {
  out.clear();
  if (type == PolyNone) return 1;
  const auto count = PolynomialCount(type, static_cast<std::int64_t>(x.size()));
  // An unknown type has no functions and is not a failure here: see the header.
  if (count < 0) return 0;
  out.resize(static_cast<std::size_t>(count));
  EvaluatePolynomialBasis(type, x.data(), x.size(), out.data());
  return 0;
}

int CKrigingData::ComputeVandermondePolynomialMatrix(const Matrix& x, E_PolynomialType type,
                                                     Matrix& out) const {
  if (x.empty() || IsRagged(x)) return 1;
  Matrix rows(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    ComputeVandermondePolynomialVector(x[i], type, rows[i]);
  }
  out = std::move(rows);
  return 0;
}

int CKrigingData::ComputeScalingFactorsForInputs() {
  if (!HasColumns(InputSamples, NumberOfInputVariables)) return 1;
  InputScaleSlopes.clear();
  InputScaleIntercepts.clear();
  for (int i = 0; i < NumberOfInputVariables; ++i) {
    const double mean = ComputeColumnMean(InputSamples, i);
    const double slope = 1.0 / ComputeColumnStandardDeviation(InputSamples, i);
    InputScaleSlopes.push_back(slope);
    InputScaleIntercepts.push_back(-slope * mean);
  }
  return 0;
}

int CKrigingData::ComputeScalingFactorsForInputsUsingInfNorm() {
  if (!HasColumns(InputSamples, NumberOfInputVariables)) return 1;
  InputScaleSlopes.clear();
  for (int i = 0; i < NumberOfInputVariables; ++i) {
    InputScaleSlopes.push_back(SlopeOfNormInf(ComputeColumnNormInf(InputSamples, i)));
  }
  InputScaleIntercepts.assign(InputScaleSlopes.size(), 0.0);
  return 0;
}

int CKrigingData::ComputeScalingFactorForOutput() {
  const double mean = ComputeOutputSamplesMean();
  const double deviation = ComputeStandardDeviation(OutputSamples);
  OutputScaleSlope = 1.0 / deviation;
  // Not -(1/s) m as for the inputs: see the header.
  OutputScaleIntercept = -(deviation * mean);
  return 0;
}

int CKrigingData::ComputeScalingFactorForOutputUsingInfNorm() {
  OutputScaleSlope = SlopeOfNormInf(ComputeNormInf(OutputSamples));
  return 0;
}

bool CKrigingData::AreCorrelationCoefficientsCorrect() const {
  return !CorrelationCoefficients.empty() &&
         IsCount(CorrelationCoefficients.size(), NumberOfSamples);
}

bool CKrigingData::AreCorrelationKernelsCorrect() const {
  return IsCount(CorrelationKernels.size(), NumberOfInputVariables);
}

bool CKrigingData::ArePolynomialCoefficientsCorrect() const {
  const auto count = PolynomialCount(PolynomialType, NumberOfInputVariables);
  return count >= 0 && PolynomialCoefficients.size() == static_cast<std::uint64_t>(count);
}

int CKrigingData::EvaluateCorrelationFunction(const Vector& x, const Vector& y, double& r) const {
  if (x.empty() || x.size() != y.size() || !IsCount(x.size(), NumberOfInputVariables)) return 1;
  r = 0.0;
  const kriging::Correlation correlation(*this);
  if (!correlation) return 1;
  r = correlation.OfPair(x.data(), y.data());
  return 0;
}

int CKrigingData::EvaluateCorrelationMatrix(const Matrix& rows, Matrix& out) const {
  out.clear();
  if (rows.empty() || IsRagged(rows)) return 1;
  out.assign(rows.size(), Vector(rows.size(), 0.0));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (EvaluateCorrelationFunction(rows[i], rows[j], out[i][j]) != 0) return 1;
    }
  }
  return 0;
}

double CKrigingData::Bessel_j0(double x) const { return BesselJ0(x); }

}  // namespace Tarvane::Plexura::PXROM
