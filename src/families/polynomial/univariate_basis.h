#pragma once

#include <cstddef>

#include "pxrom/polynomial.h"

namespace Tarvane::Plexura::PXROM {

/// The polynomials of one variable (E_PolynomialBasis) by their three-term recurrence.
class UnivariateBasis {
 public:
  UnivariateBasis(E_PolynomialBasis basis, double alpha, double beta, bool isOrthonormal)
      : basis_(basis), isOrthonormal_(isOrthonormal), alpha_(alpha), beta_(beta) {}

  /// Takes the steps of PolyBasisRecurrence, three numbers for each, which must outlive it.
  void SetSteps(const double* steps) { steps_ = steps; }
  bool NeedsSteps() const { return basis_ == PolyBasisRecurrence; }

  /// Whether the basis is known and its parameters are above -1.
  bool IsSound() const;

  /// The polynomial of the degree n + 1 is (slope u + intercept) p(n) - previous p(n - 1).
  struct Step {
    double slope = 1.0;
    double intercept = 0.0;
    double previous = 0.0;
  };
  /// Monomials have none: they multiply by u alone.
  bool HasSteps() const { return basis_ != PolyBasisMonomial; }
  /// For n from 0.
  Step StepAfter(int degree) const;

  /// The values of the degrees 0 to `highest` at `u`.
  void FillValues(int highest, double u, double* values) const;
  /// Their derivatives, from the values.
  void FillSlopes(int highest, double u, const double* values, double* slopes) const;

 private:
  Step Classical(double n) const;
  Step Orthonormal(double n) const;

  E_PolynomialBasis basis_;
  bool isOrthonormal_;
  double alpha_;
  double beta_;
  const double* steps_ = nullptr;
};

}  // namespace Tarvane::Plexura::PXROM
