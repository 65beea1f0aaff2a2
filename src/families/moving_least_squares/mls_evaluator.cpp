#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "families/moving_least_squares/cholesky.h"
#include "families/moving_least_squares/local_fit.h"
#include "families/moving_least_squares/mls_weight.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/moving_least_squares.h"
#include "records/evaluation_frame.h"
#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

bool IsKnown(E_CMLSDataVersion version) {
  return version == MLSDataVersion162 || version == MLSDataVersion170;
}

// The weight formulas of `version`, whatever the record's own version is.
int EvaluateWeight(E_CMLSDataVersion version, const CMLSData& data, double r, double rho,
                   double& w) {
  if (r < 0.0) return 1;
  WithWeight(data, version, rho, [&](const auto& weight) { w = weight.At(r); });
  return 0;
}

// A basis whose size differs from the record's count serves no prediction, so it must not take the
// memory that a large number of inputs needs.
constexpr std::int64_t kMostMiscountedFunctions = std::int64_t{1} << 24;

// The number of functions of the record's basis, or 0 when it is not one of PolyConstant to
// PolyFullQuadratic.
std::int64_t BasisSize(const CMLSData& data) {
  return std::max<std::int64_t>(PolynomialCount(data.PolynomialType, data.NumberOfInputVariables),
                                0);
}

bool HasBasisSize(const CMLSData& data, std::int64_t functions) {
  return functions > 0 && functions == data.NumberOfBasisFunctions;
}

// Whether a point or sample of `size` values has all values that the record's basis reads. The
// constant function reads none.
bool CoversBasis(const CMLSData& data, std::size_t size) {
  return data.PolynomialType == PolyConstant ||
         (data.NumberOfInputVariables >= 0 &&
          size >= static_cast<std::size_t>(data.NumberOfInputVariables));
}

// Whether the first `used` samples, which must exist, have all values that the record's basis
// reads.
bool HasSamplesForBasis(const CMLSData& data, std::size_t used) {
  return std::all_of(data.InputSamples.begin(),
                     data.InputSamples.begin() + static_cast<std::ptrdiff_t>(used),
                     [&](const auto& row) { return CoversBasis(data, row.size()); });
}

}  // namespace

CMLSEvaluator* CMLSEvaluator::Clone() const { return new CMLSEvaluator(*this); }
CMLSEvaluator::~CMLSEvaluator() = default;

int CMLSEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_MLSData, x)) return 1;
  const auto& record = static_cast<const CMLSData&>(*data);
  // Deliberate (mls-refuses-regression-line): a linear basis with constant weights is refused,
  // although the formulas would work. It is the ordinary least squares line.
  if (record.PolynomialType == PolyLinear && record.WeightFunction == WeightConstant) return 1;

  // Tested before anything is computed: a basis with more functions than samples must not take
  // memory.
  if (!HasBasisSize(record, BasisSize(record))) return 1;
  std::vector<double> weights;
  if (ComputeWeights(&record, x, weights) != 0) return 1;
  if (record.NumberOfUsedPoints < record.NumberOfBasisFunctions || IsStoppedNow(record)) return 1;
  if (!HasSamplesForBasis(record, weights.size())) return 1;
  std::vector<double> basis;
  if (EvaluateBasisFunction(&record, x, basis) != 0) return 1;
  if (record.OutputSamples.size() < weights.size()) return 1;

  NormalEquations equations = NormalEquationsOf(record, weights, basis.size());
  FlatMatrix A = equations.A();
  if (!IsExactlySymmetric(A, basis.size()) || !FactorCholesky(A, basis.size())) return 1;
  std::vector<double>& coefficients = equations.b;
  SolveCholesky(A, basis.size(), coefficients.data(), coefficients.data());
  double value = 0.0;
  for (std::size_t k = 0; k < basis.size(); ++k) value += basis[k] * coefficients[k];
  y = value;
  return 0;
}

int CMLSEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(const CRSData*,
                                                                      const std::vector<double>&,
                                                                      std::vector<double>&) const {
  return 1;
}

int CMLSEvaluator::ComputeWeights(const CMLSData* data, const std::vector<double>& x,
                                  std::vector<double>& weights) const {
  if (IsStoppedNow(*data)) return 1;
  weights.clear();
  if (!IsKnown(data->MLSDataVersion_)) return 1;
  const int p = data->NumberOfBasisFunctions;
  const int used = std::max(data->NumberOfUsedPoints, 0);
  if (!IsCovered(data->NumberOfSamples, data->InputSamples.size())) return 1;
  const auto n = static_cast<std::size_t>(data->NumberOfSamples);
  if (n == 0 || !IsCovered(p, n) || !IsCovered(used, n)) return 1;

  const std::vector<double> distances = DistancesTo(*data, x, n);
  const double rho = ReferenceDistance(distances, static_cast<std::size_t>(p));

  weights.resize(static_cast<std::size_t>(used));
  double sum = 0.0;
  WithWeight(*data, data->MLSDataVersion_, rho, [&](const auto& weight) {
    for (std::size_t j = 0; j < weights.size(); ++j) {
      weights[j] = weight.At(distances[j]);
      sum += weights[j];
    }
  });
  for (double& weight : weights) weight /= sum;
  return 0;
}

int CMLSEvaluator::ComputeB(const CMLSData* data, std::vector<std::vector<double>>& B) const {
  if (data->NumberOfUsedPoints < data->NumberOfBasisFunctions || IsStoppedNow(*data)) return 1;
  B.clear();
  const int used = std::max(data->NumberOfUsedPoints, 0);
  if (!IsCovered(used, data->InputSamples.size())) return 1;
  std::vector<double> row;
  for (std::size_t j = 0; j < static_cast<std::size_t>(used); ++j) {
    if (EvaluateBasisFunction(data, data->InputSamples[j], row) != 0) return 1;
    B.push_back(row);
  }
  return 0;
}

int CMLSEvaluator::EvaluateBasisFunction(const CMLSData* data, const std::vector<double>& x,
                                         std::vector<double>& out) const {
  out.clear();
  const std::int64_t size = BasisSize(*data);
  const bool isCounted = HasBasisSize(*data, size);
  if (size == 0 || !CoversBasis(*data, x.size())) return 1;
  if (!isCounted && size > kMostMiscountedFunctions) return 1;
  out.resize(static_cast<std::size_t>(size));
  EvaluatePolynomialBasis(data->PolynomialType, x.data(),
                          static_cast<std::size_t>(data->NumberOfInputVariables), out.data());
  return isCounted ? 0 : 1;
}

int CMLSEvaluator::EvaluateWeightFuction(const CMLSData* data, double r, double rho,
                                         double& w) const {
  if (!IsKnown(data->MLSDataVersion_)) return 1;
  return EvaluateWeight(data->MLSDataVersion_, *data, r, rho, w);
}

int CMLSEvaluator::EvaluateWeightFuction162(const CMLSData* data, double r, double rho,
                                            double& w) const {
  return EvaluateWeight(MLSDataVersion162, *data, r, rho, w);
}

int CMLSEvaluator::EvaluateWeightFuction170(const CMLSData* data, double r, double rho,
                                            double& w) const {
  return EvaluateWeight(MLSDataVersion170, *data, r, rho, w);
}

int CMLSEvaluator::SolveLinearSystemCholeskyMth(std::vector<std::vector<double>>& A,
                                                const std::vector<double>& b,
                                                std::vector<double>& out) const {
  const std::size_t m = A.size();
  if (b.size() < m || !HaveWidth(A, m, m)) return 1;
  if (!IsExactlySymmetric(A, m) || !FactorCholesky(A, m)) return 1;
  out.resize(m);
  SolveCholesky(A, m, b.data(), out.data());
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
