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
/// Ownership: the list holds copies of candidates, with clones of their surfaces (but see
/// CFittingCandidate for assignment to existing candidates).
/// Threads: const operations may run at the same time.
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
  /// Stores the index without a check; an index after the last candidate makes evaluations fail.
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

/// Predicts from the chosen candidate of a list: scales the point with the candidate's scaling,
/// evaluates each surface (which scales the point again with its own scaling), adds the weighted
/// values and scales the sum back once. Weights are not normalised.
///
/// Status of both forms: 0; 1 for a failure: no candidate, an `x` that doesn't fit, a surface of
/// unknown type or one that refuses, shapes of the cross-validation data that don't fit, an output
/// slope of 0.0 (`value` is then left in the scaled space). -2 only from the form with an error:
/// `value` is valid, and some surface has no predictor error. With status 1 `value` may hold a
/// partial sum.
///
/// Threads: any number of evaluations may run at once, except for the form with an error on a
/// candidate that holds a Kriging surface and no cross-validation data, which writes the Kriging
/// record (kriging.h).
class PXROM_API CFittingCandidatesEvaluator {
 public:
  CFittingCandidatesEvaluator();
  CFittingCandidatesEvaluator(const CFittingCandidatesEvaluator&);
  CFittingCandidatesEvaluator& operator=(const CFittingCandidatesEvaluator&);

  virtual CFittingCandidatesEvaluator* Clone() const;
  virtual ~CFittingCandidatesEvaluator();
  /// The value at `x` (physical units, not changed).
  ///
  /// Deliberate (error-form-not-virtual): only this form is virtual. An override does not replace
  /// the form with an error.
  virtual int EvaluateResponseSurfaceCandidate(const CFittingCandidates& candidates,
                                               const std::vector<double>& x, double& value) const;
  /// Value and predicted error at `x`.
  ///
  /// Deliberate (two-error-units): with cross-validation data the error is the spread of the
  /// predictions that leave out one fold each, weighted by the distance of the point from the
  /// samples of that fold and damped near samples, in the output's physical unit. Without such data
  /// each surface overwrites `error` with its own error, so the last one remains, in the
  /// candidate's scaled space; `error` is not set to 0 first. GetIsErrPredRequired of the candidate
  /// says which kind it is.
  int EvaluateResponseSurfaceCandidate(const CFittingCandidates& candidates,
                                       const std::vector<double>& x, double& value,
                                       double& error) const;
};

}  // namespace Tarvane::Plexura::PXROM
