// Odd and random texts: numbers, lists, pairs and groups read as the slow engine reads them, and no
// sequence of words breaks the reader of FMI files.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <sstream>

#include "reference/reading_literal.h"
#include "support/rounds.h"
#include "targets.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM {
namespace {

std::vector<std::string> Split(const char* list) {
  std::istringstream stream(list);
  std::vector<std::string> pieces;
  for (std::string piece; std::getline(stream, piece, '|');) pieces.push_back(piece);
  return pieces;
}

/// `text` with the delimiters and the range in which it is read.
std::string InRange(int lower, int upper, const std::string& text, char outer = ',') {
  return std::string({outer, ';', static_cast<char>(lower), static_cast<char>(upper)}) + text;
}

TEST(OddTokens, ClassicLocale) {
  std::vector<std::string> tokens = Split(
      "| |\r| \t\n\v\f\r|1|-1|+1.5| 7|\r3|1 2|1\r|1e|1e+|1e-|1E5|1e5.5|1.e2|.5|.|-.|+.5e1|-|"
      "+|--1|+-1|e5|.e5|1.2.3|1e5e5|inf|-inf|nan|NAN(1)|infinity|0x10|0x1p3|1f|1d5|1,5|1_0|"
      "1'000|1e999|-1e999|1e-999|-1e-999|1e308|1e309|1.7976931348623157e308|"
      "1.7976931348623158e308|1.7976931348623159e308|1.8e308|4.9e-324|2.4e-324|2.5e-324|"
      "-2.4e-324|2.2250738585072011e-308|0e999999999999999999999|1e99999999999999999999|"
      "1e-99999999999999999999|0.0000000000000000000000000001e330|"
      "100000000000000000000000000000e-330|-0|-0.0|+0|00012|000|2147483647|2147483648|"
      "-2147483648|-2147483649|9223372036854775807|9223372036854775808|-9223372036854775808|"
      "-9223372036854775809|99999999999999999999999|2|true|false|0.1|0.30000000000000004|"
      "123456789012345678901234567890|9007199254740993|8.5e-1x|1e+5|1e+-5|0.1e1|1e05|1e0|"
      "1.0E-05");
  tokens.insert(
      tokens.end(),
      {std::string("1\0002", 3), std::string(400, '9'), "0." + std::string(400, '0') + "7",
       "-" + std::string(400, '0') + "7e-3", "0." + std::string(400, '0') + "7e405"});
  for (const std::string& token : tokens) {
    for (const char outer : {',', '.', '-', '+', 'e', '5'}) {
      EXPECT_NO_THROW(fuzz::RunTokens(InRange(0, 64, token, outer))) << token << outer;
    }
  }
}

std::string RandomText(const std::vector<std::string>& pieces, std::size_t most,
                       std::mt19937& random) {
  std::string text;
  for (std::size_t count = random() % most; count > 0; --count) {
    text += pieces[random() % pieces.size()];
  }
  return text;
}

TEST(RandomTexts, ReadAsTheSlowEngineReadsThem) {
  const char* const lists[] = {
      "0|1|2|3|4|5|6|7|8|9|0|1|2|3|4|5|6|7|8|9|0|0|.|.|e|e|+|-|-|E| |x|,|\r",
      "0|1|2|3|4|5|6|7|8|9|,|,|,|.|e|-|+| |\r|;|{|}|a",
      "a|1| |2|,|,|;|;|{|}|{|}|\r|\n|-|.",
      "<FMU>|</FMU>|<A>|</A>|A=|FMU=|MU=|=|\n|\n|1|2.5|,|{x;1}|<|>|</| |\r|word|<FMU|;",
  };
  std::mt19937 random(3);
  for (const char* const list : lists) {
    const std::vector<std::string> pieces = Split(list);
    for (int round = 0; round < Rounds(10000); ++round) {
      const std::string text = RandomText(pieces, 40, random);
      const int lower = static_cast<int>(random() % 16);
      const int upper = static_cast<int>(random() % 100);
      EXPECT_NO_THROW(fuzz::RunTokens(InRange(lower, upper, text))) << text;
    }
  }
}

// Decimals of up to 20 digits, and odd numbers of 54 bits divided by a power of two, which are
// midpoints of two doubles.
TEST(RandomTexts, OfDecimalsReadToTheNearestDouble) {
  const std::vector<std::string> digits = Split("0|1|2|3|4|5|6|7|8|9");
  std::mt19937 random(13);
  std::uniform_int_distribution<long long> middle(1LL << 53, (1LL << 54) - 1);
  for (int round = 0; round < Rounds(200); ++round) {
    std::string list;
    for (int i = 0; i < 100; ++i) {
      std::string decimal = RandomText(digits, 21, random);
      if (!decimal.empty()) decimal.insert(random() % decimal.size(), ".");
      const int places = static_cast<int>(random() % 4);
      char text[64];
      std::snprintf(text, sizeof text, "%.*Lf", places,
                    static_cast<long double>(middle(random) | 1) / (1 << places));
      list += "-" + decimal + ',' + text + ',';
    }
    EXPECT_NO_THROW(fuzz::RunTokens(InRange(0, 64, list))) << list;
  }
}

TEST(DatabaseText, RefusesWorkBeyondItsLimit) {
  const std::size_t most = reading::WorkAllowedFor(3);
  reading::DatabaseText text("abc");
  EXPECT_TRUE(text.Charge(most - 1));
  EXPECT_TRUE(text.Charge(1));
  EXPECT_FALSE(text.IsExhausted());
  EXPECT_FALSE(text.Charge(1));
  EXPECT_FALSE(text.Charge(std::string::npos));
  EXPECT_FALSE(text.Charge(0));
  EXPECT_TRUE(text.IsExhausted());
}

TEST(TagIndex, CountsPlacesFromAnywhere) {
  std::mt19937 random(7);
  for (int round = 0; round < Rounds(2000); ++round) {
    std::vector<std::size_t> places(random() % 50);
    for (std::size_t& place : places) place = random() % 100;
    std::sort(places.begin(), places.end());
    const std::size_t from = random() % 110;
    const std::size_t near = random() % 60;
    const auto below = std::lower_bound(places.begin(), places.end(), from) - places.begin();
    EXPECT_EQ(reading::CountBelow(places.data(), places.size(), from, near),
              static_cast<std::size_t>(below))
        << places.size() << ' ' << from << ' ' << near;
  }
}

// In whole databases tags and keys are found by an index, and else by plain searches. A list that
// is cut by the end of its range is followed by characters that do not count.
TEST(RandomTexts, OfTagsReadTheSameWithAnIndex) {
  const std::vector<std::string> pieces = Split(
      "<FMU>|</FMU>|<FMU ID=1>|<FMU ID=12>|<FMU ID=1|a=|ba=|=|\n|\n|1|2.5|,|{x;1}|<|>|</| |\r|"
      "word|;|0,1,-2,3.25,4e1,5");
  std::mt19937 random(5);
  for (int round = 0; round < Rounds(10000); ++round) {
    const std::string text = RandomText(pieces, 40, random);
    reading::DatabaseText indexed(text);
    indexed.Index();
    for (int search = 0; search < 3; ++search) {
      const std::size_t lower = random() % (text.size() + 1);
      const std::size_t upper =
          random() % 4 == 0 ? std::string::npos : random() % (text.size() + 2);
      for (const char* const opening : {"<FMU>", "<FMU ID=1>"}) {
        reading::Bounds bounds;
        std::size_t start = 0;
        std::size_t end = 0;
        EXPECT_EQ(indexed.SearchBounds(opening, "</FMU>", lower, bounds),
                  literal::SearchBounds(text, opening, "</FMU>", lower, start, end));
        EXPECT_EQ(bounds.lower, start) << text;
        EXPECT_EQ(bounds.upper, end) << text;
      }
      reading::AttributeRange range(indexed, {lower, upper});
      for (const char* const key : {"a=", "ba=", "="}) {
        std::string slow = "none";
        std::string_view value = "none";
        const bool isThere = literal::CatchKeyValue(text, key, slow, lower, upper);
        EXPECT_EQ(range.Find(key, value), isThere);
        EXPECT_EQ(value, slow) << text;
        std::vector<double> numbers;
        range.Catch(key, numbers);
        const bool isBlank = !isThere || reading::EmptyIfBlank(slow).empty();
        EXPECT_EQ(numbers, isBlank ? std::vector<double>() : literal::TokenizeDouble(slow, ','))
            << text;
      }
    }
  }
}

TEST(RandomTexts, OfFmiWordsBreakNothing) {
  const std::vector<std::string> words = Split(
      "<fmiModelDescription|<ModelVariables|<ScalarVariable|</ScalarVariable|guid=|"
      "numberOfContinuousStates=|name=|valueReference=|causality=|input|<Real|<Integer|\"|12");
  std::mt19937 random(5);
  for (int round = 0; round < Rounds(20000); ++round) {
    const std::string text = "<fmiModelDescription<ModelVariables" + RandomText(words, 24, random);
    EXPECT_NO_THROW(fuzz::RunFmu(text.substr(0, text.size() - random() % 4))) << text;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
