#include <cmath>

#include "families/regression/record_parts.h"
#include "families/regression/transformers.h"
#include "pxrom/regression.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr double kE = 2.718281828459045;
constexpr double kHoleTolerance = 1e-10;

}  // namespace

int ScaleInputs(const CQRSData& record, std::size_t count, double* x) {
  const bool isOfLength =
      record.InputScaleSlopes.size() == count && record.InputScaleIntercepts.size() == count;
  if (!isOfLength) return 1;
  for (std::size_t i = 0; i < count; ++i) {
    x[i] = record.InputScaleSlopes[i] * x[i] + record.InputScaleIntercepts[i];
  }
  return 0;
}

int BacktransformedSum(const CQRSData& record, WorkingPoint& point, double& b) {
  const std::size_t count = point.Size();
  double* const x = point.Data();
  const int scaling = ScaleInputs(record, count, x);
  const int transforming = TransformInputs(record, count, x);
  const int summing = SumTerms(record, count, x, b);
  const int backtransforming = record.BacktransformAndOverwriteOutputSample(b);
  return (scaling | transforming | summing | backtransforming) == 0 ? 0 : 1;
}

bool IsHole(double b) { return std::fabs(b - YeoFailureValue) < kHoleTolerance; }

CQRSEvaluator* CQRSEvaluator::Clone() const { return new CQRSEvaluator(*this); }
CQRSEvaluator::~CQRSEvaluator() = default;

int CQRSEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y) const {
  if (!IsEvaluable(data, DT_QRSData, x)) return 1;
  const auto& record = static_cast<const CQRSData&>(*data);
  WorkingPoint point(x);
  double b = 0.0;
  // Deliberate (refused-output-not-interpolated): the status is tested before the hole. A failed
  // way back leaves the value of a hole too, but is refused and not interpolated.
  if (BacktransformedSum(record, point, b) != 0) return 1;
  if (IsHole(b)) return Interplt(data, x.data(), y);
  y = (b - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

int CQRSEvaluator::EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                                           double& y, double& predictorError) const {
  if (!IsEvaluable(data, DT_QRSData, x)) return 1;
  const auto& record = static_cast<const CQRSData&>(*data);
  WorkingPoint point(x);
  double b = 0.0;
  const int status = BacktransformedSum(record, point, b);
  // Deliberate (error-before-value): the error is written before the value is known to be valid.
  // With status 1 it has no meaning.
  if (PredictorErrorAt(record, point.Size(), point.Data(), predictorError) != 0 || status != 0)
    return 1;
  if (IsHole(b)) return Interplt(data, x.data(), y);
  y = (b - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

int CQRSEvaluator::EvaluateResponseSurfaceDerivativeWrtInputVariables(
    const CRSData* data, const std::vector<double>& x, std::vector<double>& gradient) const {
  // Neither Stopped nor the length of `x` is checked: see the header.
  const auto* const record = dynamic_cast<const CQRSData*>(data);
  if (record == nullptr || !record->IsReadyForEvaluation()) return 1;
  std::vector<double> point(x);
  int status = record->ScaleAndOverwriteInputSample(point);
  // The inputs are not transformed: see the header.
  double sum = 0.0;
  status += record->EvaluateRegTerm(point, sum);
  double factor = 0.0;
  status += CalIntmedDrvtVal(data, sum, factor);
  if (status != 0) return status;
  std::vector<double> g;
  status = record->EvaluateRegTermDerivativeWrtInputVariables(point, g);
  if (status != 0) return status;
  gradient.clear();
  for (const double entry : g) gradient.push_back(factor * entry);
  return 0;
}

int CQRSEvaluator::CalIntmedDrvtVal(const CRSData* data, const double& s, double& d) const {
  const auto& record = static_cast<const CQRSData&>(*data);
  const double c = 1.0 / record.OutputScaleSlope;
  const double a = record.OutputTransformValue;
  const double lambda = record.OutputLambda;
  const bool isLambdaZero = std::fabs(lambda) < LambdaZeroTolerance;
  // Types 1 to 6 use the derivative of the forward formula, where the chain rule needs that of the
  // back-transformation, which types 7 and 8 use. Hosts depend on this, so no type is corrected.
  switch (record.OutputTransformType) {
    case TransformNone:
      d = c;
      return 0;
    case TransformExpo:
      d = std::exp(s) * c;
      return 0;
    case TransformLogA:
      d = (std::log10(kE) * c) / (std::log10(a) * s);
      return 0;
    case TransformLogE:
      d = c / s;
      return 0;
    case TransformLog10:
      d = (std::log10(kE) * c) / s;
      return 0;
    case TransformSquare:
      if (s < 0.0) return 1;
      d = (c * 0.5) / std::sqrt(s);
      return 0;
    case TransformPower:
      if (s < 0.0) return 1;
      d = std::pow(s, a - 1.0) * a * c;
      return 0;
    case TransformBox: {
      if (isLambdaZero) {
        d = std::exp(s) * c;
        return 0;
      }
      const double t = s * lambda + 1.0;
      if (t < 0.0) return 1;
      d = std::pow(t, 1.0 / lambda - 1.0) * c;
      return 0;
    }
    case TransformLogBox: {
      if (isLambdaZero) {
        if (s > std::log(std::log(TransformValueLimit))) return 1;
        d = std::exp(std::exp(s)) * c * std::exp(s);
        return 0;
      }
      const double t = lambda * s + 1.0;
      if (t < 0.0) return 1;
      d = std::exp(std::pow(t, 1.0 / lambda)) * c * std::pow(t, 1.0 / lambda - 1.0);
      return 0;
    }
    case TransformYeo:
      break;
  }
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
