#include <cstddef>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command.h"
#include "cost.h"
#include "json_text.h"
#include "model_file.h"
#include "overview.h"
#include "pxrom/inspection.h"
#include "table.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

struct InfoOptions {
  std::string model;
  bool json = false;
};

void PrintParameters(const ParametersByRank& parameters) {
  Table table({{"Parameter"}, {"Caption"}, {"Role"}, {"Type"}, {"State"}, {"Range"}, {"Unit"}});
  for (const auto& parameter : parameters) {
    table.Add({parameter.id, parameter.caption, RoleOf(parameter), TypeOf(parameter.type),
               parameter.enabled ? "" : "disabled", RangeOf(parameter), parameter.unit});
  }
  table.Print(std::cout);
}

void PrintCombinations(const pxrom::CDatabaseOverview& overview,
                       const ParametersByRank& parameters) {
  const RanksById ranks = RanksOf(parameters);
  const EnsemblesById ensembles = ById(overview);
  Table table({{"Combination"},
               {"Output"},
               {"Group", Align::Right},
               {"Weights and surfaces"},
               {"Samples", Align::Right},
               {"Folds", Align::Right},
               {"Error"},
               {"Operations", Align::Right},
               {"Memory", Align::Right},
               {"Size", Align::Right}});
  for (const auto& combination : overview.combinations) {
    std::string text = TextOf(combination, ranks);
    for (const auto& [output, id] : combination.outputs) {
      std::vector<std::string> row = {text, output, std::to_string(id)};
      const auto found = ensembles.find(id);
      if (found == ensembles.end()) {
        row.insert(row.end(), {"damaged or missing", "", "", "", "", "", ""});
      } else {
        const pxrom::CEnsembleOverview& ensemble = *found->second;
        row.insert(row.end(), {SurfacesOf(ensemble), std::to_string(ensemble.samples),
                               ensemble.folds == 0 ? "" : std::to_string(ensemble.folds),
                               ErrorKindOf(ensemble), OperationsOf(ensemble.cost),
                               MemoryOf(ensemble.cost), std::to_string(ensemble.characters)});
      }
      table.Add(std::move(row));
      text.clear();
    }
  }
  table.Print(std::cout);
}

void PrintText(const InfoOptions& options, const pxrom::CDatabaseOverview& overview) {
  const ParametersByRank parameters = ByRank(overview);
  std::cout << Printed(options.model) << ": " << Counted(overview.characters, "character") << " in "
            << Counted(overview.lines, "line") << ", "
            << Counted(overview.parameters.size(), "parameter") << ", "
            << Counted(overview.combinations.size(), "combination") << ", "
            << Counted(overview.ensembles.size(), "ensemble") << "\n\n";
  PrintParameters(parameters);
  std::cout << '\n';
  PrintCombinations(overview, parameters);
}

nlohmann::ordered_json JsonOf(const pxrom::CParameterOverview& parameter) {
  nlohmann::ordered_json entry;
  entry["id"] = parameter.id;
  entry["caption"] = parameter.caption;
  entry["unit"] = parameter.unit;
  entry["role"] = RoleOf(parameter);
  entry["type"] = TypeOf(parameter.type);
  entry["enabled"] = parameter.enabled;
  entry["rank"] = parameter.rank;
  entry["bounds"] = nullptr;
  if (parameter.hasBounds) entry["bounds"] = {parameter.lowerBound, parameter.upperBound};
  entry["values"] = parameter.values;
  return entry;
}

nlohmann::ordered_json JsonOf(const pxrom::CEnsembleOverview& ensemble) {
  nlohmann::ordered_json surfaces = nlohmann::ordered_json::array();
  for (const auto& surface : ensemble.surfaces) {
    surfaces.push_back({{"genome", surface.genome},
                        {"family", surface.family},
                        {"weight", surface.weight},
                        {"samples", surface.samples}});
  }
  return {{"group", ensemble.id},
          {"inputs", ensemble.inputs},
          {"samples", ensemble.samples},
          {"surfaces", surfaces},
          {"sub_surfaces", ensemble.subSurfaces},
          {"folds", ensemble.folds},
          {"error", ErrorKindOf(ensemble)},
          {"operations", ensemble.cost.operations},
          {"bytes", ensemble.cost.bytes},
          {"characters", ensemble.characters}};
}

void PrintJson(const InfoOptions& options, const pxrom::CInspectionReport& report) {
  const pxrom::CDatabaseOverview& overview = report.overview;
  nlohmann::ordered_json document;
  document["model"] = options.model;
  document["characters"] = overview.characters;
  document["lines"] = overview.lines;
  document["errors"] = report.errors;
  for (const char* list : {"parameters", "combinations", "ensembles"}) {
    document[list] = nlohmann::ordered_json::array();
  }
  for (const auto& parameter : ByRank(overview))
    document["parameters"].push_back(JsonOf(parameter));
  for (const auto& combination : overview.combinations) {
    document["combinations"].push_back({{"line", combination.line},
                                        {"discrete", ObjectOf(combination.discreteValues)},
                                        {"outputs", ObjectOf(combination.outputs)}});
  }
  for (const auto& ensemble : overview.ensembles) document["ensembles"].push_back(JsonOf(ensemble));
  PrintDocument(document);
}

void Info(const InfoOptions& options) {
  const pxrom::CInspectionReport report = InspectModel(options.model, ReadTextFile(options.model));
  if (options.json) {
    PrintJson(options, report);
  } else {
    PrintText(options, report.overview);
  }
  if (report.errors > 0) {
    std::cerr << "pxrom info: note: the database is damaged (" << Counted(report.errors, "error")
              << "); pxrom check says where\n";
  }
}

}  // namespace

void AddInfo(CLI::App& app) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App* info = app.add_subcommand("info", "Show what a database holds");
  info->add_option("MODEL", options->model, "Database of fitted models")->required();
  info->add_flag("--json", options->json, "Print JSON with all digits, for programs");
  info->footer(
      "The weight of a surface is in front of its family. Errors come from cross-validation data\n"
      "or from a surface. Operations and memory are estimates of what an evaluation takes at each\n"
      "point; sizes are characters of the file.\n"
      "Example:\n"
      "  pxrom info examples/beam.pxdb");
  info->callback([options] { Info(*options); });
}

}  // namespace pxrom_command
