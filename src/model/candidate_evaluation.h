#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

/// One point on its way through the candidates of several outputs: the caller's values and, for
/// surfaces that look at the point, a vector scaled for the candidate at hand. The vector is made
/// when it is first asked for and reused from candidate to candidate; constants never ask.
class EvaluationPoint {
 public:
  EvaluationPoint(const double* x, std::size_t size) : x_(x), size_(size) {}

  std::size_t Size() const { return size_; }
  /// Turns to `candidate`. False when the point does not fit its scaling.
  bool TurnTo(const CFittingCandidate& candidate);
  /// The point scaled for the candidate last turned to.
  const std::vector<double>& Scaled();

 private:
  const double* x_;
  std::size_t size_;
  const CFittingCandidate* candidate_ = nullptr;
  bool isScaled_ = false;
  std::vector<double> scaled_;
};

// The two forms of CFittingCandidatesEvaluator.
int EvaluateCandidate(const CFittingCandidates& candidates, EvaluationPoint& point, double& value);
int EvaluateCandidate(const CFittingCandidates& candidates, EvaluationPoint& point, double& value,
                      double& error);

}  // namespace Tarvane::Plexura::PXROM
