#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "pxrom/fitting_candidates.h"

namespace Tarvane::Plexura::PXROM {

/// What reading, writing and evaluation need in addition to the public operations of candidates: to
/// fill one in place, to move surfaces and to read the data, all without a copy.
struct CandidateAccess {
  static CFittingCandidate& Append(CFittingCandidates& list) {
    return list.Candidates.emplace_back();
  }
  /// Exchanges the candidates of both lists, without a copy and without an exception.
  static void HandOver(CFittingCandidates& from, CFittingCandidates& to) noexcept {
    from.Candidates.swap(to.Candidates);
  }
  /// If this throws, the candidate may have a weight without a surface: for one that is dropped then.
  static void AddSurface(CFittingCandidate& candidate, std::unique_ptr<CRSData> surface,
                         double weight) {
    candidate.Weights.push_back(weight);
    candidate.RSList.push_back(std::move(surface));
  }
  static void AddSubSurface(CFittingCandidate& candidate, std::unique_ptr<CRSData> surface) {
    candidate.SubRSList.push_back(std::move(surface));
  }
  // The fields themselves, const for a const candidate.
  template <class Candidate>
  static auto& Surfaces(Candidate& candidate) {
    return candidate.RSList;
  }
  template <class Candidate>
  static auto& SubSurfaces(Candidate& candidate) {
    return candidate.SubRSList;
  }
  template <class Candidate>
  static auto& Weights(Candidate& candidate) {
    return candidate.Weights;
  }
  template <class Candidate>
  static auto& NumberOfInputVariables(Candidate& candidate) {
    return candidate.NumberOfInputVariables;
  }
  template <class Candidate>
  static auto& NumberOfSamples(Candidate& candidate) {
    return candidate.NumberOfSamples;
  }
  template <class Candidate>
  static auto& InputSamples(Candidate& candidate) {
    return candidate.InputSamples;
  }
  template <class Candidate>
  static auto& OutputSamples(Candidate& candidate) {
    return candidate.OutputSamples;
  }
  template <class Candidate>
  static auto& InputScaleSlopes(Candidate& candidate) {
    return candidate.InputScaleSlopes;
  }
  template <class Candidate>
  static auto& InputScaleIntercepts(Candidate& candidate) {
    return candidate.InputScaleIntercepts;
  }
  template <class Candidate>
  static auto& OutputScaleSlope(Candidate& candidate) {
    return candidate.OutputScaleSlope;
  }
  template <class Candidate>
  static auto& OutputScaleIntercept(Candidate& candidate) {
    return candidate.OutputScaleIntercept;
  }
  template <class Candidate>
  static auto& SortedInput(Candidate& candidate) {
    return candidate.vvdScSortedInput;
  }
  template <class Candidate>
  static auto& FoldCounts(Candidate& candidate) {
    return candidate.viNumPtsPerFold;
  }
  template <class Candidate>
  static auto& DistanceScale(Candidate& candidate) {
    return candidate.DPMinDist;
  }
};

}  // namespace Tarvane::Plexura::PXROM
