#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

/// What reading needs of candidates beyond their public operations: to fill one in place and hand
/// surfaces over without a copy.
struct CandidateAccess {
  static CFittingCandidate& Append(CFittingCandidates& list) {
    return list.Candidates.emplace_back();
  }
  static void AddSurface(CFittingCandidate& candidate, std::unique_ptr<CRSData> surface,
                         double weight) {
    candidate.RSList.reserve(candidate.RSList.size() + 1);
    candidate.Weights.push_back(weight);
    candidate.RSList.push_back(std::move(surface));
  }
  static void AddSubSurface(CFittingCandidate& candidate, std::unique_ptr<CRSData> surface) {
    candidate.SubRSList.push_back(std::move(surface));
  }
  static std::vector<std::vector<double>>& InputSamples(CFittingCandidate& candidate) {
    return candidate.InputSamples;
  }
  static std::vector<double>& OutputSamples(CFittingCandidate& candidate) {
    return candidate.OutputSamples;
  }
  static std::vector<double>& InputScaleSlopes(CFittingCandidate& candidate) {
    return candidate.InputScaleSlopes;
  }
  static std::vector<double>& InputScaleIntercepts(CFittingCandidate& candidate) {
    return candidate.InputScaleIntercepts;
  }
  static std::vector<std::vector<double>>& SortedInput(CFittingCandidate& candidate) {
    return candidate.vvdScSortedInput;
  }
  static std::vector<int>& FoldCounts(CFittingCandidate& candidate) {
    return candidate.viNumPtsPerFold;
  }
};

}  // namespace Tarvane::Plexura::PXROM
