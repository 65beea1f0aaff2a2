#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "command.h"

namespace {

using command::BeamModel;
using command::ConstantModel;
using command::Contents;
using command::Pxrom;
using command::Replaced;
using command::Result;
using command::Written;

TEST(Format, WritesWhatTheLibraryReads) {
  // The example is nearly in the canonical form already.
  const std::string canonical = Replaced(
      Replaced(ConstantModel(), "CandidateVersion=170", "CandidateVersion=192"),
      "CandidateRSCardinality=1\n", "CandidateRSCardinality=1\nGARS_ExportPredictionOfError=0\n");
  Result result = Pxrom("format examples/constant.pxdb");
  EXPECT_EQ(result.out, canonical);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);

  std::string odd = Replaced(canonical, "DataType=8\nGenomeWeight=1\n",
                             "A note\r\nGenomeWeight= +1.000e0 kg\r\nDataType=8\r\n");
  odd += "<PlexuraData ID=7>unused</PlexuraData>";
  result = Pxrom("format " + Written("odd.pxdb", odd));
  EXPECT_EQ(result.out, canonical);
  EXPECT_EQ(result.status, 0);
}

TEST(Format, ResultsEvaluateTheSameAndStayAsTheyAre) {
  const std::string fmu =
      "<FMU>\nNumberOfReals=4\nNumberOfIntegers=2\nNumberOfBooleans=0\nNumberOfStrings=0\n"
      "NumberOfEventIndicators=1\nIDToValueReference={L;16},{b;17}\n</FMU>\n";
  const std::string model = Written("beam.pxdb", BeamModel() + fmu);
  const std::string out = Written("formatted.pxdb", "");
  const Result result = Pxrom("format " + model + " -o " + out);
  EXPECT_EQ(result.out + result.err, "");
  ASSERT_EQ(result.status, 0);
  const std::string text = Contents(out);
  EXPECT_EQ(text.substr(text.size() - fmu.size()), fmu);

  const std::string point = " Material=2 Holes=4 L=1.5 b=45 h=90 F=3000 --json";
  EXPECT_EQ(Replaced(Pxrom("eval " + out + point).out, out, model),
            Pxrom("eval " + model + point).out);

  // In place, and again: nothing changes any more.
  EXPECT_EQ(Pxrom("format --out " + out + " " + out).status, 0);
  EXPECT_EQ(Contents(out), text);
}

TEST(Format, RefusesInOneSentence) {
  const std::string separator = Written(
      "separator.pxdb", Replaced(ConstantModel(), "Captions={x;Length}", "Captions={x;a;b}"));
  const std::string damaged =
      Written("damaged.pxdb", Replaced(ConstantModel(), "DataType=8", "DataType=9"));
  const std::string fmu = Written("fmu.pxdb", ConstantModel() + "<FMU></FMU>");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {separator, "can't write \"" + separator +
                      "\" anew: the caption of \"x\" holds \";\", which separates values"},
      {damaged, "\"" + damaged +
                    "\" is a damaged database: line 29: \"DataType=\" is 9, which is no family: "
                    "reading is refused"},
      {fmu, "can't write \"" + fmu + "\" anew: its FMU group is damaged"},
      {"examples/constant.pxdb -o /nowhere/x",
       "can't write to \"/nowhere/x\": No such file or directory"},
      {"nowhere.pxdb", "can't read \"nowhere.pxdb\": No such file or directory"},
      {"", "MODEL is required (--help tells more)"},
  };
  for (const auto& [arguments, sentence] : cases) {
    const Result result = Pxrom("format " + arguments);
    EXPECT_EQ(result.err, "pxrom format: " + sentence + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 1);
  }
  // A refusal leaves the file that was to be written as it is.
  const std::string kept = Written("kept.pxdb", "kept");
  EXPECT_EQ(Pxrom("format " + separator + " -o " + kept).status, 1);
  EXPECT_EQ(Contents(kept), "kept");
  EXPECT_EQ(Pxrom("format examples/constant.pxdb", "/dev/full").status, 1);
}

}  // namespace
