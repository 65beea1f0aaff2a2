#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

#include "kernel_local/cholesky.h"
#include "kernel_local/mls_weights.h"
#include "kernel_local/samples.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/moving_least_squares.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

bool IsKnown(E_CMLSDataVersion version) {
  return version == MLSDataVersion162 || version == MLSDataVersion170;
}

// The weight formulas of `version`, whatever the record's own.
int EvaluateWeight(E_CMLSDataVersion version, const CMLSData& data, double r, double rho,
                   double& w) {
  if (r < 0.0) return 1;
  WithWeight(version, data.WeightFunction, rho, static_cast<double>(data.NumberOfInputVariables),
             [&](const auto& weight) { w = weight(r); });
  return 0;
}

// The number of functions of the record's basis, or 0 when that is not one of PolyConstant to
// PolyFullQuadratic with as many functions as the record says.
std::size_t BasisSize(const CMLSData& data) {
  const std::int64_t count = PolynomialCount(data.PolynomialType, data.NumberOfInputVariables);
  return count > 0 && count == data.NumberOfBasisFunctions ? static_cast<std::size_t>(count) : 0;
}

// Element `rank` of the values in ascending order, NaNs behind all numbers.
double OrderStatistic(const std::vector<double>& values, std::size_t rank) {
  std::vector<double> numbers;
  numbers.reserve(values.size());
  std::copy_if(values.begin(), values.end(), std::back_inserter(numbers),
               [](double value) { return !std::isnan(value); });
  if (rank >= numbers.size()) return std::numeric_limits<double>::quiet_NaN();
  const auto element = numbers.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(numbers.begin(), element, numbers.end());
  return *element;
}

// The normal equations A c = b of the weighted problem: A = B'WB, b = B'Wy, with the basis
// functions of sample j in row j of B.
struct NormalEquations {
  explicit NormalEquations(std::size_t p) : side(p), matrix(p * p), b(p) {}

  // Adds `Count` samples. All elements grow at once, sample by sample, so that each sum has the
  // order of the samples, no two sums wait for each other, and B is never needed as a whole. Taking
  // several samples at a time saves fetching the elements for each of them.
  template <std::size_t Count>
  void Add(const double* rows, const double* weights, const double* outputs) {
    double factors[Count];
    for (std::size_t i = 0; i < side; ++i) {
      for (std::size_t j = 0; j < Count; ++j) {
        b[i] += rows[j * side + i] * (outputs[j] * weights[j]);
        factors[j] = weights[j] * rows[j * side + i];
      }
      double* const rowOfA = matrix.data() + i * side;
      for (std::size_t k = 0; k <= i; ++k) {
        double sum = rowOfA[k];
        for (std::size_t j = 0; j < Count; ++j) sum += factors[j] * rows[j * side + k];
        rowOfA[k] = sum;
      }
    }
  }

  // Fills the upper half and regularises the diagonal, however well-conditioned it is.
  void Complete() {
    const auto p = static_cast<double>(side);
    const double ridge = std::sqrt(p) * 1e-08 + (p + 10.0) * 1e-14;
    const FlatMatrix A(matrix.data(), side);
    for (std::size_t i = 0; i < side; ++i) {
      for (std::size_t k = 0; k < i; ++k) A[k][i] = A[i][k];
      A[i][i] += ridge;
    }
  }

  std::size_t side;
  std::vector<double> matrix;
  std::vector<double> b;
};

NormalEquations NormalEquationsOf(const CMLSData& data, const std::vector<double>& weights,
                                  std::size_t p) {
  constexpr std::size_t kAtOnce = 4;
  const auto d = static_cast<std::size_t>(data.NumberOfInputVariables);
  NormalEquations equations(p);
  std::vector<double> rows(kAtOnce * p);
  const auto fillRow = [&](std::size_t row, std::size_t sample) {
    EvaluatePolynomialBasis(data.PolynomialType, data.InputSamples[sample].data(), d,
                            rows.data() + row * p);
  };
  std::size_t j = 0;
  for (; j + kAtOnce <= weights.size(); j += kAtOnce) {
    for (std::size_t row = 0; row < kAtOnce; ++row) fillRow(row, j + row);
    equations.Add<kAtOnce>(rows.data(), &weights[j], &data.OutputSamples[j]);
  }
  for (; j < weights.size(); ++j) {
    fillRow(0, j);
    equations.Add<1>(rows.data(), &weights[j], &data.OutputSamples[j]);
  }
  equations.Complete();
  return equations;
}

}  // namespace

CMLSEvaluator* CMLSEvaluator::Clone() const { return new CMLSEvaluator(*this); }
CMLSEvaluator::~CMLSEvaluator() = default;

int CMLSEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_MLSData, x)) return 1;
  const auto& record = static_cast<const CMLSData&>(*data);
  // Neither the point nor the samples nor the value are scaled: this family stays in physical
  // units. Refused on purpose, although the formulas would work: the plain regression line.
  if (record.PolynomialType == PolyLinear && record.WeightFunction == WeightConstant) return 1;

  std::vector<double> weights;
  if (ComputeWeights(&record, x, weights) != 0) return 1;
  std::vector<double> basis;
  if (EvaluateBasisFunction(&record, x, basis) != 0) return 1;
  if (weights.size() < basis.size() || record.OutputSamples.size() < weights.size()) return 1;
  if (IsStoppedNow(record)) return 1;

  NormalEquations equations = NormalEquationsOf(record, weights, basis.size());
  FlatMatrix A(equations.matrix.data(), basis.size());
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
  if (!IsCovered(data->NumberOfSamples, data->InputSamples.size())) return 1;
  const auto n = static_cast<std::size_t>(data->NumberOfSamples);
  if (n == 0 || !IsCovered(p, n) || !IsCovered(data->NumberOfUsedPoints, n)) return 1;
  if (!HaveWidth(data->InputSamples, n, x.size())) return 1;

  std::vector<double> distances(n);
  SquaredDistances(data->InputSamples, n, x, distances.data());
  for (double& distance : distances) distance = std::sqrt(distance);
  const double rho = OrderStatistic(distances, std::min(static_cast<std::size_t>(p), n - 1));

  weights.resize(static_cast<std::size_t>(data->NumberOfUsedPoints));
  double sum = 0.0;
  WithWeight(data->MLSDataVersion_, data->WeightFunction, rho,
             static_cast<double>(data->NumberOfInputVariables), [&](const auto& weight) {
               for (std::size_t j = 0; j < weights.size(); ++j) {
                 weights[j] = weight(distances[j]);
                 sum += weights[j];
               }
             });
  for (double& weight : weights) weight /= sum;
  return 0;
}

int CMLSEvaluator::ComputeB(const CMLSData* data, std::vector<std::vector<double>>& B) const {
  if (data->NumberOfUsedPoints < data->NumberOfBasisFunctions || IsStoppedNow(*data)) return 1;
  B.clear();
  if (!IsCovered(data->NumberOfUsedPoints, data->InputSamples.size())) return 1;
  B.resize(static_cast<std::size_t>(data->NumberOfUsedPoints));
  for (std::size_t j = 0; j < B.size(); ++j) {
    if (EvaluateBasisFunction(data, data->InputSamples[j], B[j]) != 0) return 1;
  }
  return 0;
}

int CMLSEvaluator::EvaluateBasisFunction(const CMLSData* data, const std::vector<double>& x,
                                         std::vector<double>& out) const {
  out.clear();
  const std::size_t size = BasisSize(*data);
  const auto d = static_cast<std::size_t>(data->NumberOfInputVariables);
  if (size == 0 || x.size() < d) return 1;
  out.resize(size);
  EvaluatePolynomialBasis(data->PolynomialType, x.data(), d, out.data());
  return 0;
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
