// Moving least squares. Each point has its own system of equations, so the evaluator computes
// values from a copy of the record. Only the derivative is prepared.

#include "families/moving_least_squares/mls_preparation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

#include "families/moving_least_squares/local_fit.h"
#include "families/moving_least_squares/mls_weight.h"
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

double Dot(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0.0;
  for (std::size_t k = 0; k < a.size(); ++k) sum += a[k] * b[k];
  return sum;
}

class MovingLeastSquaresSurface : public PreparedSurface {
 public:
  explicit MovingLeastSquaresSurface(const CMLSData& record) : record_(record) {}

  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    EvaluateOneByOne(CMLSEvaluator(), record_,
                     static_cast<std::size_t>(record_.NumberOfInputVariables), points, results);
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
    const auto p = static_cast<std::size_t>(record_.NumberOfBasisFunctions);
    const auto used = static_cast<std::size_t>(record_.NumberOfUsedPoints);
    const std::vector<double> distances =
        DistancesTo(record_, point, static_cast<std::size_t>(record_.NumberOfSamples));
    const std::size_t reference = ReferenceSample(distances, p);
    const double rho = distances[reference];
    std::vector<kernels::WeightSlopes> slopes(used);
    std::vector<double> weights(used);
    double sum = 0.0;
    WithWeight(record_, record_.MLSDataVersion_, rho, [&](const auto& weight) {
      for (std::size_t j = 0; j < used; ++j) {
        slopes[j] = weight.SlopesAt(distances[j]);
        sum += slopes[j].value;
      }
    });
    for (std::size_t j = 0; j < used; ++j) weights[j] = slopes[j].value / sum;

    NormalEquations equations = NormalEquationsOf(record_, weights, p);
    FlatMatrix A = equations.A();
    if (!FactorCholesky(A, p)) return 1;
    std::vector<double> coefficients = RightSide(weights, p);
    SolveCholesky(A, p, coefficients.data(), coefficients.data());
    std::vector<double> basis(p);
    EvaluatePolynomialBasis(record_.PolynomialType, x, d, basis.data());
    std::fill_n(gradient, d, 0.0);
    AddBasisGradient(record_.PolynomialType, x, d, coefficients.data(), gradient);
    SolveCholesky(A, p, basis.data(), basis.data());

    // The derivative of a weight w = v / sum v is (dv - w d(sum v)) / sum v. Subtracting the
    // weighted mean from the factors of dw gives the second part.
    double mean = 0.0;
    std::vector<double> effects(used);
    std::vector<double> row(p);
    for (std::size_t j = 0; j < used; ++j) {
      EvaluatePolynomialBasis(record_.PolynomialType, Sample(j), d, row.data());
      const double residual = record_.OutputSamples[j] - Dot(row, coefficients);
      effects[j] = Dot(row, basis) * residual;
      mean += weights[j] * effects[j];
    }
    double throughReference = 0.0;
    for (std::size_t j = 0; j < used; ++j) {
      const double effect = (effects[j] - mean) / sum;
      throughReference += effect * slopes[j].byReference;
      // A sample of another length than the point is at distance 0, wherever the point is.
      if (record_.InputSamples[j].size() != d) continue;
      for (std::size_t i = 0; i < d; ++i) {
        gradient[i] += effect * slopes[j].byDistanceOverIt * (x[i] - Sample(j)[i]);
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

  /// The sample that is at the reference distance: the first of them.
  static std::size_t ReferenceSample(const std::vector<double>& distances, std::size_t functions) {
    const auto found =
        std::find(distances.begin(), distances.end(), ReferenceDistance(distances, functions));
    return found != distances.end() ? static_cast<std::size_t>(found - distances.begin()) : 0;
  }

  /// B'Wy with its products in an order of its own. Local fits can be so ill-conditioned that the
  /// order of NormalEquations would change a derivative in its ninth digit.
  std::vector<double> RightSide(const std::vector<double>& weights, std::size_t p) const {
    std::vector<double> b(p);
    std::vector<double> row(p);
    for (std::size_t j = 0; j < weights.size(); ++j) {
      EvaluatePolynomialBasis(record_.PolynomialType, Sample(j),
                              static_cast<std::size_t>(record_.NumberOfInputVariables), row.data());
      for (std::size_t i = 0; i < p; ++i) b[i] += weights[j] * row[i] * record_.OutputSamples[j];
    }
    return b;
  }

  CMLSData record_;
};

}  // namespace

std::unique_ptr<PreparedSurface> PrepareMovingLeastSquares(const CRSData& record,
                                                           std::size_t inputs) {
  if (!IsEvaluable(&record, DT_MLSData, std::vector<double>(inputs))) return PrepareRefused();
  return std::make_unique<MovingLeastSquaresSurface>(static_cast<const CMLSData&>(record));
}

}  // namespace Tarvane::Plexura::PXROM::batch
