#pragma once

#include <filesystem>
#include <string>

namespace pxrom_command {

// The command's texts, names of files among them, are UTF-8 on every system.

inline std::filesystem::path PathOf(const std::string& name) {
  return std::filesystem::u8path(name);
}
/// With "/" between folders.
inline std::string TextOfPath(const std::filesystem::path& path) { return path.generic_u8string(); }

}  // namespace pxrom_command
