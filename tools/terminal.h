#pragma once

#include <cstdio>

namespace pxrom_command {

/// Whether a standard stream is a terminal that clears a line when it is asked to.
bool IsTerminal(std::FILE* stream);

}  // namespace pxrom_command
