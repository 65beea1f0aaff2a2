// pxrom eval: what it prints, what it refuses and in which words.

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "pxrom/pxrom.h"

namespace {

namespace pxrom = Tarvane::Plexura::PXROM;
using command::BeamModel;
using command::ConstantModel;
using command::Pxrom;
using command::Replaced;
using command::Result;
using command::Written;

const char* const kBeam = "eval examples/beam.pxdb ";
const char* const kBeamPoint = " L=1.5 b=45 h=90 F=3000";

TEST(Eval, PrintsATable) {
  const Result result = Pxrom("eval examples/constant.pxdb x=0.5");
  EXPECT_EQ(result.out,
            "Output  Caption  Value  Error  Unit\n"
            "------  -------  -----  -----  ----\n"
            "y       Force      7.5      -  N\n"
            "\n"
            "- no predicted error\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
}

TEST(Eval, RefusesInOneSentenceThatNamesWhatWasWrong) {
  const std::string unready =
      Written("unready.pxdb", Replaced(ConstantModel(), "ForEvaluation=1", "ForEvaluation=0"));
  const std::string headless =
      Written("headless.pxdb", Replaced(ConstantModel(), "<DiscreteSets>", "<Sets>"));
  const std::string damaged =
      Written("damaged.pxdb", Replaced(ConstantModel(), "DataType=8", "DataType=9"));
  const std::string unfilled =
      Written("unfilled.pxdb", Replaced(ConstantModel(), "DiscreteSet={y;0}", "Nothing=here"));
  const std::string cut = Written("cut.pxdb", "<ParameterRegistry><DiscreteSets>");
  const std::string beam_inputs =
      "h (60 to 120 mm), Holes (0, 2 or 4), F (1000 to 5000 N), L (1 to 2 m), Material (1 or 2) "
      "and "
      "b (30 to 60 mm)";

  const std::vector<std::pair<std::string, std::string>> cases = {
      {"examples/constant.pxdb", "no value for x; the model expects x (0 to 1 m)"},
      {"examples/constant.pxdb X=1", "the model has no parameter \"X\"; did you mean \"x\"?"},
      {"examples/constant.pxdb width=1", "the model has no parameter \"width\""},
      {"examples/constant.pxdb x", "\"x\" is no assignment of the form NAME=VALUE"},
      {"examples/constant.pxdb =1", "\"=1\" is no assignment of the form NAME=VALUE"},
      {"examples/constant.pxdb x=0 x=0", "\"x\" is given twice"},
      {"examples/constant.pxdb y=0", "\"y\" takes no value, it is a parameter of kind \"output\""},
      {"examples/constant.pxdb x=", "the value of x is no finite number: \"\""},
      {"examples/constant.pxdb x=1m", "the value of x is no finite number: \"1m\""},
      {"examples/constant.pxdb x=inf", "the value of x is no finite number: \"inf\""},
      {"examples/constant.pxdb x=1e999", "the value of x is no finite number: \"1e999\""},
      {"examples/constant.pxdb x=0,5",
       "the value of x is no finite number: \"0,5\" (decimals take a point)"},
      {"examples/beam.pxdb Material=1 L=1.5 b=45 h=90",
       "no value for Holes and F; the model expects " + beam_inputs},
      {"examples/beam.pxdb material=1",
       "the model has no parameter \"material\"; did you mean \"Material\"?"},
      {"examples/beam.pxdb Notch=1",
       "\"Notch\" takes no value, it is a parameter of kind \"disabled continuous input\""},
      {"examples/beam.pxdb Slenderness=9",
       "\"Slenderness\" takes no value, it is a parameter of kind \"derived input\""},
      {"examples/beam.pxdb Material=1 Holes=2.0 L=1.5 b=45 h=90 F=3000",
       "Holes (0, 2 or 4) is a discrete input and takes an integer, not \"2.0\""},
      {"examples/beam.pxdb Material=1 Holes=3 L=1.5 b=45 h=90 F=3000",
       "there is no model for the combination Holes=3, Material=1; those that exist are: Holes=0, "
       "Material=1; Holes=0, Material=2; Holes=2, Material=1; Holes=2, Material=2; Holes=4, "
       "Material=1; Holes=4, Material=2"},
      {"nowhere.pxdb x=0", "can't read \"nowhere.pxdb\": No such file or directory"},
      {"examples x=0", "can't read \"examples\": it is a folder"},
      {"README.md x=0",
       "\"README.md\" is no database of fitted models: it has no <ParameterRegistry> group"},
      {"/dev/null x=0",
       "\"/dev/null\" is no database of fitted models: it has no <ParameterRegistry> group"},
      {headless + " x=0",
       "\"" + headless + "\" is no database of fitted models: it has no <DiscreteSets> group"},
      {damaged + " x=0",
       "\"" + damaged +
           "\" is a damaged database: line 29: \"DataType=\" is 9, which is no family: reading is "
           "refused"},
      {cut + " x=0", "\"" + cut +
                         "\" is a damaged database: line 1: the group ParameterRegistry has no "
                         "closing tag \"</ParameterRegistry>\""},
      {unfilled + " x=0",
       "\"" + unfilled +
           "\" is a damaged database: line 14: there is no combination: DiscreteSets has no line "
           "\"DiscreteSet=\""},
      {unready + " x=0",
       "the library can't evaluate the output \"y\": one of its surfaces is damaged, stopped or "
       "not "
       "ready"},
      {"", "MODEL is required (--help tells more)"},
  };
  for (const auto& [arguments, sentence] : cases) {
    const Result result = Pxrom("eval " + arguments);
    EXPECT_EQ(result.err, "pxrom eval: " + sentence + "\n") << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(result.status, 1) << arguments;
  }
}

TEST(Eval, NotesAnInputOutsideItsBoundsAndAnswers) {
  const Result result = Pxrom("eval examples/constant.pxdb x=+1.5");
  EXPECT_EQ(result.err,
            "pxrom eval: note: x lies outside its bounds, 0 to 1 m: the surfaces extrapolate\n");
  EXPECT_NE(result.out.find("7.5"), std::string::npos);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(Pxrom("eval examples/constant.pxdb x=1").err, "");
  // Bounds of 0 and 0 are those of a file that has none.
  const std::string unbound = Written("unbound.pxdb", Replaced(ConstantModel(), "{x;1}", "{x;0}"));
  EXPECT_EQ(Pxrom("eval " + unbound + " x=-4").err, "");
}

TEST(Eval, AlignsCaptionsByWhatATerminalShows) {
  // A letter of two bytes, one with a combining accent, two of double width, an escape character.
  const std::string model = Written(
      "captions.pxdb",
      Replaced(Replaced(ConstantModel(), "{y;Force}", "{y;H\xC3\xB6he e\xCC\x81 \xE5\x8A\x9B\x1B}"),
               "{y;N}", "{y;\xC2\xB5m}"));
  EXPECT_EQ(Pxrom("eval " + model + " x=0").out,
            "Output  Caption     Value  Error  Unit\n"
            "------  ----------  -----  -----  ----\n"
            "y       H\xC3\xB6he e\xCC\x81 \xE5\x8A\x9B?    7.5      -  \xC2\xB5m\n"
            "\n"
            "- no predicted error\n");
}

TEST(Eval, JsonSurvivesCaptionsOfAnotherEncoding) {
  const std::string model =
      Written("latin.pxdb", Replaced(ConstantModel(), "{y;Force}", "{y;H\xF6he}"));
  const auto document = nlohmann::json::parse(Pxrom("eval --json " + model + " x=0").out);
  EXPECT_EQ(document["outputs"][0]["value"], 7.5);
}

/// The beam study, read and evaluated by the library in this process.
struct Study {
  Study() {
    std::string text = BeamModel();
    pxrom::CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    status = reader.ResumeDiscreteCombinations(model);
  }

  pxrom::CDiscreteCombinations model;
  int status = 1;
};

TEST(Eval, JsonHoldsTheLibrarysNumbersToTheLastBit) {
  for (const int holes : {0, 2, 4}) {
    for (const int material : {1, 2}) {
      const std::vector<std::pair<std::string, int>> discrete = {{"Material", material},
                                                                 {"Holes", holes}};
      const std::vector<std::pair<std::string, double>> continuous = {
          {"L", 1.5}, {"b", 45}, {"h", 90}, {"F", 3000}};
      // An object for each form: the form with errors may write its records.
      const Study for_values;
      const Study for_errors;
      ASSERT_EQ(for_values.status, 0);
      std::vector<std::pair<std::string, double>> values;
      std::vector<std::pair<std::string, double>> again;
      std::vector<std::pair<std::string, double>> errors;
      ASSERT_EQ(for_values.model.Evaluate(discrete, continuous, values), 0);
      ASSERT_NE(for_errors.model.Evaluate(discrete, continuous, again, errors), 1);
      const std::map<std::string, double> error_of(errors.begin(), errors.end());

      const std::string choice =
          "Material=" + std::to_string(material) + " Holes=" + std::to_string(holes);
      const Result result = Pxrom(kBeam + choice + kBeamPoint + " --json");
      EXPECT_EQ(result.status, 0);
      const auto document = nlohmann::json::parse(result.out);
      EXPECT_EQ(document["inputs"]["Holes"], holes);
      EXPECT_EQ(document["inputs"]["F"], 3000.0);
      EXPECT_EQ(document["outside_bounds"], nlohmann::json::array());
      ASSERT_EQ(document["outputs"].size(), values.size());
      for (std::size_t i = 0; i < values.size(); ++i) {
        const auto& output = document["outputs"][i];
        EXPECT_EQ(output["id"], values[i].first);
        EXPECT_EQ(output["value"].get<double>(), values[i].second) << choice << values[i].first;
        const auto error = error_of.find(values[i].first);
        if (error == error_of.end()) {
          EXPECT_TRUE(output["error"].is_null()) << choice << values[i].first;
          EXPECT_TRUE(output["error_space"].is_null());
        } else {
          EXPECT_EQ(output["error"].get<double>(), error->second) << choice << values[i].first;
        }
      }
    }
  }
}

TEST(Eval, MarksErrorsThatAreNotInTheUnitOfTheOutput) {
  // Of this combination two outputs have cross-validation data; of the other one has no error.
  const std::string marked = "Material=1 Holes=2" + std::string(kBeamPoint);
  const std::string absent = "Material=2 Holes=4" + std::string(kBeamPoint);
  const auto document = nlohmann::json::parse(Pxrom(kBeam + marked + " --json").out);
  EXPECT_EQ(document["outputs"][0]["error_space"], "physical");
  EXPECT_EQ(document["outputs"][1]["error_space"], "scaled");
  EXPECT_EQ(document["outputs"][2]["error_space"], "physical");

  const std::string marked_table = Pxrom(kBeam + marked).out;
  EXPECT_NE(marked_table.find("* as the surface reports it"), std::string::npos);
  EXPECT_EQ(marked_table.find("- no predicted error"), std::string::npos);
  const std::string absent_table = Pxrom(kBeam + absent).out;
  EXPECT_NE(absent_table.find("- no predicted error"), std::string::npos);
}

TEST(Eval, AnOutputWithoutErrorsCostsTheOthersNothing) {
  // The first output becomes an ensemble that refuses to tell errors; the two behind it still do.
  std::string text = BeamModel();
  const std::string flag = "GARS_ExportPredictionOfError=1";
  const std::size_t group = text.find("<PlexuraData ID=52>");
  text.replace(text.find(flag, group), flag.size(), "GARS_ExportPredictionOfError=0");
  const Result result = Pxrom("eval " + Written("refusing.pxdb", text) + " Material=1 Holes=2" +
                              kBeamPoint + " --json");
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_TRUE(document["outputs"][0]["error"].is_null());
  EXPECT_TRUE(document["outputs"][1]["error"].is_number());
  EXPECT_TRUE(document["outputs"][2]["error"].is_number());
}

}  // namespace
