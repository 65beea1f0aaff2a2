#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "model/cross_validation.h"
#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

/// One point for the candidates of several outputs: the caller's values and, for surfaces that use
/// the point, a vector that is scaled for the current candidate. The vector is made at its first
/// use and reused for other candidates. Constants never use it.
class EvaluationPoint {
 public:
  EvaluationPoint(const double* x, std::size_t size) : x_(x), size_(size) {}

  std::size_t Size() const { return size_; }
  /// Makes `candidate` the current one. False when the point does not fit its scaling.
  bool TurnTo(const CFittingCandidate& candidate);
  /// The point, scaled for the current candidate.
  const std::vector<double>& Scaled();

 private:
  const double* x_;
  std::size_t size_;
  const CFittingCandidate* candidate_ = nullptr;
  const void* identity_ = nullptr;  ///< outputs that share a candidate share its scaled point
  bool isScaled_ = false;
  std::vector<double> scaled_;
};

/// The cross-validation that the error of `candidate` comes from, for points of `inputs` values: it
/// refers to the candidate. Empty when its data do not fit its surfaces and such points.
std::optional<CrossValidation> ValidationOf(const CFittingCandidate& candidate, std::size_t inputs);

// The two forms of CFittingCandidatesEvaluator.
int EvaluateCandidate(const CFittingCandidates& candidates, EvaluationPoint& point, double& value);
int EvaluateCandidate(const CFittingCandidates& candidates, EvaluationPoint& point, double& value,
                      double& error);

}  // namespace Tarvane::Plexura::PXROM
