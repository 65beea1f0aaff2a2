#include "pxrom/validation.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Tarvane::Plexura::PXROM {
namespace {

const double kNone = std::nan("");

TEST(PredictionComparison, HasTheScoresOfAWorkedExample) {
  // The example of the user guide of scikit-learn, section "Regression metrics".
  CPredictionComparison comparison;
  comparison.Add(3.0, 2.5);
  comparison.Add(-0.5, 0.0);
  comparison.Add(2.0, 2.0);
  comparison.Add(7.0, 8.0);
  const CPredictionScores scores = comparison.Scores();
  EXPECT_NEAR(scores.r2, 0.9486081370449679, 1e-15);
  EXPECT_EQ(scores.rmse, std::sqrt(0.375));
  EXPECT_EQ(scores.meanAbsoluteError, 0.5);
  EXPECT_EQ(scores.largestAbsoluteError, 1.0);
  EXPECT_EQ(scores.bias, 0.25);
  EXPECT_EQ(scores.withError, 0u);
}

TEST(PredictionComparison, CountsWhatItCannotCompare) {
  CPredictionComparison comparison;
  comparison.Add(kNone, 1.0);
  comparison.Add(kNone, kNone);
  comparison.Add(1.0, HUGE_VAL);
  EXPECT_EQ(comparison.Scores().missing, 2u);
  EXPECT_EQ(comparison.Scores().failed, 1u);
  EXPECT_TRUE(std::isnan(comparison.Scores().rmse));
  comparison.Add(0.1, 0.2);
  comparison.Add(0.1, 0.2);
  EXPECT_TRUE(std::isnan(comparison.Scores().r2)) << "all measured values are equal";
  EXPECT_EQ(comparison.Scores().rmse, 0.1);
}

TEST(PredictionComparison, CountsADifferenceOfExactlyOneErrorAsWithin) {
  CPredictionComparison comparison;
  for (const double predicted : {1.0, 1.5, 2.0, 3.0}) comparison.Add(0.0, predicted, -1.0);
  comparison.Add(0.0, 9.0, kNone);
  const CPredictionScores scores = comparison.Scores();
  EXPECT_EQ(scores.withError, 4u);
  EXPECT_EQ(scores.within[0], 1u);
  EXPECT_EQ(scores.within[1], 3u);
  EXPECT_EQ(scores.within[2], 4u);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
