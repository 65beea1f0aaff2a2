#pragma once

#include <chrono>
#include <cstddef>

namespace pxrom_command {

/// A line on the standard error that counts rows while they are worked on: only on a terminal, and
/// not on one that shows the rows themselves.
class Progress {
 public:
  explicit Progress(bool prints_rows);

  /// `rows` are done so far.
  void Show(std::size_t rows);
  /// Takes the line away, for something else to be printed.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool terminal_;
  bool shown_ = false;
  Clock::time_point start_;
  Clock::time_point last_;
};

}  // namespace pxrom_command
