#pragma once

#include <string>

namespace pxrom_command {

/// Why the system refuses a file, for a person. `error` is the value of errno; `what` is the
/// attempt, such as "read it".
std::string ReasonOf(int error, const std::string& what);

}  // namespace pxrom_command
