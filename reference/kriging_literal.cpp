#include "reference/kriging_literal.h"

#include <math.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace literal {

using namespace Tarvane::Plexura::PXROM;

namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

template <class Step>
void Loop(const Vector& kernels, const Vector& x, const Vector& y, Step step) {
  if (kernels.size() == 1) {
    const double k = kernels[0];
    for (std::size_t i = 0; i < x.size(); ++i) step(std::fabs(x[i] - y[i]), k);
  } else {
    for (std::size_t i = 0; i < x.size(); ++i) step(std::fabs(x[i] - y[i]), kernels[i]);
  }
}

Vector Basis(E_PolynomialType type, const Vector& x) {
  Vector f;
  if (type >= PolyConstant) f.push_back(1.0);
  if (type >= PolyLinear) f.insert(f.end(), x.begin(), x.end());
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (type == PolyPureQuadratic) f.push_back(x[i] * x[i]);
    for (std::size_t j = i; type == PolyFullQuadratic && j < x.size(); ++j) {
      f.push_back(x[i] * x[j]);
    }
  }
  return f;
}

double PlusProduct(double sum, const Vector& row, const Vector& x, std::size_t columns) {
  for (std::size_t j = 0; j < columns; ++j) sum += row[j] * x[j];
  return sum;
}

double Norm(const Vector& v) {
  double sum = 0.0;
  for (const double value : v) sum += value * value;
  return std::sqrt(sum);
}

int Trend(const CKrigingData& record, const Vector& u, double& trend) {
  trend = 0.0;
  if (record.PolynomialType == PolyNone) return 0;
  const Vector f = Basis(record.PolynomialType, u);
  if (f.size() != record.PolynomialCoefficients.size()) return 1;
  for (std::size_t k = 0; k < f.size(); ++k) trend += f[k] * record.PolynomialCoefficients[k];
  return 0;
}

}  // namespace

int EvaluateCorrelationFunction(const CKrigingData& record, const Vector& x, const Vector& y,
                                double& r) {
  if (x.empty() || x.size() != y.size() ||
      x.size() != static_cast<std::size_t>(record.NumberOfInputVariables)) {
    return 1;
  }
  r = 0.0;
  const Vector& kernels = record.CorrelationKernels;
  double sum = 0.0;
  switch (record.CorrelationFunctionType) {
    case CorrExponential:
      Loop(kernels, x, y, [&](double a, double k) { sum += k * a; });
      r = std::exp(-sum);
      return 0;
    case CorrGaussian:
      Loop(kernels, x, y, [&](double a, double k) { sum += k * a * a; });
      r = std::exp(-sum);
      return 0;
    case CorrLinear:
      r = 1.0;
      Loop(kernels, x, y, [&](double a, double k) {
        const double z = k * a;
        r *= 1.0 - z > 0.0 ? 1.0 - z : 0.0;
      });
      return 0;
    case CorrSpherical:
      r = 1.0;
      Loop(kernels, x, y, [&](double a, double k) {
        const double s = std::min(k * a, 1.0);
        r *= (1.0 - 1.5 * s) + 0.5 * s * s * s;
      });
      return 0;
    case CorrCubic:
      r = 1.0;
      Loop(kernels, x, y, [&](double a, double k) {
        const double s = std::min(k * a, 1.0);
        r *= (1.0 - 3.0 * s * s) + 2.0 * s * s * s;
      });
      return 0;
    case CorrMultiquadric:
      r = 1.0;
      Loop(kernels, x, y, [&](double a, double k) { r *= std::sqrt(k * k + a); });
      return 0;
    case CorrSpline:
      r = 1.0;
      Loop(kernels, x, y, [&](double a, double k) {
        const double z = k * a;
        if (z <= 0.2) {
          r *= 1.0 - 15.0 * z * z + 30.0 * z * z * z;
        } else if (z < 1.0) {
          r *= 1.25 * (1.0 - z) * (1.0 - z) * (1.0 - z);
        } else {
          r = 0.0;
        }
      });
      return 0;
    case CorrMatern52:
      Loop(kernels, x, y, [&](double a, double k) {
        const double z = k * a;
        const double t = std::sqrt(5.0) * z;
        sum += t - std::log(1.0 + t + t * t / 3.0);
      });
      r = std::exp(-sum);
      return 0;
    case CorrParabolic:
      r = 1.0;
      Loop(kernels, x, y, [&](double a, double k) {
        const double z = k * a;
        if (z < 1.0) {
          r *= 1.0 - z * z;
        } else {
          r = 0.0;
        }
      });
      return 0;
    case CorrBesselJ0: {
      r = 1.0;
      const double c = record.Bessel_j0(3.8317);
      Loop(kernels, x, y, [&](double a, double k) {
        const double z = k * a;
        if (z <= 3.8317) {
          r *= (record.Bessel_j0(z) - c) / (1.0 - c);
        } else {
          r = 0.0;
        }
      });
      return 0;
    }
    case CorrSinc: {
      r = 1.0;
      const double c = std::sin(4.71238898038469) / 4.71238898038469;
      Loop(kernels, x, y, [&](double a, double k) {
        const double z = k * a;
        if (z > 4.71238898038469) {
          r = 0.0;
        } else if (std::fabs(z) > 1e-06) {
          r *= (std::sin(z) / z - c) / (1.0 - c);
        }
      });
      return 0;
    }
    default:
      return 1;
  }
}

int EvaluateKriging(const CKrigingData& record, const Vector& x, double& y) {
  Vector u = x;
  if (record.ScaleAndOverwriteInputSample(u) != 0) return 1;
  double sum = 0.0;
  for (int j = 0; j < record.NumberOfSamples; ++j) {
    const auto row = static_cast<std::size_t>(j);
    Vector sample = record.InputSamples[row];
    if (record.ScaleAndOverwriteInputSample(sample) != 0) return 1;
    double r = 0.0;
    if (EvaluateCorrelationFunction(record, u, sample, r) != 0) return 1;
    sum += r * record.CorrelationCoefficients[row];
  }
  double trend = 0.0;
  if (Trend(record, u, trend) != 0) return 1;
  y = (trend + sum - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

int EvaluateKriging(CKrigingData& record, const Vector& x, double& y, double& predictorError) {
  Vector u = x;
  if (record.ScaleAndOverwriteInputSample(u) != 0) return 1;
  const Matrix kept = record.InputSamples;
  Matrix scaled;
  double sum = 0.0;
  for (int j = 0; j < record.NumberOfSamples; ++j) {
    const auto row = static_cast<std::size_t>(j);
    Vector sample = record.InputSamples[row];
    if (record.ScaleAndOverwriteInputSample(sample) != 0) return 1;
    double r = 0.0;
    if (EvaluateCorrelationFunction(record, u, sample, r) != 0) return 1;
    sum += r * record.CorrelationCoefficients[row];
    scaled.push_back(sample);
  }
  record.InputSamples = scaled;
  double trend = 0.0;
  if (Trend(record, u, trend) != 0) return 1;
  y = (trend + sum - record.OutputScaleIntercept) / record.OutputScaleSlope;
  if (!record.SavePredictorError) return -2;
  Vector errors;
  if (EvalErrorPredictions(record, {u}, errors) != 0 || errors.empty()) return -2;
  predictorError = errors[0];
  record.InputSamples = kept;
  return 0;
}

int EvalErrorPredictions(const CKrigingData& record, const Matrix& rows, Vector& out) {
  const auto n = static_cast<std::size_t>(record.NumberOfSamples);
  Matrix R(rows.size(), Vector(n, 0.0));
  Matrix F;
  int status = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      const auto d = static_cast<std::ptrdiff_t>(record.NumberOfInputVariables);
      const Vector sample(record.InputSamples[j].begin(), record.InputSamples[j].begin() + d);
      double r = 0.0;
      status += EvaluateCorrelationFunction(record, rows[i], sample, r);
      R[i][j] = r;
    }
    F.push_back(Basis(record.PolynomialType, rows[i]));
  }
  if (record.InvC.empty() || record.InvG.empty() || record.Ft.empty()) return status + 1;
  out.clear();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::size_t p = F[i].size();
    Vector v(n);
    Vector w(p);
    Vector g(p);
    for (std::size_t k = 0; k < n; ++k) v[k] = PlusProduct(0.0, record.InvC[k], R[i], n);
    const double nc = Norm(v);
    for (std::size_t k = 0; k < p; ++k) w[k] = PlusProduct(-F[i][k], record.Ft[k], v, n);
    for (std::size_t k = 0; k < p; ++k) g[k] = PlusProduct(0.0, record.InvG[k], w, p);
    const double ng = Norm(g);
    out.push_back(std::sqrt(std::fabs((ng * ng + 1.0 - nc * nc) * record.Sigma2)));
  }
  return status;
}

CKrigingData RandomKriging(std::mt19937& random, int type, int trend, int n, int d,
                           bool oneKernel) {
  const auto draw = [&](std::size_t count, double low, double high) {
    Vector values(count);
    for (double& value : values) value = std::uniform_real_distribution<double>(low, high)(random);
    return values;
  };
  const auto inputs = static_cast<std::size_t>(d);
  const auto samples = static_cast<std::size_t>(n);
  const auto matrix = [&](std::size_t rows, std::size_t columns, double low, double high) {
    Matrix m(rows);
    for (Vector& row : m) row = draw(columns, low, high);
    return m;
  };
  CKrigingData record;
  record.NumberOfInputVariables = d;
  record.NumberOfSamples = n;
  record.InputSamples = matrix(samples, inputs, -2.0, 2.0);
  record.OutputSamples = draw(samples, -1.0, 1.0);
  record.InputScaleSlopes = draw(inputs, 0.5, 1.5);
  record.InputScaleIntercepts = draw(inputs, -1.0, 1.0);
  record.OutputScaleSlope = 0.5;
  record.OutputScaleIntercept = 0.25;
  record.ReadyForEvaluation = true;
  record.PolynomialType = static_cast<E_PolynomialType>(trend);
  const std::size_t p = Basis(record.PolynomialType, Vector(inputs)).size();
  record.PolynomialCoefficients = draw(p, -1.0, 1.0);
  record.CorrelationFunctionType = static_cast<E_KringingCorrelationFunctionType>(type);
  record.CorrelationCoefficients = draw(samples, -1.0, 1.0);
  record.CorrelationKernels = draw(oneKernel ? 1 : inputs, 0.05, 0.9);
  record.SavePredictorError = true;
  record.NumberOfPolyCoeff = static_cast<int>(p);
  record.Sigma2 = 1.7;
  record.InvC = matrix(samples, samples, -1.0, 1.0);
  for (std::size_t k = 0; k < samples; ++k) {
    std::fill(record.InvC[k].begin() + static_cast<std::ptrdiff_t>(k) + 1, record.InvC[k].end(),
              0.0);
  }
  record.InvG = matrix(p, p, -1.0, 1.0);
  record.Ft = matrix(p, samples, -1.0, 1.0);
  return record;
}

}  // namespace literal
