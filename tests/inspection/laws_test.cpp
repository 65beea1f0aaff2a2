// The two laws of an inspection, on every text that there is: where it finds no error, everything
// works; where something is refused, it has found an error.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "inspection/test_texts.h"
#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/writer.h"
#include "support/random_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

/// What a host meets that reads `text` and evaluates all of it.
struct Experience {
  bool isRead = false;
  bool hasValues = true;
  bool hasErrorForms = true;
};

int Read(const std::string& text, CDiscreteCombinations& model) {
  std::string copy = text;
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(copy);
  try {
    return reader.ResumeDiscreteCombinations(model);
  } catch (const std::out_of_range&) {
    return 1;
  }
}

Experience Use(const std::string& text) {
  Experience experience;
  CDiscreteCombinations model;
  if (Read(text, model) != 0) return experience;
  experience.isRead = true;
  NamedValues middle;
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    if (!model.IsContinuous(id)) continue;
    middle.emplace_back(id, 0.5 * model.ListLowerBound({id})[0].second +
                                0.5 * model.ListUpperBound({id})[0].second);
  }
  std::vector<std::string> names;
  for (const std::string& id : model.ListEnabledDiscreteParameterWrtRegistrationRank()) {
    if (model.IsInput(id)) names.push_back(id);
  }
  const CDiscreteCombinations fresh(model);
  for (const auto& [key, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
    std::vector<std::pair<std::string, int>> discrete;
    for (std::size_t i = 0; i < key.size(); ++i) discrete.emplace_back(names.at(i), key[i]);
    NamedValues outputs;
    NamedValues errors;
    if (model.Evaluate(discrete, middle, outputs) != 0) experience.hasValues = false;
    if (fresh.Evaluate(discrete, middle, outputs, errors) == 1) experience.hasErrorForms = false;
  }
  return experience;
}

void ExpectLaws(const std::string& text, const std::string& name) {
  const CInspectionReport report = InspectPXROMDatabase(text);
  const Experience experience = Use(text);
  if (report.errors > 0) {
    EXPECT_NE(FirstError(report), nullptr) << name;
    return;
  }
  EXPECT_TRUE(experience.isRead) << name << '\n' << Shown(report);
  if (!experience.isRead || Has(report, FindingNotTried)) return;
  EXPECT_TRUE(experience.hasValues) << name << '\n' << Shown(report);
  EXPECT_TRUE(experience.hasErrorForms || Has(report, FindingErrorFormRefused)) << name << '\n'
                                                                                << Shown(report);
}

std::string RandomModelText(std::uint32_t seed) {
  CDiscreteCombinations model;
  tests::FillRandomModel(seed, {}, model);
  std::string text;
  std::string reason;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, text, reason), 0) << reason;
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
  switch (upTo(9)) {
    case 0:
      text.resize(at);
      break;
    case 1:
      text.erase(lineStart, line.size());
      break;
    case 2:
      text.insert(lineStart, line);
      break;
    case 3:
      text.erase(at, 1 + upTo(3));
      break;
    case 4:
      text.insert(at, 1, kLetters[upTo(kLetters.size())]);
      break;
    case 5:
      text[at] = kLetters[upTo(kLetters.size())];
      break;
    case 6: {
      const std::size_t equals = text.find('=', lineStart);
      if (equals < lineEnd) text.replace(equals + 1, lineEnd - equals - 2, std::to_string(upTo(4)));
      break;
    }
    case 7:
      text.insert(StartOfLine(text, 1 + upTo(60)), line);
      break;
    default:
      text.erase(lineStart, upTo(text.size() - lineStart));
      break;
  }
}

TEST(Laws, HoldForSoundModels) {
  for (const std::string& path : GoodModels()) ExpectLaws(ContentOf(path), path);
  for (std::uint32_t seed = 0; seed < 150; ++seed) {
    const std::string text = RandomModelText(seed);
    ExpectLaws(text, "random model " + std::to_string(seed));
    const CInspectionReport report = InspectPXROMDatabase(text);
    EXPECT_EQ(report.errors, 0u) << seed << '\n' << Shown(report);
    EXPECT_EQ(report.warnings, 0u) << seed << '\n' << Shown(report);
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
    if (HasFailure()) break;
  }
}

TEST(Laws, HoldForPiecesInRandomOrder) {
  const char* const pieces[] = {"<ParameterRegistry>",
                                "</ParameterRegistry>",
                                "<DiscreteSets>",
                                "</DiscreteSets>",
                                "<PlexuraData ID=0>",
                                "</PlexuraData>",
                                "<Genome ID=0>",
                                "</Genome>",
                                "<RegTerm ID=0>",
                                "</RegTerm>",
                                "<FMU>",
                                "</FMU>",
                                "IDs=x,y",
                                "Causalities=0,1",
                                "Types=0,0",
                                "Availability=1,1",
                                "RegistrationRank={x;0},{y;1}",
                                "DiscreteSet={y;0}",
                                "DataType=8",
                                "DataType=3",
                                "CandidateRSCardinality=1",
                                "NumberOfSamples=1",
                                "=",
                                "<",
                                ">",
                                ",",
                                "{;}",
                                "<Genome",
                                "ID=0>",
                                "word",
                                "\r"};
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t count = random() % 30; count > 0; --count) {
      text += pieces[random() % (sizeof pieces / sizeof *pieces)];
      if (random() % 5 != 0) text += '\n';
    }
    ExpectLaws(text, text);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
