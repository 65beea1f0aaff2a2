#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "assignments.h"
#include "command.h"
#include "eval_points.h"
#include "model_file.h"
#include "numbers.h"
#include "parameters.h"
#include "prediction.h"
#include "table.h"

namespace pxrom_command {

namespace {

struct EvalOptions {
  std::string model;
  std::vector<std::string> assignments;
  bool json = false;
  PointsOptions points;
};

/// The error of one row; `*` marks those that are not in the unit of the output.
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
  if (!combination.empty()) std::cout << "At " << combination << ":\n\n";
  table.Print(std::cout);
  if (scaled || absent) std::cout << '\n';
  if (scaled) {
    std::cout << "* as the surface reports it: in a scaled space, not in this unit\n";
  }
  if (absent) std::cout << "- no predicted error\n";
}

void PrintJson(const EvalOptions& options, const Model& model, const Point& point,
               const std::vector<PredictedOutput>& outputs) {
  nlohmann::ordered_json inputs = nlohmann::ordered_json::object();
  for (const auto& [id, value] : point.discrete) inputs[id] = value;
  for (const auto& [id, value] : point.continuous) inputs[id] = value;
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
  document["inputs"] = inputs;
  document["outside_bounds"] = outside;
  document["outputs"] = list;
  // Captions of another encoding than UTF-8 must not cost the numbers.
  constexpr int kIndent = 2;
  std::cout << document.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void Eval(const EvalOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  const Point point = PointOf(*model, options.assignments);
  const std::vector<PredictedOutput> outputs = Predict(*model, point);
  for (const Input& input : OutsideBounds(*model, point)) {
    std::cerr << "pxrom eval: note: " << input.id << " lies outside its bounds, " << input.Bounds()
              << ": the surfaces extrapolate\n";
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
                   "Each input once, in any order; those that are missing are listed");
  CLI::Option* json =
      eval->add_flag("--json", options->json, "Print JSON with all digits, for programs");
  PointsOptions& points = options->points;
  CLI::Option* table = eval->add_option("--points", points.table,
                                        "Table of points, comma-separated; - is the standard input")
                           ->excludes(json);
  eval->add_option("-o,--out", points.out, "File for the result; else the standard output")
      ->needs(table);
  eval->add_option("--jobs", points.jobs, "Threads to evaluate with; the result is the same")
      ->needs(table)
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  eval->add_flag("--fast", points.fast,
                 "Faster where kernels are summed, within 1e-11 of the largest value")
      ->needs(table);
  eval->footer(
      "A table begins with a line of IDs, one column for each input; inputs without a column are\n"
      "given as NAME=VALUE for all rows. Each row is written as it stood, with new columns behind\n"
      "it, in all digits: the output by its ID, its predicted error in its unit as \"ID error\", "
      "or\n"
      "as \"ID scaled error\" where surfaces report it in a scaled space. What there isn't is "
      "left\n"
      "empty. A bad row is told by its line, and the rest goes on; the status is then 1.\n"
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
    EvalPoints(options->points);
  });
}

}  // namespace pxrom_command
