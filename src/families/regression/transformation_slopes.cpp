#include "families/regression/transformation_slopes.h"

#include <cmath>

namespace Tarvane::Plexura::PXROM::batch {

namespace {

bool CountsAsZero(double lambda) { return !(std::fabs(lambda) >= LambdaZeroTolerance); }

/// The derivative of the inverse of Box-Cox, (lambda x + 1)^(1 / lambda).
double InverseBoxSlope(double x, double lambda) {
  if (CountsAsZero(lambda)) return std::exp(x);
  return std::pow(lambda * x + 1.0, 1.0 / lambda - 1.0);
}

/// The second derivative of that inverse.
double InverseBoxCurvature(double x, double lambda) {
  if (CountsAsZero(lambda)) return std::exp(x);
  return (1.0 - lambda) * std::pow(lambda * x + 1.0, 1.0 / lambda - 2.0);
}

/// The derivative of the exponential of that inverse.
double ExpOfInverseBoxSlope(double x, double lambda) {
  const double power =
      CountsAsZero(lambda) ? std::exp(x) : std::pow(lambda * x + 1.0, 1.0 / lambda);
  return std::exp(power) * InverseBoxSlope(x, lambda);
}

double ForwardSlope(E_QRSTransformationType type, double x, double value, double lambda) {
  switch (type) {
    case TransformNone:
      return 1.0;
    case TransformExpo:
      return std::exp(x);
    case TransformLogA:
      return 1.0 / (x * std::log(value));
    case TransformLogE:
      return 1.0 / x;
    case TransformLog10:
      return 1.0 / (x * std::log(10.0));
    case TransformSquare:
      return 0.5 / std::sqrt(x);
    case TransformPower:
      return value * std::pow(x, value - 1.0);
    case TransformBox:
      return CountsAsZero(lambda) ? 1.0 / x : std::pow(x, lambda - 1.0);
    case TransformLogBox:
      return ExpOfInverseBoxSlope(x, lambda);
    case TransformYeo:
      if (x < 0.0) {
        return CountsAsZero(2.0 - lambda) ? 1.0 / (1.0 - x) : std::pow(1.0 - x, 1.0 - lambda);
      }
      return CountsAsZero(lambda) ? 1.0 / (x + 1.0) : std::pow(x + 1.0, lambda - 1.0);
  }
  return 1.0;
}

}  // namespace

double TransformationSlope(const CTransformer& transformer, double x, double value, double lambda) {
  double transformed = x;
  const bool isRefused = transformer.TransformAndOverwrite(transformed, value, lambda) != 0;
  return isRefused ? 1.0 : ForwardSlope(transformer.TransformationType(), x, value, lambda);
}

double BacktransformationSlope(const CTransformer& transformer, double x, double value,
                               double lambda) {
  switch (transformer.TransformationType()) {
    case TransformNone:
      return 1.0;
    case TransformExpo:
      return 1.0 / x;
    case TransformLogA:
      return std::log(value) * std::exp(x);
    case TransformLogE:
      return std::exp(x);
    case TransformLog10:
      return std::pow(10.0, x) * std::log(10.0);
    case TransformSquare:
      return 2.0 * x;
    case TransformPower:
      return std::pow(x, 1.0 / value - 1.0) / value;
    case TransformBox:
      return InverseBoxSlope(x, lambda);
    case TransformLogBox:
      return ExpOfInverseBoxSlope(x, lambda);
    case TransformYeo:
      return x < 0.0 ? InverseBoxSlope(-x, 2.0 - lambda) : InverseBoxSlope(x, lambda);
  }
  return 1.0;
}

double BacktransformationCurvature(const CTransformer& transformer, double x, double value,
                                   double lambda) {
  switch (transformer.TransformationType()) {
    case TransformNone:
      return 0.0;
    case TransformExpo:
      return -1.0 / (x * x);
    case TransformLogA:
    case TransformLogE:
      return BacktransformationSlope(transformer, x, value, lambda);
    case TransformLog10:
      return BacktransformationSlope(transformer, x, value, lambda) * std::log(10.0);
    case TransformSquare:
      return 2.0;
    case TransformPower:
      return std::pow(x, 1.0 / value - 2.0) * (1.0 / value - 1.0) / value;
    case TransformBox:
      return InverseBoxCurvature(x, lambda);
    case TransformLogBox: {
      const double slope = InverseBoxSlope(x, lambda);
      const double power =
          CountsAsZero(lambda) ? std::exp(x) : std::pow(lambda * x + 1.0, 1.0 / lambda);
      return std::exp(power) * (slope * slope + InverseBoxCurvature(x, lambda));
    }
    case TransformYeo:
      return x < 0.0 ? -InverseBoxCurvature(-x, 2.0 - lambda) : InverseBoxCurvature(x, lambda);
  }
  return 0.0;
}

}  // namespace Tarvane::Plexura::PXROM::batch
