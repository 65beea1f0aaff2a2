#include "reference/gaussian_process_literal.h"

#include <cmath>
#include <cstddef>

namespace literal {

using namespace Tarvane::Plexura::PXROM;

namespace {

using Vector = std::vector<double>;

double FunctionOf(int function, double a, double r2) {
  const double r = std::sqrt(r2);
  switch (function) {
    case CovMatern12:
      return std::exp(-r);
    case CovMatern32: {
      const double t = std::sqrt(3.0) * r;
      return t > 746.0 ? 0.0 : std::exp(-t) * (1.0 + t);
    }
    case CovMatern52: {
      const double t = std::sqrt(5.0) * r;
      return t > 746.0 ? 0.0 : std::exp(-t) * (1.0 + t + t * t / 3.0);
    }
    case CovGaussian:
      return std::exp(-(0.5 * r2));
    case CovRationalQuadratic:
      return std::exp(-(a * std::log1p(r2 / (2.0 * a))));
    case CovGeneralisedExponential:
      return std::exp(-std::pow(r2, 0.5 * a));
    case CovConstant:
      return 1.0;
    case CovThinPlateSpline:
      return r2 == 0.0 ? 0.0 : std::log(r2) * (0.5 * r2);
    case CovLinear:
      return 0.0 - r;
    case CovCubic:
      return r2 * r;
    case CovQuintic:
      return 0.0 - r2 * r2 * r;
    case CovMultiquadric:
      return 0.0 - std::sqrt(1.0 + r2);
    case CovInverseMultiquadric:
      return 1.0 / std::sqrt(1.0 + r2);
    default:
      return 1.0 / (r2 + 1.0);
  }
}

double Covariance(const CGaussianProcessData& record, const Vector& u, const Vector& v) {
  const std::size_t d = u.size();
  const bool oneLength = record.FactorLengths.size() == record.FactorFunctions.size();
  double sum = 0.0;
  for (std::size_t t = 0; t < record.TermAmplitudes.size(); ++t) {
    double product = record.TermAmplitudes[t];
    for (std::size_t f = 0; f < record.FactorFunctions.size(); ++f) {
      if (record.FactorTerms[f] != static_cast<int>(t)) continue;
      double r2 = 0.0;
      for (std::size_t i = 0; i < d; ++i) {
        const double rate = 1.0 / record.FactorLengths[oneLength ? f : f * d + i];
        const double z = (u[i] - v[i]) * rate;
        r2 += z * z;
      }
      product *= FunctionOf(record.FactorFunctions[f], record.FactorParameters[f], r2);
    }
    sum += product;
  }
  return sum;
}

Vector TrendFunctions(const CGaussianProcessData& record, const Vector& u) {
  const std::size_t d = u.size();
  const int type = record.PolynomialType;
  Vector f;
  if (type >= PolyConstant) f.push_back(1.0);
  if (type >= PolyLinear) f.insert(f.end(), u.begin(), u.end());
  for (std::size_t i = 0; i < d; ++i) {
    if (type == PolyPureQuadratic) f.push_back(u[i] * u[i]);
    for (std::size_t j = i; type == PolyFullQuadratic && j < d; ++j) f.push_back(u[i] * u[j]);
  }
  for (std::size_t first = 0; first < record.Monomials.size(); first += d) {
    double product = 1.0;
    for (std::size_t i = 0; i < d; ++i) {
      // By repeated squaring.
      double power = 1.0;
      double square = u[i];
      for (int e = record.Monomials[first + i]; e > 0; e /= 2, square *= square) {
        if (e % 2 == 1) power *= square;
      }
      if (record.Monomials[first + i] > 0) product *= power;
    }
    f.push_back(product);
  }
  return f;
}

Vector Scaled(const CGaussianProcessData& record, Vector x) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = record.InputScaleSlopes[i] * x[i] + record.InputScaleIntercepts[i];
  }
  return x;
}

double Dot(const double* a, const Vector& b, std::size_t count) {
  double sum = 0.0;
  for (std::size_t k = 0; k < count; ++k) sum += a[k] * b[k];
  return sum;
}

/// A lower triangle, row by row, times x.
Vector Times(const Vector& triangle, const Vector& x) {
  Vector product;
  for (std::size_t k = 0; k < x.size(); ++k) {
    product.push_back(Dot(triangle.data() + k * (k + 1) / 2, x, k + 1));
  }
  return product;
}

}  // namespace

int EvaluateGaussianProcess(const CGaussianProcessData& record, const Vector& x, double& y) {
  double unused = 0.0;
  return EvaluateGaussianProcess(record, x, y, unused) == 1 ? 1 : 0;
}

int EvaluateGaussianProcess(const CGaussianProcessData& record, const Vector& x, double& y,
                            double& predictorError) {
  if (x.size() != static_cast<std::size_t>(record.NumberOfInputVariables) ||
      x.size() != record.InputScaleSlopes.size()) {
    return 1;
  }
  const Vector u = Scaled(record, x);
  const auto n = static_cast<std::size_t>(record.NumberOfSamples);
  for (const int function : record.FactorFunctions) {
    if (n > 0 && (function < CovMatern12 || function > CovInverseQuadratic)) return 1;
  }
  Vector k;
  for (std::size_t j = 0; j < n; ++j) {
    k.push_back(Covariance(record, u, Scaled(record, record.InputSamples[j])));
  }
  const Vector f = TrendFunctions(record, u);
  const double trend = Dot(f.data(), record.PolynomialCoefficients, f.size());
  y = (trend + Dot(k.data(), record.Weights, n) - record.OutputScaleIntercept) /
      record.OutputScaleSlope;
  if (!record.SavePredictorError || n == 0) return -2;
  const Vector v = Times(record.InverseFactor, k);
  // That of the point with itself, wherever it is.
  const Vector origin(u.size());
  double variance = Covariance(record, origin, origin) - Dot(v.data(), v, n);
  Vector w;
  for (std::size_t row = 0; row < record.TrendAtSamples.size(); ++row) {
    w.push_back(f[row]);
    for (std::size_t j = 0; j < n; ++j) w[row] -= record.TrendAtSamples[row][j] * v[j];
  }
  const Vector g = Times(record.TrendInverseFactor, w);
  variance += Dot(g.data(), g, g.size());
  if (variance < 0.0) variance = 0.0;
  if (record.ErrorIncludesNoise) variance += record.NoiseVariance;
  predictorError = std::sqrt(variance) / std::fabs(record.OutputScaleSlope);
  return 0;
}

}  // namespace literal
