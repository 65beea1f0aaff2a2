#pragma once

#include <cstddef>
#include <ctime>

namespace fuzz {

/// Measures what one run takes from its construction on: processor time, and the most memory from
/// operator new that was held at once. For one thread and one meter at a time.
class Meter {
 public:
  Meter();
  double Seconds() const;
  std::size_t PeakBytes() const;
  /// Throws Broken beyond a second, or beyond 64 bytes per character of a text, or 64 MiB for
  /// a short one.
  void CheckLimits(std::size_t characters) const;

 private:
  std::clock_t start_;
  std::size_t held_;
};

}  // namespace fuzz
