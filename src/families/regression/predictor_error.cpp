// The prediction interval of a regression surface.

#include <algorithm>
#include <cmath>

#include "families/regression/record_parts.h"
#include "numerics/distributions.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr double kSmallestRelativeTo = 0.0001;

/// One value per active term, in list order.
int ActiveDesignRow(const CQRSData& record, std::size_t size, const double* x,
                    std::vector<double>& row) {
  if (!HasTermArray(record)) return 1;
  row.clear();
  row.reserve(static_cast<std::size_t>(std::max(record.NumberOfRegTerms, 0)));
  const int inputs = UsableInputs(record, size);
  for (int k = 0; k < record.NumberOfRegTerms; ++k) {
    const RegTerm* const term = record.RegTerms[k];
    if (term == nullptr) return 1;
    if (term->QryIsActive() == 0) continue;
    int count = 0;
    int status = term->GetNumParam(count);
    if (status != 0) return status;
    if (count != 1) return 1;
    double value = 0.0;
    status = term->EvaluateDesignRow(inputs, x, &value);
    if (status != 0) return status;
    row.push_back(value);
  }
  return 0;
}

double LeverageOf(const CQRSData& record, const std::vector<double>& row) {
  double leverage = 0.0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    for (std::size_t j = 0; j < row.size(); ++j) {
      leverage += row[i] * record.InvXtX[i][j] * row[j];
    }
  }
  return leverage;
}

}  // namespace

bool HasInverseOfOrder(const CQRSData& record, std::size_t order) {
  if (record.InvXtX.size() < order) return false;
  for (std::size_t i = 0; i < order; ++i) {
    if (record.InvXtX[i].size() < order) return false;
  }
  return true;
}

int QuantileOf(const CQRSData& record, std::size_t activeTerms, double& t) {
  const double dof = static_cast<double>(record.NumberOfSamples) - static_cast<double>(activeTerms);
  // Deliberate (one-sided-regression-error): the level is used as it is, so the interval is
  // one-sided. 0.95 is the 95 percent quantile.
  return StudTDist(dof).EvalInvCdf(record.RegTermFilterConfVal, t);
}

double HalfWidth(const CQRSData& record, double leverage, double t) {
  const double error = std::sqrt((leverage + 1.0) * record.Sigma2) * t;
  return error / record.OutputScaleSlope;
}

int PredictorErrorAt(const CQRSData& record, std::size_t count, const double* x, double& error) {
  std::vector<double> row;
  int status = ActiveDesignRow(record, count, x, row);
  if (status != 0) return status;
  if (!HasInverseOfOrder(record, row.size())) return 1;
  double t = 0.0;
  status = QuantileOf(record, row.size(), t);
  if (status != 0) return status;
  error = HalfWidth(record, LeverageOf(record, row), t);
  return 0;
}

int CQRSData::GetPredictorError(std::vector<double>& x, double& error) {
  return PredictorErrorAt(*this, x.size(), x.data(), error);
}

int CQRSData::GetRelativePredictorError(const std::vector<double>& values,
                                        const std::vector<double>& errors, const int& n,
                                        std::vector<double>& out) const {
  const auto count = static_cast<std::size_t>(n > 0 ? n : 0);
  if (values.size() < count || errors.size() < count) return 1;
  for (std::size_t i = 0; i < count; ++i) {
    const double magnitude = std::fabs(values[i]);
    out.push_back(magnitude <= kSmallestRelativeTo ? errors[i] : errors[i] / magnitude);
  }
  return 0;
}

int CQRSData::EvalErrorPredictions(std::vector<std::vector<double>>& points,
                                   std::vector<double>& errors) {
  int status = 1;
  if (!points.empty() && HasTermArray(*this) && NumberOfRegTerms >= 0) {
    // Only a check: the matrix is not used.
    std::vector<std::vector<double>> design(
        points.size(), std::vector<double>(static_cast<std::size_t>(NumberOfRegTerms)));
    status = BuildDesignMtx(points, NumberOfRegTerms, RegTerms, design);
  }
  if (!SavePredictorError) return status;
  errors.resize(points.size(), 0.0);
  // The number of active terms, and so the quantile, is the same at all points.
  std::vector<double> row;
  bool isQuantileKnown = false;
  int quantileStatus = 0;
  double t = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    errors[i] = 0.0;
    if (ActiveDesignRow(*this, points[i].size(), points[i].data(), row) != 0) continue;
    if (!HasInverseOfOrder(*this, row.size())) continue;
    if (!isQuantileKnown) quantileStatus = QuantileOf(*this, row.size(), t);
    isQuantileKnown = true;
    if (quantileStatus == 0) errors[i] = HalfWidth(*this, LeverageOf(*this, row), t);
  }
  return status;
}

}  // namespace Tarvane::Plexura::PXROM
