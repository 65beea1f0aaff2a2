#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
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

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

struct EvalOptions {
  std::string model;
  std::vector<std::string> assignments;
  std::string limit;
  bool json = false;
  PointsOptions points;
};

void PrintTable(const Model& model, const Point& point,
                const std::vector<PredictedOutput>& outputs) {
  constexpr int kDigits = 3;
  bool absent = false;
  Table table({{"Output", Align::Left},
               {"Caption", Align::Left},
               {"Value", Align::Right},
               {"Error", Align::Right},
               {"Unit", Align::Left},
               {"Error from", Align::Left}});
  for (const PredictedOutput& output : outputs) {
    const bool has_error = output.error.has_value();
    absent = absent || !has_error;
    table.Add({output.id, CaptionOf(model, output.id), Shown(output.value),
               has_error ? Shown(output.error->in_unit, kDigits) : "-", UnitOf(model, output.id),
               has_error ? WhoseError(output.origin) : ""});
  }

  const std::string combination = point.CombinationText();
  if (!combination.empty()) std::cout << "At " << Printed(combination) << ":\n\n";
  table.Print(std::cout);
  if (absent) std::cout << "\n- no predicted error\n";
}

nlohmann::ordered_json OrNull(const std::optional<double>& number) {
  return number.has_value() ? nlohmann::ordered_json(*number) : nullptr;
}

const char* OriginName(pxrom::E_ErrorOrigin origin) {
  switch (origin) {
    case pxrom::ErrorFromCrossValidation:
      return "cross-validation";
    case pxrom::ErrorFromAllSurfaces:
      return "all surfaces";
    case pxrom::ErrorFromOneSurface:
      return "one surface";
    case pxrom::ErrorNone:
      break;
  }
  return "none";
}

void AddError(const PredictedOutput& output, nlohmann::ordered_json& entry) {
  const std::optional<PredictedOutput::Error>& error = output.error;
  entry["error"] = error ? nlohmann::ordered_json(error->in_unit) : nullptr;
  entry["error_space"] = error ? nlohmann::ordered_json("physical") : nullptr;
  entry["lower"] = error ? nlohmann::ordered_json(error->lower) : nullptr;
  entry["upper"] = error ? nlohmann::ordered_json(error->upper) : nullptr;
  entry["raw_error"] = error ? nlohmann::ordered_json(error->raw) : nullptr;
  entry["error_origin"] = OriginName(output.origin.origin);
  const bool is_one = output.origin.origin == pxrom::ErrorFromOneSurface;
  entry["error_surface"] = is_one ? nlohmann::ordered_json(output.origin.surface) : nullptr;
  entry["first_order"] = output.origin.firstOrder;
}

void AddLocation(const PredictedOutput& output, nlohmann::ordered_json& entry) {
  entry["inside"] = output.inside ? nlohmann::ordered_json(*output.inside) : nullptr;
  entry["distance"] = OrNull(output.distance);
  entry["outside_samples"] = nlohmann::ordered_json::array();
  for (const PredictedOutput::Outside& outside : output.outside) {
    entry["outside_samples"].push_back(
        {{"id", outside.input}, {"lowest", outside.lowest}, {"highest", outside.highest}});
  }
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
    AddError(output, entry);
    AddLocation(output, entry);
    list.push_back(entry);
  }
  nlohmann::ordered_json document;
  document["model"] = options.model;
  document["inputs"] = ObjectOf(inputs);
  document["outside_bounds"] = outside;
  document["outputs"] = list;
  PrintDocument(document);
}

/// What is outside the samples of which outputs, most of which have the same samples.
void NoteOutside(const Model& model, const std::vector<PredictedOutput>& outputs) {
  std::vector<std::pair<std::string, std::vector<std::string>>> notes;
  for (const PredictedOutput& output : outputs) {
    std::vector<std::string> inputs;
    for (const PredictedOutput::Outside& outside : output.outside) {
      const std::string unit = UnitOf(model, outside.input);
      inputs.push_back(outside.input + "=" + Shown(outside.value) + " (" + Shown(outside.lowest) +
                       " to " + Shown(outside.highest) + (unit.empty() ? ")" : " " + unit + ")"));
    }
    if (inputs.empty()) continue;
    std::string note = Listed(inputs) + (inputs.size() == 1 ? " lies" : " lie") + " outside";
    note += "\n";
    if (output.distance.has_value()) {
      note += "; the nearest sample is " + Shown(*output.distance, 3) + " typical spacings away";
    }
    const auto same = std::find_if(notes.begin(), notes.end(),
                                   [&](const auto& known) { return known.first == note; });
    if (same != notes.end()) {
      same->second.push_back(output.id);
    } else {
      notes.push_back({note, {output.id}});
    }
  }
  for (const auto& [note, ids] : notes) {
    const std::size_t place = note.find('\n');
    const bool is_all = ids.size() == outputs.size();
    std::cerr << "pxrom eval: note: " << Printed(note.substr(0, place)) << " the samples of "
              << (is_all ? std::string("all outputs") : Printed(Listed(ids)))
              << Printed(note.substr(place + 1)) << '\n';
  }
}

void Eval(const EvalOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  const Point point = PointOf(*model, options.assignments);
  const std::vector<PredictedOutput> outputs = Predict(*model, point, LimitOf(options.limit));
  for (const Input& input : OutsideBounds(*model, point)) {
    std::cerr << "pxrom eval: note: " << Printed(input.id) << " lies outside its bounds, "
              << Printed(input.Bounds()) << ": the surfaces extrapolate\n";
  }
  NoteOutside(*model, outputs);
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
      "all digits: the output with its ID as heading, its predicted error in its unit as \"ID "
      "error\"\n"
      "and, if it does not come from cross-validation, as the surface reports it, \"ID raw "
      "error\".\n"
      "Missing errors are empty. The last two columns are \"outside samples\", the inputs that "
      "lie\n"
      "outside the samples of an output, and \"sample distance\", the largest distance to the "
      "nearest\n"
      "sample in typical spacings. A bad row is reported by its line, and the other rows are\n"
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
