#include "model/ensemble_cost.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "families/family.h"
#include "kernels/loops/loop_table.h"
#include "model/candidate_access.h"
#include "model/cross_validation.h"
#include "model/fitted_samples.h"
#include "records/error_norms.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Access = CandidateAccess;
using costing::SurfaceCost;

// Coordinates of ordinary points, in the scaled space of a candidate.
constexpr double kOrdinary = 100.0;
// Calls and allocations around an evaluation, for any surfaces.
constexpr double kFrame = 200.0;
// The size of a prepared surface and its entry in an ensemble, without its data.
constexpr double kBytesPerSurface = 1000.0;
// The parts of a working area: blocks per input and others, and the questions of a block of
// kernels.
constexpr double kBlock = kernels::kBlock;
constexpr double kWorkPerInput = 3.0 * sizeof(double);
constexpr double kWorkOfBlock = kernels::kChunk * sizeof(kernels::Question);

std::uint64_t AsCount(double amount) {
  constexpr double kTooLarge = 18446744073709551616.0;
  return amount < kTooLarge ? static_cast<std::uint64_t>(std::ceil(amount))
                            : std::numeric_limits<std::uint64_t>::max();
}

SurfaceCost CostOfSurface(const CRSData& surface, double reach) {
  const Family* const family = FindFamily(surface.DataType());
  const bool isKnown = family != nullptr && family->cost != nullptr;
  return isKnown ? family->cost(surface, reach) : SurfaceCost();
}

/// Adds the cost of a surface's weighted value; returns all costs of the surface.
SurfaceCost AddValue(const CRSData& surface, double reach, EnsembleCost& cost) {
  const SurfaceCost own = CostOfSurface(surface, reach);
  cost.operations += own.value + 2.0;
  cost.held += own.held + kBytesPerSurface;
  const double errors = own.perErrorPoint * kBlock * batch::ErrorNorms::kBlocksAtOnce;
  cost.work = std::max(cost.work, own.perPoint * kBlock + errors + own.once);
  return own;
}

/// Adds the cost of the error from cross-validation, without the predictions for each fold.
void AddCrossValidation(const CFittingCandidate& candidate, double inputs, EnsembleCost& cost) {
  const auto rows = static_cast<double>(Access::SortedInput(candidate).size());
  const std::vector<int>& counts = Access::FoldCounts(candidate);
  cost.operations += rows * (3.0 * inputs + 2.0);
  for (const int count : counts) {
    const double size = std::min(std::max(0.0, static_cast<double>(count)), rows);
    cost.operations += MostOfTolerantSort(size) + costing::kElementary + 10.0;
  }
  const auto folds = static_cast<double>(counts.size());
  cost.held += costing::kBytesPerNumber * rows * inputs;
  cost.work += costing::kBytesPerNumber * (kBlock * (rows + 2.0 * folds) + rows);
}

}  // namespace

EnsembleCost& EnsembleCost::operator+=(const EnsembleCost& other) {
  operations += other.operations;
  gradientOperations += other.gradientOperations;
  locationOperations += other.locationOperations;
  held += other.held;
  work = std::max(work, other.work);
  return *this;
}

CEvaluationCost EnsembleCost::OfEvaluation() const {
  return {AsCount(operations), AsCount(held + work)};
}

CEvaluationCost EnsembleCost::OfGradients() const {
  return {AsCount(gradientOperations), AsCount(held + work)};
}

CEvaluationCost EnsembleCost::OfLocations() const {
  return {AsCount(locationOperations), AsCount(held + work)};
}

EnsembleCost CostOf(const CFittingCandidate& candidate) {
  EnsembleCost cost;
  const auto inputs = static_cast<double>(Access::InputScaleSlopes(candidate).size());
  double reach = kOrdinary;
  for (const double intercept : Access::InputScaleIntercepts(candidate)) {
    reach = std::max(reach, kOrdinary + std::fabs(intercept));
  }
  cost.operations = cost.gradientOperations = kFrame + 2.0 * inputs;
  const bool isValidated = candidate.GetIsErrPredRequired();
  for (const auto& surface : Access::Surfaces(candidate)) {
    const SurfaceCost own = AddValue(*surface, reach, cost);
    if (!isValidated) cost.operations += own.error;
    cost.gradientOperations += own.gradient + 2.0 * inputs;
  }
  if (isValidated) {
    for (const auto& surface : Access::SubSurfaces(candidate)) AddValue(*surface, reach, cost);
    AddCrossValidation(candidate, inputs, cost);
  }
  cost.work += kBlock * (kWorkPerInput * inputs + kWorkOfBlock);
  const auto samples = static_cast<double>(MostFittedSamples(candidate));
  cost.locationOperations = kFrame + 6.0 * inputs + samples * (3.0 * inputs + 1.0);
  // The samples as they are and as they are scaled.
  cost.held += costing::kBytesPerNumber * 2.0 * samples * inputs;
  return cost;
}

EnsembleCost CostOf(const CFittingCandidates& candidates) {
  const CFittingCandidate* const candidate = candidates.GetEvaluationCandidatePtr();
  return candidate != nullptr ? CostOf(*candidate) : EnsembleCost();
}

std::vector<EnsembleCost> CostsOf(const CDiscreteCombinations::OutputsByID& outputs) {
  std::vector<EnsembleCost> costs;
  costs.reserve(outputs.size());
  // Many outputs of a short text may have the same large group.
  std::map<const void*, EnsembleCost> known;
  for (const auto& [id, candidates] : outputs) {
    const auto [entry, isNew] = known.try_emplace(Access::IdentityForEvaluation(*candidates));
    if (isNew) entry->second = CostOf(*candidates);
    costs.push_back(entry->second);
  }
  return costs;
}

EnsembleCost CostOf(const CDiscreteCombinations::OutputsByID& outputs) {
  EnsembleCost all;
  for (const EnsembleCost& cost : CostsOf(outputs)) all += cost;
  return all;
}

}  // namespace Tarvane::Plexura::PXROM
