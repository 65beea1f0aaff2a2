// Moving least squares. Each point has its own system of equations, so the evaluator computes
// values from a copy of the record. Only the derivative is prepared.

#include "families/moving_least_squares/mls_preparation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

#include "families/moving_least_squares/cholesky.h"
#include "families/moving_least_squares/mls_weight.h"
#include "numerics/nan_last.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/moving_least_squares.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

/// Adds the dot product of each partial derivative of the basis functions with `c` to `gradient`.
void AddBasisGradient(E_PolynomialType type, const double* x, std::size_t d, const double* c,
                      double* gradient) {
  const double* coefficient = c;
  ForEachBasisFunction(
      type, d, std::numeric_limits<std::size_t>::max(), [&] { ++coefficient; },
      [&](std::size_t i) { gradient[i] += *coefficient++; },
      [&](std::size_t i, std::size_t j) {
        if (type == PolyPureQuadratic) {
          gradient[i] += 2.0 * x[i] * *coefficient++;
          return;
        }
        gradient[i] += *coefficient * x[j];
        gradient[j] += *coefficient++ * x[i];
      });
}

double Dot(const double* a, const double* b, std::size_t count) {
  double sum = 0.0;
  for (std::size_t k = 0; k < count; ++k) sum += a[k] * b[k];
  return sum;
}

/// The parts of a derivative's working area.
struct GradientWork {
  GradientWork(const CMLSData& record, double* start) {
    WorkArea area(start);
    const auto n = static_cast<std::size_t>(record.NumberOfSamples);
    const auto p = static_cast<std::size_t>(record.NumberOfBasisFunctions);
    const auto d = static_cast<std::size_t>(record.NumberOfInputVariables);
    distances = area.Take(n);
    ranked = area.Take(n);
    weights = area.Take(n);
    matrix = area.Take(p * p);
    coefficients = area.Take(p);
    basis = area.Take(p);
    row = area.Take(p);
    ofDistances = area.Take(n);
    ofReference = area.Take(n);
    total = area.Take(d);
    size = area.Used();
  }

  double* distances;
  double* ranked;
  double* weights;
  double* matrix;
  double* coefficients;
  double* basis;
  double* row;
  double* ofDistances;
  double* ofReference;
  double* total;
  std::size_t size;
};

class MovingLeastSquaresSurface : public PreparedSurface {
 public:
  explicit MovingLeastSquaresSurface(const CMLSData& record) : record_(record) {}

  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    if (results.errors != nullptr) {
      std::fill_n(results.statuses, points.count, 1);
      return;
    }
    const CMLSEvaluator evaluator;
    std::vector<double> x(static_cast<std::size_t>(record_.NumberOfInputVariables));
    for (std::size_t point = 0; point < points.count; ++point) {
      for (std::size_t i = 0; i < x.size(); ++i) x[i] = points.x[i * kBlock + point];
      results.statuses[point] =
          evaluator.EvaluateResponseSurface(&record_, x, results.values[point]);
    }
  }

  // By implicit differentiation of the normal equations A c = b, with z = A^-1 f(x) and the
  // residuals e at the samples:
  //   dy = f'(x) c + sum over the samples of dw (z' B) e
  // since the weights occur only in A and b.
  int Gradient(const double* x, double*, double* gradient) const override {
    // The evaluator decides whether there is a value.
    const auto d = static_cast<std::size_t>(record_.NumberOfInputVariables);
    double y = 0.0;
    const std::vector<double> point(x, x + d);
    const int status = CMLSEvaluator().EvaluateResponseSurface(&record_, point, y);
    if (status != 0 || !std::isfinite(y)) return 1;
    // From here on the counts fit the data.
    std::vector<double> area(GradientWork(record_, nullptr).size);
    const GradientWork work(record_, area.data());
    const auto p = static_cast<std::size_t>(record_.NumberOfBasisFunctions);
    const auto used = static_cast<std::size_t>(record_.NumberOfUsedPoints);
    const std::size_t reference = FindDistances(x, work);
    const double rho = work.distances[reference];
    double sum = 0.0;
    WithWeight(record_, record_.MLSDataVersion_, rho, [&](const auto& weight) {
      for (std::size_t j = 0; j < used; ++j) {
        const kernels::WeightSlopes slopes = weight.SlopesAt(work.distances[j]);
        work.weights[j] = slopes.value;
        work.ofDistances[j] = slopes.byDistanceOverIt;
        work.ofReference[j] = slopes.byReference;
        sum += slopes.value;
      }
    });
    for (std::size_t j = 0; j < used; ++j) work.weights[j] /= sum;
    if (!Solve(work, used)) return 1;
    EvaluatePolynomialBasis(record_.PolynomialType, x, d, work.basis);
    std::fill_n(gradient, d, 0.0);
    AddBasisGradient(record_.PolynomialType, x, d, work.coefficients, gradient);
    const FlatMatrix factor(work.matrix, p);
    SolveCholesky(factor, p, work.basis, work.basis);

    // The derivative of a weight w = v / sum v is (dv - w d(sum v)) / sum v. Subtracting the
    // weighted mean from the factors of dw gives the second part.
    double mean = 0.0;
    double* const effects = work.ranked;
    for (std::size_t j = 0; j < used; ++j) {
      EvaluatePolynomialBasis(record_.PolynomialType, Sample(j), d, work.row);
      const double residual = record_.OutputSamples[j] - Dot(work.row, work.coefficients, p);
      effects[j] = Dot(work.row, work.basis, p) * residual;
      mean += work.weights[j] * effects[j];
    }
    double throughReference = 0.0;
    for (std::size_t j = 0; j < used; ++j) {
      const double effect = (effects[j] - mean) / sum;
      throughReference += effect * work.ofReference[j];
      if (!HasDistance(j)) continue;
      for (std::size_t i = 0; i < d; ++i) {
        gradient[i] += effect * work.ofDistances[j] * (x[i] - Sample(j)[i]);
      }
    }
    // The reference distance is that of one sample, and so is its derivative.
    if (throughReference == 0.0 || rho == 0.0) return 0;
    for (std::size_t i = 0; i < d; ++i) {
      gradient[i] += throughReference * (x[i] - Sample(reference)[i]) / rho;
    }
    return 0;
  }

 private:
  const double* Sample(std::size_t j) const { return record_.InputSamples[j].data(); }

  /// A sample of another length than the point is at distance 0, wherever the point is.
  bool HasDistance(std::size_t j) const {
    return record_.InputSamples[j].size() ==
           static_cast<std::size_t>(record_.NumberOfInputVariables);
  }

  /// The distances of all samples, and which of them is the reference.
  std::size_t FindDistances(const double* x, const GradientWork& work) const {
    const auto n = static_cast<std::size_t>(record_.NumberOfSamples);
    const auto d = static_cast<std::size_t>(record_.NumberOfInputVariables);
    for (std::size_t j = 0; j < n; ++j) {
      double sum = 0.0;
      for (std::size_t i = 0; HasDistance(j) && i < d; ++i) {
        const double difference = x[i] - Sample(j)[i];
        sum += difference * difference;
      }
      work.distances[j] = std::sqrt(sum);
    }
    const auto rank = std::min(static_cast<std::size_t>(record_.NumberOfBasisFunctions), n - 1);
    std::copy_n(work.distances, n, work.ranked);
    std::nth_element(work.ranked, work.ranked + rank, work.ranked + n, IsLessNaNLast);
    const double* const found = std::find(work.distances, work.distances + n, work.ranked[rank]);
    return static_cast<std::size_t>(found - work.distances) % n;
  }

  /// The coefficients of the local polynomial; the matrix becomes its Cholesky factor.
  bool Solve(const GradientWork& work, std::size_t used) const {
    const auto d = static_cast<std::size_t>(record_.NumberOfInputVariables);
    const auto p = static_cast<std::size_t>(record_.NumberOfBasisFunctions);
    FlatMatrix A(work.matrix, p);
    std::fill_n(work.matrix, p * p, 0.0);
    std::fill_n(work.coefficients, p, 0.0);
    for (std::size_t j = 0; j < used; ++j) {
      EvaluatePolynomialBasis(record_.PolynomialType, Sample(j), d, work.row);
      for (std::size_t i = 0; i < p; ++i) {
        const double factor = work.weights[j] * work.row[i];
        work.coefficients[i] += factor * record_.OutputSamples[j];
        for (std::size_t k = 0; k <= i; ++k) A[i][k] += factor * work.row[k];
      }
    }
    const auto order = static_cast<double>(p);
    const double ridge = std::sqrt(order) * 1e-08 + (order + 10.0) * 1e-14;
    for (std::size_t i = 0; i < p; ++i) {
      for (std::size_t k = 0; k < i; ++k) A[k][i] = A[i][k];
      A[i][i] += ridge;
    }
    if (!FactorCholesky(A, p)) return false;
    SolveCholesky(A, p, work.coefficients, work.coefficients);
    return true;
  }

  CMLSData record_;
};

}  // namespace

std::unique_ptr<const PreparedSurface> PrepareMovingLeastSquares(const CRSData& record,
                                                                 std::size_t inputs) {
  if (!IsEvaluable(&record, DT_MLSData, std::vector<double>(inputs))) return PrepareRefused();
  return std::make_unique<MovingLeastSquaresSurface>(static_cast<const CMLSData&>(record));
}

}  // namespace Tarvane::Plexura::PXROM::batch
