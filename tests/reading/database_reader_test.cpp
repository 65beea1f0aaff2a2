#include "pxrom/database_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "literal/reading_literal.h"
#include "pxrom/constant.h"
#include "pxrom/database_labels.h"
#include "reading/database_text.h"

namespace Tarvane::Plexura::PXROM {
namespace {

constexpr std::size_t kNone = std::string::npos;
using Labels = CPXROMDatabaseLabels;

class OpenReader : public CReaderPXROMDatabase {
 public:
  using CReaderPXROMDatabase::CatchKeyValue;
  using CReaderPXROMDatabase::CountAttribute;
  using CReaderPXROMDatabase::ResumeConstantData;
  using CReaderPXROMDatabase::ResumeRSData;
  using CReaderPXROMDatabase::SearchBoundsOfTaggedGroup;
};

TEST(DatabaseReader, SearchesKeepTheirArithmeticAroundMissingTags) {
  const OpenReader reader;
  const std::string fmu = "FMU";
  struct Case {
    std::string text;
    int plain, inRange;
    std::size_t start, end;
  };
  const std::size_t upper = 20;
  const Case cases[] = {
      {"ab<FMU>xyz</FMU>", 0, 0, 7, 10},
      {"<FMU></FMU>", 1, 1, 5, 5},
      {"<FMU>xyz", 0, 1, 5, kNone},
      {"nothing", 0, 1, 4, kNone},
      {"abcdefgh</FMU>", 0, 0, 4, 8},
      {"<FMU></FM></FMU>", 0, 0, 5, 10},
      {"<FMU>0123456789012345</FMU>", 0, 1, 5, 21},
      {"< FMU>x</FMU>", 0, 0, 4, 7},
  };
  for (const Case& c : cases) {
    std::size_t start = 0;
    std::size_t end = 0;
    EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(c.text, fmu, start, end), c.plain) << c.text;
    EXPECT_EQ(start, c.start) << c.text;
    EXPECT_EQ(end, c.end) << c.text;
    EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(c.text, fmu, 0, upper, start, end), c.inRange)
        << c.text;
    EXPECT_EQ(end, c.end) << c.text;
  }
  std::size_t start = 0;
  std::size_t end = 0;
  const std::string numbered = "<G ID=1>a</G><G  ID=2>b</G><G ID=2>c</G><G ID=-3>d</G>";
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", 2, start, end), 0);
  EXPECT_EQ(numbered.substr(start, end - start), "c");
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", -3, start, end), 0);
  EXPECT_EQ(numbered.substr(start, end - start), "d");
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", 1, 1, kNone, start, end), 0);
  EXPECT_EQ(start, 7u);
}

TEST(DatabaseReader, ValuesEndWithTheirLineOrWithTheRange) {
  const OpenReader reader;
  const std::string text =
      "n=3\nn=4\nempty=\nblank= \r\nword=true\nx= 2.5 m\r\nlist=1,2\nlast=7</G>";
  const std::size_t last = text.find('<');
  int n = 9;
  reader.CatchKeyValue(text, "n=", n, 0, last);
  EXPECT_EQ(n, 3);
  reader.CatchKeyValue(text, "n=", n, 1, kNone);
  EXPECT_EQ(n, 4);
  for (const char* key : {"missing=", "empty=", "blank="}) {
    reader.CatchKeyValue(text, key, n, 0, last);
    EXPECT_EQ(n, 4) << key;
    std::vector<double> list = {1.0};
    reader.CatchKeyValue(text, key, list, 0, last);
    EXPECT_TRUE(list.empty()) << key;
    std::vector<std::string> words = {"x"};
    reader.CatchKeyValue(text, key, words, 0, last);
    EXPECT_TRUE(words.empty()) << key;
  }
  bool flag = true;
  reader.CatchKeyValue(text, "word=", flag, 0, last);
  EXPECT_FALSE(flag);
  double x = 0.0;
  reader.CatchKeyValue(text, "x=", x, 0, last);
  EXPECT_EQ(x, 2.5);
  // The range's last character belongs to it.
  std::string word;
  reader.CatchKeyValue(text, "last=", word, 0, last);
  EXPECT_EQ(word, "7<");
  reader.CatchKeyValue(text, "last=", n, 0, last);
  EXPECT_EQ(n, 7);
  reader.CatchKeyValue(text, "n=", word, 0, 1);
  EXPECT_EQ(word, "");
  EXPECT_THROW(reader.CatchKeyValue(text, "n=", n, text.size() + 1, kNone), std::out_of_range);
  EXPECT_NO_THROW(reader.CatchKeyValue(text, "n=", n, text.size(), kNone));
  EXPECT_EQ(reader.CountAttribute("k=1k=2\nk=3\nk=4", "k=", 0, kNone), 3u);
  EXPECT_EQ(reader.CountAttribute("a\n\nb", "\n", 0, kNone), 2u);
}

// Tags, keys and line ends in random order, so that everything is damaged in every way.
std::string RandomText(std::mt19937& random) {
  const char* const pieces[] = {
      "<FMU>", "</FMU>", "<FMU ID=1>", "<FMU ID=12>", "a=",   "ba=",       "=",
      "\n",    "\n",     "1",          "2.5",         ",",    "{x;1}",     "<",
      ">",     "</",     " ",          "\r",          "word", "<FMU ID=1", ";"};
  std::string text;
  for (std::size_t count = random() % 40; count > 0; --count) {
    text += pieces[random() % (sizeof pieces / sizeof *pieces)];
  }
  return text;
}

TEST(DatabaseReader, RandomTextsReadAsTheSlowEngineReadsThem) {
  const OpenReader reader;
  std::mt19937 random(5);
  for (int round = 0; round < 20000; ++round) {
    const std::string text = RandomText(random);
    const std::size_t lower = random() % (text.size() + 1);
    const std::size_t upper = random() % 4 == 0 ? kNone : random() % (text.size() + 2);
    const int id = random() % 2 == 0 ? 1 : 12;
    const std::string opening = "<FMU ID=" + std::to_string(id) + ">";

    reading::DatabaseText indexed(text);
    indexed.Index();
    reading::Bounds bounds;
    std::size_t start = 0;
    std::size_t end = 0;
    EXPECT_EQ(indexed.SearchBounds(opening, "</FMU>", lower, bounds),
              literal::SearchBounds(text, opening, "</FMU>", lower, start, end));
    EXPECT_EQ(bounds.lower, start);
    EXPECT_EQ(bounds.upper, end);
    std::size_t fastStart = 0;
    std::size_t fastEnd = 0;
    EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(text, "FMU", id, lower, upper, fastStart, fastEnd),
              literal::SearchBounds(text, opening, "</FMU>", lower, upper, start, end));
    EXPECT_EQ(fastStart, start);
    EXPECT_EQ(fastEnd, end);

    reading::DatabaseText plain(text);
    reading::AttributeRange range(indexed, {lower, upper});
    reading::AttributeRange unindexed(plain, {lower, upper});
    for (const char* key : {"a=", "ba=", "="}) {
      std::string slow;
      std::string_view view;
      const bool found = literal::CatchKeyValue(text, key, slow, lower, upper);
      for (reading::AttributeRange* attributes : {&range, &unindexed}) {
        EXPECT_EQ(attributes->Find(key, view), found) << text;
        if (found) {
          EXPECT_EQ(view, slow) << text;
        }
      }
    }
  }
}

const char kConstant[] =
    "NumberOfInputVariables=2\nNumberOfSamples=2\nInputSamples=1,2,3,4,5\nOutputSamples=7,8,9\n"
    "InputScaleSlopes=1,2\nInputScaleIntercepts=0\nOutputScaleSlope=3\nOutputScaleIntercept=4\n"
    "IsReadyForSolve=0\nIsReadyForEvaluation=2\nIsStopped=0\nConstantVersion=171\n"
    "ConstantValue=7.5\nRSDataVersion=5\n";

struct ReadConstant {
  int status;
  CConstantData data;
};

ReadConstant Read(std::string text) {
  ReadConstant read;
  OpenReader reader;
  reader.ReadDataStream(text);
  read.status = reader.ResumeConstantData(&read.data, 0, kNone);
  return read;
}

std::string Without(const std::string& key, std::string text = kConstant) {
  const std::size_t at = text.find("\n" + key) + 1;
  return text.erase(at, text.find('\n', at) + 1 - at);
}

std::string With(const std::string& line) { return line + "\n" + kConstant; }

TEST(DatabaseReader, ReadsTheBaseRecordAsTheTextHasIt) {
  const ReadConstant read = Read(kConstant);
  EXPECT_EQ(read.status, 0);
  EXPECT_EQ(read.data.InputSamples, (std::vector<std::vector<double>>{{1, 2}, {3, 4}}));
  EXPECT_EQ(read.data.OutputSamples.size(), 3u);
  EXPECT_EQ(read.data.InputScaleIntercepts, (std::vector<double>{0}));
  EXPECT_EQ(read.data.OutputScaleSlope, 3);
  EXPECT_EQ(read.data.OutputScaleIntercept, 4);
  EXPECT_FALSE(read.data.ReadyForSolve);
  EXPECT_TRUE(read.data.ReadyForEvaluation);
  EXPECT_FALSE(read.data.Stopped);
  EXPECT_EQ(read.data.RSDataVersion(), 162);
  EXPECT_EQ(read.data.ConstantDataVersion(), 171);
}

TEST(DatabaseReader, MissingScalarsRepeatTheOneBeforeOrAreZero) {
  EXPECT_EQ(Read(Without("OutputScaleIntercept=")).data.OutputScaleIntercept, 3);
  EXPECT_EQ(Read(Without("OutputScaleSlope=")).data.OutputScaleSlope, 0);
  EXPECT_TRUE(Read(Without("IsStopped=")).data.Stopped);
  EXPECT_FALSE(Read(Without("IsReadyForEvaluation=")).data.ReadyForEvaluation);
  double value = 1.0;
  Read(Without("ConstantValue=")).data.GetConstantValue(value);
  EXPECT_EQ(value, 0.0);
}

TEST(DatabaseReader, CountsBeyondTheListAreRefusedBeforeAnythingIsAllocated) {
  EXPECT_EQ(Read(With("NumberOfSamples=3")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=-1")).status, 1);
  EXPECT_EQ(Read(With("NumberOfInputVariables=-1")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=2147483647\nNumberOfInputVariables=2147483647")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=65536\nNumberOfInputVariables=65536")).status, 1);
  // Rows of no columns claim no values, but they do take memory.
  EXPECT_EQ(Read(With("NumberOfSamples=2147483647\nNumberOfInputVariables=0")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=9\nNumberOfInputVariables=0")).status, 0);
}

TEST(DatabaseReader, RefusesAndLeavesARecordOfAnotherFamily) {
  OpenReader reader;
  std::string text = kConstant;
  reader.ReadDataStream(text);
  CRSData other;
  EXPECT_EQ(reader.ResumeConstantData(&other, 0, kNone), 1);
  EXPECT_EQ(other.NumberOfSamples, 0);
  EXPECT_EQ(reader.ResumeConstantData(nullptr, kNone, kNone), 1);
  EXPECT_EQ(reader.ResumeRSData(&other, 0, kNone), 0);
  EXPECT_EQ(other.NumberOfSamples, 2);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
