#pragma once

#include <cstddef>
#include <vector>

namespace Tarvane::Plexura::PXROM {

/// x[i] = slopes[i] * x[i] + intercepts[i]. 1 with `x` unchanged unless all three have one length.
/// A surface and a candidate each have such a scaling of their inputs.
inline int ScaleSample(const std::vector<double>& slopes, const std::vector<double>& intercepts,
                       std::vector<double>& x) {
  if (x.size() != slopes.size() || x.size() != intercepts.size()) return 1;
  for (std::size_t i = 0; i < x.size(); ++i) x[i] = slopes[i] * x[i] + intercepts[i];
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
