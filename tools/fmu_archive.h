#pragma once

#include <string>
#include <vector>

#include "pxrom/codegen.h"

namespace pxrom_command {

/// Adds a binary to the archive for each compiler that is found: that of this machine, and those
/// that compile for Windows and for ARM64. Returns the binaries in words, such as "linux64 (cc)".
std::vector<std::string> AddBinaries(pxrom_codegen::Fmu& fmu);

}  // namespace pxrom_command
