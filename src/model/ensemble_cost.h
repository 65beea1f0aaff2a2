#pragma once

#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/evaluation_cost.h"

namespace Tarvane::Plexura::PXROM {

/// The cost of an evaluation of one or more outputs. The numbers are estimates.
struct EnsembleCost {
  double operations = 0.0;  ///< of values and errors
  double gradientOperations = 0.0;
  double locationOperations = 0.0;  ///< of distances to samples
  double held = 0.0;                ///< bytes of what is prepared
  double work = 0.0;  ///< bytes of the working area, which outputs use one after the other

  EnsembleCost& operator+=(const EnsembleCost& other);
  CEvaluationCost OfEvaluation() const;
  CEvaluationCost OfGradients() const;
  CEvaluationCost OfLocations() const;
};

EnsembleCost CostOf(const CFittingCandidate& candidate);
/// The cost of the candidate that the list has chosen; zeros without one.
EnsembleCost CostOf(const CFittingCandidates& candidates);
/// Output by output, by their IDs.
std::vector<EnsembleCost> CostsOf(const CDiscreteCombinations::OutputsByID& outputs);
EnsembleCost CostOf(const CDiscreteCombinations::OutputsByID& outputs);

}  // namespace Tarvane::Plexura::PXROM
