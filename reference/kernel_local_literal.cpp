#include "reference/kernel_local_literal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace literal {

using namespace Tarvane::Plexura::PXROM;

namespace {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

std::size_t Size(int count) { return static_cast<std::size_t>(count); }

int EvaluateKernel(const CSVRData& record, const Vector& x, const Vector& y, double& value) {
  const Vector& w = record.KernelArray;
  if (w.empty() || x.size() != w.size() || y.size() != w.size()) return 1;
  double sum = 0.0;
  switch (record.SVRKernType) {
    case SVRKernLinear:
      for (std::size_t i = 0; i < x.size(); ++i) sum += x[i] * y[i];
      value = 1.0 + sum;
      return 0;
    case SVRKernQuadratic:
      for (std::size_t i = 0; i < x.size(); ++i) sum += x[i] * y[i];
      value = (1.0 + sum) * (1.0 + sum);
      return 0;
    case SVRKernGaussian:
      for (std::size_t i = 0; i < x.size(); ++i) sum += w[i] * (x[i] - y[i]) * (x[i] - y[i]);
      value = std::exp(-sum);
      return 0;
    case SVRKernSigmoid: {
      const double e = std::exp(1.0);
      for (std::size_t i = 0; i < x.size(); ++i) sum += x[i] * y[i];
      value = std::tanh((e / static_cast<double>(x.size())) * sum - e);
      return 0;
    }
    case SVRKernExponential:
      for (std::size_t i = 0; i < x.size(); ++i) sum += w[i] * std::fabs(x[i] - y[i]);
      value = std::exp(-sum);
      return 0;
    case SVRKernEpanechnikov:
      for (std::size_t i = 0; i < x.size(); ++i) sum += (x[i] - y[i]) * (x[i] - y[i]);
      value = sum >= 1.0 ? 0.0 : 0.75 * (1.0 - sum * sum);
      return 0;
    default:
      return 1;
  }
}

int EvaluateKernelMatrix(const CSVRData& record, const Matrix& a, const Matrix& b, Matrix& out) {
  if (record.Stopped || a.empty()) return 1;
  out.clear();
  out.resize(a.size(), Vector(b.size(), 0.0));
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) {
      if (record.Stopped) break;
      double value = 0.0;
      const int status = EvaluateKernel(record, a[i], b[j], value);
      if (status != 0) return status;
      out[i][j] = value;
    }
  }
  return 0;
}

// The basis functions of the first d values of x.
int AppendBasis(E_PolynomialType type, const Vector& x, std::size_t d, Vector& f) {
  if (type < PolyConstant || type > PolyFullQuadratic) return 1;
  f.push_back(1.0);
  if (type >= PolyLinear) {
    for (std::size_t i = 0; i < d; ++i) f.push_back(x[i]);
  }
  if (type == PolyPureQuadratic) {
    for (std::size_t i = 0; i < d; ++i) f.push_back(x[i] * x[i]);
  }
  if (type == PolyFullQuadratic) {
    for (std::size_t i = 0; i < d; ++i) {
      for (std::size_t j = i; j < d; ++j) f.push_back(x[i] * x[j]);
    }
  }
  return 0;
}

double Weight(const CMLSData& record, double r, double rho) {
  const bool isOld = record.MLSDataVersion_ == MLSDataVersion162;
  const double z = r / rho;
  switch (record.WeightFunction) {
    case WeightConstant:
      return 1.0;
    case WeightGaussian:
      return isOld ? std::exp(-20.0 * z * z) : std::exp(-z * z);
    case WeightCompact: {
      const double d = record.NumberOfInputVariables;
      const double t = std::min(1.0, r / (std::sqrt(d) * 2.0 * rho));
      return std::pow(1.0 - t, 4.0) * (4.0 * t + 1.0);
    }
    case WeightRational:
      return isOld ? 1.0 / ((r * 0.5) * (r * 0.5) + 1.0) : 1.0 / (z * z + 1.0);
    case WeightInverse:
      return 1.0 / std::fabs(z + 0.01);
    default:
      return 0.0;
  }
}

int ComputeWeights(const CMLSData& record, const Vector& x, Vector& weights) {
  weights.clear();
  Vector distances;
  for (int j = 0; j < record.NumberOfSamples; ++j) {
    distances.push_back(record.ComputeEuclideanDistance(record.InputSamples[Size(j)], x));
  }
  if (record.NumberOfSamples < record.NumberOfBasisFunctions) return 1;
  Vector sorted = distances;
  std::sort(sorted.begin(), sorted.end(),
            [](double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; });
  const double rho =
      sorted[Size(std::min(record.NumberOfBasisFunctions, record.NumberOfSamples - 1))];
  double sum = 0.0;
  for (int j = 0; j < record.NumberOfUsedPoints; ++j) {
    weights.push_back(Weight(record, distances[Size(j)], rho));
    sum += weights.back();
  }
  for (double& weight : weights) weight /= sum;
  return 0;
}

int ComputeB(const CMLSData& record, Matrix& B) {
  if (record.NumberOfUsedPoints < record.NumberOfBasisFunctions) return 1;
  const std::size_t d = Size(record.NumberOfInputVariables);
  B.clear();
  for (int j = 0; j < record.NumberOfUsedPoints; ++j) {
    Vector row;
    if (AppendBasis(record.PolynomialType, record.InputSamples[Size(j)], d, row) != 0) return 1;
    if (row.size() != Size(record.NumberOfBasisFunctions)) return 1;
    B.push_back(row);
  }
  return 0;
}

int SolveCholesky(Matrix& A, const Vector& b, Vector& out) {
  const std::size_t m = A.size();
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (A[i][j] != A[j][i]) return 1;
    }
  }
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double s = A[i][j];
      A[j][i] = 0.0;
      double sum = 0.0;
      for (std::size_t k = 0; k < j; ++k) sum += A[j][k] * A[i][k];
      s -= sum;
      if (j == i) {
        if (s < 0.0) return 1;
        const double t = std::sqrt(s);
        if (std::fabs(t) < 2.220446049250313e-16) return 1;
        A[i][i] = t;
      } else {
        A[i][j] = s / A[j][j];
      }
    }
  }
  out.resize(m);
  for (std::size_t i = 0; i < m; ++i) {
    double sum = 0.0;
    for (std::size_t k = 0; k < i; ++k) sum += A[i][k] * out[k];
    out[i] = (b[i] - sum) / A[i][i];
  }
  for (std::size_t i = m; i-- > 0;) {
    double sum = 0.0;
    for (std::size_t k = i + 1; k < m; ++k) sum += A[k][i] * out[k];
    out[i] = (out[i] - sum) / A[i][i];
  }
  return 0;
}

int EvaluateRadial(const CLBFData& record, const Vector& x, Vector& out) {
  const Matrix samples = record.InputSamples;
  const Vector widths = record.KernelValues;
  const std::size_t n = Size(record.NumberOfSamples);
  const std::size_t d = Size(record.NumberOfInputVariables);
  const double cutOff = 4.71238898038469;
  const double c = std::sin(cutOff) / cutOff;
  out.clear();
  out.resize(n, 0.0);
  for (std::size_t j = 0; j < n; ++j) {
    double r2 = 0.0;
    for (std::size_t i = 0; i < d; ++i) r2 += (x[i] - samples[j][i]) * (x[i] - samples[j][i]);
    const double h = widths[j];
    const double r = std::sqrt(r2);
    switch (record.BasisFunctionType) {
      case LBFGaussian:
        out[j] = std::exp(-(r2 / (h * h)));
        break;
      case LBFCompact: {
        const double t = r / (2.0 * h);
        out[j] = t <= 1.0 ? std::pow(1.0 - t, 4.0) * (4.0 * t + 1.0) : 0.0;
        break;
      }
      case LBFCubic: {
        const double t = r / (2.0 * h);
        out[j] = std::fabs(t) <= 1.0 ? 1.0 - 3.0 * t * t + 2.0 * t * t * t : 0.0;
        break;
      }
      case LBFSinc: {
        const double z = 2.0 * r / h;
        out[j] = z > cutOff ? 0.0 : std::fabs(z) > 1e-06 ? (std::sin(z) / z - c) / (1.0 - c) : 1.0;
        break;
      }
      case LBFRational:
        out[j] = 1.0 / (r2 / (h * h) + 1.0);
        break;
      case LBFTanh:
        out[j] = std::tanh(r * (1.0 / static_cast<double>(d)) / h);
        break;
      default:
        return 1;
    }
  }
  return 0;
}

}  // namespace

int EvaluateSupportVector(const CSVRData& record, const Vector& x, double& y) {
  Matrix S = record.InputSamples;
  record.ScaleAndOverwriteInputSamples(S);
  Matrix P(1, x);
  record.ScaleAndOverwriteInputSamples(P);
  Matrix K;
  if (EvaluateKernelMatrix(record, P, S, K) != 0) return 1;
  y = record.ConstantCoefficient;
  if (record.SVRLossFuncType == 3 || record.SVRLossFuncType == 4) {
    for (std::size_t i = 0; i < record.AlphasStar.size(); ++i) {
      y += (record.AlphasStar[i] - record.Alphas[i]) * K[0][i];
    }
  } else {
    for (std::size_t i = 0; i < record.Betas.size(); ++i) y += record.Betas[i] * K[0][i];
  }
  y = (y - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

int EvaluateMovingLeastSquares(const CMLSData& record, const Vector& x, double& y) {
  if (record.PolynomialType == PolyLinear && record.WeightFunction == WeightConstant) return 1;
  const std::size_t u = Size(record.NumberOfUsedPoints);
  const std::size_t p = Size(record.NumberOfBasisFunctions);
  Vector w;
  if (ComputeWeights(record, x, w) != 0) return 1;
  Matrix B;
  if (ComputeB(record, B) != 0) return 1;
  Vector f;
  if (AppendBasis(record.PolynomialType, x, x.size(), f) != 0) return 1;
  Vector b(B[0].size(), 0.0);
  for (std::size_t k = 0; k < b.size(); ++k) {
    for (std::size_t j = 0; j < u; ++j) b[k] += B[j][k] * (record.OutputSamples[j] * w[j]);
  }
  Matrix A(p, Vector(p, 0.0));
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t k = 0; k <= i; ++k) {
      double sum = 0.0;
      for (std::size_t j = 0; j < u; ++j) sum += w[j] * B[j][i] * B[j][k];
      A[i][k] = A[k][i] = sum;
    }
  }
  const double count = record.NumberOfBasisFunctions;
  for (std::size_t i = 0; i < p; ++i) {
    A[i][i] += std::sqrt(count) * 1e-08 + (count + 10.0) * 1e-14;
  }
  Vector c;
  if (SolveCholesky(A, b, c) != 0) return 1;
  double value = 0.0;
  for (std::size_t k = 0; k < c.size(); ++k) value += f[k] * c[k];
  y = value;
  return 0;
}

int EvaluateLinearBasis(const CLBFData& record, const Vector& x, double& y) {
  if (record.NumberOfSamples == 1) {
    y = record.OutputSamples[0];
    return 0;
  }
  Vector u = x;
  record.ScaleAndOverwriteInputSample(u);
  Vector k;
  if (EvaluateRadial(record, u, k) != 0) return 1;
  Vector f;
  if (AppendBasis(record.PolynomialType, u, u.size(), f) != 0) return 1;
  double T = 0.0;
  for (std::size_t i = 0; i < record.PolynomialCoefficients.size(); ++i) {
    T += f[i] * record.PolynomialCoefficients[i];
  }
  double S = 0.0;
  for (std::size_t j = 0; j < record.KernelCoefficients.size(); ++j) {
    S += k[j] * record.KernelCoefficients[j];
  }
  const double t = S + T;
  y = (t - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

}  // namespace literal
