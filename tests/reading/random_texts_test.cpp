// What the fuzz targets promise of any text, on odd and random ones: numbers, lists, pairs and
// groups read as the slow engine reads them, and no sequence of its words breaks the reader of FMI
// files.

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "targets.h"

namespace Tarvane::Plexura::PXROM {
namespace {

std::vector<std::string> Split(const char* list) {
  std::istringstream stream(list);
  std::vector<std::string> pieces;
  for (std::string piece; std::getline(stream, piece, '|');) pieces.push_back(piece);
  return pieces;
}

/// `text` with the delimiters and the range in which it is read.
std::string InRange(int lower, int upper, const std::string& text) {
  return std::string(",;") + static_cast<char>(lower) + static_cast<char>(upper) + text;
}

TEST(OddTokens, ReadAsAStreamReadsThem) {
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
    EXPECT_NO_THROW(fuzz::RunTokens(InRange(0, 64, token))) << token;
  }
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
    for (int round = 0; round < 10000; ++round) {
      std::string text;
      for (std::size_t count = random() % 40; count > 0; --count) {
        text += pieces[random() % pieces.size()];
      }
      const int lower = static_cast<int>(random() % 16);
      const int upper = static_cast<int>(random() % 100);
      EXPECT_NO_THROW(fuzz::RunTokens(InRange(lower, upper, text))) << text;
    }
  }
}

TEST(RandomTexts, OfFmiWordsBreakNothing) {
  const std::vector<std::string> words = Split(
      "<fmiModelDescription|<ModelVariables|<ScalarVariable|</ScalarVariable|guid=|"
      "numberOfContinuousStates=|name=|valueReference=|causality=|input|<Real|<Integer|\"|12");
  std::mt19937 random(5);
  for (int round = 0; round < 20000; ++round) {
    std::string text = "<fmiModelDescription<ModelVariables";
    for (std::size_t count = random() % 24; count > 0; --count) {
      text += words[random() % words.size()];
    }
    EXPECT_NO_THROW(fuzz::RunFmu(text.substr(0, text.size() - random() % 4))) << text;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
