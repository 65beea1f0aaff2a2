#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/fitting_candidate.h"

namespace Tarvane::Plexura::PXROM {

/// The samples that the surfaces of `candidate` were fitted to, row by row, `inputs` values each in
/// physical units: the candidate's own samples or, if it has none, those of its surfaces. Samples
/// of another length or with a value that is not finite are left out.
std::vector<double> FittedSamples(const CFittingCandidate& candidate, std::size_t inputs);

/// At least the number of them, without looking at each.
std::size_t MostFittedSamples(const CFittingCandidate& candidate);

}  // namespace Tarvane::Plexura::PXROM
