#pragma once

#include <string>
#include <vector>

namespace pxrom_command {

// By the means of the operating system: c_compiler_posix.cpp and c_compiler_windows.cpp.

/// A new folder for temporary files, which is removed with its files at the end.
class TemporaryFolder {
 public:
  /// Refusal when it can't be made.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  /// The path of a file in it.
  std::string File(const std::string& name) const;

 private:
  std::string path_;
};

/// Runs a program, found as a shell finds it, without input and without its messages. Whether it
/// could be started and ended with the status 0.
bool RunQuietly(const std::vector<std::string>& words);

}  // namespace pxrom_command
