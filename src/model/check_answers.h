#pragma once

#include <vector>

#include "pxrom/discrete_combinations.h"
#include "text/check_points.h"

namespace Tarvane::Plexura::PXROM {

/// The values and errors of all outputs at a point, by output ID, as a fresh copy of each output
/// gives them.
std::vector<reading::CheckAnswer> AnswersAt(const CDiscreteCombinations::OutputsByID& outputs,
                                            const std::vector<double>& point);

/// Whether AnswersAt copies some of the outputs, since an error changes their records.
bool NeedsCopies(const CDiscreteCombinations::OutputsByID& outputs);

}  // namespace Tarvane::Plexura::PXROM
