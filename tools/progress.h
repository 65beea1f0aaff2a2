#pragma once

#include <chrono>
#include <cstddef>

namespace pxrom_command {

/// A line on the standard error that counts rows during the work: only on a terminal, and not on a
/// terminal that shows the rows themselves.
class Progress {
 public:
  explicit Progress(bool prints_rows);

  /// `rows` are done so far.
  void Show(std::size_t rows);
  /// Removes the line, so that something else can be printed.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool terminal_;
  bool shown_ = false;
  Clock::time_point start_;
  Clock::time_point last_;
};

}  // namespace pxrom_command
