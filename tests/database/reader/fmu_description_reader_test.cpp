#include "pxrom/fmu_description_reader.h"

#include <gtest/gtest.h>

#include <memory>

#include "pxrom/database_reader.h"
#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using Names = std::vector<std::string>;

CReaderFMUModelDescription Parsed(std::string text) {
  CReaderFMUModelDescription reader;
  reader.ReadDataStream(text);
  EXPECT_EQ(reader.ParseFMUModelDescription(), 0);
  return reader;
}

// One variable with these attributes and this element.
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
    std::string file, guid;
    int reals, integers;
    std::size_t inputs, outputs;
    std::string lastOutput;
  } cases[] = {
      {"BouncingBall", "{1AE5E10D-9521-4DE3-80B9-D0EAAA7D5AF1}", 16, 0, 0, 2, "v"},
      {"Dahlquist", "{221063D2-EF4A-45FE-B954-B5BFEEA9A59B}", 8, 0, 0, 1, "x"},
      {"Feedthrough", "{37B954F1-CC86-4D8F-B97F-C7C36F6670D2}", 14, 2, 6, 6, "String_output"},
      {"Resource", "{7b9c2114-2ce5-4076-a138-2cbc69e069e5}", 2, 1, 0, 1, "y"},
      {"Stair", "{BD403596-3166-4232-ABC2-132BDF73E644}", 2, 1, 0, 1, "counter"},
      {"VanDerPol", "{BD403596-3166-4232-ABC2-132BDF73E644}", 12, 0, 0, 2, "x1"},
  };
  for (const auto& c : cases) {
    const auto reader = Parsed(ContentOf(SourcePath("tests/data/fmi/" + c.file + ".xml")));
    EXPECT_EQ(reader.GetGUID(), c.guid);
    EXPECT_EQ(reader.GetNumberOfReals(), c.reals) << c.file;
    EXPECT_EQ(reader.GetNumberOfIntegers(), c.integers) << c.file;
    EXPECT_EQ(reader.ListParameterImmutableID(CausalityInput).size(), c.inputs) << c.file;
    const Names outputs = reader.ListParameterImmutableID(CausalityOutput);
    ASSERT_EQ(outputs.size(), c.outputs) << c.file;
    EXPECT_EQ(outputs.back(), c.lastOutput);
  }
}

TEST(FMUDescriptionReader, FmiUncountedTypes) {
  const auto reader = Parsed(ContentOf(SourcePath("tests/data/fmi/Feedthrough.xml")));
  EXPECT_EQ(reader.GetParameterValueReferences().count("String_output"), 1u);
  EXPECT_EQ(reader.GetParameterValueReferences().count("Boolean_output"), 1u);
  EXPECT_EQ(reader.GetNumberOfBooleans(), 0);
  EXPECT_EQ(reader.GetNumberOfStrings(), 0);
  EXPECT_EQ(reader.GetNumberOfEventIndicators(), 0);
  const std::size_t typed = reader.ListParameterImmutableID(ContinuousNotManufacturable).size() +
                            reader.ListParameterImmutableID(DiscreteParameter).size();
  // Two each of Boolean, String and Enumeration have no type.
  EXPECT_EQ(reader.ListParameterImmutableID().size(), typed + 6);
}

TEST(FMUDescriptionReader, FmiRealsCountTwice) {
  const auto reader = Parsed(
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
}

TEST(FMUDescriptionReader, FmiWordScan) {
  const auto reader = Parsed(Document(Variable("name=\"a\"", "String") +
                                      Variable("displayname=\"z\" name=\"b\" valueReference=\"5\" "
                                               "causality=\"input\"",
                                               "Real") +
                                      Variable("name=\"last\"", "String")));
  EXPECT_EQ(reader.GetParameterValueReferences(),
            (std::map<std::string, int>{{"a", 5}, {"z", 5}, {"last", 0}}));
  EXPECT_EQ(reader.ListParameterImmutableID(CausalityInput), (Names{"a", "z"}));
  // Only the type has to be inside the variable.
  EXPECT_EQ(reader.ListParameterImmutableID(ContinuousNotManufacturable), Names{"z"});
}

TEST(FMUDescriptionReader, DamagedTextsGiveWhatIsThere) {
  const std::string root = "<fmiModelDescription ";
  const std::string variable = root + "<ModelVariables><ScalarVariable ";
  const struct {
    std::string text, guid;
    std::map<std::string, int> references;
    int reals;
  } cases[] = {{"<ModelVariables>" + Variable("name=\"a\"", "Real"), "", {}, 0},
               {"guid=\"x\"" + root, "", {}, 0},
               {root + "guid=", "", {}, 0},
               {root + "guid=\"", "", {}, 0},
               {root + "guid=\"open name=\"x4\"", "open name=", {}, 0},
               // Variables count only after their heading.
               {root + "guid=\"g\">" + Variable("name=\"a\"", "Real"), "g", {}, 0},
               {variable, "", {{"", 0}}, 0},
               {variable + "name=", "", {{"", 0}}, 0},
               {variable + "name=\"a", "", {{"a", 0}}, 0},
               // Without its closing tag a variable includes the rest of the text.
               {variable + "name=\"a\"" + variable + "name=\"b\" valueReference=\"-2\"><Real",
                "",
                {{"a", -2}},
                2}};
  for (const auto& c : cases) {
    const auto reader = Parsed(c.text);
    EXPECT_EQ(reader.GetGUID(), c.guid) << c.text;
    EXPECT_EQ(reader.GetParameterValueReferences(), c.references) << c.text;
    EXPECT_EQ(reader.GetNumberOfReals(), c.reals) << c.text;
  }
  // Without the root word nothing changes.
  auto reader = Parsed(Document(Variable("name=\"a\"", "Real")));
  std::string other = "guid=\"other\" numberOfContinuousStates=\"9\"";
  reader.ReadDataStream(other);
  reader.ParseFMUModelDescription();
  EXPECT_EQ(reader.GetGUID(), "{g}");
  EXPECT_EQ(reader.GetNumberOfContinuousStates(), 3);
  EXPECT_EQ(reader.GetNumberOfReals(), 2);
}

TEST(FMUDescriptionReader, TextsWithoutWhatTheyPromiseTakeNoQuadraticTimeOrMemory) {
  const auto parsed = [](const std::string& piece, const std::string& end) {
    std::string text = "<fmiModelDescription><ModelVariables>";
    for (int i = 0; i < 100000; ++i) text += piece;
    return Parsed(text + end).GetParameterValueReferences();
  };
  const std::map<std::string, int> nameless = {{"", 0}};
  // No word after the variables; one long value far away for all; names that run to the end.
  EXPECT_EQ(parsed("<ScalarVariable></ScalarVariable>", ""), nameless);
  EXPECT_EQ(
      parsed("<ScalarVariable></ScalarVariable>", "valueReference=\"" + std::string(3000000, '0')),
      nameless);
  EXPECT_LT(parsed("<ScalarVariable name= </ScalarVariable>", "").size(), 20U);
}

TEST(FMUDescriptionReader, CountsVariablesForWhoseNamesThereIsNoRoom) {
  // Names that run to the end of the text, and one that does not.
  std::string text = "<fmiModelDescription><ModelVariables>";
  for (int i = 0; i < 3000; ++i) text += "<ScalarVariable name= <Real</ScalarVariable>";
  for (int i = 0; i < 200; ++i) text += "<ScalarVariable name= <Integer</ScalarVariable>";
  const auto reader = Parsed(text + Variable("name=\"x\" valueReference=\"3\"", "Real"));
  EXPECT_EQ(reader.GetNumberOfReals(), 2 * 3001);
  EXPECT_EQ(reader.GetNumberOfIntegers(), 200);
  EXPECT_EQ(reader.GetParameterValueReferences().count("x"), 1U);
}

TEST(FMUDescriptionReader, CopiesAndClonesHaveTheTextTooUnlikeOtherReaders) {
  auto reader = Parsed(Document(Variable("name=\"a\" valueReference=\"1\"", "Real")));
  CReaderFMUModelDescription copy(reader);
  const std::unique_ptr<CReaderFMUModelDescription> clone(reader.Clone());
  std::string none;
  reader.ReadDataStream(none);
  for (CReaderFMUModelDescription* other : {&copy, clone.get()}) {
    other->ParseFMUModelDescription();
    EXPECT_EQ(other->GetNumberOfReals(), 4);
  }
}

TEST(FMUVariables, OfADatabaseAreReadFromTheirGroup) {
  using Pairs = std::vector<std::pair<std::string, int>>;
  std::vector<int> n(5, -1);
  Pairs references;
  const auto read = [&](std::string text) {
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    return reader.ResumeFMUDescriptionVariables(n[0], n[1], n[2], n[3], n[4], references);
  };
  EXPECT_EQ(read("NumberOfReals=9\n<FMU>\nNumberOfReals=1\nNumberOfIntegers=2\n"
                 "NumberOfBooleans=3\nNumberOfStrings=4\nNumberOfEventIndicators=5\n"
                 "IDToValueReference={a;1},{b;2}\n</FMU>\n"),
            0);
  EXPECT_EQ(n, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_EQ(references, (Pairs{{"a", 1}, {"b", 2}}));
  EXPECT_EQ(read("<FMU></FMU>"), 1);
  EXPECT_EQ(references.size(), 2U);
  // Without the group the search wraps and succeeds, but finds only an empty list.
  EXPECT_EQ(read("<ParameterRegistry>\n</ParameterRegistry>\n"), 0);
  EXPECT_EQ(n, (std::vector<int>{1, 2, 3, 4, 5}));
  EXPECT_TRUE(references.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
