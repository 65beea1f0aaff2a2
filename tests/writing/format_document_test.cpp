// What docs/database-format.md shows and lists.

#include <gtest/gtest.h>

#include <sstream>

#include "support/model_files.h"
#include "support/test_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

TEST(FormatDocument, ItsExampleReadsEvaluatesAndIsCanonicalWithoutItsNotes) {
  const std::string document = ContentOf(PXROM_DOCS "/database-format.md");
  const std::string fence = "```\n";
  const std::size_t begin = document.find(fence) + fence.size();
  const std::string example = document.substr(begin, document.find(fence, begin) - begin);

  CDiscreteCombinations model;
  ASSERT_EQ(Read(example, model), 0);
  NamedValues outputs;
  EXPECT_EQ(model.Evaluate({{"Material", 1}}, {{"L", 1.5}}, outputs), 0);
  EXPECT_EQ(outputs, (NamedValues{{"mass", 3.5}}));
  EXPECT_EQ(model.Evaluate({{"Material", 2}}, {{"L", 1.5}}, outputs), 0);
  EXPECT_EQ(outputs, (NamedValues{{"mass", 7.5}}));

  std::string plain;
  std::istringstream lines(example);
  for (std::string line; std::getline(lines, line);) {
    if (line[0] != '#') plain += line + '\n';
  }
  EXPECT_EQ(Written(model), plain);
}

// A key that a writer of texts doesn't find on the page is as good as none.
TEST(FormatDocument, NamesEveryKeyThatIsWrittenForAModel) {
  const std::string document = ContentOf(PXROM_DOCS "/database-format.md");
  std::istringstream labels(ContentOf(PXROM_DOCS "/../src/reading/database_labels.cpp"));
  int keys = 0;
  for (std::string line; std::getline(labels, line);) {
    const std::size_t end = line.find("=\")");
    if (line.rfind("PXROM_LABEL(", 0) != 0 || end == std::string::npos) continue;
    const std::size_t begin = line.find('"') + 1;
    const std::string key = line.substr(begin, end + 1 - begin);
    // Three that no text needs, and the one of opening tags.
    if (key == "RegisteredDiscreteValues=" || key == "WriterVersion=" ||
        key == "KrigingPredictorError=" || key == "ID=") {
      continue;
    }
    EXPECT_NE(document.find("`" + key + "`"), std::string::npos) << key;
    ++keys;
  }
  EXPECT_GT(keys, 90);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
