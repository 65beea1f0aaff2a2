#include "families/gaussian_process/predictor_error.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kernels/loops/loop_table.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

namespace {

/// Whether `size` values are a triangle of `order` rows.
bool IsTriangle(std::size_t size, std::size_t order) {
  // A record counts its rows by an int, so that nothing overflows.
  return order <= INT32_MAX && std::uint64_t{size} == std::uint64_t{order} * (order + 1) / 2;
}

/// Row `r` of a lower triangle.
const double* RowOf(const double* triangle, std::size_t r) { return triangle + r * (r + 1) / 2; }

/// Adds columns `first` to row `r` of rows `begin` to `end` of a lower triangle times x, in
/// ascending order, to out[r - begin].
void AddEndsOfRows(const double* triangle, std::size_t begin, std::size_t end, std::size_t first,
                   const double* x, double* out) {
  for (std::size_t r = begin; r < end; ++r) {
    const double* const row = RowOf(triangle, r);
    double sum = out[r - begin];
    for (std::size_t j = first; j <= r; ++j) sum += row[j] * x[j];
    out[r - begin] = sum;
  }
}

/// out[k] = the sum of row k of a lower triangle times x, in ascending order.
void Multiply(const std::vector<double>& triangle, std::size_t order, const double* x,
              double* out) {
  std::fill_n(out, order, 0.0);
  const simd::LoopTable* const loops = kernels::LoopsForRows();
  std::size_t k = 0;
  // Many rows side by side as far as the first one goes, so that their chains of additions hide
  // each other's latency; then their ends.
  for (; loops != nullptr && k + simd::kRowsOfProducts <= order; k += simd::kRowsOfProducts) {
    const double* rows[simd::kRowsOfProducts];
    for (std::size_t r = 0; r < simd::kRowsOfProducts; ++r) rows[r] = RowOf(triangle.data(), k + r);
    loops->rowProducts(rows, x, k + 1, out + k);
    AddEndsOfRows(triangle.data(), k, k + simd::kRowsOfProducts, k + 1, x, out + k);
  }
  AddEndsOfRows(triangle.data(), k, order, 0, x, out + k);
}

/// out[j] grows by the product of the triangle's transpose with x.
void AddTransposed(const std::vector<double>& triangle, std::size_t order, const double* x,
                   double* out) {
  const double* row = triangle.data();
  for (std::size_t k = 0; k < order; ++k) {
    for (std::size_t j = 0; j <= k; ++j) out[j] += row[j] * x[k];
    row += k + 1;
  }
}

double SumOfSquares(const double* v, std::size_t count) {
  double sum = 0.0;
  for (std::size_t k = 0; k < count; ++k) sum += v[k] * v[k];
  return sum;
}

}  // namespace

PredictorError::PredictorError(const CGaussianProcessData& record, std::size_t functions)
    : record_(record),
      samples_(static_cast<std::size_t>(std::max(record.NumberOfSamples, 0))),
      functions_(record.TrendInverseFactor.empty() ? 0 : functions) {}

bool PredictorError::IsAvailable() const {
  const auto& rows = record_.TrendAtSamples;
  return record_.SavePredictorError && samples_ > 0 && record_.NoiseVariance >= 0.0 &&
         IsTriangle(record_.InverseFactor.size(), samples_) &&
         IsTriangle(record_.TrendInverseFactor.size(), functions_) && rows.size() == functions_ &&
         std::all_of(rows.begin(), rows.end(),
                     [this](const auto& row) { return row.size() == samples_; });
}

double PredictorError::Variance(const double* covariances, const double* f, double atDistance0,
                                double* work) const {
  double* const v = work;
  double* const w = v + samples_;
  double* const g = w + functions_;
  Multiply(record_.InverseFactor, samples_, covariances, v);
  double variance = atDistance0 - SumOfSquares(v, samples_);
  for (std::size_t k = 0; k < functions_; ++k) {
    double sum = f[k];
    for (std::size_t j = 0; j < samples_; ++j) sum -= record_.TrendAtSamples[k][j] * v[j];
    w[k] = sum;
  }
  Multiply(record_.TrendInverseFactor, functions_, w, g);
  variance += SumOfSquares(g, functions_);
  // Rounding can take it below 0 near a sample. A NaN stays one.
  return variance < 0.0 ? 0.0 : variance;
}

double PredictorError::Of(double variance) const {
  return std::sqrt(record_.ErrorIncludesNoise ? variance + record_.NoiseVariance : variance);
}

void PredictorError::GradientWeights(double variance, double atDistance0, double* work,
                                     double* kernelWeights, double* trendWeights) const {
  std::fill_n(kernelWeights, samples_, 0.0);
  std::fill_n(trendWeights, functions_, 0.0);
  constexpr double kRounding = 0x1p-50;
  if (variance <= kRounding * static_cast<double>(samples_) * std::fabs(atDistance0)) return;
  // Half the gradient of the variance: the derivatives of v.v and of |g|^2 by k and by f.
  double* const v = work;
  const double* const g = work + samples_ + functions_;
  AddTransposed(record_.TrendInverseFactor, functions_, g, trendWeights);
  for (std::size_t k = 0; k < functions_; ++k) {
    for (std::size_t j = 0; j < samples_; ++j)
      v[j] += record_.TrendAtSamples[k][j] * trendWeights[k];
  }
  AddTransposed(record_.InverseFactor, samples_, v, kernelWeights);
  const double error = Of(variance);
  for (std::size_t j = 0; j < samples_; ++j) kernelWeights[j] /= -error;
  for (std::size_t k = 0; k < functions_; ++k) trendWeights[k] /= error;
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
