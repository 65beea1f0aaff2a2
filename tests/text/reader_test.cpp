#include "pxrom/reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace Tarvane::Plexura::PXROM {
namespace {

class OpenReader : public CReader {
 public:
  OpenReader() = default;
  OpenReader(const OpenReader&) = default;
  OpenReader& operator=(const OpenReader&) = default;
  const std::string& Text() const { return DataStream; }
};

using IntPairs = std::vector<std::pair<std::string, int>>;
using StringPairs = std::vector<std::pair<std::string, std::string>>;

TEST(Reader, ReaderCopyIsEmpty) {
  OpenReader reader;
  std::stringstream stream("all of it");
  std::string word;
  stream >> word >> word >> word;
  EXPECT_EQ(reader.ReadDataStream(stream), 0);
  EXPECT_EQ(reader.Text(), "all of it");
  const OpenReader copy(reader);
  EXPECT_TRUE(copy.Text().empty());
  OpenReader assigned;
  assigned = reader;
  EXPECT_EQ(assigned.Text(), "all of it");
}

TEST(Reader, BlankIntRepeats) {
  const CReader reader;
  EXPECT_EQ(reader.TokenizeInt("3,,x", ','), (std::vector<int>{3, 3, 0}));
  EXPECT_EQ(reader.TokenizeInt(",4, ,", ','), (std::vector<int>{0, 4, 4}));
}

TEST(Reader, SplitsAsTheFormatSays) {
  const CReader reader;
  EXPECT_EQ(reader.TokenizeDouble("1.5,abc,,2", ','), (std::vector<double>{1.5, 0, 0, 2}));
  EXPECT_EQ(reader.TokenizeDouble("1,2,", ',').size(), 2u);
  EXPECT_EQ(reader.TokenizeString("a,b\r\n", ','), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(reader.TokenizeString("a\n,b\n\n\r\r", ','),
            (std::vector<std::string>{"a\n", "b\n\r"}));
  EXPECT_TRUE(reader.TokenizeString("", ',').empty());
  EXPECT_EQ(reader.TokenizePairStringInt("{a;1},{b;2}", ',', ';'), (IntPairs{{"a", 1}, {"b", 2}}));
  EXPECT_EQ(reader.TokenizePairStringInt("[ a;1]", ',', ';'), (IntPairs{{" a", 1}}));
  EXPECT_EQ(reader.TokenizePairStringInt("{12},{a;},x,{b;2}\r", ',', ';'),
            (IntPairs{{"12", 12}, {"a", 0}, {"", 0}, {"b", 2}}));
  EXPECT_EQ(reader.TokenizePairStringString("xx{a;b}yy,{c},}d;e{,f;g", ',', ';'),
            (StringPairs{{"a", "b"}, {"c", "c"}, {"", ""}, {"f", "g"}}));
  EXPECT_THROW(reader.TokenizePairStringInt("{a;1},,{b;2}", ',', ';'), std::out_of_range);
  EXPECT_THROW(reader.TokenizePairStringDouble(",", ',', ';'), std::out_of_range);
  EXPECT_EQ(reader.TokenizePairStringString(",", ',', ';'), (StringPairs{{"", ""}}));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
