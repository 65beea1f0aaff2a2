#include "model_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "pxrom/database_labels.h"
#include "refusal.h"
#include "system_reason.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

/// The reader accepts any text and reports a failure only by a status, so this first looks for a
/// group that every database has.
void RequireGroup(const std::string& path, const std::string& text, const std::string& tag) {
  if (text.find('<' + tag + '>') == std::string::npos) {
    throw Refusal(Quoted(path) + " is not a database of fitted models: it has no <" + tag +
                  "> group");
  }
}

[[noreturn]] void RefuseToRead(const std::string& path, int error) {
  throw Refusal("can't read " + Quoted(path) + ": " + ReasonOf(error, "read it"));
}

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

std::ifstream OpenFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) RefuseToRead(path, EISDIR);
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) RefuseToRead(path, errno);
  return file;
}

std::string ReadTextFile(const std::string& path) {
  errno = 0;
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) RefuseToRead(path, errno);
  std::string text;
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(path, unknown);
  // One more, so that the end is met without another allocation. A device has no size.
  constexpr std::uintmax_t kLargest = std::uintmax_t{1} << 40U;
  if (!unknown && size < kLargest) text.reserve(static_cast<std::size_t>(size) + 1);
  constexpr std::size_t kPiece = std::size_t{1} << 16U;
  for (std::size_t read = 1; read > 0;) {
    const std::size_t before = text.size();
    text.resize(before + kPiece);
    read = std::fread(&text[before], 1, kPiece, file.get());
    text.resize(before + read);
  }
  if (std::ferror(file.get()) != 0) RefuseToRead(path, errno);
  return text;
}

pxrom::CInspectionReport InspectModel(const std::string& path, const std::string& text) {
  pxrom::CInspectionReport report = pxrom::InspectPXROMDatabase(text);
  if (report.overview.parameters.empty() && report.overview.combinations.empty()) {
    throw Refusal(Quoted(path) + " is not a database of fitted models");
  }
  return report;
}

std::unique_ptr<Model> ReadModel(const std::string& path) {
  const std::string text = ReadTextFile(path);
  RequireGroup(path, text, pxrom::CPXROMDatabaseLabels::tagParameterRegistry());
  RequireGroup(path, text, pxrom::CPXROMDatabaseLabels::tagDiscreteSets());

  auto model = std::make_unique<Model>();
  std::string reason;
  if (pxrom::ReadExplainedPXROMDatabase(text, *model, reason) != 0) {
    throw Refusal(Quoted(path) + " is a damaged database: " + reason);
  }
  return model;
}

}  // namespace pxrom_command
