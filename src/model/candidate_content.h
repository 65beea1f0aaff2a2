#pragma once

#include <memory>
#include <vector>

#include "pxrom/fitting_candidate.h"

namespace Tarvane::Plexura::PXROM {

/// All that a candidate consists of. A copy of it shares the surfaces.
struct CFittingCandidate::Content {
  E_FittingCandidateVersion Version = FittingCandidateVersion192;
  Surfaces RSList;
  Surfaces SubRSList;
  std::vector<double> Weights;
  int NumberOfInputVariables = 0;
  int NumberOfSamples = 0;
  std::vector<std::vector<double>> InputSamples;
  std::vector<double> OutputSamples;
  std::vector<double> InputScaleSlopes;
  std::vector<double> InputScaleIntercepts;
  double OutputScaleSlope = 1.0;
  double OutputScaleIntercept = 0.0;
  int SubRSPerRS = 0;
  bool bIsErrPredRequired = false;
  std::vector<int> viNumPtsPerFold;
  std::vector<std::vector<double>> vvdScSortedInput;
  double DPMinDist = 0.0;

  /// A copy with clones of the surfaces.
  std::unique_ptr<Content> Clone() const;
};

// Inline, since an evaluation of a constant takes less than two calls.
inline const CFittingCandidate::Content& CFittingCandidate::Read() const {
  const Content* const own = Own.load(std::memory_order_acquire);
  return own != nullptr ? *own : *Shared;
}

}  // namespace Tarvane::Plexura::PXROM
