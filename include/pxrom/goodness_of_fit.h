#pragma once

#include "pxrom/dense_matrix.h"
#include "pxrom/export.h"

namespace Tarvane::Plexura::Core {

/// What the goodness of fit of a regression surface is handed to (CQRSEvaluator in regression.h).
/// The statistics are the host's: derive from it and write the two pure operations. What they
/// compute and how they report is theirs; the library only hands on their status, 0 for success.
///
/// The two stand at the fourth and fifth place of the virtual operations on purpose, where a host
/// that was built against another declaration of this class calls them. The two places before them
/// are never called by the library and need no override.
class PXROM_API GOFMeasr {
 public:
  GOFMeasr() = default;
  GOFMeasr(const GOFMeasr&) = default;
  GOFMeasr& operator=(const GOFMeasr&) = default;

  virtual ~GOFMeasr();
  /// Holds the second place. Always 0.
  virtual int SecondPlace();
  /// Holds the third place. Always 0.
  virtual int ThirdPlace();

  /// `design`: samples by parameters, **all** terms evaluated as if active. `paramStatus`: 1.0 for
  /// each parameter of an active term, else 0.0. `paramValues`: the coefficients. `outputs` and
  /// `predictions`: at the samples, in physical units; the transformed ones in the space of the
  /// regression sum.
  virtual int ComputeAllMeasures(const DRecMtx& design, const DRowVec& paramStatus,
                                 const DColVec& paramValues, const DColVec& outputs,
                                 const DColVec& transformedOutputs, const DColVec& predictions,
                                 const DColVec& transformedPredictions) = 0;
  /// The library hands over **two empty columns**, see CQRSEvaluator::EvalR2Only.
  virtual int ComputeR2(const DColVec& outputs, const DColVec& predictions) = 0;
};

}  // namespace Tarvane::Plexura::Core
