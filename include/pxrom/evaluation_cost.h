#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// The cost of an evaluation, estimated from the sizes of what a model holds, without an
/// evaluation. The estimate is for the most expensive ordinary point, and within a factor of about
/// three of what is executed. A number that is too large becomes the largest of its type.
struct CEvaluationCost {
  /// Floating-point operations at one point, of the value and its predicted error. A function such
  /// as exp counts as forty.
  std::uint64_t operations = 0;
  /// Bytes of memory in addition to the model: a prepared copy and the working area of one call.
  std::uint64_t bytes = 0;
};

/// The largest cost that an evaluation may have. The defaults limit nothing.
struct CEvaluationLimit {
  std::uint64_t operations = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t bytes = std::numeric_limits<std::uint64_t>::max();
};

/// 0 if `cost` is within `limit`; else 1, with a sentence in `reason` (unless it is null) that
/// gives the cost, the limit, and the limit that would be enough. Exceptions: std::bad_alloc only.
/// Threads: no shared state.
PXROM_API int CheckEvaluationCost(const CEvaluationCost& cost, const CEvaluationLimit& limit,
                                  std::string* reason = nullptr);

}  // namespace Tarvane::Plexura::PXROM
