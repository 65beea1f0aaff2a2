#pragma once

// Good and damaged texts, and what the library makes of them.

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "pxrom/inspection.h"
#include "support/model_files.h"

namespace Tarvane::Plexura::PXROM {

inline const CFinding* FirstError(const CInspectionReport& report) {
  const auto error = std::find_if(report.findings.begin(), report.findings.end(),
                                  [](const CFinding& f) { return f.severity == SeverityError; });
  return error == report.findings.end() ? nullptr : &*error;
}

/// All findings as a person would read them, for the message of a test.
inline std::string Shown(const CInspectionReport& report) {
  std::string text;
  for (const CFinding& f : report.findings) {
    text += std::to_string(f.line) + ' ' + f.sentence + " [" + FindingCodeName(f.code) + "]\n";
  }
  return text;
}

/// A damage of tests/data/damaged/damages.json.
struct Damage {
  std::string name;
  std::string text;
  std::string code;
  std::size_t line = 0;
  /// What a person is to be told: an error before all others, or anywhere a warning or a note.
  E_FindingSeverity severity = SeverityError;
};

inline E_FindingSeverity SeverityOf(const std::string& word) {
  if (word == "note") return SeverityNote;
  return word == "warning" ? SeverityWarning : SeverityError;
}

inline std::size_t StartOfLine(const std::string& text, std::size_t line) {
  std::size_t at = 0;
  for (; line > 1; --line) at = text.find('\n', at) + 1;
  return at;
}

inline std::vector<Damage> Damages() {
  const auto document = nlohmann::json::parse(ContentOf(PXROM_TEST_DATA "/damaged/damages.json"));
  std::vector<Damage> damages;
  for (const auto& entry : document["damages"]) {
    const std::string model = document["models"][entry["model"].get<std::string>()];
    const std::size_t line = entry["at"];
    Damage damage{entry["name"], ContentOf(PXROM_TEST_DATA "/../../" + model), entry["code"],
                  entry.value("line", line), SeverityOf(entry.value("severity", "error"))};
    const std::size_t at = StartOfLine(damage.text, line);
    if (entry.contains("delete")) {
      const std::size_t end = StartOfLine(damage.text, line + entry["delete"].get<std::size_t>());
      damage.text.erase(at, end - at);
    } else {
      const std::string from = entry["find"];
      damage.text.replace(damage.text.find(from, at), from.size(), entry["replace"]);
    }
    damages.push_back(std::move(damage));
  }
  return damages;
}

/// The paths of all models that are sound.
inline std::vector<std::string> GoodModels() {
  std::vector<std::string> paths;
  for (const char* folder : {PXROM_TEST_DATA "/models", PXROM_EXAMPLES}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() == ".pxdb") paths.push_back(entry.path().string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace Tarvane::Plexura::PXROM
