#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "cost.h"
#include "file_names.h"
#include "model_file.h"
#include "output_file.h"
#include "parameters.h"
#include "points_source.h"
#include "report_page.h"
#include "validation.h"
#include "validation_section.h"
#include "wording.h"

namespace pxrom_command {

namespace {

struct ReportOptions {
  std::string model;
  std::string out;
  std::string table;
};

ReportedValidation ValidationOf(const ReportOptions& options) {
  constexpr std::size_t kMostDrawn = 2000;
  ValidationOptions validation;
  validation.limit = LimitOf("");
  validation.pairs = kMostDrawn;
  const std::unique_ptr<Model> model = ReadModel(options.model);
  ReportedValidation reported;
  reported.table = TextOfPath(PathOf(options.table).filename());
  PointsSource table(options.table);
  reported.validation = Validate(*model, table.Stream(), table.Name(), validation);
  for (const ValidatedOutput& output : reported.validation.outputs) {
    reported.units.push_back(UnitOf(*model, output.id));
  }
  return reported;
}

void Report(const ReportOptions& options) {
  // Opened first: a model that is given as the page, too, is refused before any work.
  OutputFile out(options.out, options.table.empty()
                                  ? std::vector<std::string>{options.model}
                                  : std::vector<std::string>{options.model, options.table});
  ReportedStudy study;
  study.file = TextOfPath(PathOf(options.model).filename());
  study.text = ReadTextFile(options.model);
  study.inspection = InspectModel(options.model, study.text);
  if (!options.table.empty() && study.inspection.errors == 0) {
    study.validation = ValidationOf(options);
  }
  out.Write(ReportPage(study));
  out.Finish();
  if (study.inspection.errors > 0) {
    std::cerr << "pxrom report: the database is damaged ("
              << Counted(study.inspection.errors, "error")
              << "): the page shows the findings and does not evaluate\n";
    throw CLI::RuntimeError(1);
  }
  if (!CanReportLive()) {
    std::cerr << "pxrom report: note: this build has no live part, so the page does not evaluate; "
                 "run script/bootstrap --report and build again to add it\n";
  }
}

}  // namespace

void AddReport(CLI::App& app) {
  const auto options = std::make_shared<ReportOptions>();
  CLI::App* report = app.add_subcommand("report", "Write a page about a model, to send and to try");
  report->add_option("MODEL", options->model, "Database of fitted models")->required();
  report->add_option("-o,--out", options->out, "File to write; default: the standard output");
  report
      ->add_option("--validate", options->table,
                   "Table of measured outputs, as for pxrom validate, to show beside the model")
      ->type_name("TABLE");
  report->footer(
      "The page is one HTML file that needs no network. It shows the inputs and outputs, the\n"
      "surfaces and what pxrom check finds, and holds the library itself, which evaluates the\n"
      "model in the browser. The status is 1 for a damaged database; the page then shows only\n"
      "the findings.\n"
      "Example:\n"
      "  pxrom report examples/beam.pxdb -o beam.html");
  report->callback([options] { Report(*options); });
}

}  // namespace pxrom_command
