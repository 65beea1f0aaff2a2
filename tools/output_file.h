#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pxrom_command {

class ReplacedFile;

/// Where a command's result goes: a file that is replaced as a whole, or the standard output.
///
/// The result is written to a new file in the same folder and flushed to the device. A rename then
/// replaces the old file and keeps its permissions. Until then the old file does not change: not on
/// a full disk, not if the command is killed, not if power fails. A symbolic link stays, and the
/// file that it leads to is replaced; another hard link keeps the old content. A path that is not
/// an ordinary file, such as a pipe or /dev/stdout, is written directly.
///
/// Where the system allows it, the new file has no name until it is complete. A command that is
/// killed then leaves nothing, except in the moment between the naming and the rename.
class OutputFile {
 public:
  /// An empty `path` is the standard output. Refusal when it can't be written to, and when it is
  /// one of `inputs`, under any path: no command overwrites a file that it reads unless that is its
  /// purpose.
  explicit OutputFile(const std::string& path, const std::vector<std::string>& inputs = {});
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  /// Without Finish, no new file remains.
  ~OutputFile();

  /// Refusal when writing fails.
  void Write(std::string_view text);
  /// Replaces the file. Refusal when that fails; the old file is then unchanged.
  void Finish();

 private:
  void Flush();

  /// Null for the standard output.
  std::unique_ptr<ReplacedFile> file_;
  std::string buffer_;
};

/// Writes a whole file, or to the standard output if `path` is empty.
void WriteTextFile(const std::string& path, const std::string& text,
                   const std::vector<std::string>& inputs = {});

}  // namespace pxrom_command
