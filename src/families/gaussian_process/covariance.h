#pragma once

#include <cstddef>
#include <vector>

#include "kernels/kernels.h"
#include "pxrom/gaussian_process.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

/// As many centres are gone through at a time, so that three blocks of their values stay in the
/// nearest cache.
constexpr std::size_t kCentresAtOnce = 32;

/// Whether an E_CovarianceFunctionType has a parameter, which is then above 0.
constexpr bool HasParameter(int function) {
  return function == CovRationalQuadratic || function == CovGeneralisedExponential;
}

/// A function of the distance in a term.
struct Factor {
  const kernels::Kernel* kernel = nullptr;
  kernels::Constants constants;
  const double* rates = nullptr;  ///< inverse lengths, one per input or one for all
};

/// The covariance function of a record: a sum of products.
class Covariance {
 public:
  /// What does not fit together gives an empty one: see CGaussianProcessData. The record may go.
  explicit Covariance(const CGaussianProcessData& record);
  Covariance(const Covariance&) = delete;
  Covariance& operator=(const Covariance&) = delete;

  explicit operator bool() const { return !terms_.empty(); }
  /// That of a point with itself.
  double AtDistance0() const;
  /// The covariances of the scaled point `u` with `count` rows, which are scaled by `slopes` and
  /// `intercepts`.
  void OfRows(const double* u, const std::vector<double>* rows, std::size_t count,
              const double* slopes, const double* intercepts, double* covariances) const;

  /// Calls begin(amplitude) for each term, multiply(factor) for each of its factors, and end()
  /// after them: the order of all sums of products.
  template <class Begin, class Multiply, class End>
  void ForEachTerm(const Begin& begin, const Multiply& multiply, const End& end) const {
    for (const Term& term : terms_) {
      begin(term.amplitude);
      for (std::size_t f = term.begin; f < term.end; ++f) multiply(factors_[f]);
      end();
    }
  }

  /// Adds the gradient at `u` of the weighted covariances with `count` scaled `centres`, row by
  /// row. `work` has room for GradientWorkSize values.
  void AddGradient(const double* u, const double* centres, std::size_t count, const double* weights,
                   double* work, double* gradient) const;
  std::size_t GradientWorkSize() const;

  std::size_t InputCount() const { return inputs_; }
  bool HasOneRate() const { return hasOneRate_; }
  std::size_t FactorCount() const { return factors_.size(); }

 private:
  struct Term {
    double amplitude = 0.0;
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  void AddGradientOfSome(const double* u, const double* centres, std::size_t count,
                         const double* weights, double* work, double* gradient) const;
  void FactorAtCentres(const Factor& factor, const double* u, const double* centres,
                       std::size_t count, double* values) const;

  std::size_t inputs_ = 0;
  std::vector<Term> terms_;
  std::vector<Factor> factors_;
  /// The inverse lengths: 0 for an infinite one.
  std::vector<double> rates_;
  bool hasOneRate_ = false;
};

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
