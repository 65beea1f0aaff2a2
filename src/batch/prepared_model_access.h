#pragma once

#include "lanes/lanes.h"
#include "pxrom/batch.h"

namespace Tarvane::Plexura::PXROM {

/// What our own tests and benchmarks need of a prepared model: to choose its instructions.
struct PreparedModelAccess {
  /// `model` with the loops of `set`; empty when FindLanes has none.
  static CPreparedModel With(const CPreparedModel& model, lanes::InstructionSet set);
};

}  // namespace Tarvane::Plexura::PXROM
