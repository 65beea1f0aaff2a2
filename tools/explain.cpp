#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "assignments.h"
#include "command.h"
#include "cost.h"
#include "json_text.h"
#include "model_file.h"
#include "numbers.h"
#include "parameters.h"
#include "prediction.h"
#include "pxrom/explanation.h"
#include "refusal.h"
#include "table.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

struct ExplainOptions {
  std::string model;
  std::vector<std::string> assignments;
  std::string limit;
  std::size_t samples = 3;
  bool json = false;
};

constexpr int kFewDigits = 3;

std::string NumberCell(double number, int digits) {
  return std::isnan(number) ? "-" : Shown(number, digits);
}

std::string WithUnit(const std::string& text, const std::string& unit) {
  return unit.empty() ? text : text + ' ' + unit;
}

void PrintHead(const Model& model, const pxrom::COutputExplanation& output) {
  const std::string unit = UnitOf(model, output.id);
  const std::string caption = CaptionOf(model, output.id);
  std::string head = output.id + (caption.empty() ? "" : " (" + caption + ")");
  if (output.status == 1) {
    std::cout << Printed(head) << " can't be evaluated here\n";
    return;
  }
  head += " = " + WithUnit(Shown(output.value), unit);
  if (output.status == 0) {
    head += ", error " + WithUnit(Shown(output.error, kFewDigits), unit) + " from " +
            WhoseError(output.origin) + (output.origin.firstOrder ? ", to first order" : "");
  }
  std::cout << Printed(head) << '\n';
}

void PrintPlace(const pxrom::CExplanation& explanation, const pxrom::COutputExplanation& output) {
  if (output.inside < 0) {
    std::cout << "The model does not hold the samples that it was fitted to.\n";
    return;
  }
  std::vector<std::string> outside;
  for (std::size_t k = 0; k < output.inputs.size(); ++k) {
    if (output.inputs[k].side != 0) outside.push_back(explanation.inputs[k]);
  }
  std::cout << (outside.empty() ? "Inside the ranges of the samples"
                                : "Outside the samples in " + Printed(Listed(outside)) +
                                      ": the surfaces extrapolate");
  if (!std::isnan(output.distance)) {
    std::cout << "; the nearest sample is " << Shown(output.distance, kFewDigits)
              << " typical spacings away";
  }
  std::cout << ".\n";
}

void PrintSurfaces(const pxrom::COutputExplanation& output, const std::string& unit) {
  Table table({{"Weight", Align::Right},
               {"Surface", Align::Left},
               {"Value", Align::Right},
               {"Weight x value", Align::Right}});
  for (const pxrom::CSurfaceExplanation& surface : output.surfaces) {
    table.Add({Shown(surface.weight), surface.family, NumberCell(surface.value, 6),
               NumberCell(surface.share, 6)});
  }
  std::cout << '\n';
  table.Print(std::cout);
  if (output.folds.empty()) return;
  const auto [low, high] = std::minmax_element(output.folds.begin(), output.folds.end());
  std::cout << "\nWithout one of its " << output.folds.size() << " folds each: " << Shown(*low)
            << " to " << Printed(WithUnit(Shown(*high), unit)) << '\n';
}

void PrintInputs(const Model& model, const pxrom::CExplanation& explanation,
                 const pxrom::COutputExplanation& output) {
  if (output.inputs.empty()) return;
  Table table({{"Input", Align::Left},
               {"Value", Align::Right},
               {"Samples", Align::Left},
               {"Unit", Align::Left},
               {"1 % of the range adds", Align::Right}});
  for (std::size_t k = 0; k < output.inputs.size(); ++k) {
    const pxrom::CInputExplanation& input = output.inputs[k];
    const std::string& id = explanation.inputs[k];
    table.Add({id, Shown(explanation.point[k]),
               std::isnan(input.lowest) ? "" : Shown(input.lowest) + " to " + Shown(input.highest),
               UnitOf(model, id), NumberCell(input.onePercent, kFewDigits)});
  }
  std::cout << '\n';
  table.Print(std::cout);
}

void PrintNearest(const pxrom::CExplanation& explanation, const pxrom::COutputExplanation& output,
                  const std::string& unit) {
  if (output.nearest.empty()) return;
  std::vector<Table::Column> columns = {{"Distance", Align::Right}};
  for (const std::string& id : explanation.inputs) columns.push_back({id, Align::Right});
  columns.push_back({unit.empty() ? "Measured" : "Measured, " + unit, Align::Right});
  Table table(std::move(columns));
  for (const pxrom::CSampleExplanation& sample : output.nearest) {
    std::vector<std::string> cells = {NumberCell(sample.distance, kFewDigits)};
    for (const double value : sample.point) cells.push_back(Shown(value));
    cells.push_back(Shown(sample.measured));
    table.Add(std::move(cells));
  }
  std::cout << "\nNearest samples:\n\n";
  table.Print(std::cout);
}

void PrintText(const Model& model, const Point& point, const pxrom::CExplanation& explanation) {
  const std::string combination = point.CombinationText();
  if (!combination.empty()) std::cout << "At " << Printed(combination) << ":\n\n";
  bool isFirst = true;
  for (const pxrom::COutputExplanation& output : explanation.outputs) {
    if (!isFirst) std::cout << "\n\n";
    isFirst = false;
    PrintHead(model, output);
    PrintPlace(explanation, output);
    PrintSurfaces(output, UnitOf(model, output.id));
    PrintInputs(model, explanation, output);
    PrintNearest(explanation, output, UnitOf(model, output.id));
  }
}

nlohmann::ordered_json JsonOfOutput(const Model& model, const pxrom::CExplanation& explanation,
                                    const pxrom::COutputExplanation& output) {
  nlohmann::ordered_json entry;
  entry["id"] = output.id;
  entry["caption"] = CaptionOf(model, output.id);
  entry["unit"] = UnitOf(model, output.id);
  entry["value"] = FiniteOrNull(output.value);
  entry["error"] = FiniteOrNull(output.error);
  entry["error_origin"] = WhoseError(output.origin);
  entry["lower"] = FiniteOrNull(output.lower);
  entry["upper"] = FiniteOrNull(output.upper);
  entry["inside"] =
      output.inside < 0 ? nlohmann::ordered_json() : nlohmann::ordered_json(output.inside == 1);
  entry["distance"] = FiniteOrNull(output.distance);
  entry["surfaces"] = nlohmann::ordered_json::array();
  for (const pxrom::CSurfaceExplanation& surface : output.surfaces) {
    entry["surfaces"].push_back({{"family", surface.family},
                                 {"weight", surface.weight},
                                 {"value", FiniteOrNull(surface.value)},
                                 {"share", FiniteOrNull(surface.share)}});
  }
  entry["folds"] = nlohmann::ordered_json::array();
  for (const double fold : output.folds) entry["folds"].push_back(FiniteOrNull(fold));
  entry["inputs"] = nlohmann::ordered_json::array();
  for (std::size_t k = 0; k < output.inputs.size(); ++k) {
    const pxrom::CInputExplanation& input = output.inputs[k];
    entry["inputs"].push_back({{"id", explanation.inputs[k]},
                               {"value", explanation.point[k]},
                               {"lowest_sample", FiniteOrNull(input.lowest)},
                               {"highest_sample", FiniteOrNull(input.highest)},
                               {"outside", input.side != 0},
                               {"gradient", FiniteOrNull(input.gradient)},
                               {"one_percent", FiniteOrNull(input.onePercent)}});
  }
  entry["nearest"] = nlohmann::ordered_json::array();
  for (const pxrom::CSampleExplanation& sample : output.nearest) {
    entry["nearest"].push_back({{"distance", FiniteOrNull(sample.distance)},
                                {"point", sample.point},
                                {"measured", sample.measured}});
  }
  return entry;
}

void Explain(const ExplainOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  const Point point = PointOf(*model, options.assignments);
  pxrom::CExplanation explanation;
  std::string reason;
  if (pxrom::ExplainPoint(*model, point.discrete, point.continuous, options.samples, explanation,
                          reason, LimitOf(options.limit)) != 0) {
    throw Refusal(reason);
  }
  if (!options.json) {
    PrintText(*model, point, explanation);
    return;
  }
  nlohmann::ordered_json document;
  document["model"] = options.model;
  document["discrete"] = ObjectOf(point.discrete);
  document["outputs"] = nlohmann::ordered_json::array();
  for (const pxrom::COutputExplanation& output : explanation.outputs) {
    document["outputs"].push_back(JsonOfOutput(*model, explanation, output));
  }
  PrintDocument(document);
}

}  // namespace

void AddExplain(CLI::App& app) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App* explain =
      app.add_subcommand("explain", "Show where the values of a model at one point come from");
  constexpr std::size_t kMostSamples = 1000;
  explain->add_option("MODEL", options->model, "Database of fitted models")->required();
  explain->add_option("NAME=VALUE", options->assignments, "Each input once, in any order");
  explain->add_option("--samples", options->samples, "How many of the nearest samples to list")
      ->check(CLI::Range(std::size_t{0}, kMostSamples))
      ->type_name("NUMBER")
      ->capture_default_str();
  explain->add_flag("--json", options->json, "Print JSON with all digits, for programs");
  explain->add_option("--limit", options->limit, kLimitHelp)->type_name("OPERATIONS");
  explain->footer(
      "For each output: its surfaces with their weights, what each of them predicts on its own, "
      "the\n"
      "predictions without each fold, what a change of an input by one percent of its range adds,\n"
      "and the samples nearest to the point, with distances in units of their typical spacing.\n"
      "\n"
      "Example:\n"
      "  pxrom explain examples/beam.pxdb Material=1 Holes=2 L=1.5 b=45 h=90 F=3000");
  explain->callback([options] { Explain(*options); });
}

}  // namespace pxrom_command
