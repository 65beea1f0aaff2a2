#pragma once

#include <stdexcept>

namespace pxrom_command {

/// Ends the command with exit status 1. what() is one sentence for the person who typed it: it
/// says what was wrong and, if possible, what to do.
struct Refusal : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace pxrom_command
