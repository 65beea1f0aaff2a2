// The laws of the fuzz targets for any text: without an error of the inspection everything works,
// any refusal has an error, and a text that was read and written reads the same again.

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "database/inspection/test_texts.h"
#include "support/rounds.h"
#include "support/source_path.h"
#include "support/test_models.h"
#include "targets.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

/// All good models whose paths don't hold `without`, and random ones.
std::vector<std::string> SoundTexts(const std::string& without, std::uint32_t seeds) {
  std::vector<std::string> texts;
  for (const std::string& path : GoodModels()) {
    if (path.find(without) == std::string::npos) texts.push_back(ContentOf(path));
  }
  EXPECT_GE(texts.size(), 11u);
  for (std::uint32_t seed = 0; seed < seeds; ++seed) {
    CDiscreteCombinations model;
    tests::FillRandomModel(seed, {}, model);
    texts.push_back(Written(model));
  }
  return texts;
}

TEST(Laws, HoldForSoundModels) {
  for (const std::string& text : SoundTexts("none", static_cast<std::uint32_t>(Rounds(150)))) {
    EXPECT_NO_THROW(fuzz::RunInspection(text)) << text;
    const CInspectionReport report = InspectPXROMDatabase(text);
    EXPECT_EQ(report.errors, 0u) << text << '\n' << Shown(report);
    EXPECT_EQ(report.warnings, 0u) << text << '\n' << Shown(report);
  }
}

TEST(Laws, HoldForTheTableOfDamages) {
  for (const Damage& damage : Damages()) {
    EXPECT_NO_THROW(fuzz::RunInspection(damage.text)) << damage.name;
  }
}

TEST(Laws, HoldForRandomDamages) {
  std::mt19937 random(2024);
  const std::vector<std::string> texts = SoundTexts("beam", 30);
  for (int round = 0; round < Rounds(2000); ++round) {
    std::string text = texts[random() % texts.size()];
    const int damages = 1 + static_cast<int>(random() % 3);
    for (int i = 0; i < damages; ++i) DamageAtRandom(text, random);
    EXPECT_NO_THROW(fuzz::RunInspection(text)) << round;
    if (round % 4 == 0) {
      EXPECT_NO_THROW(fuzz::RunWriter(text)) << round;
    }
    if (HasFailure()) break;
  }
}

TEST(Laws, HoldForLinesInRandomOrder) {
  std::istringstream model(ContentOf(SourcePath("examples/constant.pxdb")));
  std::vector<std::string> lines = {"<FMU>", "</FMU>\n", "<Genome ", "=\n", "{;}", "<", "\r", "\n"};
  for (std::string line; std::getline(model, line);) lines.push_back(line + '\n');
  std::mt19937 random(7);
  for (int round = 0; round < Rounds(20000); ++round) {
    std::string text;
    for (std::size_t count = random() % 30; count > 0; --count) {
      text += lines[random() % lines.size()];
    }
    EXPECT_NO_THROW(fuzz::RunInspection(text)) << text;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
