#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "command.h"
#include "model_file.h"
#include "report_page.h"
#include "wording.h"

namespace pxrom_command {

namespace {

struct ReportOptions {
  std::string model;
  std::string out;
};

void Report(const ReportOptions& options) {
  ReportedStudy study;
  study.file = std::filesystem::path(options.model).filename().string();
  study.text = ReadTextFile(options.model);
  study.inspection = InspectModel(options.model, study.text);
  WriteTextFile(options.out, ReportPage(study));
  if (study.inspection.errors > 0) {
    std::cerr << "pxrom report: the database is damaged ("
              << Counted(study.inspection.errors, "error")
              << "): the page has the findings and doesn't evaluate\n";
    throw CLI::RuntimeError(1);
  }
  if (!CanReportLive()) {
    std::cerr << "pxrom report: note: this build has no live part, so that the page doesn't "
                 "evaluate; script/bootstrap --report and another build add it\n";
  }
}

}  // namespace

void AddReport(CLI::App& app) {
  const auto options = std::make_shared<ReportOptions>();
  CLI::App* report = app.add_subcommand("report", "Write a page about a model, to send and to try");
  report->add_option("MODEL", options->model, "Database of fitted models")->required();
  report->add_option("-o,--out", options->out, "File to write; else the standard output");
  report->footer(
      "The page is one HTML file that needs no network: the inputs and outputs, the surfaces, "
      "what\n"
      "pxrom check finds, and the library itself, which evaluates the model in the browser.\n"
      "Ends with status 1 for a damaged database; the page then has the findings alone.\n"
      "Example:\n"
      "  pxrom report examples/beam.pxdb -o beam.html");
  report->callback([options] { Report(*options); });
}

}  // namespace pxrom_command
