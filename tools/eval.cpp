#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "assignments.h"
#include "command.h"
#include "cost.h"
#include "eval_points.h"
#include "json_text.h"
#include "model_file.h"
#include "numbers.h"
#include "parameters.h"
#include "prediction.h"
#include "table.h"
#include "wording.h"

namespace pxrom_command {

namespace {

struct EvalOptions {
  std::string model;
  std::vector<std::string> assignments;
  std::string limit;
  bool json = false;
  PointsOptions points;
};

/// The error of one row; `*` marks an error that is not in the unit of the output.
std::string ErrorCell(const PredictedOutput& output) {
  constexpr int kDigits = 3;
  if (!output.error.has_value()) return "-";
  return Shown(*output.error, kDigits) + (output.error_space == ErrorSpace::Scaled ? "*" : "");
}

void PrintTable(const Model& model, const Point& point,
                const std::vector<PredictedOutput>& outputs) {
  bool scaled = false;
  bool absent = false;
  for (const PredictedOutput& output : outputs) {
    absent = absent || !output.error.has_value();
    scaled = scaled || (output.error.has_value() && output.error_space == ErrorSpace::Scaled);
  }

  Table table({{"Output", Align::Left},
               {"Caption", Align::Left},
               {"Value", Align::Right},
               {"Error", Align::Right},
               {"Unit", Align::Left}});
  for (const PredictedOutput& output : outputs) {
    std::string error = ErrorCell(output);
    if (scaled && error.back() != '*') error += ' ';
    table.Add({output.id, CaptionOf(model, output.id), Shown(output.value), error,
               UnitOf(model, output.id)});
  }

  const std::string combination = point.CombinationText();
  if (!combination.empty()) std::cout << "At " << Printed(combination) << ":\n\n";
  table.Print(std::cout);
  if (scaled || absent) std::cout << '\n';
  if (scaled) {
    std::cout << "* as the surface reports it: in a scaled space, not in this unit\n";
  }
  if (absent) std::cout << "- no predicted error\n";
}

void PrintJson(const EvalOptions& options, const Model& model, const Point& point,
               const std::vector<PredictedOutput>& outputs) {
  std::vector<std::pair<std::string, nlohmann::ordered_json>> inputs;
  inputs.insert(inputs.end(), point.discrete.begin(), point.discrete.end());
  inputs.insert(inputs.end(), point.continuous.begin(), point.continuous.end());
  nlohmann::ordered_json outside = nlohmann::ordered_json::array();
  for (const Input& input : OutsideBounds(model, point)) outside.push_back(input.id);

  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const PredictedOutput& output : outputs) {
    nlohmann::ordered_json entry;
    entry["id"] = output.id;
    entry["caption"] = CaptionOf(model, output.id);
    entry["unit"] = UnitOf(model, output.id);
    entry["value"] = output.value;
    entry["error"] = nullptr;
    entry["error_space"] = nullptr;
    if (output.error.has_value()) {
      entry["error"] = *output.error;
      entry["error_space"] = output.error_space == ErrorSpace::Physical ? "physical" : "scaled";
    }
    list.push_back(entry);
  }
  nlohmann::ordered_json document;
  document["model"] = options.model;
  document["inputs"] = ObjectOf(inputs);
  document["outside_bounds"] = outside;
  document["outputs"] = list;
  PrintDocument(document);
}

void Eval(const EvalOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  const Point point = PointOf(*model, options.assignments);
  const std::vector<PredictedOutput> outputs = Predict(*model, point, LimitOf(options.limit));
  for (const Input& input : OutsideBounds(*model, point)) {
    std::cerr << "pxrom eval: note: " << Printed(input.id) << " lies outside its bounds, "
              << Printed(input.Bounds()) << ": the surfaces extrapolate\n";
  }
  if (options.json) {
    PrintJson(options, *model, point, outputs);
  } else {
    PrintTable(*model, point, outputs);
  }
}

}  // namespace

void AddEval(CLI::App& app) {
  const auto options = std::make_shared<EvalOptions>();
  CLI::App* eval =
      app.add_subcommand("eval", "Evaluate a model at one point or at those of a table");
  eval->add_option("MODEL", options->model, "Database of fitted models")->required();
  eval->add_option("NAME=VALUE", options->assignments,
                   "Each input once, in any order; the command lists missing inputs");
  CLI::Option* json =
      eval->add_flag("--json", options->json, "Print JSON with all digits, for programs");
  eval->add_option("--limit", options->limit, kLimitHelp)->type_name("OPERATIONS");
  PointsOptions& points = options->points;
  CLI::Option* table = eval->add_option("--points", points.table,
                                        "Table of points, comma-separated; - is the standard input")
                           ->excludes(json);
  eval->add_option("-o,--out", points.out, "File for the result; default: the standard output")
      ->needs(table);
  eval->add_option("--jobs", points.jobs, "Number of threads; the result is the same")
      ->needs(table)
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  eval->add_flag("--fast", points.fast,
                 "Faster for surfaces that sum kernels, within 1e-11 of the largest value")
      ->needs(table);
  eval->footer(
      "A table begins with a line of IDs, one column for each input; give inputs without a column\n"
      "as NAME=VALUE for all rows. The result has each row unchanged, followed by new columns in\n"
      "all digits: the output with its ID as heading, and its predicted error as \"ID error\" in\n"
      "the unit of the output, or as \"ID scaled error\" if a surface reports it in a scaled\n"
      "space. Missing errors are empty. A bad row is reported by its line, and the other rows are\n"
      "evaluated; the status is then 1.\n"
      "\n"
      "Example:\n"
      "  pxrom eval examples/beam.pxdb Material=1 Holes=2 L=1.5 b=45 h=90 F=3000\n"
      "and with a table:\n"
      "  pxrom eval examples/beam.pxdb --points examples/points.csv Material=1 L=1.5 b=45 F=3000");
  eval->callback([options] {
    if (options->points.table.empty()) {
      Eval(*options);
      return;
    }
    options->points.model = options->model;
    options->points.assignments = options->assignments;
    options->points.limit = LimitOf(options->limit);
    EvalPoints(options->points);
  });
}

}  // namespace pxrom_command
