#pragma once

#include <cstddef>
#include <string>

#include "pxrom/evaluation_cost.h"
#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// Adds check points to the text of a database: at each combination `perCombination` points between
/// the bounds of the inputs, with the values and errors of all outputs in all digits, and a
/// checksum of the text. InspectPXROMDatabase then says whether the text has changed since, and
/// whether it evaluates to the same numbers where it is.
///
/// The group comes last and replaces one that is there. No reader finds anything in it: the text
/// reads as the same model with and without it. docs/database-format.md describes it.
///
/// The points are drawn between the bounds by a generator with a fixed seed; for an input without
/// bounds between 0 and 1. Errors are those that the surfaces report, on a fresh copy.
///
/// 0 with `text` replaced; 1 with it untouched, and the cause in `reason`: the text can't be read,
/// a point costs more than `limit`, or there are more than a million points.
/// Exceptions: std::bad_alloc only. Threads: no shared state.
PXROM_API int AddCheckPoints(std::string& text, std::size_t perCombination,
                             const CEvaluationLimit& limit, std::string& reason);

}  // namespace Tarvane::Plexura::PXROM
