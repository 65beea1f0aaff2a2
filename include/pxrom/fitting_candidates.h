#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/fitting_candidate.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Version of a candidate list.
enum E_FittingCandidatesVersion : std::int32_t { FittingCandidatesVersion170 = 170 };

/// The candidates fitted for one output, one of them chosen for evaluation. A list that was read
/// from a database holds exactly one.
///
/// Ownership: candidates are held by value and copied in, surfaces cloned (but see
/// CFittingCandidate about assigning over candidates that exist).
/// Threads: const operations may run side by side.
class PXROM_API CFittingCandidates {
 public:
  CFittingCandidates();
  CFittingCandidates(const CFittingCandidates&);
  CFittingCandidates& operator=(const CFittingCandidates&);

  /// A new list by the copy constructor; the caller owns it.
  virtual CFittingCandidates* Clone() const;
  virtual ~CFittingCandidates();
  virtual int ResetData();

  E_DataType DataType() const;
  E_FittingCandidatesVersion DataVersion() const;

  /// Appends a copy, with clones of the surfaces.
  int AddFittingCandidate(const CFittingCandidate& candidate);
  /// Wraps a clone of one surface as a candidate of weight 1.0 whose own scaling is the identity.
  /// A null `rs`, or one with a negative number of inputs, gives 1.
  int GenerateCandidateFromCRSData(const CRSData* rs);
  /// Stores the index without a test; one behind the last candidate fails at evaluation.
  int SetCandidateIdxForEvaluation(unsigned int index);
  /// The candidate chosen for evaluation, owned by the list; null when there is none.
  const CFittingCandidate* GetEvaluationCandidatePtr() const;
  std::size_t GetCandidateCount() const;
  /// Null for an index outside the list.
  const CFittingCandidate* GetCandidatePtr(int i) const;
  /// Stops the surfaces of every candidate.
  int SetStatusStopped();

 private:
  friend struct CandidateAccess;

  E_FittingCandidatesVersion Version = FittingCandidatesVersion170;
  std::uint32_t EvaluationIndex = 0;
  std::vector<CFittingCandidate> Candidates;
};

/// Predicts from the candidate that a list has chosen: scales the point with the candidate's
/// scaling, lets each surface predict (and scale again by its own), adds the values by weight and
/// backscales the sum once. Weights are used as they stand, not normalised.
///
/// Status of both forms: 0; 1 for a failure: no candidate, an `x` that doesn't fit, a surface of
/// unknown type or one that refuses, shapes of the cross-validation data that don't fit, an output
/// slope of 0.0 (`value` is then left in the scaled space). -2 only from the form with an error:
/// `value` is good, some surface has no predictor error. On status 1 `value` may hold a partial
/// sum.
///
/// Threads: any number of evaluations may run at once, but for the form with an error on a
/// candidate that holds a Kriging surface and no cross-validation data, which writes that record
/// (kriging.h).
class PXROM_API CFittingCandidatesEvaluator {
 public:
  CFittingCandidatesEvaluator();
  CFittingCandidatesEvaluator(const CFittingCandidatesEvaluator&);
  CFittingCandidatesEvaluator& operator=(const CFittingCandidatesEvaluator&);

  virtual CFittingCandidatesEvaluator* Clone() const;
  virtual ~CFittingCandidatesEvaluator();
  /// Value and predicted error at `x` (physical units, not changed).
  ///
  /// With cross-validation data the error is the spread of the predictions that leave out one fold
  /// each, weighted by how far the point is from that fold's samples and damped near samples; it is
  /// in the output's physical unit. Squared distances take the place of distances throughout: that
  /// is the method, not a slip. Without such data each surface writes its own error over `error`
  /// and the last one stands, in the candidate's scaled space; `error` is not set to 0 before.
  virtual int EvaluateResponseSurfaceCandidate(const CFittingCandidates& candidates,
                                               const std::vector<double>& x, double& value,
                                               double& error) const;
  /// Value alone.
  int EvaluateResponseSurfaceCandidate(const CFittingCandidates& candidates,
                                       const std::vector<double>& x, double& value) const;
};

}  // namespace Tarvane::Plexura::PXROM
