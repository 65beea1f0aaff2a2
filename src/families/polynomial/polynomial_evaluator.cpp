#include <cmath>
#include <vector>

#include "families/polynomial/expansion.h"
#include "families/regression/transformation_slopes.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using polynomial::Expansion;

/// The record that is evaluated and its values at one point.
struct Evaluation {
  const CPolynomialData* record = nullptr;
  Expansion expansion;
  std::vector<double> table;
  std::vector<double> slopes;

  int Start(const CRSData* data, const std::vector<double>& x, bool withSlopes) {
    if (!IsEvaluable(data, DT_PolynomialData, x)) return 1;
    record = static_cast<const CPolynomialData*>(data);
    if (!expansion.LayOut(*record, x.size())) return 1;
    table.resize(expansion.TableSize());
    if (withSlopes) slopes.resize(expansion.TableSize());
    return expansion.FillTable(x.data(), table.data(), withSlopes ? slopes.data() : nullptr);
  }

  std::vector<double> Products() const {
    std::vector<double> products(expansion.Terms());
    for (std::size_t k = 0; k < products.size(); ++k) {
      products[k] = expansion.Product(k, table.data());
    }
    return products;
  }

  /// The sum of `weights` times the derivatives of the products.
  std::vector<double> GradientOf(const std::vector<double>& weights, std::size_t inputs) const {
    std::vector<double> gradient(inputs, 0.0);
    std::vector<double> work(expansion.LongestProduct());
    for (std::size_t k = 0; k < weights.size(); ++k) {
      expansion.AddGradient(k, weights[k], table.data(), slopes.data(), work.data(),
                            gradient.data());
    }
    return gradient;
  }

  /// Of the back-transformation at the sum `s`.
  double BackSlope(double s) const {
    return batch::BacktransformationSlope(expansion.Back(), s, record->OutputTransformValue,
                                          record->OutputLambda);
  }
};

}  // namespace

CPolynomialEvaluator* CPolynomialEvaluator::Clone() const {
  return new CPolynomialEvaluator(*this);
}
CPolynomialEvaluator::~CPolynomialEvaluator() = default;

int CPolynomialEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                                  double& y) const {
  Evaluation at;
  if (at.Start(data, x, false) != 0) return 1;
  return at.expansion.Finish(at.expansion.Sum(at.table.data()), y);
}

int CPolynomialEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                                  double& y, double& predictorError) const {
  Evaluation at;
  if (at.Start(data, x, false) != 0) return 1;
  const double s = at.expansion.Sum(at.table.data());
  if (at.expansion.Finish(s, y) != 0) return 1;
  if (!at.expansion.HasCovariance()) return -2;
  const double deviation = std::sqrt(at.expansion.QuadraticForm(at.Products()));
  predictorError = std::fabs(at.BackSlope(s)) * deviation / std::fabs(at.record->OutputScaleSlope);
  return 0;
}

int CPolynomialEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(
    const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const {
  Evaluation at;
  if (at.Start(data, x, true) != 0) return 1;
  const double s = at.expansion.Sum(at.table.data());
  double y = 0.0;
  if (at.expansion.Finish(s, y) != 0) return 1;
  const double outer = at.BackSlope(s) / at.record->OutputScaleSlope;
  gradient = at.GradientOf(at.record->Coefficients, x.size());
  for (double& entry : gradient) entry *= outer;
  return 0;
}

int CPolynomialEvaluator::EvaluatePredictorErrorDerivativeWrtInputVariables(
    const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const {
  Evaluation at;
  if (at.Start(data, x, true) != 0) return 1;
  const CPolynomialData& record = *at.record;
  const double s = at.expansion.Sum(at.table.data());
  double y = 0.0;
  if (at.expansion.Finish(s, y) != 0 || !at.expansion.HasCovariance()) return 1;
  const std::vector<double> products = at.Products();
  const double deviation = std::sqrt(at.expansion.QuadraticForm(products));
  const double slope = at.BackSlope(s);
  if (deviation == 0.0 || slope == 0.0) return 1;
  // The form is half of b' (C + C') b, whether or not C is symmetric.
  std::vector<double> weights(products.size(), 0.0);
  for (std::size_t i = 0; i < weights.size(); ++i) {
    for (std::size_t j = 0; j < weights.size(); ++j) {
      weights[i] += 0.5 * (record.Covariance[i][j] + record.Covariance[j][i]) * products[j];
    }
  }
  const std::vector<double> ofSum = at.GradientOf(record.Coefficients, x.size());
  gradient = at.GradientOf(weights, x.size());
  const double curvature = batch::BacktransformationCurvature(
      at.expansion.Back(), s, record.OutputTransformValue, record.OutputLambda);
  for (std::size_t i = 0; i < gradient.size(); ++i) {
    const double inner = gradient[i] / deviation * slope + deviation * curvature * ofSum[i];
    gradient[i] = std::copysign(1.0, slope) * inner / std::fabs(record.OutputScaleSlope);
  }
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
