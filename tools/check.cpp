#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "command.h"
#include "json_text.h"
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
  const std::string model = Printed(options.model);
  for (const pxrom::CFinding& finding : report.findings) {
    if (!IsShown(options, finding)) continue;
    std::cout << model << ':' << finding.line << ':' << finding.column << ": "
              << WordOf(finding.severity) << ": " << finding.sentence << " ["
              << pxrom::FindingCodeName(finding.code) << "]\n";
  }
  std::cout << model << ": " << Counted(report.errors, "error") << ", "
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
  PrintDocument(document);
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
  check->add_flag("-q,--quiet", options->quiet, "Leave out the notes, which report nothing wrong");
  check->add_flag("--json", options->json, "Print JSON, for programs");
  check->footer(
      "The status is 0 without errors, else 1.\n"
      "docs/database-format.md explains the codes in brackets.\n"
      "Example:\n"
      "  pxrom check examples/beam.pxdb");
  check->callback([options] { Check(*options); });
}

}  // namespace pxrom_command
