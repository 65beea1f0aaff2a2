// pxrom check and pxrom info: the inspection as a person and as a program see it.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "command.h"

namespace {

using command::ConstantModel;
using command::Pxrom;
using command::Replaced;
using command::Result;
using command::Written;

TEST(Check, TellsFindingsByPlaceAndEndsWithAStatus) {
  const std::string damaged =
      Written("stopped.pxdb", Replaced(ConstantModel(), "IsStopped=0", "IsStopped=1"));
  const Result result = Pxrom("check --quiet " + damaged);
  EXPECT_EQ(result.out,
            damaged + ":41:11: error: PlexuraData 0 / Genome 0 is stopped [surface-stopped]\n" +
                damaged + ": 1 error, no warnings, 1 note\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 1);

  const Result sound = Pxrom("check examples/constant.pxdb");
  EXPECT_EQ(sound.status, 0);
  EXPECT_NE(sound.out.find("examples/constant.pxdb:17:1: note: "), std::string::npos) << sound.out;
  EXPECT_NE(sound.out.find(": no errors, no warnings, "), std::string::npos) << sound.out;
  EXPECT_EQ(Pxrom("check nowhere.pxdb").err,
            "pxrom check: can't read \"nowhere.pxdb\": No such file or directory\n");
}

TEST(Check, JsonHasTheParts) {
  const std::string damaged =
      Written("misspelt.pxdb", Replaced(ConstantModel(), "ConstantValue=", "ConstantValu\xE9="));
  const Result result = Pxrom("check --quiet --json " + damaged);
  EXPECT_EQ(result.status, 1);
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(document["errors"], 1);
  const auto& finding = document["findings"].front();
  EXPECT_EQ(finding["severity"], "error");
  EXPECT_EQ(finding["code"], "key-unknown");
  EXPECT_EQ(finding["line"], 43);
  EXPECT_EQ(finding["column"], 1);
  EXPECT_EQ(finding["group"], "PlexuraData 0 / Genome 0");
  EXPECT_EQ(finding["expected"], "ConstantValue=");
}

TEST(Info, ShowsParametersCombinationsAndErrors) {
  const std::string shown = Pxrom("info examples/beam.pxdb").out;
  for (const char* part : {"13 parameters, 6 combinations, 18 ensembles", "Beam length",
                           "Holes=2, Material=1", "cross-validation", "Kriging"}) {
    EXPECT_NE(shown.find(part), std::string::npos) << part << '\n' << shown;
  }
  const auto document = nlohmann::json::parse(Pxrom("info --json examples/beam.pxdb").out);
  EXPECT_EQ(document["combinations"].size(), 6u);
  EXPECT_EQ(document["combinations"][5]["discrete"]["Holes"], 2);
  EXPECT_EQ(document["ensembles"].back()["surfaces"].size(), 3u);
  EXPECT_EQ(document["ensembles"].back()["error"], "cross-validation");

  const Result damaged =
      Pxrom("info " + Written("cut.pxdb", Replaced(ConstantModel(), "</Genome>", "")));
  EXPECT_EQ(damaged.status, 0);
  EXPECT_NE(damaged.err.find("note: the database is damaged (1 error)"), std::string::npos);
  EXPECT_EQ(Pxrom("info README.md").status, 1);
}

}  // namespace
