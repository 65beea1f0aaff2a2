// Every fitted model gives the results of the tool that fitted it, from the text to the numbers.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "pxrom/batch.h"
#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using Json = nlohmann::json;
using NamedValues = std::vector<std::pair<std::string, double>>;
namespace fs = std::filesystem;

std::vector<std::string> Models() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(SourcePath("tests/data/models"))) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

template <class Value>
std::vector<std::pair<std::string, Value>> Named(const Json& object) {
  const auto map = object.get<std::map<std::string, Value>>();
  return {map.begin(), map.end()};
}

void ExpectNear(const NamedValues& got, const Json& want, double tolerance) {
  ASSERT_EQ(got.size(), want.size());
  for (const auto& [id, value] : got) {
    const double expected = want.at(id);
    EXPECT_NEAR(value, expected, tolerance * std::max(1.0, std::fabs(expected))) << id;
  }
}

class FittedModel : public testing::TestWithParam<std::string> {};

TEST_P(FittedModel, GivesTheResultsOfItsTool) {
  const fs::path folder = fs::path(SourcePath("tests/data/models")) / GetParam();
  CDiscreteCombinations model;
  ASSERT_NO_FATAL_FAILURE(ReadModel((folder / "model.pxdb").string(), model));
  const Json cases = Json::parse(ContentOf((folder / "cases.json").string()));
  ASSERT_FALSE(cases.empty());
  for (const Json& c : cases) {
    const auto discrete = Named<int>(c["discrete"]);
    auto continuous = Named<double>(c["continuous"]);
    NamedValues outputs;
    EXPECT_EQ(model.Evaluate(discrete, continuous, outputs), 0);
    ExpectNear(outputs, c["outputs"], c["tolerance"]);
    // A caller may name the values in any order.
    std::reverse(continuous.begin(), continuous.end());
    NamedValues reversed;
    EXPECT_EQ(model.Evaluate(discrete, continuous, reversed), 0);
    EXPECT_EQ(reversed, outputs);
    if (c["errors"].is_null()) continue;

    // The form with errors may leave scaled samples in a Kriging record, so each call gets a copy.
    const CDiscreteCombinations fresh(model);
    NamedValues errors;
    const bool all = c["errors"].size() == c["outputs"].size();
    EXPECT_EQ(fresh.Evaluate(discrete, continuous, outputs, errors), all ? 0 : -2);
    ExpectNear(outputs, c["outputs"], c["tolerance"]);
    // A case without any error has no tolerance for one.
    if (!errors.empty()) ExpectNear(errors, c["errors"], c["error_tolerance"]);
    EXPECT_EQ(errors.size(), c["errors"].size());
  }
}

// The ensembles of one surface don't scale their output, so the tool's error is in its unit.
TEST_P(FittedModel, GivesTheErrorsOfItsToolInTheUnit) {
  const fs::path folder = fs::path(SourcePath("tests/data/models")) / GetParam();
  CDiscreteCombinations model;
  ASSERT_NO_FATAL_FAILURE(ReadModel((folder / "model.pxdb").string(), model));
  for (const Json& c : Json::parse(ContentOf((folder / "cases.json").string()))) {
    CPreparedModel prepared;
    ASSERT_EQ(CPreparedModel::Prepare(model, Named<int>(c["discrete"]), prepared), 0);
    std::vector<double> point;
    for (const std::string& id : prepared.InputIDs()) point.push_back(c["continuous"].at(id));
    const std::size_t count = prepared.OutputIDs().size();
    std::vector<double> values(count), errors(count);
    ASSERT_EQ(
        prepared.EvaluateWithUnits(point.data(), 1, PrecisionExact, {values.data(), errors.data()}),
        0);
    for (std::size_t o = 0; o < count; ++o) {
      const std::string& id = prepared.OutputIDs()[o];
      const double value = c["outputs"].at(id);
      EXPECT_NEAR(values[o], value, double{c["tolerance"]} * std::max(1.0, std::fabs(value)));
      const CErrorOrigin origin = prepared.ErrorOrigin(o);
      EXPECT_EQ(origin.origin == ErrorNone, std::isnan(errors[o])) << id;
      if (origin.origin != ErrorFromAllSurfaces || origin.surfaces > 1 || origin.firstOrder) {
        continue;
      }
      const double error = c["errors"].at(id);
      EXPECT_NEAR(errors[o], error, double{c["error_tolerance"]} * std::max(1.0, error)) << id;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Models, FittedModel, testing::ValuesIn(Models()),
                         [](const auto& model) { return model.param; });

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
