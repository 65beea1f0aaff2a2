#pragma once

#include <cmath>

namespace Tarvane::Plexura::PXROM {

/// Orders numbers with NaN after all of them, so that the order is strict.
inline bool IsLessNaNLast(double a, double b) { return a < b || (!std::isnan(a) && std::isnan(b)); }

}  // namespace Tarvane::Plexura::PXROM
