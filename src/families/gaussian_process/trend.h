#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/gaussian_process.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

/// The trend of a record: the functions of its polynomial type, then its monomials.
class Trend {
 public:
  /// The record must outlive it.
  explicit Trend(const CGaussianProcessData& record) : record_(record) {}

  /// Whether the type is one, the exponents fit the inputs and none is negative, and there are as
  /// many coefficients as functions.
  bool Fits() const;

  // Only if it fits.

  std::size_t FunctionCount() const { return record_.PolynomialCoefficients.size(); }
  /// The functions at the scaled point `u`. Powers are computed by repeated squaring.
  void FunctionsAt(const double* u, double* f) const;
  /// Adds the gradient at `u` of the weighted functions to `gradient`.
  void AddGradient(const double* weights, const double* u, double* gradient) const;

 private:
  std::size_t InputCount() const;
  std::size_t BasisCount() const;

  const CGaussianProcessData& record_;
};

/// The sum of a[k] b[k] in ascending order, from 0.
inline double Product(const double* a, const double* b, std::size_t count) {
  double sum = 0.0;
  for (std::size_t k = 0; k < count; ++k) sum += a[k] * b[k];
  return sum;
}

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
