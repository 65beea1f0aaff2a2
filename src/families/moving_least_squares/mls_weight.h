#pragma once

#include "kernels/table.h"
#include "pxrom/moving_least_squares.h"

namespace Tarvane::Plexura::PXROM {

/// Calls `use(weight)` with the record's weight function in the formulas of `version`, for the
/// reference distance `rho`. An unknown function gives the weight 0.
template <class Use>
void WithWeight(const CMLSData& record, E_CMLSDataVersion version, double rho, const Use& use) {
  const kernels::WeightSetting setting = {version == MLSDataVersion162, rho,
                                          static_cast<double>(record.NumberOfInputVariables)};
  if (!kernels::WithWeight(record.WeightFunction, setting, use)) use(kernels::NoWeight());
}

}  // namespace Tarvane::Plexura::PXROM
