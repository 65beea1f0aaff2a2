#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "cost.h"
#include "json_text.h"
#include "model_file.h"
#include "numbers.h"
#include "parameters.h"
#include "points_source.h"
#include "refusal.h"
#include "scores.h"
#include "table.h"
#include "validation.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

struct ValidateOptions {
  std::string model;
  std::string table;
  ValidationOptions validation;
  std::string limit;
  std::optional<double> r2;
  std::vector<std::string> rmse;
  bool json = false;
};

std::vector<std::string> UnitsOf(const Model& model, const Validation& done) {
  std::vector<std::string> units;
  for (const ValidatedOutput& output : done.outputs) units.push_back(UnitOf(model, output.id));
  return units;
}

void PrintScores(const Model& model, const Validation& done) {
  std::vector<Table::Column> columns = {{"Output"}, {"Combination"}};
  for (const std::string& heading : ScoreHeadings()) columns.push_back({heading, Align::Right});
  columns.push_back({"Unit"});
  Table table(std::move(columns));
  for (const ScoreLine& line : ScoreLinesOf(done, UnitsOf(model, done))) {
    std::vector<std::string> cells = {line.output, line.combination};
    cells.insert(cells.end(), line.cells.begin(), line.cells.end());
    cells.push_back(line.unit);
    table.Add(std::move(cells));
  }
  table.Print(std::cout);
  std::cout << '\n' << kScoresLegend << '\n';
}

void PrintWorst(const Model& model, const Validation& done) {
  Table table({{"Output", Align::Left},
               {"Line", Align::Right},
               {"Combination", Align::Left},
               {"Measured", Align::Right},
               {"Predicted", Align::Right},
               {"Difference", Align::Right},
               {"Predicted error", Align::Right},
               {"Unit", Align::Left}});
  bool any = false;
  for (const ValidatedOutput& output : done.outputs) {
    std::string id = output.id;
    for (const MeasuredPair& pair : output.worst) {
      constexpr int kDigits = 3;
      table.Add({id, std::to_string(pair.line), TextOf(pair.discrete), Shown(pair.measured),
                 Shown(pair.predicted), Shown(pair.Difference(), kDigits),
                 std::isnan(pair.error) ? "-" : Shown(pair.error, kDigits),
                 UnitOf(model, output.id)});
      id.clear();
      any = true;
    }
  }
  if (!any) return;
  std::cout << "\nThe rows that differ most:\n\n";
  table.Print(std::cout);
}

/// What the scores of an output leave out or can't say.
void PrintNotes(const Validation& done) {
  for (const ValidatedOutput& output : done.outputs) {
    const pxrom::CPredictionScores& scores = output.scores;
    const std::string id = Printed(output.id);
    if (scores.missing > 0) {
      std::cout << id << ": " << Counted(scores.missing, "row") << " without a measured value\n";
    }
    if (scores.failed > 0) {
      std::cout << id << ": " << Counted(scores.failed, "measured value")
                << " without a prediction\n";
    }
    if (scores.count > 0 && std::isnan(scores.r2)) {
      std::cout << id << ": R2 is undefined, since all measured values are equal\n";
    }
  }
}

void PrintFaults(const std::string& name, const Validation& done) {
  for (const auto& [line, fault] : done.faults) {
    std::cerr << name << ':' << line << ": " << Printed(fault) << '\n';
  }
  if (done.bad > done.faults.size()) {
    std::cerr << name << ": " << done.bad - done.faults.size() << " more bad rows are not listed\n";
  }
  if (done.bad + done.outside_bounds == 0) return;
  std::cerr << "pxrom validate: " << Counted(done.rows, "row") << ", "
            << (done.bad == 0 ? "none" : std::to_string(done.bad)) << " bad";
  if (done.outside_bounds > 0) {
    std::cerr << "; " << Counted(done.outside_bounds, "row")
              << " outside the bounds of an input, where the surfaces extrapolate";
  }
  std::cerr << '\n';
}

/// The thresholds of --rmse by output. Refusal for one of an output that was not measured.
std::map<std::string, double> LargestRmse(const ValidateOptions& options, const Model& model,
                                          const Validation& done) {
  std::map<std::string, double> largest;
  for (const std::string& given : options.rmse) {
    const std::size_t equals = given.rfind('=');
    const std::string id = given.substr(0, equals);
    const std::optional<double> value =
        equals == std::string::npos ? std::nullopt : ParseReal(given.substr(equals + 1));
    if (!value.has_value()) {
      throw Refusal("--rmse: " + Quoted(given) + " is not of the form OUTPUT=NUMBER");
    }
    std::vector<std::string> ids;
    for (const ValidatedOutput& output : done.outputs) ids.push_back(output.id);
    if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
      throw Refusal("--rmse: " +
                    (model.IsOutput(id) ? "the table has no measured values of "
                                        : std::string("the model has no output ")) +
                    Quoted(id) + Suggestion(id, ids));
    }
    largest[id] = *value;
  }
  return largest;
}

/// What is not as good as the thresholds ask for, in sentences.
std::vector<std::string> Failures(const ValidateOptions& options, const Model& model,
                                  const Validation& done) {
  const std::map<std::string, double> largest = LargestRmse(options, model, done);
  std::vector<std::string> failures;
  for (const ValidatedOutput& output : done.outputs) {
    const pxrom::CPredictionScores& scores = output.scores;
    // A score that is undefined meets no threshold.
    if (options.r2.has_value() && !(scores.r2 >= *options.r2)) {
      failures.push_back(output.id + ": R2 is " +
                         (std::isnan(scores.r2)
                              ? "undefined"
                              : Shown(scores.r2) + ", below " + Shown(*options.r2)));
    }
    const auto limit = largest.find(output.id);
    if (limit != largest.end() && !(scores.rmse <= limit->second)) {
      failures.push_back(output.id + ": the RMSE is " +
                         (std::isnan(scores.rmse)
                              ? "undefined"
                              : Shown(scores.rmse) + ", above " + Shown(limit->second)));
    }
  }
  return failures;
}

nlohmann::ordered_json JsonOf(const pxrom::CPredictionScores& scores) {
  nlohmann::ordered_json entry;
  entry["count"] = scores.count;
  entry["missing"] = scores.missing;
  entry["failed"] = scores.failed;
  entry["r2"] = FiniteOrNull(scores.r2);
  entry["rmse"] = FiniteOrNull(scores.rmse);
  entry["mean_absolute_error"] = FiniteOrNull(scores.meanAbsoluteError);
  entry["largest_absolute_error"] = FiniteOrNull(scores.largestAbsoluteError);
  entry["bias"] = FiniteOrNull(scores.bias);
  entry["with_error"] = scores.withError;
  entry["within"] = scores.within;
  return entry;
}

void PrintJson(const ValidateOptions& options, const Model& model, const Validation& done,
               const std::vector<std::string>& failures) {
  nlohmann::ordered_json outputs = nlohmann::ordered_json::array();
  for (const ValidatedOutput& output : done.outputs) {
    nlohmann::ordered_json entry;
    entry["id"] = output.id;
    entry["caption"] = CaptionOf(model, output.id);
    entry["unit"] = UnitOf(model, output.id);
    entry.update(JsonOf(output.scores));
    entry["combinations"] = nlohmann::ordered_json::array();
    for (const ValidatedOutput::Part& part : output.parts) {
      nlohmann::ordered_json scores;
      scores["discrete"] = ObjectOf(part.discrete);
      scores.update(JsonOf(part.scores));
      entry["combinations"].push_back(scores);
    }
    entry["worst"] = nlohmann::ordered_json::array();
    for (const MeasuredPair& pair : output.worst) {
      entry["worst"].push_back({{"line", pair.line},
                                {"discrete", ObjectOf(pair.discrete)},
                                {"measured", pair.measured},
                                {"predicted", pair.predicted},
                                {"error", FiniteOrNull(pair.error)}});
    }
    outputs.push_back(entry);
  }
  nlohmann::ordered_json document;
  document["model"] = options.model;
  document["table"] = options.table;
  document["rows"] = done.rows;
  document["bad_rows"] = done.bad;
  document["outside_bounds"] = done.outside_bounds;
  document["outputs"] = outputs;
  document["failures"] = failures;
  PrintDocument(document);
}

void ValidateTable(const ValidateOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  PointsSource table(options.table);
  const Validation done = Validate(*model, table.Stream(), table.Name(), options.validation);
  const std::vector<std::string> failures = Failures(options, *model, done);
  PrintFaults(Printed(table.Name()), done);
  if (options.json) {
    PrintJson(options, *model, done, failures);
  } else {
    PrintScores(*model, done);
    PrintNotes(done);
    PrintWorst(*model, done);
  }
  for (const std::string& failure : failures) {
    std::cerr << "pxrom validate: " << Printed(failure) << '\n';
  }
  if (!failures.empty() || done.bad > 0) throw CLI::RuntimeError(1);
}

}  // namespace

void AddValidate(CLI::App& app) {
  const auto options = std::make_shared<ValidateOptions>();
  CLI::App* validate =
      app.add_subcommand("validate", "Compare a model with a table of measured outputs");
  constexpr std::size_t kWorst = 3;
  constexpr std::size_t kMostWorst = 1000;
  options->validation.worst = kWorst;
  validate->add_option("MODEL", options->model, "Database of fitted models")->required();
  validate
      ->add_option("TABLE", options->table,
                   "Table of points and measured outputs, comma-separated; - is the standard input")
      ->required();
  validate->add_option("NAME=VALUE", options->validation.assignments,
                       "Inputs without a column, with one value for all rows");
  validate->add_option("--r2", options->r2, "Smallest R2 that each output has to have");
  validate
      ->add_option("--rmse", options->rmse,
                   "Largest RMSE of an output, as OUTPUT=NUMBER; may be given for several outputs")
      ->expected(1)
      ->type_name("OUTPUT=NUMBER")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  validate
      ->add_option("--worst", options->validation.worst,
                   "How many of the worst rows to list per output")
      ->check(CLI::Range(std::size_t{0}, kMostWorst))
      ->capture_default_str();
  validate->add_flag("--json", options->json, "Print JSON with all digits, for programs");
  validate->add_option("--limit", options->limit, kLimitHelp)->type_name("OPERATIONS");
  validate->footer(
      "The table is one of points as for pxrom eval --points, with one more column for each "
      "output\n"
      "that was measured, which has the output's ID as heading. A cell that is empty, NaN or NA "
      "is\n"
      "no measured value. A bad row is reported by its line and left out.\n"
      "The status is 1 if a row is bad or an output misses a threshold.\n"
      "\n"
      "Example:\n"
      "  pxrom validate examples/beam.pxdb examples/measured.csv --r2 0.95");
  validate->callback([options] {
    options->validation.limit = LimitOf(options->limit);
    ValidateTable(*options);
  });
}

}  // namespace pxrom_command
