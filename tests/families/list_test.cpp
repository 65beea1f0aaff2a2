// The list of families, and what depends on it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "families/families.h"
#include "support/model_files.h"
#include "support/source_path.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(Families, AreAscendingSoThatTheLastNumberIsTheLargest) {
  const FamilyList families = kAllFamilies;
  EXPECT_TRUE(std::is_sorted(families.begin(), families.end(),
                             [](const Family* a, const Family* b) { return a->type < b->type; }));
}

TEST(Families, HaveRecordsOfTheirType) {
  for (const Family* const family : kAllFamilies) {
    EXPECT_EQ(family->newRecord()->DataType(), family->type) << family->name;
    EXPECT_EQ(FindFamily(family->type), family) << family->name;
  }
}

// Those that prepare nothing share one copy of the record among threads.
TEST(Families, PrepareTheirRecordsIfTheyChangeThem) {
  for (const Family* const family : kAllFamilies) {
    if (!family->changesRecordForError) continue;
    EXPECT_NE(family->prepare, nullptr) << family->name;
  }
}

// What is said decides whether outputs that share a record need copies of it.
TEST(Families, SayWhichRecordsTheyChangeForAnError) {
  for (const Family* const family : kAllFamilies) {
    if (!family->changesRecordForError) continue;
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
      SCOPED_TRACE(seed);
      tests::Draw draw(seed);
      const auto record = tests::RandomSurface(draw, family->type, 2, 6, seed % 2 == 0);
      const bool said = family->changesRecordForError(*record);
      const std::vector<std::vector<double>> before = record->InputSamples;
      double y = 0.0;
      double error = 0.0;
      family->evaluator().EvaluateResponseSurface(record.get(), {0.25, 0.5}, y, error);
      EXPECT_EQ(record->InputSamples != before, said);
    }
  }
}

// Without it an evaluation would seem to cost almost nothing.
TEST(Families, SayWhatAnEvaluationCosts) {
  for (const Family* const family : kAllFamilies) {
    EXPECT_EQ(family->cost != nullptr, family->hasValue) << family->name;
  }
}

TEST(Families, HaveAMakerOfRandomSurfaces) {
  const std::vector<E_DataType> made = tests::RandomModelOptions().families;
  for (const Family* const family : kAllFamilies) {
    const auto count = std::count(made.begin(), made.end(), family->type);
    EXPECT_EQ(count, family->hasValue ? 1 : 0) << family->name;
  }
}

// A NaN in an input gives NaN with status 0, or a refusal, but never a number except for a
// constant.
TEST(Families, NanInput) {
  const std::map<E_DataType, int> statuses = {
      {DT_KrigingData, 0}, {DT_SVRData, 0}, {DT_LBFData, 0}, {DT_MLSData, 1}, {DT_ConstantData, 0}};
  for (const auto& [family, status] : statuses) {
    tests::Draw draw(5);
    const auto record = tests::RandomSurface(draw, family, 2, 14, false);
    double y = 0.0;
    const std::vector<double> x = {std::nan(""), 0.5};
    EXPECT_EQ(FindFamily(family)->evaluator().EvaluateResponseSurface(record.get(), x, y), status);
    EXPECT_EQ(std::isnan(y), status == 0 && family != DT_ConstantData) << family;
  }
}

TEST(Families, AreInTheHeaderOfAllHeaders) {
  const std::string all = ContentOf(SourcePath("include/pxrom/pxrom.h"));
  const std::string shipped = ContentOf(SourcePath("src/families/families.h"));
  // Each description includes the public header of its record.
  std::size_t at = 0;
  int headers = 0;
  while ((at = shipped.find("#include \"", at)) != std::string::npos) {
    at += 10;
    const std::string path = shipped.substr(at, shipped.find('"', at) - at);
    const std::string description = ContentOf(SourcePath("src/" + path));
    const std::size_t header = description.find("#include \"pxrom/");
    const std::string line = description.substr(header, description.find('\n', header) - header);
    EXPECT_NE(all.find(line), std::string::npos) << line;
    ++headers;
  }
  EXPECT_EQ(headers, static_cast<int>(kAllFamilies.count));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
