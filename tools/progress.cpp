#include "progress.h"

#include <cstdio>
#include <iostream>

#include "terminal.h"

namespace pxrom_command {

Progress::Progress(bool prints_rows)
    : terminal_(IsTerminal(stderr) && !(prints_rows && IsTerminal(stdout))),
      start_(Clock::now()),
      last_(start_) {}

void Progress::Show(std::size_t rows) {
  constexpr std::chrono::milliseconds kBetween{200};
  const Clock::time_point now = Clock::now();
  if (!terminal_ || now - last_ < kBetween) return;
  last_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(rows) / seconds;
  Clear();
  std::cerr << rows << " rows, " << static_cast<std::size_t>(rate) << " rows/s" << std::flush;
  shown_ = true;
}

void Progress::Clear() {
  // Moves to the start of the line and clears the line.
  if (shown_) std::cerr << "\r\x1B[K" << std::flush;
  shown_ = false;
}

}  // namespace pxrom_command
