// Check points disturb no search of the reader, and their damages are found.

#include "pxrom/check_points.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "database/inspection/test_texts.h"
#include "support/test_models.h"
#include "testing/random_models.h"
#include "text/check_points.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using reading::CheckPoint;
using reading::CheckPointsGroup;

/// `text` with the group, even if it can't be read: then with points of no model.
std::string WithCheckPoints(std::string text) {
  std::string reason;
  if (AddCheckPoints(text, 2, {}, reason) == 0) return text;
  reading::AppendCheckPoints({CheckPoint{{1, -2}, {0.5, -1e-300}, {{0, 1.5, 2.5}, {}}}}, text);
  return text;
}

/// What a host gets: the status, the whole model in canonical form, and the FMU group.
std::string ReadAgain(std::string text) {
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CDiscreteCombinations model;
  std::string all;
  try {
    const int status = reader.ResumeDiscreteCombinations(model);
    all = std::to_string(status) + '\n';
    std::string written;
    std::string reason;
    CWriterPXROMDatabase().WriteDiscreteCombinations(model, written, reason);
    all += written + reason;
  } catch (const std::out_of_range&) {
    all = "thrown";
  }
  int numbers[5] = {};
  std::vector<std::pair<std::string, int>> references;
  try {
    all += std::to_string(reader.ResumeFMUDescriptionVariables(numbers[0], numbers[1], numbers[2],
                                                               numbers[3], numbers[4], references));
  } catch (const std::out_of_range&) {
    all += "thrown";
  }
  for (const int number : numbers) all += ' ' + std::to_string(number);
  for (const auto& [name, number] : references) all += name + std::to_string(number);
  return all;
}

/// The findings and the outline, without what is said of the check points.
std::string InspectedAgain(const std::string& text) {
  CInspectionReport report = InspectPXROMDatabase(text);
  auto& findings = report.findings;
  findings.erase(
      std::remove_if(findings.begin(), findings.end(),
                     [](const CFinding& f) { return f.code >= FindingCheckPointsDamaged; }),
      findings.end());
  report.overview.characters = 0;
  report.overview.lines = 0;
  std::string all = OverviewOf(report.overview);
  for (const std::string& line : FindingsOf(report)) all += line;
  return all;
}

void ExpectUndisturbed(std::string text) {
  if (!text.empty() && text.back() != '\n') text += '\n';
  const std::string with = WithCheckPoints(text);
  ASSERT_EQ(with.substr(0, text.size()), text);
  const std::string group = with.substr(text.size());
  // What the argument in check_points.h needs.
  EXPECT_EQ(std::count(group.begin(), group.end(), '='), 0);
  EXPECT_EQ(std::count(group.begin(), group.end(), '<'), 2);
  EXPECT_EQ(ReadAgain(with), ReadAgain(text));
  EXPECT_EQ(InspectedAgain(with), InspectedAgain(text));
}

TEST(CheckPoints, DisturbNoSearchInModelsAndFuzzSeeds) {
  std::vector<std::string> paths = GoodModels();
  for (const auto& entry :
       std::filesystem::directory_iterator(SourcePath("tests/data/fuzz/database"))) {
    paths.push_back(entry.path().generic_string());
  }
  for (const std::string& path : paths) {
    SCOPED_TRACE(path);
    std::ifstream file(path, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (text.empty()) continue;
    ExpectUndisturbed(text.substr(0, reading::FindCheckPoints(text).begin));
  }
  for (const Damage& damage : Damages()) {
    SCOPED_TRACE(damage.name);
    const std::size_t end = reading::FindCheckPoints(damage.text).begin;
    if (damage.text.size() < 20000) ExpectUndisturbed(damage.text.substr(0, end));
  }
}

TEST(CheckPoints, DisturbNoSearchInRandomDatabases) {
  for (std::uint32_t seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    CDiscreteCombinations model;
    tests::FillRandomModel(seed, {}, model);
    std::string text = Written(model);
    ExpectUndisturbed(text);
    std::mt19937 random(seed);
    DamageAtRandom(text, random);
    ExpectUndisturbed(text);
  }
}

bool Says(const CInspectionReport& report, E_FindingCode code) {
  return std::any_of(report.findings.begin(), report.findings.end(),
                     [code](const CFinding& f) { return f.code == code; });
}

TEST(CheckPoints, GiveTheSameBitsOnTheSameMachine) {
  for (const std::string& path : GoodModels()) {
    SCOPED_TRACE(path);
    const CInspectionReport report = InspectPXROMDatabase(WithCheckPoints(ContentOf(path)));
    EXPECT_TRUE(Says(report, FindingAnswersSame)) << Shown(report);
    EXPECT_EQ(report.errors, 0u);
  }
}

TEST(CheckPoints, AreReplacedAndNotRepeated) {
  const std::string once = WithCheckPoints(ContentOf(SourcePath("examples/constant.pxdb")));
  EXPECT_EQ(WithCheckPoints(once), once);
}

TEST(CheckPoints, FindEachChangedByteOfTheText) {
  const std::string text = WithCheckPoints(ContentOf(SourcePath("examples/constant.pxdb")));
  for (std::size_t at = 0; at < text.size(); at += 7) {
    std::string damaged = text;
    damaged[at] = static_cast<char>(damaged[at] ^ 1);
    const CInspectionReport report = InspectPXROMDatabase(damaged);
    // A group whose tag is damaged is text that nothing reads, a warning.
    EXPECT_GT(report.errors + report.warnings, 0u) << at << '\n' << Shown(report);
  }
}

TEST(CheckPoints, SayThatOnlyLineEndsWereChanged) {
  std::string text;
  for (const char c : WithCheckPoints(ContentOf(SourcePath("examples/constant.pxdb")))) {
    text += c == '\n' ? "\r\n" : std::string(1, c);
  }
  const CInspectionReport report = InspectPXROMDatabase(text);
  EXPECT_TRUE(Says(report, FindingLineEndsChanged));
  EXPECT_TRUE(Says(report, FindingAnswersSame));
  EXPECT_FALSE(Says(report, FindingTextChanged));
}

/// The constant model of 7.5 with one check point.
CInspectionReport ReportOn(const CheckPoint& point) {
  std::string text = ContentOf(SourcePath("examples/constant.pxdb"));
  reading::AppendCheckPoints({point}, text);
  return InspectPXROMDatabase(text);
}

TEST(CheckPoints, CompareTheAnswersOfThisMachine) {
  const auto answering = [](int status, double value) {
    return CheckPoint{{}, {0.5}, {{status, value, 1.0}}};
  };
  EXPECT_TRUE(Says(ReportOn(answering(-2, 7.5)), FindingAnswersSame));
  EXPECT_TRUE(Says(ReportOn(answering(-2, 7.5 * (1.0 + 1e-13))), FindingAnswersClose));
  EXPECT_TRUE(Says(ReportOn(answering(-2, 7.5 * (1.0 + 1e-11))), FindingAnswersDiffer));
  EXPECT_TRUE(Says(ReportOn(answering(-2, std::nan(""))), FindingAnswersDiffer));
  EXPECT_TRUE(Says(ReportOn(answering(0, 7.5)), FindingAnswersDiffer));
  EXPECT_TRUE(Says(ReportOn(answering(1, 7.5)), FindingAnswersDiffer));
}

TEST(CheckPoints, RefusePointsOfAnotherModel) {
  const std::vector<reading::CheckAnswer> one = {{-2, 7.5, 0.0}};
  EXPECT_TRUE(Says(ReportOn({{}, {}, one}), FindingCheckPointsDamaged));
  EXPECT_TRUE(Says(ReportOn({{}, {0.5, 0.5}, one}), FindingCheckPointsDamaged));
  EXPECT_TRUE(Says(ReportOn({{1}, {0.5}, one}), FindingCheckPointsDamaged));
  EXPECT_TRUE(Says(ReportOn({{}, {0.5}, {}}), FindingCheckPointsDamaged));
}

TEST(CheckPoints, AreRefusedBeforeTheyCostTooMuch) {
  std::string text = ContentOf(SourcePath("examples/constant.pxdb"));
  const std::string before = text;
  std::string reason;
  CEvaluationLimit limit;
  limit.operations = 1;
  EXPECT_EQ(AddCheckPoints(text, 1, limit, reason), 1);
  EXPECT_NE(reason.find("operations"), std::string::npos);
  EXPECT_EQ(AddCheckPoints(text, 1000001, {}, reason), 1);
  EXPECT_EQ(text, before);
}

TEST(CheckPoints, HaveTheChecksumOfItsReference) {
  // Test vectors of the reference code.
  EXPECT_EQ(reading::ChecksumOf(""), 0xcbf29ce484222325u);
  EXPECT_EQ(reading::ChecksumOf("a"), 0xaf63dc4c8601ec8cu);
  EXPECT_EQ(reading::ChecksumOf("foobar"), 0x85944171f73967e8u);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
