// Reading of whole databases, sound and damaged ones.

#include <stdexcept>

#include "model/test_candidates.h"
#include "pxrom/discrete_combinations.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

std::string Genome(int id, const std::string& value, const std::string& more = "") {
  return "<Genome ID=" + std::to_string(id) + ">\n" + more + "DataType=8\nGenomeWeight=0.5\n" +
         "NumberOfInputVariables=1\nNumberOfSamples=1\nInputSamples=0.5\nOutputSamples=7.5\n"
         "InputScaleSlopes=1\nInputScaleIntercepts=0\nOutputScaleSlope=1\nOutputScaleIntercept=0\n"
         "IsReadyForSolve=1\nIsReadyForEvaluation=1\nIsStopped=0\nConstantVersion=170\n"
         "ConstantValue=" +
         value + "\n</Genome>\n";
}

const char kCandidate[] =
    "CandidateVersion=192\nCandidateNumberOfInputVariables=1\nCandidateNumberOfSamples=2\n"
    "CandidateInputSamples=0.5,0.75\nCandidateOutputSamples=7.5,8\nCandidateInputScaleSlopes=1\n"
    "CandidateInputScaleIntercepts=0\nCandidateOutputScaleSlope=1\n"
    "CandidateOutputScaleIntercept=0\n";

const char kRegistry[] =
    "<ParameterRegistry>\nParameterRegistryVersion=170\nIDs=x,y\nCausalities=0,1\nTypes=0,0\n"
    "Availability=1,1\nDiscreteIndexing=\nRegistrationRank={x;0},{y;1}\nUnits={x;m},{y;N}\n"
    "Captions={x;Length},{y;Force}\nLowerBounds={x;0},{y;0}\nUpperBounds={x;1},{y;10}\n"
    "</ParameterRegistry>\n";

std::string Database() {
  return std::string(kRegistry) + "<DiscreteSets>\nDiscreteSet={y;3}\n</DiscreteSets>\n" +
         "<PlexuraData ID=3>\n" + kCandidate + "CandidateRSCardinality=2\n" +
         "GARS_ExportPredictionOfError=1\nCardinalOfEachFold=1,1\nRho=0.25\n" +
         "attScInputPoints=0.5,0.75\nCandidateSubRSCardinality=4\n" + Genome(0, "6") +
         Genome(1, "8") + Genome(2, "6.5") + Genome(3, "5.5") + Genome(4, "8.25") +
         Genome(5, "7.75") + "</PlexuraData>\n";
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

int Read(std::string text, CDiscreteCombinations& out) {
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  return reader.ResumeDiscreteCombinations(out);
}

int Status(const std::string& text) {
  CDiscreteCombinations model;
  return Read(text, model);
}

TEST(Database, ReadsWholeWhateverTheOrderOfItsGroupsAndItsLineEnds) {
  const std::string groups = Database();
  const std::size_t data = groups.find("<PlexuraData");
  std::string windows;
  for (const char c : groups) windows += c == '\n' ? std::string("\r\n") : std::string(1, c);
  for (const std::string& text : {windows, groups.substr(data) + groups.substr(0, data)}) {
    CDiscreteCombinations model;
    ASSERT_EQ(Read(text, model), 0);
    const CFittingCandidate& candidate =
        *model.GetOutputsWrtDiscCombPtr()->at(0).at("y")->GetEvaluationCandidatePtr();
    ASSERT_EQ(candidate.GetSubRSCounts(), 4u);
    EXPECT_EQ(ValueOf(candidate.GetSubRSPtr(2)), 8.25);
    EXPECT_EQ(candidate.GetDPMinDist(), 0.25);
    EXPECT_EQ(candidate.GetviNumPtsPerFold(), (std::vector<int>{1, 1}));
    EXPECT_EQ(candidate.GetvvdScSortedInput(), (Matrix{{0.5}, {0.75}}));
    EXPECT_EQ(model.ListUpperBound({"y"}), (NamedValues{{"y", 10}}));
    NamedValues outputs;
    EXPECT_EQ(model.Evaluate({}, {{"x", 0.6}}, outputs), 0);
    EXPECT_EQ(outputs, (NamedValues{{"y", 7}}));
  }
}

TEST(Database, ReadingAdds) {
  CDiscreteCombinations model;
  EXPECT_EQ(Read(Database(), model), 0);
  EXPECT_EQ(Read(Database(), model), 0);
  EXPECT_EQ(model.GetOutputsWrtDiscCombPtr()->size(), 2u);
  EXPECT_EQ(model.GetDiscreteCombinationsIndexingPtr()->at({}), 1);
}

TEST(Database, VersionsMostlyIgnored) {
  for (const auto& [from, to] :
       {std::pair("CandidateVersion=192", "CandidateVersion=170"),
        std::pair("OfError=1", "OfError=0"), std::pair("GARS_", "gone_")}) {
    CDiscreteCombinations model;
    // Data that are not asked for are not read.
    const std::string text = Replaced(Replaced(Database(), from, to), "InputPoints=0.5,", "bad=");
    ASSERT_EQ(Read(text, model), 0) << from;
    const auto* candidate = model.GetOutputsWrtDiscCombPtr()->at(0).at("y")->GetCandidatePtr(0);
    EXPECT_FALSE(candidate->GetIsErrPredRequired());
    EXPECT_EQ(candidate->GetSubRSCounts(), 0u);
    EXPECT_EQ(candidate->DataVersion(), FittingCandidateVersion192);
  }
}

TEST(Database, RegistryListLengths) {
  const std::tuple<const char*, const char*, int> changes[] = {
      {"Causalities=0,1", "Causalities=0", 1},
      {"Types=0,0", "Types=", 1},
      {"Availability=1,1", "Availability=1", 1},
      {"Causalities=0,1", "Causalities=0,1,7", 0},
      {"{x;0},{y;1}", "{x;0}", 1},
      {"{x;0},{y;1}", "{x;0},{y;1},{x;0}", 1},
  };
  for (const auto& [from, to, status] : changes) {
    EXPECT_EQ(Status(Replaced(Database(), from, to)), status) << from << " -> " << to;
  }
}

TEST(Database, WhatCannotBeHonouredIsRefused) {
  const std::pair<const char*, const char*> damages[] = {
      {"IDs=x,y", "IDs="},
      {"IDs=x,y\n", "IDs=\r\n"},
      {"IDs=", "Ids="},
      {"{x;0},{y;1}", "{x;0},{z;1}"},
      {"Types=0,0", "Types=2,0"},
      {"{y;3}", "{y;3},{y;3}"},
      {"{y;3}", ""},
      {"\nDiscreteSet={y;3}\n", ""},
      {"CandidateNumberOfSamples=2", "CandidateNumberOfSamples=3"},
      {"CandidateNumberOfSamples=2", "CandidateNumberOfSamples=-2"},
      {"CandidateRSCardinality=2", "CandidateRSCardinality=-1"},
      {"CandidateRSCardinality=2", "CandidateRSCardinality=7"},
      {"CandidateSubRSCardinality=4", "CandidateSubRSCardinality=5"},
      {"CandidateSubRSCardinality=4", "CandidateSubRSCardinality=2147483647"},
      {"attScInputPoints=0.5,0.75", "attScInputPoints=0.5"},
      {"DataType=8", "DataType=99"},
      {"DataType=8", "DataType=0"},
      {"DataType=8", "Data"},
      {"\nNumberOfSamples=1", "\nNumberOfSamples=2"},
      {"<Genome ID=0>", "<Genome  ID=0>"},
  };
  for (const auto& [from, to] : damages) {
    EXPECT_EQ(Status(Replaced(Database(), from, to)), 1) << from << " -> " << to;
  }
}

TEST(Database, NegativeSurfaceCount) {
  const auto countsOf = [](const std::string& text) {
    CDiscreteCombinations model;
    EXPECT_EQ(Read(text, model), 0);
    const auto* candidate = model.GetOutputsWrtDiscCombPtr()->at(0).at("y")->GetCandidatePtr(0);
    return std::pair(candidate->GetRSCount(), candidate->GetSubRSCounts());
  };
  std::string text = Replaced(Database(), "SubRSCardinality=4", "SubRSCardinality=-4");
  EXPECT_EQ(countsOf(text), std::pair(std::size_t{2}, std::size_t{0}));
  text = Replaced(text, "RSCardinality=2", "RSCardinality=-2");
  EXPECT_EQ(countsOf(text), std::pair(std::size_t{0}, std::size_t{0}));
}

TEST(Database, GroupSearchUntested) {
  // A missing group of that number finds the first one in its place.
  EXPECT_EQ(Status(Replaced(Database(), "{y;3}", "{y;4}")), 0);
  // A surface without its closing tag reaches to the next one.
  EXPECT_EQ(Status(Replaced(Database(), "</Genome>", "")), 0);
  // A surface after the candidate's closing tag isn't part of it.
  EXPECT_EQ(Status(Replaced(Database(), "<Genome ID=0>", "</PlexuraData><Genome ID=0>")), 1);
  // Without a line end the last line's value ends with the range.
  EXPECT_EQ(Status(Replaced(Database(), "\n</DiscreteSets>", "</DiscreteSets>")), 0);
}

TEST(Database, ReadingOutOfRange) {
  CDiscreteCombinations model;
  EXPECT_THROW(Read("", model), std::out_of_range);
  EXPECT_THROW(Read(Replaced(Database(), "{x;0},{y", "{x;0},,{y"), model), std::out_of_range);
  EXPECT_THROW(Read(Replaced(Database(), "{y;3}", ",{y;3}"), model), std::out_of_range);
  // The indexing is read but not used.
  const std::string indexing = "DiscreteIndexing=";
  EXPECT_THROW(Read(Replaced(Database(), indexing, indexing + "{k;0},,{m;1}"), model),
               std::out_of_range);
  EXPECT_EQ(Status(Replaced(Database(), indexing, indexing + "{k;0},{m;1}")), 0);
  // A list of candidates has lost its content and has no part of another one.
  CFittingCandidates list = OneConstant(1, 1);
  EXPECT_THROW(OpenReader("").ResumeFittingCandidates(list, 3), std::out_of_range);
  EXPECT_EQ(list.GetCandidateCount(), 0u);
  CDiscreteCombinations after;
  EXPECT_EQ(Read(Database(), after), 0);
}

TEST(Database, DiscreteWithoutBounds) {
  std::string text = Database();
  for (const auto& [from, more] :
       {std::pair("IDs=x,y", ",k"), std::pair("Causalities=0,1", ",0"),
        std::pair("Types=0,0", ",2"), std::pair("Availability=1,1", ",2"),
        std::pair("{y;1}", ",{k;2}"), std::pair("{y;N}", ",{k;kind}"),
        std::pair("LowerBounds={x;0},{y;0}", ",{k;1}")}) {
    text = Replaced(text, from, std::string(from) + more);
  }
  CDiscreteCombinations model;
  ASSERT_EQ(Read(text, model), 0);
  EXPECT_EQ(model.ListParameterUnit({"k"})[0].second, "");
  EXPECT_EQ(model.ListLowerBound({"k"}), (NamedValues{{"k", 0}}));
  // Once it is enabled, a combination without its value is refused.
  text = Replaced(text, "Availability=1,1,2", "Availability=1,1,1");
  EXPECT_EQ(Status(Replaced(text, "DiscreteSet={y;3}", "DiscreteSet=")), 1);
}

TEST(Database, OnlyOneIsAvailable) {
  for (const char* const number : {"2", "0", "-1"}) {
    const std::string list = std::string("Availability=") + number + ",1";
    CDiscreteCombinations model;
    ASSERT_EQ(Read(Replaced(Database(), "Availability=1,1", list), model), 0);
    EXPECT_FALSE(model.IsEnabled("x")) << number;
    EXPECT_TRUE(model.IsEnabled("y")) << number;
  }
}

TEST(Database, ARefusedGroupLeavesTheTargetEmptyAndAMissingOneUntouched) {
  OpenReader reader(Replaced(Database(), "DataType=8", "DataType=99"));
  CFittingCandidates list = OneConstant(1, 1);
  EXPECT_EQ(reader.ResumeFittingCandidates(list, 3), 1);
  EXPECT_EQ(list.GetCandidateCount(), 0u);
  std::string empty = "<PlexuraData ID=3></PlexuraData>";
  reader.ReadDataStream(empty);
  list = OneConstant(1, 1);
  EXPECT_EQ(reader.ResumeFittingCandidates(list, 3), 1);
  EXPECT_EQ(list.GetCandidateCount(), 1u);
}

TEST(Database, ARegistryIsReadAloneAndNotAtAllIfItsListsAreTooShort) {
  CDiscreteCombinations model;
  const OpenReader tooShort(Replaced(Database(), "Types=0,0", "Types=0"));
  EXPECT_EQ(tooShort.ResumeParameterRegistry(model, 0, 0), 1);
  const OpenReader empty("<ParameterRegistry></ParameterRegistry>");
  EXPECT_EQ(empty.ResumeParameterRegistry(model, 0, 0), 1);
  EXPECT_FALSE(model.IsRegistered("x"));
  EXPECT_EQ(OpenReader(Database()).ResumeParameterRegistry(model, 0, 0), 0);
  EXPECT_TRUE(model.IsRegistered("x"));
  EXPECT_TRUE(model.GetOutputsWrtDiscCombPtr()->empty());
}

std::string SetsOf(const std::vector<int>& groups) {
  std::string sets = "<DiscreteSets>\n";
  for (const int group : groups) sets += "DiscreteSet={y;" + std::to_string(group) + "}\n";
  return sets + "</DiscreteSets>\n";
}

std::string Opening(const char* word, int number) {
  return std::string("<") + word + " ID=" + std::to_string(number) + ">\n";
}

std::string Samples(int count) {
  std::string samples = "InputSamples=";
  for (int i = 0; i < count; ++i) samples += "1,";
  return samples + "\n";
}

TEST(Database, AGroupIsReadOnceForAllLines) {
  const std::string group = Opening("PlexuraData", 3) +
                            "CandidateVersion=170\nCandidateNumberOfInputVariables=1\n"
                            "CandidateNumberOfSamples=40000\nCandidateRSCardinality=0\nCandidate" +
                            Samples(40000) + "</PlexuraData>\n";
  EXPECT_EQ(Status(kRegistry + SetsOf(std::vector<int>(20000, 3)) + group), 0);
}

// Groups that overlap must not multiply the work without limit.
TEST(Database, OverlappingGroupsAreRefusedBeyondABudget) {
  const auto statusOf = [](int groups, int surfaces, const std::string& content) {
    std::vector<int> numbers;
    std::string text;
    for (int g = 0; g < groups; ++g) {
      numbers.push_back(g);
      text += Opening("PlexuraData", g);
    }
    text += kCandidate + ("CandidateRSCardinality=" + std::to_string(surfaces) + "\n");
    for (int s = 0; s < surfaces; ++s) text += Opening("Genome", s);
    return Status(kRegistry + SetsOf(numbers) + text + content + "</Genome>\n</PlexuraData>\n");
  };
  const std::string many =
      "DataType=8\nNumberOfSamples=40000\nNumberOfInputVariables=1\n" + Samples(40000);
  EXPECT_EQ(statusOf(1, 1, many), 0);
  EXPECT_EQ(statusOf(20000, 1, many), 1);
  EXPECT_EQ(statusOf(1, 20000, many), 1);
  // Many small surfaces take more memory as objects than their text shows.
  const std::string few = "DataType=8\n";
  EXPECT_EQ(statusOf(10, 300, few), 0);
  EXPECT_EQ(statusOf(3000, 300, few), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
