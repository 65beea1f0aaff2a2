#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace pxrom_command {

/// The file of an OutputFile (output_file.h says what happens to it), by the means of the operating
/// system: replaced_file_posix.cpp and replaced_file_windows.cpp. Operations throw Refusal when
/// they fail. Without Finish, no new file remains.
class ReplacedFile {
 public:
  static std::unique_ptr<ReplacedFile> Open(const std::string& path);

  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;
  virtual ~ReplacedFile() = default;

  virtual void Write(std::string_view text) = 0;
  virtual void Finish() = 0;

 protected:
  explicit ReplacedFile(std::string path);
  /// `error` is a value of errno.
  [[noreturn]] void Refuse(int error, const std::string& what = "write to it") const;

 private:
  /// As it was given, for messages.
  std::string path_;
};

/// Whether `path` leads to the file that `input` leads to; the input "-" is the standard input.
bool IsInput(const std::string& path, const std::string& input);

}  // namespace pxrom_command
