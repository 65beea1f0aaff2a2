#include "families/polynomial/univariate_basis.h"

#include <cmath>

namespace Tarvane::Plexura::PXROM {

namespace {

using Step = UnivariateBasis::Step;

/// The monic polynomials orthogonal to a density follow
///   p(n + 1) = (u - centre) p(n) - spread p(n - 1)
/// (Gautschi, Orthogonal Polynomials, Computation and Approximation, 2004, table 1.1).
struct MonicStep {
  double centre = 0.0;
  double spread = 0.0;
};

MonicStep JacobiStep(double n, double alpha, double beta) {
  const double sum = alpha + beta;
  const double twice = 2.0 * n + sum;
  // The general forms are 0 / 0 in the first steps when alpha and beta cancel.
  if (n == 0.0) return {(beta - alpha) / (sum + 2.0), 0.0};
  const double centre = (beta * beta - alpha * alpha) / (twice * (twice + 2.0));
  if (n == 1.0) {
    return {centre, 4.0 * (1.0 + alpha) * (1.0 + beta) / (twice * twice * (twice + 1.0))};
  }
  return {centre, 4.0 * n * (n + alpha) * (n + beta) * (n + sum) /
                      (twice * twice * (twice + 1.0) * (twice - 1.0))};
}

Step ClassicalJacobi(double n, double alpha, double beta) {
  const double sum = alpha + beta;
  if (n == 0.0) return {0.5 * sum + 1.0, 0.5 * (alpha - beta), 0.0};
  const double twice = 2.0 * n + sum;
  const double divisor = (n + 1.0) * (n + sum + 1.0);
  return {(twice + 1.0) * (twice + 2.0) / (2.0 * divisor),
          (alpha * alpha - beta * beta) * (twice + 1.0) / (2.0 * divisor * twice),
          (n + alpha) * (n + beta) * (twice + 2.0) / (divisor * twice)};
}

}  // namespace

bool UnivariateBasis::IsSound() const {
  switch (basis_) {
    case PolyBasisMonomial:
    case PolyBasisLegendre:
    case PolyBasisHermite:
    case PolyBasisRecurrence:
      return true;
    case PolyBasisLaguerre:
      return alpha_ > -1.0;
    case PolyBasisJacobi:
      return alpha_ > -1.0 && beta_ > -1.0;
  }
  return false;
}

Step UnivariateBasis::Classical(double n) const {
  switch (basis_) {
    case PolyBasisLegendre:
      return {(2.0 * n + 1.0) / (n + 1.0), 0.0, n / (n + 1.0)};
    case PolyBasisHermite:
      return {1.0, 0.0, n};
    case PolyBasisLaguerre:
      return {-1.0 / (n + 1.0), (2.0 * n + 1.0 + alpha_) / (n + 1.0), (n + alpha_) / (n + 1.0)};
    case PolyBasisJacobi:
      return ClassicalJacobi(n, alpha_, beta_);
    case PolyBasisMonomial:
    case PolyBasisRecurrence:
      break;
  }
  return {};
}

Step UnivariateBasis::Orthonormal(double n) const {
  const auto monicStep = [this](double k) -> MonicStep {
    switch (basis_) {
      case PolyBasisLegendre:
        return {0.0, k * k / (4.0 * k * k - 1.0)};
      case PolyBasisHermite:
        return {0.0, k};
      case PolyBasisLaguerre:
        return {2.0 * k + 1.0 + alpha_, k * (k + alpha_)};
      case PolyBasisJacobi:
        return JacobiStep(k, alpha_, beta_);
      case PolyBasisMonomial:
      case PolyBasisRecurrence:
        break;
    }
    return {};
  };
  const MonicStep step = monicStep(n);
  const double root = std::sqrt(monicStep(n + 1.0).spread);
  // Laguerre polynomials change their sign with each degree.
  const double slope = (basis_ == PolyBasisLaguerre ? -1.0 : 1.0) / root;
  return {slope, -step.centre * slope, n > 0.0 ? std::sqrt(step.spread) / root : 0.0};
}

Step UnivariateBasis::StepAfter(int degree) const {
  if (NeedsSteps()) {
    const double* const step = steps_ + std::size_t{3} * static_cast<std::size_t>(degree);
    return {step[0], step[1], step[2]};
  }
  return isOrthonormal_ ? Orthonormal(degree) : Classical(degree);
}

void UnivariateBasis::FillValues(int highest, double u, double* values) const {
  values[0] = 1.0;
  for (int n = 0; n < highest; ++n) {
    if (!HasSteps()) {
      values[n + 1] = values[n] * u;
      continue;
    }
    const Step step = StepAfter(n);
    values[n + 1] = (step.slope * u + step.intercept) * values[n];
    if (n > 0) values[n + 1] -= step.previous * values[n - 1];
  }
}

void UnivariateBasis::FillSlopes(int highest, double u, const double* values,
                                 double* slopes) const {
  slopes[0] = 0.0;
  for (int n = 0; n < highest; ++n) {
    if (!HasSteps()) {
      slopes[n + 1] = (n + 1.0) * values[n];
      continue;
    }
    const Step step = StepAfter(n);
    slopes[n + 1] = step.slope * values[n] + (step.slope * u + step.intercept) * slopes[n];
    if (n > 0) slopes[n + 1] -= step.previous * slopes[n - 1];
  }
}

}  // namespace Tarvane::Plexura::PXROM
