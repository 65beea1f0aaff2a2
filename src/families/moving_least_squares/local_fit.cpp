#include "families/moving_least_squares/local_fit.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "numerics/polynomial_basis.h"
#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

// Adds `Count` samples to all elements, sample by sample. So each sum has the order of the samples,
// no sum waits for another, and B is never needed as a whole. Several samples at a time load each
// element only once.
template <std::size_t Count>
void Add(const double* rows, const double* weights, const double* outputs, std::size_t side,
         double* matrix, double* b) {
  double factors[Count];
  for (std::size_t i = 0; i < side; ++i) {
    double right = b[i];
    for (std::size_t j = 0; j < Count; ++j) {
      right += rows[j * side + i] * (outputs[j] * weights[j]);
      factors[j] = weights[j] * rows[j * side + i];
    }
    b[i] = right;
    double* const rowOfA = matrix + i * side;
    for (std::size_t k = 0; k <= i; ++k) {
      double sum = rowOfA[k];
      for (std::size_t j = 0; j < Count; ++j) sum += factors[j] * rows[j * side + k];
      rowOfA[k] = sum;
    }
  }
}

// Fills the upper half and adds the ridge to the diagonal, even of a well-conditioned matrix.
void Complete(NormalEquations& equations) {
  const auto p = static_cast<double>(equations.side);
  const double ridge = std::sqrt(p) * 1e-08 + (p + 10.0) * 1e-14;
  const FlatMatrix A = equations.A();
  for (std::size_t i = 0; i < equations.side; ++i) {
    for (std::size_t k = 0; k < i; ++k) A[k][i] = A[i][k];
    A[i][i] += ridge;
  }
}

}  // namespace

std::vector<double> DistancesTo(const CMLSData& data, const std::vector<double>& x,
                                std::size_t count) {
  std::vector<double> distances(count);
  if (HaveWidth(data.InputSamples, count, x.size())) {
    SquaredDistances(data.InputSamples, count, x.size(), x, distances.data());
    for (double& distance : distances) distance = std::sqrt(distance);
    return distances;
  }
  for (std::size_t j = 0; j < count; ++j) {
    distances[j] = data.ComputeEuclideanDistance(data.InputSamples[j], x);
  }
  return distances;
}

double ReferenceDistance(const std::vector<double>& distances, std::size_t functions) {
  const std::size_t rank = std::min(functions, distances.size() - 1);
  std::vector<double> numbers;
  numbers.reserve(distances.size());
  std::copy_if(distances.begin(), distances.end(), std::back_inserter(numbers),
               [](double value) { return !std::isnan(value); });
  if (rank >= numbers.size()) return std::numeric_limits<double>::quiet_NaN();
  const auto element = numbers.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(numbers.begin(), element, numbers.end());
  return *element;
}

NormalEquations NormalEquationsOf(const CMLSData& data, const std::vector<double>& weights,
                                  std::size_t p) {
  constexpr std::size_t kAtOnce = 4;
  const auto d = static_cast<std::size_t>(data.NumberOfInputVariables);
  NormalEquations equations(p);
  double* const matrix = equations.matrix.data();
  double* const b = equations.b.data();
  std::vector<double> rows(kAtOnce * p);
  const auto fillRow = [&](std::size_t row, std::size_t sample) {
    EvaluatePolynomialBasis(data.PolynomialType, data.InputSamples[sample].data(), d,
                            rows.data() + row * p);
  };
  std::size_t j = 0;
  for (; j + kAtOnce <= weights.size(); j += kAtOnce) {
    for (std::size_t row = 0; row < kAtOnce; ++row) fillRow(row, j + row);
    Add<kAtOnce>(rows.data(), &weights[j], &data.OutputSamples[j], p, matrix, b);
  }
  for (; j < weights.size(); ++j) {
    fillRow(0, j);
    Add<1>(rows.data(), &weights[j], &data.OutputSamples[j], p, matrix, b);
  }
  Complete(equations);
  return equations;
}

}  // namespace Tarvane::Plexura::PXROM
