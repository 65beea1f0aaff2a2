#pragma once

#include <cstddef>
#include <vector>

#include "families/gaussian_process/covariance.h"
#include "records/prepared_surface.h"

namespace Tarvane::Plexura::PXROM::gaussian_process {

/// The weighted sum of covariances in the form that the fast loops take (kernels/shapes.h).
class FastCovariance {
 public:
  /// `centres` are scaled, row by row, one for each of `weights`.
  FastCovariance(const Covariance& covariance, const std::vector<double>& centres,
                 const std::vector<double>& weights);

  /// Whether there is such a form. Not where a function has none.
  bool IsThere() const { return !terms_.empty(); }
  /// How far a sum may be from the exact one.
  double Deviation() const { return deviation_; }
  /// Whether a block of scaled points is near enough that nothing becomes infinite.
  bool Serves(const double* x) const;

  std::size_t WorkSize() const;
  /// Whether the values of a kernel are all that a sum weighs, so that they can be shared.
  bool IsOneKernel() const { return terms_.size() == 1 && terms_[0].factors.size() == 1; }
  /// Adds the sums at the scaled points `x`, input by input, to `sums`. The values of one kernel
  /// are those of `block` in `shared`, which is null where they are not shared.
  void AddSums(std::size_t points, const kernels::LoopTable& loops, const double* x, double* work,
               double* sums, batch::SharedValues* shared, std::size_t block) const;

 private:
  /// A factor with its centres, multiplied by the factors of the inputs.
  struct Prepared {
    const kernels::Kernel* kernel = nullptr;
    kernels::Constants constants;
    std::vector<double> inputFactors;
    std::vector<double> centres;
  };
  struct Term {
    std::vector<double> weights;  ///< times the amplitude
    std::vector<Prepared> factors;
  };

  /// Adds a factor to a term; false if it has no fast form.
  bool Take(const Factor& factor, bool hasOneRate, const std::vector<double>& centres, Term& term,
            double& deviation) const;

  std::size_t inputs_;
  std::size_t centreCount_;
  std::vector<Term> terms_;
  double deviation_ = 0.0;
};

}  // namespace Tarvane::Plexura::PXROM::gaussian_process
