#pragma once

// Good and damaged texts, and the results of the library for them.

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <locale>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "pxrom/inspection.h"
#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {

inline const CFinding* FirstError(const CInspectionReport& report) {
  const auto error = std::find_if(report.findings.begin(), report.findings.end(),
                                  [](const CFinding& f) { return f.severity == SeverityError; });
  return error == report.findings.end() ? nullptr : &*error;
}

/// All findings in readable form, for the message of a test.
inline std::string Shown(const CInspectionReport& report) {
  std::string text;
  for (const CFinding& f : report.findings) {
    text += std::to_string(f.line) + ' ' + f.sentence + " [" + FindingCodeName(f.code) + "]\n";
  }
  return text;
}

/// Each finding as a line.
inline std::vector<std::string> FindingsOf(const CInspectionReport& report) {
  std::vector<std::string> lines;
  for (const CFinding& f : report.findings) {
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << f.line << ':' << f.column << " severity " << f.severity << ' '
         << FindingCodeName(f.code) << " | " << f.group << " | " << f.key << " | " << f.found
         << " | " << f.expected << " | " << f.sentence << '\n';
    lines.push_back(line.str());
  }
  return lines;
}

inline std::string OverviewOf(const CDatabaseOverview& o) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << o.characters << " characters, " << o.lines << " lines\n";
  for (const CParameterOverview& p : o.parameters) {
    text << p.id << " | " << p.caption << " | " << p.unit << " | " << p.causality << ' ' << p.type
         << ' ' << p.enabled << ' ' << p.rank << ' ' << p.hasBounds << ' ' << p.lowerBound << ' '
         << p.upperBound;
    for (const int value : p.values) text << " {" << value << '}';
    text << '\n';
  }
  for (const CCombinationOverview& c : o.combinations) {
    text << "line " << c.line;
    for (const auto& [id, value] : c.discreteValues) text << ' ' << id << '=' << value;
    for (const auto& [id, ensemble] : c.outputs) text << ' ' << id << ':' << ensemble;
    text << '\n';
  }
  for (const CEnsembleOverview& e : o.ensembles) {
    text << "ensemble " << e.id << ": " << e.inputs << ' ' << e.samples << ' ' << e.subSurfaces
         << ' ' << e.folds << ' ' << e.errorKind << ' ' << e.characters << ',';
    for (const CSurfaceOverview& s : e.surfaces) {
      text << ' ' << s.genome << ' ' << s.type << ' ' << s.weight << ' ' << s.samples << ';';
    }
    text << '\n';
  }
  return text.str();
}

/// A damage of tests/data/damaged/damages.json.
struct Damage {
  std::string name;
  std::string model;
  std::string text;
  std::string code;
  std::size_t line = 0;
  /// The expected finding: an error before all others, or a warning or note anywhere.
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
  const auto document =
      nlohmann::json::parse(ContentOf(SourcePath("tests/data/damaged/damages.json")));
  std::vector<Damage> damages;
  for (const auto& entry : document["damages"]) {
    const std::string model = document["models"][entry["model"].get<std::string>()];
    const std::size_t line = entry["at"];
    Damage damage{entry["name"],
                  model,
                  ContentOf(SourcePath(model)),
                  entry["code"],
                  entry.value("line", line),
                  SeverityOf(entry.value("severity", "error"))};
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

/// Damages the text in one of the ways that happen to files.
inline void DamageAtRandom(std::string& text, std::mt19937& random) {
  if (text.empty()) return;
  const auto upTo = [&](std::size_t count) { return random() % count; };
  const std::size_t at = upTo(text.size());
  const std::size_t lineStart = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
  const std::size_t lineEnd = std::min(text.find('\n', at), text.size() - 1) + 1;
  const std::size_t behindKey = std::min(text.find('=', lineStart) + 1, lineEnd - 1);
  const std::string line = text.substr(lineStart, lineEnd - lineStart);
  static const std::string kLetters = "0123456789-.,;{}<>/= \n\rEeIDaZ";
  const std::function<void()> damages[] = {
      [&] { text.resize(at); },
      [&] { text.erase(lineStart, line.size()); },
      [&] { text.erase(at, 1 + upTo(3)); },
      [&] { text.insert(at, 1, kLetters[upTo(kLetters.size())]); },
      [&] { text.replace(behindKey, lineEnd - 1 - behindKey, std::to_string(upTo(4))); },
      [&] { text.insert(StartOfLine(text, 1 + upTo(60)), line); },
      [&] { text.erase(lineStart, upTo(text.size() - lineStart)); },
  };
  damages[upTo(std::size(damages))]();
}

/// The paths of all models that are sound.
inline std::vector<std::string> GoodModels() {
  std::vector<std::string> paths;
  for (const std::string& folder : {SourcePath("tests/data/models"), SourcePath("examples")}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() == ".pxdb") paths.push_back(entry.path().generic_string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace Tarvane::Plexura::PXROM
