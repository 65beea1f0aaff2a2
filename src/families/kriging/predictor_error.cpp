#include "families/kriging/predictor_error.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <utility>

#include "families/kriging/correlation.h"
#include "numerics/polynomial_basis.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

/// Whether `m` has at least `rows` rows, the first of them with at least `columns` values each.
bool Covers(const Matrix& m, std::size_t rows, std::size_t columns) {
  return m.size() >= rows && std::all_of(m.begin(), m.begin() + static_cast<std::ptrdiff_t>(rows),
                                         [&](const Vector& row) { return row.size() >= columns; });
}

// Several rows together: their independent sums hide the latency of an addition.
template <std::size_t kRows>
void AddRowProducts(const Vector* rows, const double* x, std::size_t columns, double* out) {
  const double* row[kRows];
  double sum[kRows];
  for (std::size_t k = 0; k < kRows; ++k) {
    row[k] = rows[k].data();
    sum[k] = out[k];
  }
  for (std::size_t j = 0; j < columns; ++j) {
    for (std::size_t k = 0; k < kRows; ++k) sum[k] += row[k][j] * x[j];
  }
  for (std::size_t k = 0; k < kRows; ++k) out[k] = sum[k];
}

/// The same for up to simd::kRowsOfProducts rows on vectors.
void AddRowProducts(const simd::LoopTable& loops, const Vector* rows, std::size_t count,
                    const double* x, std::size_t columns, bool skipsZeros, double* out) {
  const double* row[simd::kRowsOfProducts];
  double sum[simd::kRowsOfProducts];
  for (std::size_t k = 0; k < simd::kRowsOfProducts; ++k) {
    const std::size_t own = std::min(k, count - 1);
    row[k] = rows[own].data();
    sum[k] = out[own];
  }
  loops.rowProducts(row, x, skipsZeros ? loops.lengthBeforeZeros(row, columns) : columns, sum);
  std::copy_n(sum, count, out);
}

/// out[k] grows by m[k][j] x[j], in ascending j, for each element of `out`. `m` must cover both.
/// With `skipsZeros`, zeros at the end of the rows may be left out.
void AddProduct(const Matrix& m, const double* x, std::size_t columns, bool skipsZeros,
                Vector& out) {
  constexpr std::size_t kSideBySide = 8;
  std::size_t k = 0;
  const simd::LoopTable* const loops = kernels::LoopsForRows();
  while (loops != nullptr && k + 1 < out.size()) {
    const std::size_t count = std::min(simd::kRowsOfProducts, out.size() - k);
    AddRowProducts(*loops, &m[k], count, x, columns, skipsZeros, &out[k]);
    k += count;
  }
  for (; k + kSideBySide <= out.size(); k += kSideBySide) {
    AddRowProducts<kSideBySide>(&m[k], x, columns, &out[k]);
  }
  for (; k < out.size(); ++k) AddRowProducts<1>(&m[k], x, columns, &out[k]);
}

double Norm(const Vector& v) {
  double squares = 0.0;
  for (const double value : v) squares += value * value;
  return std::sqrt(squares);
}

}  // namespace

namespace kriging {

bool PredictorError::IsAvailable() const {
  if (record_.KrigingDataVersion_ < KrigingDataVersion192 || record_.NumberOfSamples < 0) {
    return false;
  }
  const auto n = static_cast<std::size_t>(record_.NumberOfSamples);
  return !record_.InvC.empty() && !record_.InvG.empty() && !record_.Ft.empty() &&
         Covers(record_.InvC, n, n) && Covers(record_.InvG, p_, p_) && Covers(record_.Ft, p_, n);
}

bool PredictorError::IsPredicted() const {
  return record_.SavePredictorError &&
         PolynomialCount(record_.PolynomialType, record_.NumberOfInputVariables) >= 0 &&
         IsAvailable();
}

double PredictorError::At(const double* r, const double* f) {
  const auto n = static_cast<std::size_t>(record_.NumberOfSamples);
  v_.assign(n, 0.0);
  // As fitted, InvC is triangular. Its zeros add nothing to sums that begin at 0, unless they meet
  // an infinity or a NaN.
  const bool areFinite = std::all_of(r, r + n, [](double value) { return std::isfinite(value); });
  AddProduct(record_.InvC, r, n, areFinite, v_);
  const double nc = Norm(v_);
  w_.resize(p_);
  std::transform(f, f + p_, w_.begin(), [](double value) { return -value; });
  AddProduct(record_.Ft, v_.data(), n, false, w_);
  g_.assign(p_, 0.0);
  AddProduct(record_.InvG, w_.data(), p_, false, g_);
  const double ng = Norm(g_);
  // The norms are squared again: the square root's rounding belongs to the result.
  //
  // Deliberate (kriging-error-scaled): the error is not scaled back, and a negative variance counts
  // with its magnitude.
  return std::sqrt(std::fabs((ng * ng + 1.0 - nc * nc) * record_.Sigma2));
}

}  // namespace kriging

int CKrigingData::EvalErrorPredictions(Matrix& rows, Vector& out) {
  if (NumberOfSamples < 0 || NumberOfInputVariables < 0) return 1;
  const auto n = static_cast<std::size_t>(NumberOfSamples);
  const auto d = static_cast<std::size_t>(NumberOfInputVariables);
  if (InputSamples.size() < n) return 1;

  // If all shapes fit, a point is correlated with all samples at once. They are scaled already, and
  // the unit scaling does not change any correlation.
  const kriging::Correlation correlation(*this);
  const bool even = correlation && Covers(InputSamples, n, d);
  const Vector slopes(even ? d : 0, 1.0);
  const Vector intercepts(even ? d : 0, 0.0);

  std::int64_t status = 0;
  Matrix R(rows.size(), Vector(n, 0.0));
  Vector sample;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (even && rows[i].size() == d) {
      correlation.OfRows(rows[i].data(), {InputSamples.data(), n, slopes.data(), intercepts.data()},
                         nullptr, R[i].data());
      continue;
    }
    for (std::size_t j = 0; j < n; ++j) {
      const Vector& row = InputSamples[j];
      sample.assign(row.data(), row.data() + std::min(d, row.size()));
      status += EvaluateCorrelationFunction(rows[i], sample, R[i][j]);
    }
  }
  Matrix F;
  status += ComputeVandermondePolynomialMatrix(rows, PolynomialType, F);
  const auto q = static_cast<std::int64_t>(rows.empty() ? 0 : rows.front().size());
  const std::int64_t count = PolynomialCount(PolynomialType, q);
  if (count < 0 || count > INT_MAX) {
    ++status;
  } else if (SavePredictorError) {
    int m = static_cast<int>(rows.size());
    int p = static_cast<int>(count);
    status += GetPredictorError(R, F, m, p, out);
  }
  return static_cast<int>(std::min<std::int64_t>(status, INT_MAX));
}

int CKrigingData::GetPredictorError(Matrix& R, Matrix& F, int& m, int& p, Vector& out) {
  if (m < 0 || p < 0) return 1;
  const auto points = static_cast<std::size_t>(m);
  const auto trendFunctions = static_cast<std::size_t>(p);
  kriging::PredictorError predictor(*this, trendFunctions);
  if (!predictor.IsAvailable() || !Covers(R, points, static_cast<std::size_t>(NumberOfSamples)) ||
      !Covers(F, points, trendFunctions)) {
    return 1;
  }
  Vector errors(points);
  for (std::size_t i = 0; i < points; ++i) errors[i] = predictor.At(R[i].data(), F[i].data());
  out = std::move(errors);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
