#include "reading/number_text.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "literal/reading_literal.h"
#include "reading/tokens.h"

namespace Tarvane::Plexura::PXROM::reading {
namespace {

// Bits, so that -0.0 counts.
bool Same(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

template <class Value>
void ExpectAsAStream(const std::string& text, Value start) {
  Value fast = start;
  Value slow = start;
  Extract(text, fast);
  literal::Extract(text, slow);
  if constexpr (std::is_same_v<Value, double>) {
    EXPECT_TRUE(Same(fast, slow)) << '"' << text << "\": " << fast << " against " << slow;
  } else {
    EXPECT_EQ(fast, slow) << '"' << text << '"';
  }
}

void ExpectAllAsAStream(const std::string& text) {
  ExpectAsAStream<double>(text, 8.25);
  ExpectAsAStream<int>(text, 77);
  ExpectAsAStream<bool>(text, true);
  ExpectAsAStream<bool>(text, false);
}

TEST(NumberText, OddTokensReadAsAStreamReadsThem) {
  const char* const tokens[] = {"",
                                " ",
                                "\r",
                                " \t\n\v\f\r",
                                "1",
                                "-1",
                                "+1.5",
                                " 7",
                                "\r3",
                                "1 2",
                                "1\r",
                                "1e",
                                "1e+",
                                "1e-",
                                "1E5",
                                "1e5.5",
                                "1.e2",
                                ".5",
                                ".",
                                "-.",
                                "+.5e1",
                                "-",
                                "+",
                                "--1",
                                "+-1",
                                "e5",
                                ".e5",
                                "1.2.3",
                                "1e5e5",
                                "inf",
                                "-inf",
                                "nan",
                                "NAN(1)",
                                "infinity",
                                "0x10",
                                "0x1p3",
                                "1f",
                                "1d5",
                                "1,5",
                                "1_0",
                                "1'000",
                                "1e999",
                                "-1e999",
                                "1e-999",
                                "-1e-999",
                                "1e308",
                                "1e309",
                                "1.7976931348623157e308",
                                "1.7976931348623158e308",
                                "1.7976931348623159e308",
                                "1.8e308",
                                "4.9e-324",
                                "2.4e-324",
                                "2.5e-324",
                                "-2.4e-324",
                                "2.2250738585072011e-308",
                                "0e999999999999999999999",
                                "1e99999999999999999999",
                                "1e-99999999999999999999",
                                "0.0000000000000000000000000001e330",
                                "100000000000000000000000000000e-330",
                                "-0",
                                "-0.0",
                                "+0",
                                "00012",
                                "000",
                                "2147483647",
                                "2147483648",
                                "-2147483648",
                                "-2147483649",
                                "9223372036854775807",
                                "9223372036854775808",
                                "-9223372036854775808",
                                "-9223372036854775809",
                                "99999999999999999999999",
                                "2",
                                "true",
                                "false",
                                "0.1",
                                "0.30000000000000004",
                                "123456789012345678901234567890",
                                "9007199254740993",
                                "8.5e-1x",
                                "1e+5",
                                "1e+-5",
                                "0.1e1",
                                "1e05",
                                "1e0",
                                "1.0E-05"};
  for (const char* token : tokens) ExpectAllAsAStream(token);
  ExpectAllAsAStream(std::string("1\0002", 3));
  ExpectAllAsAStream(std::string(400, '9'));
  ExpectAllAsAStream("0." + std::string(400, '0') + "7");
  ExpectAllAsAStream("-" + std::string(400, '0') + "7e-3");
  ExpectAllAsAStream("0." + std::string(400, '0') + "7e405");
}

TEST(NumberText, RandomTokensReadAsAStreamReadsThem) {
  std::mt19937 random(11);
  const std::string alphabet = "0123456789012345678900..ee+--E x,\r";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t length = random() % 24; length > 0; --length) {
      text += alphabet[random() % alphabet.size()];
    }
    ExpectAllAsAStream(text);
  }
}

// A decimal of up to 20 digits with a point somewhere or none.
std::string RandomDecimal(std::mt19937& random) {
  std::string digits;
  for (std::size_t length = 1 + random() % 20; length > 0; --length) {
    digits += static_cast<char>('0' + random() % 10);
  }
  const std::size_t point = random() % (digits.size() + 1);
  if (point > 0 && point < digits.size()) digits.insert(point, ".");
  return (random() % 2 == 0 ? "-" : "") + digits;
}

// An odd number of 54 bits over a power of two: in the middle between two doubles.
std::string RandomMiddle(std::mt19937& random) {
  std::uniform_int_distribution<long long> middle(1LL << 53, (1LL << 54) - 1);
  const int places = static_cast<int>(random() % 4);
  const long double value = static_cast<long double>(middle(random) | 1) / (1 << places);
  char text[64];
  std::snprintf(text, sizeof text, "%.*Lf", places, value);
  return text;
}

TEST(NumberText, ListsOfDecimalsReadToTheNearestDouble) {
  std::mt19937 random(13);
  for (int round = 0; round < 200; ++round) {
    std::string list;
    std::vector<double> expected;
    for (int i = 0; i < 100; ++i) {
      const std::string text = i % 3 == 0 ? RandomMiddle(random) : RandomDecimal(random);
      double value = 0.0;
      std::from_chars(text.data(), text.data() + text.size(), value);
      expected.push_back(value);
      list += (i == 0 ? "" : ",") + text;
    }
    std::vector<double> values;
    Tokenize(list, ',', values);
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      EXPECT_TRUE(Same(values[i], expected[i])) << list << " at " << i;
    }
  }
}

TEST(NumberText, ListsReadAsStreamsReadThem) {
  std::mt19937 random(12);
  const std::string alphabet = "0123456789,,,.e-+ \r;{}a";
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    for (std::size_t length = random() % 60; length > 0; --length) {
      text += alphabet[random() % alphabet.size()];
    }
    std::vector<double> fast;
    Tokenize(text, ',', fast);
    const std::vector<double> slow = literal::TokenizeDouble(text, ',');
    ASSERT_EQ(fast.size(), slow.size()) << text;
    for (std::size_t i = 0; i < fast.size(); ++i) EXPECT_TRUE(Same(fast[i], slow[i])) << text;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::reading
