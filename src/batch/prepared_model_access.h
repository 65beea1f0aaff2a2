#pragma once

#include "pxrom/batch.h"
#include "simd/instruction_set.h"

namespace Tarvane::Plexura::PXROM {

/// Lets our own tests and benchmarks choose the instructions of a prepared model.
struct PreparedModelAccess {
  /// `model` with the loops of `set`; empty when FindLoops has none.
  static CPreparedModel With(const CPreparedModel& model, simd::InstructionSet set);
};

}  // namespace Tarvane::Plexura::PXROM
