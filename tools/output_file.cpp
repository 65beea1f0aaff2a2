#include "output_file.h"

#include <iostream>

#include "refusal.h"
#include "replaced_file.h"
#include "system_reason.h"
#include "wording.h"

namespace pxrom_command {

ReplacedFile::ReplacedFile(std::string path) : path_(std::move(path)) {}

void ReplacedFile::Refuse(int error, const std::string& what) const {
  throw Refusal("can't write to " + Quoted(path_) + ": " + ReasonOf(error, what));
}

OutputFile::OutputFile(const std::string& path, const std::vector<std::string>& inputs) {
  if (path.empty()) return;
  for (const std::string& input : inputs) {
    if (IsInput(path, input)) {
      throw Refusal(Quoted(path) + " is an input file: the result needs another file");
    }
  }
  file_ = ReplacedFile::Open(path);
}

OutputFile::~OutputFile() = default;

void OutputFile::Write(std::string_view text) {
  constexpr std::size_t kBuffer = std::size_t{1} << 16U;
  if (file_ == nullptr) {
    std::cout << text;
    if (!std::cout) throw Refusal("can't write to the standard output");
    return;
  }
  buffer_ += text;
  if (buffer_.size() >= kBuffer) Flush();
}

void OutputFile::Flush() {
  file_->Write(buffer_);
  buffer_.clear();
}

void OutputFile::Finish() {
  if (file_ == nullptr) {
    std::cout.flush();
    if (!std::cout) throw Refusal("can't write to the standard output");
    return;
  }
  Flush();
  file_->Finish();
}

void WriteTextFile(const std::string& path, const std::string& text,
                   const std::vector<std::string>& inputs) {
  OutputFile file(path, inputs);
  file.Write(text);
  file.Finish();
}

}  // namespace pxrom_command
