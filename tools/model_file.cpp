#include "model_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>

#include "pxrom/database_labels.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

/// The reader takes any text and tells a failure by a status alone, so the group that every
/// database has is looked for first.
void RequireGroup(const std::string& path, const std::string& text, const std::string& tag) {
  if (text.find('<' + tag + '>') == std::string::npos) {
    throw Refusal(Quoted(path) + " is no database of fitted models: it has no <" + tag + "> group");
  }
}

[[noreturn]] void RefuseToRead(const std::string& path) {
  throw Refusal("can't read " + Quoted(path) + ": " +
                (errno != 0 ? std::strerror(errno) : "reading failed"));
}

}  // namespace

std::ifstream OpenFile(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    throw Refusal("can't read " + Quoted(path) + ": it is a folder");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) RefuseToRead(path);
  return file;
}

std::string ReadTextFile(const std::string& path) {
  std::ifstream file = OpenFile(path);
  errno = 0;
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) RefuseToRead(path);
  return text;
}

void WriteTextFile(const std::string& path, const std::string& text) {
  if (path.empty()) {
    std::cout << text;
    return;
  }
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) {
    throw Refusal("can't write to " + Quoted(path) + ": " +
                  (errno != 0 ? std::strerror(errno) : "writing failed"));
  }
}

pxrom::CInspectionReport InspectModel(const std::string& path, const std::string& text) {
  pxrom::CInspectionReport report = pxrom::InspectPXROMDatabase(text);
  if (report.overview.parameters.empty() && report.overview.combinations.empty()) {
    throw Refusal(Quoted(path) + " is no database of fitted models");
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
