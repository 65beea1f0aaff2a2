// A written model reads back unchanged, to the last bit, and gives the same text again.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

#include "pxrom/constant.h"
#include "pxrom/kriging.h"
#include "pxrom/regression.h"
#include "support/rounds.h"
#include "support/surfaces.h"
#include "support/test_models.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;
using tests::Question;

/// All results of an evaluation, from copies, since the form with errors may write records.
std::string Answer(const CDiscreteCombinations& model, const Question& question) {
  const CDiscreteCombinations copy(model);
  NamedValues tables[3];
  std::ostringstream all;
  all << std::hexfloat << copy.Evaluate(question.discrete, question.continuous, tables[0])
      << copy.Evaluate(question.discrete, question.continuous, tables[1], tables[2]);
  for (const NamedValues& table : tables) {
    for (const auto& [id, value] : table) all << id << '=' << value << ' ';
    all << '\n';
  }
  return all.str();
}

/// The value in a list of at most one element. Missing infos read back as zeros and empty words.
template <class Value>
Value Only(const std::vector<std::pair<std::string, Value>>& list) {
  return list.empty() ? Value() : list.front().second;
}

std::string RegistryOf(const CDiscreteCombinations& model) {
  std::ostringstream all;
  all << std::hexfloat;
  for (const std::string& id : model.ListParameterImmutableID()) {
    all << id << model.GetRegistrationRank()->at(id) << model.IsEnabled(id)
        << model.ListParameterCausality({id})[0] << model.ListParameterType({id})[0]
        << Only(model.ListParameterUnit({id})) << Only(model.ListParameterCaption({id}))
        << Only(model.ListLowerBound({id})) << Only(model.ListUpperBound({id})) << ' ';
  }
  return all.str();
}

void ExpectRoundTrip(const CDiscreteCombinations& model, const std::vector<Question>& questions) {
  const CDiscreteCombinations again = Again(model);
  EXPECT_EQ(RegistryOf(again), RegistryOf(model));
  EXPECT_EQ(again.GetDiscreteCombinationsIndexingPtr()->size(),
            model.GetDiscreteCombinationsIndexingPtr()->size());
  for (const Question& question : questions) {
    EXPECT_EQ(Answer(again, question), Answer(model, question));
  }
}

TEST(RoundTrip, RandomModelsOfAllFamilies) {
  for (int seed = 0; seed < Rounds(150); ++seed) {
    SCOPED_TRACE(seed);
    CDiscreteCombinations model;
    tests::FillRandomModel(static_cast<std::uint32_t>(seed), {}, model);
    ExpectRoundTrip(model, tests::QuestionsFor(model, 0.5));
  }
}

template <class Record>
Record ReadBack(const Record& record) {
  CDiscreteCombinations model;
  FillWith(CandidateOf(record), model);
  return SurfaceOf<Record>(Again(model));
}

TEST(RoundTrip, EveryDoubleKeepsItsBitsInItsShortestForm) {
  const std::string shortest =
      "0,-0,0.1,0.3333333333333333,5e-324,-5e-324,2.225073858507201e-308,1.7976931348623157e+308,"
      "-1.7976931348623157e+308,1e+22,1e+23,123456789012345680,1e-07,1e+05,";
  CConstantData record;
  record.NumberOfInputVariables = 1;
  record.OutputSamples = CReader().TokenizeDouble(shortest, ',');
  record.SetConstantValue(-0.0);
  std::mt19937_64 random(5);
  while (record.OutputSamples.size() < 20000) {
    const std::uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (std::isfinite(number)) record.OutputSamples.push_back(number);
  }
  CDiscreteCombinations model;
  FillWith(CandidateOf(record), model);
  EXPECT_NE(Written(model).find("\nOutputSamples=" + shortest), std::string::npos);
  const CConstantData again = ReadBack(record);
  EXPECT_TRUE(SameBits(again.OutputSamples, record.OutputSamples));
  double value = 1;
  again.GetConstantValue(value);
  EXPECT_TRUE(SameBits(value, -0.0));
}

TEST(RoundTrip, EqualListsShareAGroup) {
  CConstantData record;
  record.SetConstantValue(2.5);
  record.ReadyForEvaluation = true;
  const CFittingCandidate equal = CandidateOf(record);
  record.SetConstantValue(-2.5);
  const CFittingCandidate other = CandidateOf(record);

  CDiscreteCombinations model;
  model.RegisterParameter("k", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("a", CausalityOutput, ContinuousNotManufacturable, true);
  model.RegisterParameter("b", CausalityOutput, ContinuousNotManufacturable, true);
  CFittingCandidates* const shared = ListOf(equal);
  model.RegisterDiscreteCombination({{"k", 3}}, {{"a", shared}, {"b", ListOf(other)}});
  model.RegisterDiscreteCombination({{"k", 9}}, {{"a", ListOf(other)}, {"b", shared}});
  model.RegisterDiscreteCombination({{"k", 1}}, {{"a", shared}, {"b", ListOf(equal)}});
  // The first combination again: its old map stays in the object but is unreachable.
  model.RegisterDiscreteCombination({{"k", 3}}, {{"a", ListOf(other)}, {"b", ListOf(other)}});

  const std::string text = Written(model);
  EXPECT_NE(text.find("<DiscreteSets>\nDiscreteSet={k;9},{a;0},{b;1}\n"
                      "DiscreteSet={k;1},{a;1},{b;1}\nDiscreteSet={k;3},{a;0},{b;0}\n"
                      "</DiscreteSets>\n<PlexuraData ID=0>\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("<PlexuraData ID=2>"), std::string::npos);
  ExpectRoundTrip(model, tests::QuestionsFor(model, 0.5));
}

TEST(RoundTrip, AnyNumberOfCombinationsShareAGroup) {
  CConstantData record;
  MakeReady(record, 1, Matrix(20000, {0.5}));
  const CFittingCandidate candidate = CandidateOf(record);
  CDiscreteCombinations model;
  FillWith(candidate, model);
  CFittingCandidates* const shared = ListOf(candidate);
  for (int k = 0; k < 60; ++k) {
    CFittingCandidates* const mine = k % 2 == 0 ? shared : ListOf(candidate);
    model.RegisterDiscreteCombination({{"k", k}}, {{"y", mine}});
  }
  const std::string text = Written(model);
  EXPECT_EQ(text.find("<PlexuraData ID=1>"), std::string::npos);
  CDiscreteCombinations read;
  CReaderPXROMDatabase reader;
  std::string copy = text;
  reader.ReadDataStream(copy);
  ASSERT_EQ(reader.ResumeDiscreteCombinations(read), 0);
  EXPECT_EQ(Written(read), text);
}

TEST(RoundTrip, UnusualObjectsThatATextCanHold) {
  CDiscreteCombinations model;
  // An empty ID, a key that occurs earlier, words that only look like tags, equal ranks, numbers of
  // no role and no type, and missing infos.
  for (const char* const id : {"", "IDs=4", "<Genome ID=0>", "a < b > c", " "}) {
    model.RegisterParameter(id, CausalityInput, ContinuousManufacturable, true);
  }
  model.RegisterParameter("?", static_cast<E_ParameterCausality>(-3),
                          static_cast<E_ParameterType>(99), false);
  model.RegisterParameter("k", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("m", CausalityInput, DiscreteParameter, true);
  model.RegisterParameter("out", CausalityOutput, DiscreteParameter, true);
  model.RegisterParameterExtraInfos("a < b > c", "", "IDs=", "Units= of it", -0.0, -1e-310);
  std::vector<std::pair<std::string, int>> ranks(model.GetRegistrationRank()->begin(),
                                                 model.GetRegistrationRank()->end());
  const int inOrder[] = {-9, 4, 4, 4, 2147483647, -2147483647 - 1, 7, 7, 7};
  for (std::size_t i = 0; i < ranks.size(); ++i) ranks[i].second = inOrder[i];
  EXPECT_EQ(model.SetRegistrationRank(ranks), 0);
  model.RegisterDiscreteCombination({{"m", -5}, {"k", 2147483647}}, {});
  model.RegisterDiscreteCombination({{"m", 3}, {"k", 3}}, {});
  const std::string text = Written(model);
  EXPECT_NE(text.find("\nRegistrationRank={;-9},{ ;4},{<Genome ID=0>;4},"), std::string::npos);
  EXPECT_NE(text.find("\nLowerBounds={;0},{ ;0},{<Genome ID=0>;0},{IDs=4;0},{a < b > c;-1e-310}\n"),
            std::string::npos)
      << text;
  ExpectRoundTrip(model, {});
}

// The reader drops error data that are incomplete and keeps the flag: such records are written too.
TEST(RoundTrip, ErrorDataThatWereDropped) {
  CKrigingData kriging;
  MakeReady(kriging, 1, {{0.25}, {0.5}});
  CDiscreteCombinations model;
  FillWith(CandidateOf(kriging), model);
  EXPECT_NE(Written(model).find("\nKrigingSavePredictorError=0\n</Genome>"), std::string::npos);
  kriging.SavePredictorError = true;
  CKrigingData again = ReadBack(kriging);
  EXPECT_TRUE(again.SavePredictorError);
  EXPECT_TRUE(again.InvC.empty());
  EXPECT_EQ(again.NumberOfPolyCoeff, 0);
  // A surface without a trend has only the matrix for its samples.
  kriging.InvC = {{1, 2}, {3, 4}};
  kriging.Sigma2 = 0.5;
  again = ReadBack(kriging);
  EXPECT_EQ(again.InvC, kriging.InvC);
  EXPECT_EQ(again.Sigma2, 0.5);
  EXPECT_TRUE(again.InvG.empty());

  CQRSData regression;
  regression.SavePredictorError = true;
  regression.Sigma2 = 0.5;
  regression.NumberOfSelectedRegTerms = 3;
  const CQRSData read = ReadBack(regression);
  EXPECT_TRUE(read.SavePredictorError);
  EXPECT_TRUE(read.InvXtX.empty());
  EXPECT_EQ(read.Sigma2, 0.5);
}

TEST(RoundTrip, TermsWithoutTheirPartsStayWithoutThem) {
  LinearTerm complete;
  LinearTerm bare;
  LinearTerm reset;
  ConstTerm unset;
  const double coefficient = 3;
  const int index = 0;
  for (LinearTerm* const term : {&complete, &reset}) {
    term->SetParamVal(1, &coefficient);
    term->SetUsedInpVarIdx(1, &index);
  }
  bare.SetInactive();
  RegTerm* terms[] = {&complete, &bare, &reset, &unset};
  CQRSData record;
  record.NumberOfInputVariables = 1;
  record.SetRegTerm(terms, 4);
  CDiscreteCombinations model;
  FillWith(CandidateOf(record), model);
  // GetParamVal returns a number for this term, but evaluations refuse it.
  SurfaceOf<CQRSData>(model).RegTerms[2]->ResetParamVal();

  const CDiscreteCombinations again = Again(model);
  const auto& read = SurfaceOf<CQRSData>(again);
  const double x = 2;
  double value = 0;
  int got = 0;
  EXPECT_EQ(read.RegTerms[0]->EvaluateValue(1, &x, &value), 0);
  EXPECT_EQ(value, 6);
  EXPECT_EQ(read.RegTerms[1]->GetUsedInpVarIdx(&got), 1);
  EXPECT_EQ(read.QryRegTermIsActive(1), 0);
  EXPECT_EQ(read.RegTerms[2]->GetParamVal(&value), 1);
  EXPECT_EQ(read.RegTerms[2]->GetUsedInpVarIdx(&got), 0);
  EXPECT_EQ(read.RegTerms[3]->GetParamVal(&value), 1);
}

TEST(RoundTrip, FMUVariables) {
  const CWriterPXROMDatabase writer;
  const std::vector<std::pair<std::string, int>> references = {{"NumberOfReals=", 4}, {"x", -1}};
  std::string group;
  ASSERT_EQ(writer.WriteFMUDescriptionVariables(1, 2, 3, 4, 5, references, group), 0);
  EXPECT_EQ(group,
            "<FMU>\nNumberOfReals=1\nNumberOfIntegers=2\nNumberOfBooleans=3\nNumberOfStrings=4\n"
            "NumberOfEventIndicators=5\nIDToValueReference={NumberOfReals=;4},{x;-1}\n</FMU>\n");
  std::string reason;
  group = "kept";
  EXPECT_EQ(writer.WriteFMUDescriptionVariables(0, 0, 0, 0, 0, {{"a;b", 1}}, group, reason), 1);
  EXPECT_EQ(group, "kept");
  EXPECT_EQ(reason, "the reference \"a;b\" holds \";\", which separates values");
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
