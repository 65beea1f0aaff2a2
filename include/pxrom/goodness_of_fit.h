#pragma once

#include "pxrom/dense_matrix.h"
#include "pxrom/export.h"

namespace Tarvane::Plexura::Core {

/// Receives the data for the goodness of fit of a regression surface (CQRSEvaluator in
/// regression.h). A host derives from it and implements the two pure operations, which compute and
/// report statistics of its own. The library only returns their status, 0 for success.
///
/// The two are the fourth and fifth virtual operations of the class, because hosts that were built
/// against another declaration of it call them there. The library never calls the two before them,
/// and they need no override.
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

  /// `design`: samples by parameters, with **all** terms evaluated as if active. `paramStatus`: 1.0
  /// for each parameter of an active term, else 0.0. `paramValues`: the coefficients. `outputs` and
  /// `predictions`: at the samples, in physical units; the transformed ones are in the space of the
  /// regression sum.
  virtual int ComputeAllMeasures(const DRecMtx& design, const DRowVec& paramStatus,
                                 const DColVec& paramValues, const DColVec& outputs,
                                 const DColVec& transformedOutputs, const DColVec& predictions,
                                 const DColVec& transformedPredictions) = 0;
  /// The library passes **two empty columns**, see CQRSEvaluator::EvalR2Only.
  virtual int ComputeR2(const DColVec& outputs, const DColVec& predictions) = 0;
};

}  // namespace Tarvane::Plexura::Core
