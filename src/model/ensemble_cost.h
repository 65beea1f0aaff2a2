#pragma once

#include "pxrom/discrete_combinations.h"
#include "pxrom/evaluation_cost.h"

namespace Tarvane::Plexura::PXROM {

/// What the evaluation of one or more outputs takes. Estimates, as doubles.
struct EnsembleCost {
  double operations = 0.0;  ///< of values and errors
  double gradientOperations = 0.0;
  double held = 0.0;  ///< bytes of what is prepared
  double work = 0.0;  ///< bytes of the working area, which outputs use one after the other

  EnsembleCost& operator+=(const EnsembleCost& other);
  CEvaluationCost OfEvaluation() const;
  CEvaluationCost OfGradients() const;
};

EnsembleCost CostOf(const CFittingCandidate& candidate);
/// Of the candidates that the lists have chosen.
EnsembleCost CostOf(const CDiscreteCombinations::OutputsByID& outputs);

}  // namespace Tarvane::Plexura::PXROM
