#include "pxrom/ranking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace Tarvane::Plexura::PXROM {
namespace {

std::vector<double> Ranks(const std::vector<double>& values, int checkTies) {
  std::vector<double> ranks = {99.0};
  EXPECT_EQ(QuickRank(values, checkTies, ranks), 0);
  return ranks;
}

TEST(Ranking, PlacesAreAscending) {
  EXPECT_EQ(Ranks({3, 1, 2}, 0), (std::vector<double>{3, 1, 2}));
  EXPECT_TRUE(Ranks({}, 1).empty());
  double sorted[3];
  const double values[] = {3, 1, 2};
  EXPECT_EQ(QuickSort(3, values, sorted), 0);
  EXPECT_EQ(std::vector<double>(sorted, sorted + 3), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(QuickRank(-1, values, 0, sorted), 1);
  EXPECT_EQ(sorted[0], 1.0);
}

// Equal values keep the order that the sort leaves them in. With fewer than eight values that is
// the insertion sort's, which is stable; with more, the partition decides.
TEST(Ranking, RankTiesDiffer) {
  EXPECT_EQ(Ranks({2, 1, 2, 1}, 0), (std::vector<double>{3, 1, 4, 2}));
  EXPECT_EQ(Ranks({5, 5, 5, 5, 5, 5, 5, 5}, 0), (std::vector<double>{1, 6, 7, 4, 5, 2, 3, 8}));
  EXPECT_EQ(Ranks({3, 1, 3, 2, 1, 3, 2, 1, 2, 3, 1, 2}, 0),
            (std::vector<double>{12, 2, 11, 6, 4, 9, 5, 1, 7, 10, 3, 8}));
}

TEST(Ranking, RandomListsWithTiesAndNaN) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    const std::size_t n = random() % 200;
    std::vector<double> values(n);
    for (double& value : values) value = static_cast<double>(random() % 40);
    const bool withNaN = round % 3 == 0 && n > 0;
    if (withNaN) values[random() % n] = std::nan("");
    std::vector<double> ranks = Ranks(values, 0);
    EXPECT_EQ(ranks, Ranks(values, 1));
    std::vector<double> places(n);
    std::iota(places.begin(), places.end(), 1.0);
    EXPECT_TRUE(std::is_permutation(ranks.begin(), ranks.end(), places.begin()));
    if (withNaN) continue;
    std::vector<double> sorted(n);
    EXPECT_EQ(QuickSort(static_cast<int>(n), values.data(), sorted.data()), 0);
    std::sort(values.begin(), values.end());
    EXPECT_EQ(sorted, values);
  }
}

TEST(Ranking, AbsoluteEpsilon) {
  EXPECT_TRUE(approximatelyEqual(1.0, 1.0 + 1e-12, 1e-10));
  EXPECT_TRUE(approximatelyEqual(0.0, 1e-17, 0.0));
  EXPECT_FALSE(approximatelyEqual(0.0, 1e-15, 1e-10));
  EXPECT_FALSE(approximatelyEqual(1.0, 1.0 + 1e-9, 0.0));
  EXPECT_TRUE(approximatelyEqual(4.0, 5.0, 0.2));
  EXPECT_FALSE(approximatelyEqual(4.0, 5.0, 0.19));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
