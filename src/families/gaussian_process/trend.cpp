#include "families/gaussian_process/trend.h"

#include <algorithm>
#include <cstdint>

#include "numerics/polynomial_basis.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

namespace {

double Power(double base, int exponent) {
  double power = 1.0;
  for (; exponent > 0; exponent /= 2) {
    if (exponent % 2 == 1) power *= base;
    base *= base;
  }
  return power;
}

/// The product of the powers, without input `left` if that is one; factors of 1 are left out.
double MonomialOf(const int* exponents, const double* u, std::size_t inputs, std::size_t left) {
  double product = 1.0;
  for (std::size_t i = 0; i < inputs; ++i) {
    if (exponents[i] != 0 && i != left) product *= Power(u[i], exponents[i]);
  }
  return product;
}

}  // namespace

bool Trend::Fits() const {
  const std::int64_t basis =
      PolynomialCount(record_.PolynomialType, record_.NumberOfInputVariables);
  if (basis < 0) return false;
  const std::size_t inputs = InputCount();
  const std::vector<int>& exponents = record_.Monomials;
  if (exponents.empty()) return static_cast<std::uint64_t>(basis) == FunctionCount();
  if (inputs == 0 || exponents.size() % inputs != 0) return false;
  if (std::any_of(exponents.begin(), exponents.end(), [](int e) { return e < 0; })) return false;
  return static_cast<std::uint64_t>(basis) + exponents.size() / inputs == FunctionCount();
}

void Trend::FunctionsAt(const double* u, double* f) const {
  const std::size_t inputs = InputCount();
  EvaluatePolynomialBasis(record_.PolynomialType, u, inputs, f);
  const int* exponents = record_.Monomials.data();
  for (std::size_t k = BasisCount(); k < FunctionCount(); ++k, exponents += inputs) {
    f[k] = MonomialOf(exponents, u, inputs, inputs);
  }
}

void Trend::AddGradient(const double* weights, const double* u, double* gradient) const {
  const std::size_t inputs = InputCount();
  const E_PolynomialType type = record_.PolynomialType;
  std::size_t k = type >= PolyConstant ? 1 : 0;
  for (std::size_t i = 0; type >= PolyLinear && i < inputs; ++i) gradient[i] += weights[k++];
  for (std::size_t i = 0; type == PolyPureQuadratic && i < inputs; ++i) {
    gradient[i] += 2.0 * weights[k++] * u[i];
  }
  for (std::size_t i = 0; type == PolyFullQuadratic && i < inputs; ++i) {
    for (std::size_t j = i; j < inputs; ++j, ++k) {
      gradient[i] += weights[k] * u[j];
      gradient[j] += weights[k] * u[i];
    }
  }
  const int* exponents = record_.Monomials.data();
  for (; k < FunctionCount(); ++k, exponents += inputs) {
    for (std::size_t i = 0; i < inputs; ++i) {
      const int e = exponents[i];
      if (e == 0) continue;
      gradient[i] += weights[k] * e * Power(u[i], e - 1) * MonomialOf(exponents, u, inputs, i);
    }
  }
}

std::size_t Trend::InputCount() const {
  return static_cast<std::size_t>(std::max(record_.NumberOfInputVariables, 0));
}

std::size_t Trend::BasisCount() const {
  return static_cast<std::size_t>(
      PolynomialCount(record_.PolynomialType, record_.NumberOfInputVariables));
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
