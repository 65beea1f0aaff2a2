#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

#include "families/moving_least_squares/cholesky.h"
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

// The distances of the first distances.size() samples to `x`, as ComputeEuclideanDistance gives
// them: 0.0 for a sample of another length.
void FillDistances(const CMLSData& data, const std::vector<double>& x,
                   std::vector<double>& distances) {
  if (HaveWidth(data.InputSamples, distances.size(), x.size())) {
    SquaredDistances(data.InputSamples, distances.size(), x.size(), x, distances.data());
    for (double& distance : distances) distance = std::sqrt(distance);
    return;
  }
  for (std::size_t j = 0; j < distances.size(); ++j) {
    distances[j] = data.ComputeEuclideanDistance(data.InputSamples[j], x);
  }
}

// Element `rank` of the values in ascending order, NaNs after all numbers.
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

  // Adds `Count` samples to all elements, sample by sample. So each sum has the order of the
  // samples, no sum waits for another, and B is never needed as a whole. Several samples at a time
  // load each element only once.
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

  // Fills the upper half and adds the ridge to the diagonal, even of a well-conditioned matrix.
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

// Whether the first `used` samples, which must exist, have all values that the record's basis
// reads.
bool HasSamplesForBasis(const CMLSData& data, std::size_t used) {
  return std::all_of(data.InputSamples.begin(),
                     data.InputSamples.begin() + static_cast<std::ptrdiff_t>(used),
                     [&](const auto& row) { return CoversBasis(data, row.size()); });
}

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
  const int used = std::max(data->NumberOfUsedPoints, 0);
  if (!IsCovered(data->NumberOfSamples, data->InputSamples.size())) return 1;
  const auto n = static_cast<std::size_t>(data->NumberOfSamples);
  if (n == 0 || !IsCovered(p, n) || !IsCovered(used, n)) return 1;

  std::vector<double> distances(n);
  FillDistances(*data, x, distances);
  const double rho = OrderStatistic(distances, std::min(static_cast<std::size_t>(p), n - 1));

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
