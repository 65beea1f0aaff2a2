#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

/// What reading, writing and evaluation need of candidates beyond their public operations: to fill
/// one in place, hand surfaces over, and look at the data, all without a copy.
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
  static const std::vector<std::shared_ptr<CRSData>>& Surfaces(const CFittingCandidate& candidate) {
    return candidate.RSList;
  }
  static const std::vector<std::shared_ptr<CRSData>>& SubSurfaces(
      const CFittingCandidate& candidate) {
    return candidate.SubRSList;
  }
  static const std::vector<double>& Weights(const CFittingCandidate& candidate) {
    return candidate.Weights;
  }
  static const std::vector<std::vector<double>>& InputSamples(const CFittingCandidate& candidate) {
    return candidate.InputSamples;
  }
  static std::vector<std::vector<double>>& InputSamples(CFittingCandidate& candidate) {
    return candidate.InputSamples;
  }
  static const std::vector<double>& OutputSamples(const CFittingCandidate& candidate) {
    return candidate.OutputSamples;
  }
  static std::vector<double>& OutputSamples(CFittingCandidate& candidate) {
    return candidate.OutputSamples;
  }
  static const std::vector<double>& InputScaleSlopes(const CFittingCandidate& candidate) {
    return candidate.InputScaleSlopes;
  }
  static std::vector<double>& InputScaleSlopes(CFittingCandidate& candidate) {
    return candidate.InputScaleSlopes;
  }
  static const std::vector<double>& InputScaleIntercepts(const CFittingCandidate& candidate) {
    return candidate.InputScaleIntercepts;
  }
  static std::vector<double>& InputScaleIntercepts(CFittingCandidate& candidate) {
    return candidate.InputScaleIntercepts;
  }
  static const std::vector<std::vector<double>>& SortedInput(const CFittingCandidate& candidate) {
    return candidate.vvdScSortedInput;
  }
  static std::vector<std::vector<double>>& SortedInput(CFittingCandidate& candidate) {
    return candidate.vvdScSortedInput;
  }
  static const std::vector<int>& FoldCounts(const CFittingCandidate& candidate) {
    return candidate.viNumPtsPerFold;
  }
  static std::vector<int>& FoldCounts(CFittingCandidate& candidate) {
    return candidate.viNumPtsPerFold;
  }
};

}  // namespace Tarvane::Plexura::PXROM
