// What was written reads back as it was, to the last bit, and gives the same text again.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>

#include "pxrom/constant.h"
#include "pxrom/database_reader.h"
#include "pxrom/fmu_description_reader.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"
#include "pxrom/writer.h"
#include "support/random_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

namespace fs = std::filesystem;
using NamedValues = std::vector<std::pair<std::string, double>>;
using tests::Question;

std::string ContentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

int Read(std::string text, CDiscreteCombinations& model) {
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  return reader.ResumeDiscreteCombinations(model);
}

std::string Written(const CDiscreteCombinations& model) {
  std::string text;
  std::string reason = "not emptied";
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 0);
  EXPECT_EQ(reason, "");
  return text;
}

std::string Bits(const NamedValues& values) {
  std::string bits;
  for (const auto& [id, value] : values) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    bits += id + std::string(bytes, sizeof bytes);
  }
  return bits;
}

/// Everything that an evaluation can tell, from copies: the form with errors may write records.
std::string Answer(const CDiscreteCombinations& model, const Question& question) {
  const CDiscreteCombinations copy(model);
  NamedValues outputs;
  NamedValues outputsWithErrors;
  NamedValues errors;
  const int status = copy.Evaluate(question.discrete, question.continuous, outputs);
  const int errorStatus =
      copy.Evaluate(question.discrete, question.continuous, outputsWithErrors, errors);
  return std::to_string(status) + " " + std::to_string(errorStatus) + Bits(outputs) +
         Bits(outputsWithErrors) + Bits(errors);
}

std::string RegistryOf(const CDiscreteCombinations& model) {
  std::ostringstream all;
  all.precision(17);
  const auto ids = model.ListParameterImmutableID();
  for (const std::string& id : ids) {
    all << id << model.GetRegistrationRank()->at(id) << model.IsEnabled(id)
        << model.ListParameterCausality({id})[0] << model.ListParameterType({id})[0];
    for (const auto& text : model.ListParameterUnit({id})) all << text.second;
    for (const auto& text : model.ListParameterCaption({id})) all << text.second;
    for (const auto& bound : model.ListLowerBound({id})) all << bound.second;
    for (const auto& bound : model.ListUpperBound({id})) all << bound.second;
  }
  return all.str();
}

void ExpectRoundTrip(const CDiscreteCombinations& model, const std::vector<Question>& questions) {
  const std::string text = Written(model);
  CDiscreteCombinations again;
  ASSERT_EQ(Read(text, again), 0);
  EXPECT_EQ(Written(again), text);
  EXPECT_EQ(RegistryOf(again), RegistryOf(model));
  EXPECT_EQ(again.GetDiscreteCombinationsIndexingPtr()->size(),
            model.GetDiscreteCombinationsIndexingPtr()->size());
  for (const Question& question : questions) {
    EXPECT_EQ(Answer(again, question), Answer(model, question));
  }
}

TEST(RoundTrip, FittedModelsAnswerTheSameOnTheirCases) {
  int models = 0;
  for (const auto& folder : fs::directory_iterator(PXROM_TEST_DATA "/models")) {
    if (!folder.is_directory()) continue;
    SCOPED_TRACE(folder.path().filename());
    CDiscreteCombinations model;
    ASSERT_EQ(Read(ContentOf(folder.path() / "model.pxdb"), model), 0);
    std::vector<Question> questions;
    const auto cases = nlohmann::json::parse(ContentOf(folder.path() / "cases.json"));
    for (const auto& c : cases) {
      const auto discrete = c["discrete"].get<std::map<std::string, int>>();
      const auto continuous = c["continuous"].get<std::map<std::string, double>>();
      questions.push_back(
          {{discrete.begin(), discrete.end()}, {continuous.begin(), continuous.end()}});
    }
    ExpectRoundTrip(model, questions);
    ++models;
  }
  EXPECT_GE(models, 11);
}

TEST(RoundTrip, RandomModelsOfAllFamilies) {
  std::set<std::string> kinds;
  int withErrors = 0;
  for (std::uint32_t seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE(seed);
    CDiscreteCombinations model;
    tests::FillRandomModel(seed, {}, model);
    std::vector<Question> questions;
    for (const double fraction : {0.5, 0.0, 0.875}) {
      for (const Question& question : tests::QuestionsFor(model, fraction)) {
        NamedValues outputs;
        ASSERT_EQ(model.Evaluate(question.discrete, question.continuous, outputs), 0);
        questions.push_back(question);
      }
    }
    ExpectRoundTrip(model, questions);

    const CDiscreteCombinations copy(model);
    NamedValues outputs;
    NamedValues errors;
    copy.Evaluate(questions[0].discrete, questions[0].continuous, outputs, errors);
    withErrors += errors.empty() ? 0 : 1;
    std::istringstream lines(Written(model));
    for (std::string line; std::getline(lines, line);) {
      for (const char* const key :
           {"DataType=", "KrigingCorrelationFunctionType=", "KrigingPolynomialType=",
            "SVRKernType=", "SVRLossFuncType=", "MLSWeightFunction=", "MLSPolynomialType=",
            "MLSVersion=", "LBFFunction=", "LBFPolynomialType=", "InputTransformType=",
            "OutputTransformType=", "FuncType=", "isActive=", "GARS_ExportPredictionOfError=",
            "KrigingSavePredictorError=", "QRSSavePredictorError="}) {
        if (line.rfind(key, 0) == 0) kinds.insert(line);
      }
    }
  }
  // Nothing that a family knows is missing: 6 families, 11 correlations, 5 trends, 6 kernels, ...
  EXPECT_EQ(kinds.size(), 6u + 11 + 5 + 6 + 4 + 5 + 4 + 2 + 6 + 4 + 10 + 10 + 4 + 2 + 2 + 2 + 2);
  EXPECT_GT(withErrors, 100);
}

/// One input, one output, one surface of weight 1.
void FillWith(const CRSData& record, CDiscreteCombinations& model) {
  model.RegisterParameter("x", CausalityInput, ContinuousNotManufacturable, true);
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  auto list = std::make_unique<CFittingCandidates>();
  list->GenerateCandidateFromCRSData(&record);
  model.RegisterDiscreteCombination({}, {{"y", list.release()}});
}

template <class Record>
Record ReadBack(const Record& record) {
  CDiscreteCombinations model;
  CDiscreteCombinations again;
  FillWith(record, model);
  const std::string text = Written(model);
  EXPECT_EQ(Read(text, again), 0);
  EXPECT_EQ(Written(again), text);
  const auto& list = again.GetOutputsWrtDiscCombPtr()->at(0).at("y");
  return *static_cast<const Record*>(list->GetCandidatePtr(0)->GetRSPtr(0));
}

TEST(RoundTrip, EveryDoubleKeepsItsBitsInItsShortestForm) {
  constexpr double kMax = std::numeric_limits<double>::max();
  CConstantData record;
  record.NumberOfInputVariables = 1;
  record.OutputSamples = {0.0,
                          -0.0,
                          0.1,
                          1.0 / 3,
                          5e-324,
                          -5e-324,
                          2.2250738585072009e-308,
                          kMax,
                          -kMax,
                          1e22,
                          1e23,
                          123456789012345678.0,
                          1e-7,
                          100000.0};
  record.SetConstantValue(-0.0);
  record.OutputScaleSlope = 5e-324;
  record.OutputScaleIntercept = -0.0;
  const CConstantData again = ReadBack(record);
  EXPECT_EQ(std::memcmp(again.OutputSamples.data(), record.OutputSamples.data(),
                        record.OutputSamples.size() * sizeof(double)),
            0);
  double value = 1;
  again.GetConstantValue(value);
  EXPECT_TRUE(value == 0 && std::signbit(value));
  EXPECT_TRUE(std::signbit(again.OutputScaleIntercept));
  EXPECT_EQ(again.OutputScaleSlope, 5e-324);

  CDiscreteCombinations model;
  FillWith(record, model);
  EXPECT_NE(Written(model).find("\nOutputSamples=0,-0,0.1,0.3333333333333333,5e-324,-5e-324,"
                                "2.225073858507201e-308,1.7976931348623157e+308,"
                                "-1.7976931348623157e+308,1e+22,1e+23,123456789012345680,1e-07,"
                                "1e+05\n"),
            std::string::npos)
      << Written(model);

  std::mt19937_64 random(5);
  record.OutputSamples.clear();
  while (record.OutputSamples.size() < 20000) {
    const std::uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (std::isfinite(number)) record.OutputSamples.push_back(number);
  }
  const std::vector<double> numbers = ReadBack(record).OutputSamples;
  EXPECT_EQ(std::memcmp(numbers.data(), record.OutputSamples.data(), 20000 * sizeof(double)), 0);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
