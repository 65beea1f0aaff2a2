#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "command.h"
#include "model_file.h"
#include "overview.h"
#include "pxrom/inspection.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

struct CheckOptions {
  std::string model;
  bool json = false;
  bool quiet = false;
};

bool IsShown(const CheckOptions& options, const pxrom::CFinding& finding) {
  return !options.quiet || finding.severity != pxrom::SeverityNote;
}

void PrintLines(const CheckOptions& options, const pxrom::CInspectionReport& report) {
  for (const pxrom::CFinding& finding : report.findings) {
    if (!IsShown(options, finding)) continue;
    std::cout << options.model << ':' << finding.line << ':' << finding.column << ": "
              << WordOf(finding.severity) << ": " << finding.sentence << " ["
              << pxrom::FindingCodeName(finding.code) << "]\n";
  }
  std::cout << options.model << ": " << Counted(report.errors, "error") << ", "
            << Counted(report.warnings, "warning") << ", " << Counted(report.notes, "note") << '\n';
}

void PrintJson(const CheckOptions& options, const pxrom::CInspectionReport& report) {
  nlohmann::ordered_json findings = nlohmann::ordered_json::array();
  for (const pxrom::CFinding& finding : report.findings) {
    if (!IsShown(options, finding)) continue;
    nlohmann::ordered_json entry;
    entry["severity"] = WordOf(finding.severity);
    entry["code"] = pxrom::FindingCodeName(finding.code);
    entry["line"] = finding.line;
    entry["column"] = finding.column;
    entry["group"] = finding.group;
    entry["key"] = finding.key;
    entry["found"] = finding.found;
    entry["expected"] = finding.expected;
    entry["sentence"] = finding.sentence;
    findings.push_back(entry);
  }
  nlohmann::ordered_json document;
  document["model"] = options.model;
  document["errors"] = report.errors;
  document["warnings"] = report.warnings;
  document["notes"] = report.notes;
  document["findings"] = findings;
  // A text of another encoding than UTF-8 must not cost the report.
  constexpr int kIndent = 2;
  std::cout << document.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void Check(const CheckOptions& options) {
  const pxrom::CInspectionReport report = pxrom::InspectPXROMDatabase(ReadTextFile(options.model));
  if (options.json) {
    PrintJson(options, report);
  } else {
    PrintLines(options, report);
  }
  if (report.errors > 0) throw CLI::RuntimeError(1);
}

}  // namespace

void AddCheck(CLI::App& app) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* check = app.add_subcommand("check", "Find what is wrong with a database, by line");
  check->add_option("MODEL", options->model, "Database of fitted models")->required();
  check->add_flag("-q,--quiet", options->quiet, "Leave out the notes, where nothing is wrong");
  check->add_flag("--json", options->json, "Print JSON, for programs");
  check->footer(
      "Ends with status 0 when there is no error, else with 1.\n"
      "docs/database-format.md explains the codes in brackets.\n"
      "Example:\n"
      "  pxrom check examples/beam.pxdb");
  check->callback([options] { Check(*options); });
}

}  // namespace pxrom_command
