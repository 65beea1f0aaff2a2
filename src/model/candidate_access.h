#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "model/candidate_content.h"
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
  /// If this throws, the candidate may have a weight without a surface: for one that is dropped
  /// then.
  static void AddSurface(CFittingCandidate& candidate, std::unique_ptr<CRSData> surface,
                         double weight) {
    CFittingCandidate::Content& content = ContentOf(candidate);
    content.Weights.push_back(weight);
    content.RSList.push_back(std::move(surface));
  }
  static void AddSubSurface(CFittingCandidate& candidate, std::unique_ptr<CRSData> surface) {
    ContentOf(candidate).SubRSList.push_back(std::move(surface));
  }
  /// Makes `other`, which is empty, hold the same as `list`. Both hold one content together until
  /// one of them changes or hands out a pointer to a surface. No other thread may use them now.
  static void Share(CFittingCandidates& list, CFittingCandidates& other) {
    for (CFittingCandidate& candidate : list.Candidates) {
      CFittingCandidate::Content* const own = candidate.Own.load(std::memory_order_acquire);
      if (own == nullptr) continue;
      candidate.Shared = std::make_shared<CFittingCandidate::Content>(std::move(*own));
      candidate.Own.store(nullptr, std::memory_order_release);
      delete own;
    }
    other = list;
  }
  static bool IsShared(const CFittingCandidate& candidate) {
    return candidate.Own.load(std::memory_order_acquire) == nullptr;
  }
  /// The same address for candidates that hold one content together.
  static const void* Identity(const CFittingCandidate& candidate) { return &candidate.Read(); }
  /// That of the candidate that is evaluated, null if none was chosen.
  static const void* IdentityForEvaluation(const CFittingCandidates& list) {
    const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
    return candidate != nullptr ? Identity(*candidate) : nullptr;
  }
  /// The surfaces of a candidate that holds them alone.
  static const auto& OwnSurfaces(const CFittingCandidate& candidate) {
    return candidate.OwnContent().RSList;
  }
  static CFittingCandidate::Content& ContentOf(CFittingCandidate& candidate) {
    return candidate.OwnContent();
  }
  static const CFittingCandidate::Content& ContentOf(const CFittingCandidate& candidate) {
    return candidate.Read();
  }
  // The fields themselves, const for a const candidate.
  template <class Candidate>
  static auto& Surfaces(Candidate& candidate) {
    return ContentOf(candidate).RSList;
  }
  template <class Candidate>
  static auto& SubSurfaces(Candidate& candidate) {
    return ContentOf(candidate).SubRSList;
  }
  template <class Candidate>
  static auto& Weights(Candidate& candidate) {
    return ContentOf(candidate).Weights;
  }
  template <class Candidate>
  static auto& NumberOfInputVariables(Candidate& candidate) {
    return ContentOf(candidate).NumberOfInputVariables;
  }
  template <class Candidate>
  static auto& NumberOfSamples(Candidate& candidate) {
    return ContentOf(candidate).NumberOfSamples;
  }
  template <class Candidate>
  static auto& InputSamples(Candidate& candidate) {
    return ContentOf(candidate).InputSamples;
  }
  template <class Candidate>
  static auto& OutputSamples(Candidate& candidate) {
    return ContentOf(candidate).OutputSamples;
  }
  template <class Candidate>
  static auto& InputScaleSlopes(Candidate& candidate) {
    return ContentOf(candidate).InputScaleSlopes;
  }
  template <class Candidate>
  static auto& InputScaleIntercepts(Candidate& candidate) {
    return ContentOf(candidate).InputScaleIntercepts;
  }
  template <class Candidate>
  static auto& OutputScaleSlope(Candidate& candidate) {
    return ContentOf(candidate).OutputScaleSlope;
  }
  template <class Candidate>
  static auto& OutputScaleIntercept(Candidate& candidate) {
    return ContentOf(candidate).OutputScaleIntercept;
  }
  template <class Candidate>
  static auto& SortedInput(Candidate& candidate) {
    return ContentOf(candidate).vvdScSortedInput;
  }
  template <class Candidate>
  static auto& FoldCounts(Candidate& candidate) {
    return ContentOf(candidate).viNumPtsPerFold;
  }
  template <class Candidate>
  static auto& DistanceScale(Candidate& candidate) {
    return ContentOf(candidate).DPMinDist;
  }
};

}  // namespace Tarvane::Plexura::PXROM
