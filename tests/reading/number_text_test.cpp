// Decimals read to the nearest double.

#include <gtest/gtest.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "reading/tokens.h"

namespace Tarvane::Plexura::PXROM::reading {
namespace {

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
    // By their bits, so that -0.0 counts.
    ASSERT_EQ(values.size(), expected.size());
    EXPECT_EQ(std::memcmp(values.data(), expected.data(), values.size() * sizeof(double)), 0)
        << list;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::reading
