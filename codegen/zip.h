#pragma once

#include <string>
#include <vector>

namespace pxrom_codegen {

struct ArchiveFile {
  std::string path;  ///< with /, in ASCII
  std::string content;
};

/// A zip archive with these files, uncompressed. It has no date: the same files give the same
/// bytes. All files together must be smaller than 4 GB.
std::string ZipOf(const std::vector<ArchiveFile>& files);

}  // namespace pxrom_codegen
