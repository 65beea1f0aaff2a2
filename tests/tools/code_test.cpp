// Models as C: compiled by the compiler of this build, the code gives the same bits as the library.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "command.h"
#include "pxrom/batch.h"
#include "pxrom/codegen.h"
#include "pxrom/constant.h"
#include "pxrom/regression.h"
#include "support/model_files.h"
#include "support/shared_library.h"
#include "support/source_path.h"
#include "support/surfaces.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

namespace fs = std::filesystem;

using Json = nlohmann::json;
using pxrom_codegen::Code;
using pxrom_codegen::Options;

std::vector<std::string> FittedModels() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(SourcePath("tests/data/models"))) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Generated code as a shared library of its own, loaded into this program.
class Loaded {
 public:
  Loaded(const Code& code, const std::string& name, const std::string& flags = "") : name_(name) {
    command::Write(name + ".h", code.header);
    command::Write(name + ".c", code.source);
    const command::Result built =
        command::Shell(PXROM_C_COMPILER
                       " -std=c99 -pedantic -Wall -Wextra -Wconversion -Wdouble-promotion -Werror "
                       "-ffp-contract=off -O1 -fPIC -shared " +
                       flags + " -o " + name + ".so " + name + ".c -lm");
    EXPECT_EQ(built.err, "");
    library_.emplace((command::Here() / (name + ".so")).string());
  }

  template <class Function>
  Function* Find(const std::string& function) const {
    return library_->Find<Function>(name_ + "_" + function);
  }

 private:
  std::string name_;
  std::optional<SharedLibrary> library_;
};

using Evaluate = int(const int*, const double*, double*, int*);
using EvaluateWithErrors = int(const int*, const double*, double*, double*, int*);
using EvaluateOne = int(const double*, double*, int*);
using EvaluateOneWithErrors = int(const double*, double*, double*, int*);

std::string Refusal(const CDiscreteCombinations& model, const Options& options) {
  Code code;
  std::string reason;
  EXPECT_EQ(pxrom_codegen::GenerateCode(model, options, code, reason), 1);
  EXPECT_EQ(code.source, "");
  return reason;
}

Code CodeOf(const CDiscreteCombinations& model, const Options& options) {
  Code code;
  std::string reason;
  EXPECT_EQ(pxrom_codegen::GenerateCode(model, options, code, reason), 0) << reason;
  return code;
}

/// The functions of one loaded model, whether it takes discrete values or not.
struct Answers {
  Answers(const Loaded& loaded, const CPreparedModel& library, const std::vector<int>& discrete)
      : code(loaded),
        key(discrete),
        values(library.OutputIDs().size()),
        errors(values.size()),
        gradients(values.size() * library.InputIDs().size()),
        statuses(values.size()) {}

  void Values(const Vector& x) {
    if (key.empty()) {
      code.Find<EvaluateOne>("evaluate")(x.data(), values.data(), statuses.data());
    } else {
      code.Find<Evaluate>("evaluate")(key.data(), x.data(), values.data(), statuses.data());
    }
  }
  void Errors(const Vector& x) {
    if (key.empty()) {
      code.Find<EvaluateOneWithErrors>("evaluate_with_errors")(x.data(), values.data(),
                                                               errors.data(), statuses.data());
    } else {
      code.Find<EvaluateWithErrors>("evaluate_with_errors")(key.data(), x.data(), values.data(),
                                                            errors.data(), statuses.data());
    }
  }
  void Gradients(const Vector& x) {
    if (key.empty()) {
      code.Find<EvaluateOne>("evaluate_gradients")(x.data(), gradients.data(), statuses.data());
    } else {
      code.Find<Evaluate>("evaluate_gradients")(key.data(), x.data(), gradients.data(),
                                                statuses.data());
    }
  }

  const Loaded& code;
  std::vector<int> key;
  Vector values;
  Vector errors;
  Vector gradients;
  std::vector<int> statuses;
};

void ExpectTheLibrarysBits(const CPreparedModel& library, const Vector& x, Answers& code) {
  Answers want = code;
  library.Evaluate(x.data(), 1, PrecisionExact, want.values.data(), nullptr, want.statuses.data());
  code.Values(x);
  EXPECT_EQ(code.statuses, want.statuses);
  EXPECT_TRUE(SameBits(code.values, want.values));

  library.Evaluate(x.data(), 1, PrecisionExact, want.values.data(), want.errors.data(),
                   want.statuses.data());
  code.Errors(x);
  EXPECT_EQ(code.statuses, want.statuses);
  EXPECT_TRUE(SameBits(code.values, want.values));
  EXPECT_TRUE(SameBits(code.errors, want.errors));

  library.EvaluateGradients(x.data(), 1, want.gradients.data(), want.statuses.data());
  code.Gradients(x);
  EXPECT_EQ(code.statuses, want.statuses);
  EXPECT_TRUE(SameBits(code.gradients, want.gradients));
}

class ModelAsC : public testing::TestWithParam<std::string> {};

TEST_P(ModelAsC, GivesTheLibrarysBits) {
  const fs::path folder = fs::path(SourcePath("tests/data/models")) / GetParam();
  CDiscreteCombinations model;
  ASSERT_NO_FATAL_FAILURE(ReadModel((folder / "model.pxdb").string(), model));
  Options options;
  options.name = GetParam();
  options.errors = true;
  options.gradients = true;
  const Code generated = CodeOf(model, options);
  EXPECT_EQ(generated.largestDifference, 0.0);
  const Loaded code(generated, GetParam());
  const std::vector<std::string> discrete = model.ListEnabledDiscreteParameterWrtRegistrationRank();
  const Json cases = Json::parse(ContentOf((folder / "cases.json").string()));
  ASSERT_FALSE(cases.empty());
  for (const Json& c : cases) {
    std::vector<int> key;
    std::vector<std::pair<std::string, int>> values;
    for (const std::string& id : discrete) {
      key.push_back(c["discrete"].at(id));
      values.emplace_back(id, key.back());
    }
    CPreparedModel library;
    ASSERT_EQ(CPreparedModel::Prepare(model, values, library), 0);
    Vector x;
    for (const std::string& id : library.InputIDs()) x.push_back(c["continuous"].at(id));
    Answers answers(code, library, key);
    ExpectTheLibrarysBits(library, x, answers);
    if (&c != &cases[0]) continue;
    for (const double odd : {std::nan(""), HUGE_VAL, -1e200, 1e17, 0.0}) {
      SCOPED_TRACE(odd);
      ExpectTheLibrarysBits(library, Vector(x.size(), odd), answers);
    }
  }
  double largest = -1.0;
  EXPECT_EQ(code.Find<int(double*)>("self_test")(&largest), 0);
  EXPECT_EQ(largest, 0.0);
}

INSTANTIATE_TEST_SUITE_P(Models, ModelAsC, testing::ValuesIn(FittedModels()),
                         [](const auto& model) { return model.param; });

// The generator evaluates what it is about to write.
TEST(Code, OfRandomModelsGivesTheLibrarysBits) {
  for (std::uint32_t seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations model;
    tests::FillRandomModel(seed, {}, model);
    Options options;
    options.errors = true;
    options.gradients = true;
    EXPECT_EQ(CodeOf(model, options).largestDifference, 0.0);
  }
}

CDiscreteCombinations Beam() {
  CDiscreteCombinations model;
  ReadModel(SourcePath("examples/beam.pxdb"), model);
  return model;
}

TEST(Code, IsTheSameAgain) {
  const Code once = CodeOf(Beam(), {});
  const Code again = CodeOf(Beam(), {});
  EXPECT_EQ(once.header, again.header);
  EXPECT_EQ(once.source, again.source);
}

TEST(Code, OfAnUnknownCombinationWritesNothing) {
  const CDiscreteCombinations model = Beam();
  const Loaded code(CodeOf(model, {}), "model");
  const int key[] = {3, 1};
  const double x[] = {100.0, 2000.0, 1.5, 40.0};
  double values[] = {-7.0, -7.0, -7.0};
  EXPECT_EQ(code.Find<Evaluate>("evaluate")(key, x, values, nullptr), 1);
  EXPECT_EQ(values[0], -7.0);
}

// The ends are those that the prepared model finds; bounds of the registry are wider.
TEST(Code, KnowsTheRangesThatAllSamplesHaveInCommon) {
  const CDiscreteCombinations model = Beam();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::vector<double> lowest(4, -kInfinity);
  std::vector<double> highest(4, kInfinity);
  for (const int holes : {0, 2, 4}) {
    for (const int material : {1, 2}) {
      CPreparedModel prepared;
      ASSERT_EQ(
          CPreparedModel::Prepare(model, {{"Holes", holes}, {"Material", material}}, prepared), 0);
      for (std::size_t output = 0; output < 3; ++output) {
        std::vector<double> lower;
        std::vector<double> upper;
        ASSERT_EQ(prepared.SampleRanges(output, lower, upper), 0);
        for (std::size_t i = 0; i < 4; ++i) {
          lowest[i] = std::max(lowest[i], lower[i]);
          highest[i] = std::min(highest[i], upper[i]);
        }
      }
    }
  }
  Options options;
  options.name = "ranges";
  const Loaded ranges(CodeOf(model, options), "ranges");
  auto* const isInside = ranges.Find<int(const double*)>("inside");
  for (std::size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    std::vector<double> point = lowest;
    EXPECT_EQ(isInside(point.data()), 1);
    point[i] = std::nextafter(lowest[i], -kInfinity);
    EXPECT_EQ(isInside(point.data()), 0);
    point[i] = highest[i];
    EXPECT_EQ(isInside(point.data()), 1);
    point[i] = std::nextafter(highest[i], kInfinity);
    EXPECT_EQ(isInside(point.data()), 0);
    point[i] = std::nan("");
    EXPECT_EQ(isInside(point.data()), 0);
  }
}

TEST(Code, OfChosenOutputsAndOneCombinationTakesNoDiscreteValues) {
  const CDiscreteCombinations model = Beam();
  Options options;
  options.name = "chosen";
  options.combination = {{"Holes", 2}, {"Material", 1}};
  options.outputs = {"stress"};
  const Loaded code(CodeOf(model, options), "chosen");
  const Vector x = {100.0, 2000.0, 1.5, 40.0};
  CPreparedModel library;
  ASSERT_EQ(CPreparedModel::Prepare(model, options.combination, library), 0);
  Vector want(3);
  library.Evaluate(x.data(), 1, PrecisionExact, want.data(), nullptr, nullptr);
  double value = 0.0;
  EXPECT_EQ(code.Find<EvaluateOne>("evaluate")(x.data(), &value, nullptr), 0);
  EXPECT_EQ(value, want[2]);
}

TEST(Code, InFloatIsAsNearAsItsHeaderSays) {
  CDiscreteCombinations model;
  ReadModel(SourcePath("tests/data/models/qrs_sm_stackloss/model.pxdb"), model);
  Options options;
  options.name = "in_float";
  options.isFloat = true;
  const Code generated = CodeOf(model, options);
  EXPECT_GT(generated.largestDifference, 0.0);
  EXPECT_LT(generated.largestDifference, 1e-5);
  const Loaded code(generated, "in_float");
  EXPECT_EQ(code.Find<int(float*)>("self_test")(nullptr), 0);
}

// Names and words that could end a comment, repeat an identifier, or be none.
TEST(Code, CompilesWithAnyNames) {
  CDiscreteCombinations model;
  const std::vector<std::string> inputs = {"b", "B", "count", "*/ int", "\xE2\x80\xAE"};
  for (const std::string& id : inputs) {
    model.RegisterParameter(id, CausalityInput, ContinuousNotManufacturable, true);
    model.RegisterParameterExtraInfos(id, "", "\?\?/", "*/ #error \\\n/*", 1.0, 0.0);
  }
  model.RegisterParameter("int", CausalityOutput, ContinuousNotManufacturable, true);
  CConstantData constant;
  constant.NumberOfInputVariables = 5;
  constant.SetConstantValue(3.5);
  constant.SetStatusReadyForEvaluation(true);
  auto list = std::make_unique<CFittingCandidates>();
  list->GenerateCandidateFromCRSData(&constant);
  ASSERT_EQ(model.RegisterDiscreteCombination({}, {{"int", list.release()}}), 0);
  Options options;
  options.name = "names";
  const Loaded code(CodeOf(model, options), "names");
  const double x[] = {0.0, 0.0, 0.0, 0.0, 0.0};
  double value = 0.0;
  EXPECT_EQ(code.Find<EvaluateOne>("evaluate")(x, &value, nullptr), 0);
  EXPECT_EQ(value, 3.5);
}

TEST(Code, RefusesWhatDoesNotFit) {
  const CDiscreteCombinations model = Beam();
  Options options;
  options.name = "1st";
  EXPECT_NE(Refusal(model, options).find("is no name for code"), std::string::npos);
  options = {};
  options.outputs = {"cost"};
  EXPECT_EQ(Refusal(model, options), "The model has no output \"cost\".");
  options = {};
  options.combination = {{"Holes", 3}, {"Material", 1}};
  EXPECT_EQ(Refusal(model, options), "The model has no combination of these discrete values.");
  options.combination = {{"Holes", 2}};
  EXPECT_EQ(Refusal(model, options), "A combination names all 2 discrete inputs, but 1 are given.");
  options = {};
  options.budget = 1000;
  EXPECT_NE(Refusal(model, options).find("more than the budget of 1000"), std::string::npos);
}

TEST(Code, RefusesASurfaceThatCannotBeEvaluated) {
  CDiscreteCombinations model = Beam();
  for (const auto& output : (*model.GetOutputsWrtDiscCombPtr())[0]) {
    output.second->SetStatusStopped();
  }
  const std::string reason = Refusal(model, {});
  EXPECT_NE(reason.find("cannot be evaluated"), std::string::npos) << reason;
}

TEST(Code, CommandLeavesNoFileForADamagedModel) {
  command::Write("broken.pxdb",
                 command::Contents(SourcePath("examples/beam.pxdb")).substr(0, 9000));
  const command::Result result = command::Shell("pxrom code broken.pxdb -o nothing");
  EXPECT_EQ(result.status, 1);
  EXPECT_FALSE(fs::exists(command::Here() / "nothing"));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
