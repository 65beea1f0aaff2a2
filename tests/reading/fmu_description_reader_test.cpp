#include "pxrom/fmu_description_reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <random>
#include <sstream>

#include "pxrom/database_reader.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using Names = std::vector<std::string>;

CReaderFMUModelDescription Parsed(std::string text) {
  CReaderFMUModelDescription reader;
  reader.ReadDataStream(text);
  EXPECT_EQ(reader.ParseFMUModelDescription(), 0);
  return reader;
}

// One variable whose attributes and element are as given.
std::string Variable(const std::string& attributes, const std::string& element) {
  return "<ScalarVariable " + attributes + "><" + element + "/></ScalarVariable>\n";
}

std::string Document(const std::string& variables) {
  return "<?xml version=\"1.0\"?><fmiModelDescription guid=\"{g}\" numberOfContinuousStates=\"3\">"
         "<ModelVariables>" +
         variables + "</ModelVariables></fmiModelDescription>";
}

TEST(FMUDescriptionReader, ReadsRealModelDescriptions) {
  const struct {
    const char* file;
    const char* guid;
    int reals;
    int integers;
    std::size_t inputs;
    Names outputs;
  } cases[] = {
      {"BouncingBall", "{1AE5E10D-9521-4DE3-80B9-D0EAAA7D5AF1}", 16, 0, 0, {"h", "v"}},
      {"Dahlquist", "{221063D2-EF4A-45FE-B954-B5BFEEA9A59B}", 8, 0, 0, {"x"}},
      {"Feedthrough",
       "{37B954F1-CC86-4D8F-B97F-C7C36F6670D2}",
       14,
       2,
       6,
       {"Boolean_output", "Enumeration_output", "Float64_continuous_output",
        "Float64_discrete_output", "Int32_output", "String_output"}},
      {"Resource", "{7b9c2114-2ce5-4076-a138-2cbc69e069e5}", 2, 1, 0, {"y"}},
      {"Stair", "{BD403596-3166-4232-ABC2-132BDF73E644}", 2, 1, 0, {"counter"}},
      {"VanDerPol", "{BD403596-3166-4232-ABC2-132BDF73E644}", 12, 0, 0, {"x0", "x1"}},
  };
  for (const auto& c : cases) {
    std::stringstream text;
    text << std::ifstream(std::string(PXROM_TEST_DATA "/fmi/") + c.file + ".xml").rdbuf();
    const auto reader = Parsed(text.str());
    EXPECT_EQ(reader.GetGUID(), c.guid) << c.file;
    EXPECT_EQ(reader.GetNumberOfReals(), c.reals) << c.file;
    EXPECT_EQ(reader.GetNumberOfIntegers(), c.integers) << c.file;
    EXPECT_EQ(reader.ListParameterImmutableID(CausalityInput).size(), c.inputs) << c.file;
    EXPECT_EQ(reader.ListParameterImmutableID(CausalityOutput), c.outputs) << c.file;
    EXPECT_EQ(reader.GetNumberOfBooleans() + reader.GetNumberOfStrings() +
                  reader.GetNumberOfEventIndicators(),
              0);
  }
}

TEST(FMUDescriptionReader, CountsEveryVariableButEntersEachNameOnce) {
  auto reader = Parsed(
      Document(Variable("name=\"b\" valueReference=\"7\" causality=\"input\"", "Real") +
               Variable("name=\"a\" valueReference=\" 8x\" causality=\"output\"", "Integer") +
               Variable("name=\"c\" valueReference=\"9\" causality=\"parameter\"", "Boolean") +
               Variable("name=\"b\" valueReference=\"1\" causality=\"output\"", "Integer")));
  EXPECT_EQ(reader.GetParameterValueReferences(),
            (std::map<std::string, int>{{"a", 8}, {"b", 7}, {"c", 9}}));
  EXPECT_EQ(reader.ListParameterImmutableID(), (Names{"a", "b", "c"}));
  EXPECT_EQ(reader.ListParameterImmutableID(CausalityInput), Names{"b"});
  EXPECT_EQ(reader.ListParameterImmutableID(CausalityOutput), Names{"a"});
  EXPECT_EQ(reader.ListParameterImmutableID(ContinuousNotManufacturable), Names{"b"});
  EXPECT_EQ(reader.ListParameterImmutableID(DiscreteParameter), Names{"a"});
  EXPECT_EQ(reader.GetNumberOfReals(), 2);
  EXPECT_EQ(reader.GetNumberOfIntegers(), 2);
  EXPECT_EQ(reader.GetNumberOfContinuousStates(), 3);
  // A second pass adds to the counters.
  EXPECT_EQ(reader.ParseFMUModelDescription(), 0);
  EXPECT_EQ(reader.GetNumberOfReals(), 4);
}

TEST(FMUDescriptionReader, TakesWhatAVariableLacksFromALaterOne) {
  const auto reader = Parsed(Document(Variable("name=\"a\"", "String") +
                                      Variable("displayname=\"z\" name=\"b\" valueReference=\"5\" "
                                               "causality=\"input\"",
                                               "Real") +
                                      Variable("name=\"last\"", "String")));
  EXPECT_EQ(reader.GetParameterValueReferences(),
            (std::map<std::string, int>{{"a", 5}, {"z", 5}, {"last", 0}}));
  EXPECT_EQ(reader.ListParameterImmutableID(CausalityInput), (Names{"a", "z"}));
  // The type alone has to stand inside of the variable.
  EXPECT_EQ(reader.ListParameterImmutableID(ContinuousNotManufacturable), Names{"z"});
}

TEST(FMUDescriptionReader, DamagedTextsGiveWhatIsThere) {
  const struct {
    std::string text;
    std::string guid;
    std::map<std::string, int> references;
    int states;
    int reals;
  } cases[] = {
      {"", "", {}, 0, 0},
      {"<ModelVariables>" + Variable("name=\"a\"", "Real"), "", {}, 0, 0},
      {"guid=\"x\"<fmiModelDescription", "", {}, 0, 0},
      {"<fmiModelDescription guid=", "", {}, 0, 0},
      {"<fmiModelDescription guid=\"", "", {}, 0, 0},
      {"<fmiModelDescription guid=\"open numberOfContinuousStates=\"x4\"",
       "open numberOfContinuousStates=",
       {},
       0,
       0},
      // Variables count behind their heading alone.
      {"<fmiModelDescription guid=\"g\">" + Variable("name=\"a\"", "Real"), "g", {}, 0, 0},
      {"<fmiModelDescription><ModelVariables><ScalarVariable", "", {{"", 0}}, 0, 0},
      {"<fmiModelDescription><ModelVariables><ScalarVariable name=", "", {{"", 0}}, 0, 0},
      {"<fmiModelDescription><ModelVariables><ScalarVariable name=\"a", "", {{"a", 0}}, 0, 0},
      // Without its closing tag the first variable takes all the rest.
      {"<fmiModelDescription><ModelVariables><ScalarVariable name=\"a\"><ScalarVariable "
       "name=\"b\" valueReference=\"-2\"><Real",
       "",
       {{"a", -2}},
       0,
       2},
  };
  for (const auto& c : cases) {
    const auto reader = Parsed(c.text);
    EXPECT_EQ(reader.GetGUID(), c.guid) << c.text;
    EXPECT_EQ(reader.GetNumberOfContinuousStates(), c.states) << c.text;
    EXPECT_EQ(reader.GetParameterValueReferences(), c.references) << c.text;
    EXPECT_EQ(reader.GetNumberOfReals(), c.reals) << c.text;
  }
  auto reader = Parsed(Document(Variable("name=\"a\" valueReference=\"1\"", "Real")));
  std::string other = "no description";
  reader.ReadDataStream(other);
  reader.ParseFMUModelDescription();
  EXPECT_EQ(reader.GetGUID(), "{g}");
  EXPECT_EQ(reader.GetNumberOfContinuousStates(), 3);
  EXPECT_EQ(reader.GetNumberOfReals(), 2);
}

TEST(FMUDescriptionReader, NoSequenceOfItsWordsBreaksIt) {
  const Names words = {"<fmiModelDescription",
                       "<ModelVariables",
                       "<ScalarVariable",
                       "</ScalarVariable",
                       "guid=",
                       "numberOfContinuousStates=",
                       "name=",
                       "valueReference=",
                       "causality=",
                       "input",
                       "<Real",
                       "<Integer",
                       "\"",
                       "12"};
  std::mt19937 random(5U);
  for (int round = 0; round < 20000; ++round) {
    std::string text = "<fmiModelDescription<ModelVariables";
    for (int i = static_cast<int>(random() % 24U); i > 0; --i)
      text += words[random() % words.size()];
    const auto reader = Parsed(text.substr(0, text.size() - random() % 4U));
    for (const std::string& name : reader.ListParameterImmutableID()) {
      EXPECT_NE(text.find(name), std::string::npos);
    }
  }
}

TEST(FMUDescriptionReader, TextsWithoutWhatTheyPromiseTakeNoQuadraticTimeOrMemory) {
  const auto repeated = [](const std::string& piece) {
    std::string text = "<fmiModelDescription><ModelVariables>";
    for (int i = 0; i < 30000; ++i) text += piece;
    return text;
  };
  // No word behind the variables; names that all run to the far end; one far and long value for
  // all.
  EXPECT_EQ(Parsed(repeated("<ScalarVariable></ScalarVariable>")).ListParameterImmutableID(),
            Names{""});
  EXPECT_LT(
      Parsed(repeated("<ScalarVariable name= </ScalarVariable>")).ListParameterImmutableID().size(),
      100U);
  EXPECT_EQ(Parsed(repeated("<ScalarVariable</ScalarVariable>") + "valueReference=\"" +
                   std::string(1000000, '0'))
                .GetParameterValueReferences(),
            (std::map<std::string, int>{{"", 0}}));
}

TEST(FMUDescriptionReader, CopiesAndClonesAnswerTheSame) {
  auto reader = Parsed(Document(Variable("name=\"a\" valueReference=\"1\"", "Real")));
  CReaderFMUModelDescription copy(reader);
  const std::unique_ptr<CReaderFMUModelDescription> clone(reader.Clone());
  std::string none;
  reader.ReadDataStream(none);
  for (CReaderFMUModelDescription* other : {&copy, clone.get()}) {
    EXPECT_EQ(other->GetGUID(), "{g}");
    EXPECT_EQ(other->ListParameterImmutableID(), Names{"a"});
    // The text is copied too, unlike that of other readers.
    other->ParseFMUModelDescription();
    EXPECT_EQ(other->GetNumberOfReals(), 4);
  }
}

TEST(FMUVariables, OfADatabaseAreReadFromTheirGroup) {
  using Pairs = std::vector<std::pair<std::string, int>>;
  const auto read = [](std::string text, std::vector<int>& counts, Pairs& references) {
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    return reader.ResumeFMUDescriptionVariables(counts[0], counts[1], counts[2], counts[3],
                                                counts[4], references);
  };
  std::vector<int> counts(5, -1);
  Pairs references;
  EXPECT_EQ(read("NumberOfReals=9\n<FMU>\nNumberOfReals=1\nNumberOfIntegers=2\nNumberOfBooleans=3\n"
                 "NumberOfStrings=4\nNumberOfEventIndicators=5\n"
                 "IDToValueReference={a;1},{b;2}\n</FMU>\n",
                 counts, references),
            0);
  EXPECT_EQ(counts, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_EQ(references, (Pairs{{"a", 1}, {"b", 2}}));
  EXPECT_EQ(read("<FMU></FMU>", counts, references), 1);
  EXPECT_EQ(references.size(), 2U);
  // Without the group the search wraps and succeeds: nothing is found but the empty list.
  EXPECT_EQ(read("<ParameterRegistry>\n</ParameterRegistry>\n", counts, references), 0);
  EXPECT_EQ(counts, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(references.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
