#pragma once

#include <cstddef>

#include "pxrom/batch.h"
#include "simd/instruction_set.h"

namespace Tarvane::Plexura::PXROM {

/// What only the library's own code, tests and benchmarks ask of a prepared model.
struct PreparedModelAccess {
  /// The typical spacing of the samples of an output, in which LocatePoints measures distances: in
  /// units of the widths of their ranges, and NaN where that has no distances.
  static double Spacing(const CPreparedModel& model, std::size_t output);
  /// `model` with the loops of `set`; empty when FindLoops has none.
  static CPreparedModel With(const CPreparedModel& model, simd::InstructionSet set);
};

}  // namespace Tarvane::Plexura::PXROM
