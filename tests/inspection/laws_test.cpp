// What the fuzz targets promise of any text: where an inspection finds no error, everything works,
// where something is refused, it has found an error; and what was read and written reads the same.

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <sstream>

#include "inspection/test_texts.h"
#include "pxrom/writer.h"
#include "support/random_models.h"
#include "targets.h"

namespace Tarvane::Plexura::PXROM {
namespace {

void ExpectLaws(const std::string& text, const std::string& name) {
  EXPECT_NO_THROW(fuzz::RunInspection(text)) << name;
}

std::string RandomModelText(std::uint32_t seed) {
  CDiscreteCombinations model;
  tests::FillRandomModel(seed, {}, model);
  std::string text;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text), 0);
  return text;
}

/// One of the damages that files come by.
void DamageAtRandom(std::string& text, std::mt19937& random) {
  if (text.empty()) return;
  const auto upTo = [&](std::size_t count) { return random() % count; };
  const std::size_t at = upTo(text.size());
  const std::size_t lineStart = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
  const std::size_t lineEnd = std::min(text.find('\n', at), text.size() - 1) + 1;
  const std::string line = text.substr(lineStart, lineEnd - lineStart);
  static const std::string kLetters = "0123456789-.,;{}<>/= \n\rEeIDaZ";
  const std::function<void()> damages[] = {
      [&] { text.resize(at); },
      [&] { text.erase(lineStart, line.size()); },
      [&] { text.insert(lineStart, line); },
      [&] { text.erase(at, 1 + upTo(3)); },
      [&] { text.insert(at, 1, kLetters[upTo(kLetters.size())]); },
      [&] { text[at] = kLetters[upTo(kLetters.size())]; },
      [&] {
        const std::size_t equals = text.find('=', lineStart);
        if (equals >= lineEnd) return;
        text.replace(equals + 1, lineEnd - equals - 2, std::to_string(upTo(4)));
      },
      [&] { text.insert(StartOfLine(text, 1 + upTo(60)), line); },
      [&] { text.erase(lineStart, upTo(text.size() - lineStart)); },
  };
  damages[upTo(std::size(damages))]();
}

TEST(Laws, HoldForSoundModels) {
  std::vector<std::string> texts;
  for (const std::string& path : GoodModels()) texts.push_back(ContentOf(path));
  EXPECT_GE(texts.size(), 13u);
  for (std::uint32_t seed = 0; seed < 150; ++seed) texts.push_back(RandomModelText(seed));
  for (std::size_t i = 0; i < texts.size(); ++i) {
    ExpectLaws(texts[i], "text " + std::to_string(i));
    const CInspectionReport report = InspectPXROMDatabase(texts[i]);
    EXPECT_EQ(report.errors + report.warnings, 0u) << i << '\n' << Shown(report);
  }
}

TEST(Laws, HoldForTheTableOfDamages) {
  for (const Damage& damage : Damages()) ExpectLaws(damage.text, damage.name);
}

TEST(Laws, HoldForRandomDamages) {
  std::mt19937 random(2024);
  std::vector<std::string> texts;
  for (const std::string& path : GoodModels()) {
    if (path.find("beam") == std::string::npos) texts.push_back(ContentOf(path));
  }
  for (std::uint32_t seed = 0; seed < 30; ++seed) texts.push_back(RandomModelText(seed));
  for (int round = 0; round < 2000; ++round) {
    std::string text = texts[random() % texts.size()];
    const int damages = 1 + static_cast<int>(random() % 3);
    for (int i = 0; i < damages; ++i) DamageAtRandom(text, random);
    ExpectLaws(text, "damage " + std::to_string(round));
    if (round % 4 == 0) {
      EXPECT_NO_THROW(fuzz::RunWriter(text)) << round;
    }
    if (HasFailure()) break;
  }
}

TEST(Laws, HoldForPiecesInRandomOrder) {
  std::istringstream list(
      "<ParameterRegistry>|</ParameterRegistry>|<DiscreteSets>|</DiscreteSets>|"
      "<PlexuraData ID=0>|</PlexuraData>|<Genome ID=0>|</Genome>|<RegTerm ID=0>|</RegTerm>|"
      "<FMU>|</FMU>|IDs=x,y|Causalities=0,1|Types=0,0|Availability=1,1|"
      "RegistrationRank={x;0},{y;1}|DiscreteSet={y;0}|DataType=8|DataType=3|"
      "CandidateRSCardinality=1|NumberOfSamples=1|=|<|>|,|{;}|<Genome|ID=0>|word|\r|");
  std::vector<std::string> pieces;
  for (std::string piece; std::getline(list, piece, '|');) pieces.push_back(piece);
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t count = random() % 30; count > 0; --count) {
      text += pieces[random() % pieces.size()];
      if (random() % 5 != 0) text += '\n';
    }
    ExpectLaws(text, text);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
