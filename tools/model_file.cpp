#include "model_file.h"

#include <cerrno>
#include <filesystem>

#include "file_names.h"
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

}  // namespace

std::ifstream OpenFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(PathOf(path), ignored)) RefuseToRead(path, EISDIR);
  errno = 0;
  std::ifstream file(PathOf(path), std::ios::binary);
  if (!file.is_open()) RefuseToRead(path, errno);
  return file;
}

std::string ReadTextFile(const std::string& path) {
  std::ifstream file = OpenFile(path);
  std::string text;
  std::error_code unknown;
  const std::uintmax_t size = std::filesystem::file_size(PathOf(path), unknown);
  // One more, so that the end is met without another allocation. A device has no size.
  constexpr std::uintmax_t kLargest = std::uintmax_t{1} << 40U;
  if (!unknown && size < kLargest) text.reserve(static_cast<std::size_t>(size) + 1);
  constexpr std::size_t kPiece = std::size_t{1} << 16U;
  errno = 0;
  while (file) {
    const std::size_t before = text.size();
    text.resize(before + kPiece);
    file.read(&text[before], kPiece);
    text.resize(before + static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) RefuseToRead(path, errno);
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
