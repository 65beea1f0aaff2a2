#include "reference/polynomial_literal.h"

#include <cmath>

#include "reference/regression_literal.h"

namespace literal {

namespace {

template <class Element>
Element At(const std::vector<Element>& list, std::size_t v, Element missing) {
  return list.empty() ? missing : list[v];
}

double Legendre(int degree, double u) {
  double last = 1.0;
  double p = u;
  for (int n = 1; n < degree; ++n) {
    const double next = (2.0 * n + 1.0) / (n + 1.0) * u * p - n / (n + 1.0) * last;
    last = p;
    p = next;
  }
  return p;
}

double Hermite(int degree, double u) {
  double last = 1.0;
  double p = u;
  for (int n = 1; n < degree; ++n) {
    const double next = u * p - n * last;
    last = p;
    p = next;
  }
  return p;
}

double Laguerre(int degree, double alpha, double u) {
  double last = 0.0;
  double p = 1.0;
  for (int n = 0; n < degree; ++n) {
    const double a = -1.0 / (n + 1.0);
    const double b = (2.0 * n + 1.0 + alpha) / (n + 1.0);
    const double next = (a * u + b) * p - (n + alpha) / (n + 1.0) * last;
    last = p;
    p = next;
  }
  return p;
}

double Jacobi(int degree, double alpha, double beta, double u) {
  const double s = alpha + beta;
  double last = 1.0;
  double p = (0.5 * s + 1.0) * u + 0.5 * (alpha - beta);
  for (int n = 1; n < degree; ++n) {
    const double m = 2.0 * n + s;
    const double divisor = (n + 1.0) * (n + s + 1.0);
    const double a = (m + 1.0) * (m + 2.0) / (2.0 * divisor);
    const double b = (alpha * alpha - beta * beta) * (m + 1.0) / (2.0 * divisor * m);
    const double c = (n + alpha) * (n + beta) * (m + 2.0) / (divisor * m);
    const double next = (a * u + b) * p - c * last;
    last = p;
    p = next;
  }
  return p;
}

/// Centre and spread of step n of the monic polynomials.
void MonicStep(int basis, int n, double alpha, double beta, double& centre, double& spread) {
  const double s = alpha + beta;
  const double m = 2.0 * n + s;
  centre = 0.0;
  spread = 0.0;
  if (basis == 1) spread = n * 1.0 * n / (4.0 * n * n - 1.0);
  if (basis == 2) spread = n;
  if (basis == 3) {
    centre = 2.0 * n + 1.0 + alpha;
    spread = n * (n + alpha);
  }
  if (basis != 4) return;
  if (n == 0) {
    centre = (beta - alpha) / (s + 2.0);
    return;
  }
  centre = (beta * beta - alpha * alpha) / (m * (m + 2.0));
  spread = n == 1 ? 4.0 * (1.0 + alpha) * (1.0 + beta) / (m * m * (m + 1.0))
                  : 4.0 * n * (n + alpha) * (n + beta) * (n + s) / (m * m * (m + 1.0) * (m - 1.0));
}

double Orthonormal(int basis, int degree, double alpha, double beta, double u) {
  double last = 0.0;
  double p = 1.0;
  for (int n = 0; n < degree; ++n) {
    double centre = 0.0;
    double spread = 0.0;
    double nextCentre = 0.0;
    double nextSpread = 0.0;
    MonicStep(basis, n, alpha, beta, centre, spread);
    MonicStep(basis, n + 1, alpha, beta, nextCentre, nextSpread);
    const double root = std::sqrt(nextSpread);
    const double slope = (basis == 3 ? -1.0 : 1.0) / root;
    const double ahead = (slope * u + -centre * slope) * p;
    const double next = n == 0 ? ahead : ahead - std::sqrt(spread) / root * last;
    last = p;
    p = next;
  }
  return p;
}

/// How many steps the recurrence of a variable has.
int StepsOf(const CPolynomialData& record, std::size_t v) {
  if (At<int>(record.VariableBases, v, 0) != 5) return 0;
  int largest = 0;
  for (std::size_t at = v; at < record.Degrees.size(); at += record.VariableInputs.size()) {
    if (record.Degrees[at] > largest) largest = record.Degrees[at];
  }
  return largest;
}

double Own(const CPolynomialData& record, std::size_t v, int degree, double u) {
  std::size_t at = 0;
  for (std::size_t w = 0; w < v; ++w) at += 3U * static_cast<std::size_t>(StepsOf(record, w));
  double last = 0.0;
  double p = 1.0;
  for (int n = 0; n < degree; ++n, at += 3) {
    const double ahead = (record.Recurrences[at] * u + record.Recurrences[at + 1]) * p;
    const double next = n == 0 ? ahead : ahead - record.Recurrences[at + 2] * last;
    last = p;
    p = next;
  }
  return p;
}

double Polynomial(const CPolynomialData& record, std::size_t v, int degree, double u) {
  const int basis = At<int>(record.VariableBases, v, 0);
  const double alpha = At(record.VariableAlphas, v, 0.0);
  const double beta = At(record.VariableBetas, v, 0.0);
  if (basis == 5) return Own(record, v, degree, u);
  if (basis != 0 && record.Orthonormal) return Orthonormal(basis, degree, alpha, beta, u);
  if (basis == 1) return Legendre(degree, u);
  if (basis == 2) return Hermite(degree, u);
  if (basis == 3) return Laguerre(degree, alpha, u);
  if (basis == 4) return Jacobi(degree, alpha, beta, u);
  double power = 1.0;
  for (int n = 0; n < degree; ++n) power *= u;
  return power;
}

template <class Element>
bool Fits(const std::vector<Element>& list, std::size_t count) {
  return list.empty() || list.size() == count;
}

/// The inputs as the polynomials see them; 1 for what no evaluation takes.
int Prepare(const CPolynomialData& record, const std::vector<double>& x, std::vector<double>& u) {
  const std::size_t variables = record.VariableInputs.size();
  if (!record.ReadyForEvaluation || record.Stopped) return 1;
  if (static_cast<int>(x.size()) != record.NumberOfInputVariables) return 1;
  if (record.InputScaleSlopes.size() != x.size()) return 1;
  if (record.InputScaleIntercepts.size() != x.size()) return 1;
  if (record.Coefficients.empty()) return 1;
  if (record.Degrees.size() != record.Coefficients.size() * variables) return 1;
  if (!Fits(record.VariableTransformTypes, variables)) return 1;
  if (!Fits(record.VariableTransformValues, variables)) return 1;
  if (!Fits(record.VariableLambdas, variables)) return 1;
  if (!Fits(record.VariableSlopes, variables)) return 1;
  if (!Fits(record.VariableIntercepts, variables)) return 1;
  if (!Fits(record.VariableBases, variables)) return 1;
  if (!Fits(record.VariableAlphas, variables)) return 1;
  if (!Fits(record.VariableBetas, variables)) return 1;
  for (const int input : record.VariableInputs) {
    if (input < 0 || input >= static_cast<int>(x.size())) return 1;
  }
  for (const int degree : record.Degrees) {
    if (degree < 0 || degree > 1000) return 1;
  }
  int steps = 0;
  for (std::size_t v = 0; v < variables; ++v) steps += StepsOf(record, v);
  if (record.Recurrences.size() != 3U * static_cast<std::size_t>(steps)) return 1;
  for (std::size_t v = 0; v < variables; ++v) {
    const auto i = static_cast<std::size_t>(record.VariableInputs[v]);
    double z = record.InputScaleSlopes[i] * x[i] + record.InputScaleIntercepts[i];
    if (TransformForward(At<int>(record.VariableTransformTypes, v, 0),
                         At(record.VariableTransformValues, v, 0.0),
                         At(record.VariableLambdas, v, 0.0), z) != 0) {
      return 1;
    }
    u.push_back(At(record.VariableSlopes, v, 1.0) * z + At(record.VariableIntercepts, v, 0.0));
  }
  return 0;
}

int Sum(const CPolynomialData& record, const std::vector<double>& x, std::vector<double>& products,
        double& s) {
  std::vector<double> u;
  if (Prepare(record, x, u) != 0) return 1;
  s = 0.0;
  for (std::size_t k = 0; k < record.Coefficients.size(); ++k) {
    double product = 1.0;
    for (std::size_t v = 0; v < u.size(); ++v) {
      const int degree = record.Degrees[k * u.size() + v];
      if (degree > 0) product *= Polynomial(record, v, degree, u[v]);
    }
    products.push_back(product);
    s += record.Coefficients[k] * product;
  }
  return 0;
}

int Finish(const CPolynomialData& record, double s, double& y) {
  if (TransformBack(record.OutputTransformType, record.OutputTransformValue, record.OutputLambda,
                    s) != 0) {
    return 1;
  }
  y = (s - record.OutputScaleIntercept) / record.OutputScaleSlope;
  return 0;
}

/// The derivative of the way back.
double BackSlope(const CPolynomialData& record, double s) {
  const double a = record.OutputTransformValue;
  double lambda = record.OutputLambda;
  const int type = record.OutputTransformType;
  if (type == 1) return 1.0 / s;
  if (type == 2) return std::log(a) * std::exp(s);
  if (type == 3) return std::exp(s);
  if (type == 4) return std::pow(10.0, s) * std::log(10.0);
  if (type == 5) return 2.0 * s;
  if (type == 6) return std::pow(s, 1.0 / a - 1.0) / a;
  if (type < 7) return 1.0;
  if (type == 9 && s < 0.0) {
    s = -s;
    lambda = 2.0 - lambda;
  }
  const bool isZero = std::fabs(lambda) < 1e-06;
  const double slope = isZero ? std::exp(s) : std::pow(lambda * s + 1.0, 1.0 / lambda - 1.0);
  if (type != 8) return slope;
  return std::exp(isZero ? std::exp(s) : std::pow(lambda * s + 1.0, 1.0 / lambda)) * slope;
}

}  // namespace

int EvaluatePolynomial(const CPolynomialData& record, const std::vector<double>& x, double& y) {
  std::vector<double> products;
  double s = 0.0;
  if (Sum(record, x, products, s) != 0) return 1;
  return Finish(record, s, y);
}

int EvaluatePolynomial(const CPolynomialData& record, const std::vector<double>& x, double& y,
                       double& predictorError) {
  std::vector<double> products;
  double s = 0.0;
  if (Sum(record, x, products, s) != 0 || Finish(record, s, y) != 0) return 1;
  if (!record.SavePredictorError || record.Covariance.size() != products.size()) return -2;
  double q = 0.0;
  for (std::size_t i = 0; i < products.size(); ++i) {
    for (std::size_t j = 0; j < products.size(); ++j) {
      q += products[i] * record.Covariance[i][j] * products[j];
    }
  }
  if (q < 0.0) q = 0.0;
  const double slope = std::fabs(BackSlope(record, s));
  predictorError = slope * std::sqrt(q) / std::fabs(record.OutputScaleSlope);
  return 0;
}

}  // namespace literal
