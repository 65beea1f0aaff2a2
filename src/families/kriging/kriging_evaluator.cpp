#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "families/kriging/correlation.h"
#include "families/kriging/predictor_error.h"
#include "numerics/polynomial_basis.h"
#include "pxrom/kriging.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

/// The number of samples of a prediction: 0 for a negative count.
std::size_t SamplesOf(const CKrigingData& record) {
  return static_cast<std::size_t>(std::max(record.NumberOfSamples, 0));
}

/// One prediction and its intermediate results, in scaled space.
class Prediction {
 public:
  explicit Prediction(const CKrigingData& record) : record_(record) {}

  /// Scales the point and correlates it with the samples. False if the record can't be honoured.
  bool Correlate(const std::vector<double>& x) {
    point_ = x;
    if (record_.ScaleAndOverwriteInputSample(point_) != 0 || !HasSamples()) return false;
    const std::size_t n = SamplesOf(record_);
    if (n == 0) return true;
    const kriging::Correlation correlation(record_);
    if (!correlation) return false;
    correlations_.resize(n);
    weighted_ = correlation.OfRows(point_.data(),
                                   {record_.InputSamples.data(), n, record_.InputScaleSlopes.data(),
                                    record_.InputScaleIntercepts.data()},
                                   record_.CorrelationCoefficients.data(), correlations_.data());
    return true;
  }

  /// The value in physical units: trend plus weighted correlations, backscaled. False, with `y`
  /// untouched, when the trend does not fit its coefficients.
  bool Value(double& y) {
    const std::optional<std::size_t> functions = kriging::TrendFunctionsOf(record_);
    if (!functions) return false;
    double trend = 0.0;
    if (record_.PolynomialType != PolyNone) {
      record_.ComputeVandermondePolynomialVector(point_, record_.PolynomialType, trend_);
      const std::vector<double>& coefficients = record_.PolynomialCoefficients;
      for (std::size_t k = 0; k < trend_.size(); ++k) trend += trend_[k] * coefficients[k];
    }
    double value = trend + weighted_;
    record_.BackscaleAndOverwriteOutputSample(value);
    y = value;
    return true;
  }

  /// The predictor error, in the unit of the root of Sigma2, after a successful Value. It is the
  /// result of EvalErrorPredictions for this point and scaled samples; the correlations and trend
  /// functions are not computed again. False without error data.
  bool Error(double& error) {
    kriging::PredictorError predictor(record_, trend_.size());
    if (!predictor.IsPredicted()) return false;
    error = predictor.At(correlations_.data(), trend_.data());
    return true;
  }

 private:
  bool HasSamples() const {
    const std::size_t n = SamplesOf(record_);
    const auto& samples = record_.InputSamples;
    return samples.size() >= n && record_.CorrelationCoefficients.size() >= n &&
           std::all_of(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(n),
                       [&](const auto& row) { return row.size() == point_.size(); });
  }

  const CKrigingData& record_;
  std::vector<double> point_;
  std::vector<double> correlations_;
  double weighted_ = 0.0;
  std::vector<double> trend_;
};

const CKrigingData& AsKriging(const CRSData* data) {
  return *static_cast<const CKrigingData*>(data);
}

/// Leaves the samples that a prediction has scaled in the record.
void KeepScaledSamples(const CKrigingData& record) {
  // The only place where an evaluator writes a record, although its signature takes it as const.
  // The header warns that such a record must not be defined const.
  auto& writable = const_cast<CKrigingData&>(record);
  writable.InputSamples.resize(SamplesOf(record));
  writable.ScaleAndOverwriteInputSamples(writable.InputSamples);
}

}  // namespace

namespace kriging {

std::optional<std::size_t> TrendFunctionsOf(const CKrigingData& record) {
  if (record.PolynomialType == PolyNone) return 0;
  // Counted before they are computed, since the basis can be far longer than the list of
  // coefficients. An unknown type has no functions, and is accepted without coefficients.
  const std::int64_t count = PolynomialCount(record.PolynomialType, record.NumberOfInputVariables);
  const auto functions = static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0));
  if (record.PolynomialCoefficients.size() != functions) return std::nullopt;
  return record.PolynomialCoefficients.size();
}

bool ChangesRecordForError(const CRSData& record) {
  const CKrigingData& kriging = AsKriging(&record);
  const std::optional<std::size_t> functions = TrendFunctionsOf(kriging);
  return !functions || !PredictorError(kriging, *functions).IsPredicted();
}

}  // namespace kriging

CKrigingEvaluator* CKrigingEvaluator::Clone() const { return new CKrigingEvaluator(*this); }
CKrigingEvaluator::~CKrigingEvaluator() = default;

int CKrigingEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                               double& y, double& predictorError) const {
  if (!IsEvaluable(data, DT_KrigingData, x)) return 1;
  const CKrigingData& record = AsKriging(data);
  Prediction prediction(record);
  if (!prediction.Correlate(x)) return 1;
  const bool hasValue = prediction.Value(y);
  if (hasValue && prediction.Error(predictorError)) return 0;
  // Deliberate (kriging-error-writes-record): only a complete result leaves the record as it was.
  // On these paths the samples stay scaled, so a repeated call gives another value.
  KeepScaledSamples(record);
  return hasValue ? -2 : 1;
}

int CKrigingEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                               double& y) const {
  if (!IsEvaluable(data, DT_KrigingData, x)) return 1;
  Prediction prediction(AsKriging(data));
  return prediction.Correlate(x) && prediction.Value(y) ? 0 : 1;
}

int CKrigingEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(
    const CRSData*, const std::vector<double>&, std::vector<double>&) const {
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
