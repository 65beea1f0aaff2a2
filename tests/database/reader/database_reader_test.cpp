#include "pxrom/database_reader.h"

#include <gtest/gtest.h>

#include "pxrom/constant.h"

namespace Tarvane::Plexura::PXROM {
namespace {

constexpr std::size_t kNone = std::string::npos;

class OpenReader : public CReaderPXROMDatabase {
 public:
  using CReaderPXROMDatabase::CatchKeyValue;
  using CReaderPXROMDatabase::ResumeConstantData;
  using CReaderPXROMDatabase::ResumeRSData;
  using CReaderPXROMDatabase::SearchBoundsOfTaggedGroup;
};

TEST(DatabaseReader, GroupsAreFoundByTheirNumber) {
  const OpenReader reader;
  std::size_t start = 0;
  std::size_t end = 0;
  const std::string numbered = "<G ID=1>a</G><G  ID=2>b</G><G ID=2>c</G><G ID=-3>d</G>";
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", 2, start, end), 0);
  EXPECT_EQ(numbered.substr(start, end - start), "c");
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", -3, start, end), 0);
  EXPECT_EQ(numbered.substr(start, end - start), "d");
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", -3, 0, 20, start, end), 1);
  // Without the tag the search wraps: it begins where a tag at the text's start would end.
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(numbered, "G", 1, 1, kNone, start, end), 0);
  EXPECT_EQ(start, 7u);
}

TEST(DatabaseReader, FirstMatchWins) {
  const OpenReader reader;
  std::size_t start = 0;
  std::size_t end = 0;
  const std::string nested = "<G>a<G>b</G>c</G>";
  EXPECT_EQ(reader.SearchBoundsOfTaggedGroup(nested, "G", start, end), 0);
  EXPECT_EQ(nested.substr(start, end - start), "a<G>b");
  int n = 0;
  reader.CatchKeyValue("longn=1\nn=2\n", "n=", n, 0, kNone);
  EXPECT_EQ(n, 1);
}

TEST(DatabaseReader, BlankValuesLeaveScalarsAndEmptyLists) {
  const OpenReader reader;
  const std::string text = "n=3\nn=4\nempty=\nblank= \r\nword=true\nx= 2.5 m\r\nlist=1,2";
  int n = 9;
  reader.CatchKeyValue(text, "n=", n, 0, kNone);
  EXPECT_EQ(n, 3);
  reader.CatchKeyValue(text, "n=", n, 1, kNone);
  EXPECT_EQ(n, 4);
  for (const char* key : {"missing=", "empty=", "blank="}) {
    reader.CatchKeyValue(text, key, n, 0, kNone);
    EXPECT_EQ(n, 4) << key;
    std::vector<double> list = {1.0};
    reader.CatchKeyValue(text, key, list, 0, kNone);
    EXPECT_TRUE(list.empty()) << key;
    std::vector<std::string> words = {"x"};
    reader.CatchKeyValue(text, key, words, 0, kNone);
    EXPECT_TRUE(words.empty()) << key;
  }
  bool flag = true;
  reader.CatchKeyValue(text, "word=", flag, 0, kNone);
  EXPECT_FALSE(flag);
  double x = 0.0;
  reader.CatchKeyValue(text, "x=", x, 0, kNone);
  EXPECT_EQ(x, 2.5);
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

TEST(DatabaseReader, SharedScaleLocal) {
  EXPECT_EQ(Read(Without("OutputScaleIntercept=")).data.OutputScaleIntercept, 3);
  EXPECT_EQ(Read(Without("OutputScaleSlope=")).data.OutputScaleSlope, 0);
  EXPECT_TRUE(Read(Without("IsStopped=")).data.Stopped);
  EXPECT_FALSE(Read(Without("IsReadyForEvaluation=")).data.ReadyForEvaluation);
}

TEST(DatabaseReader, SilentReading) {
  for (const std::string& text : {Without("ConstantValue="), With("ConstantValue=seven")}) {
    const ReadConstant read = Read(text);
    EXPECT_EQ(read.status, 0);
    double value = 1.0;
    read.data.GetConstantValue(value);
    EXPECT_EQ(value, 0.0);
  }
  EXPECT_EQ(Read(Without("NumberOfSamples=")).data.NumberOfSamples, 0);
}

TEST(DatabaseReader, CountsBeyondTheListAreRefusedBeforeAnythingIsAllocated) {
  EXPECT_EQ(Read(With("NumberOfSamples=3")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=-1")).status, 1);
  EXPECT_EQ(Read(With("NumberOfInputVariables=-1")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=2147483647\nNumberOfInputVariables=2147483647")).status, 1);
  EXPECT_EQ(Read(With("NumberOfSamples=65536\nNumberOfInputVariables=65536")).status, 1);
  // Rows without columns need no values, but they take memory.
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
