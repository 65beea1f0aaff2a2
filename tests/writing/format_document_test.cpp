// What docs/database-format.md shows and lists.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/writer.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

TEST(FormatDocument, ItsExampleReadsEvaluatesAndIsCanonicalWithoutItsNotes) {
  const std::string document = ContentOf(PXROM_DOCS "/database-format.md");
  const std::string fence = "```\n";
  const std::size_t begin = document.find(fence) + fence.size();
  std::string example = document.substr(begin, document.find(fence, begin) - begin);

  CReaderPXROMDatabase reader;
  reader.ReadDataStream(example);
  CDiscreteCombinations model;
  ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0);
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
  std::string written;
  EXPECT_EQ(CWriterPXROMDatabase().WriteDiscreteCombinations(model, written), 0);
  EXPECT_EQ(written, plain);
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
