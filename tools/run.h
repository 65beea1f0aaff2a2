#pragma once

namespace pxrom_command {

/// The whole command, with the arguments of a `main`. Returns its exit status.
int Run(int argc, const char* const* argv);

}  // namespace pxrom_command
