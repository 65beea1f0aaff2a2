#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

#include "literal/regression_literal.h"
#include "regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const double kHole = -9e99;
const CQRSEvaluator kEvaluator;

/// Samples at all corners of the box from `lower` to `upper`.
void SetBox(CQRSData& record, const Vector& lower, const Vector& upper) {
  SetSamples(record, {lower, upper}, {0.0, 0.0});
}

void ExpectAsLiteral(const CQRSData& record, const Vector& x) {
  double y[2] = {-7.0, -7.0};
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y[0]), 0);
  EXPECT_EQ(literal::EvaluateRegression(literal::Surface(record), x, y[1]), 0);
  EXPECT_EQ(y[0], y[1]);
  EXPECT_NE(y[0], kHole);
}

TEST(Interpolation, BlendsTheCornersRoundAHole) {
  for (int n = 1; n <= 4; ++n) {
    std::vector<TermSpec> specs = {{FuncTypeConst, {}, kHole}};
    for (int j = 0; j < n; ++j) specs.push_back({FuncTypePureQuad, {j, j}, 1e95 * (j + 1)});
    CQRSData record = PlainRecord(n, specs);
    const auto size = static_cast<std::size_t>(n);
    SetBox(record, Vector(size, -40.0), Vector(size, 110.0));
    record.OutputScaleSlope = 3.0;
    record.OutputScaleIntercept = 1e90;
    ExpectAsLiteral(record, Vector(size, 0.0));
  }
  // By hand: x = 0 in -1 to 3 lies a quarter of the way, and so it does in the box -0.01 to 0.03.
  CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, kHole}, {FuncTypeLinear, {0}, 1e101}});
  SetBox(record, {-1.0}, {3.0});
  double y = 0.0;
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, {0.0}, y), 0);
  EXPECT_NEAR(y, 0.75 * (kHole - 1e99) + 0.25 * (kHole + 3e99), 1e86);
}

// Just below the largest argument that exp takes, so that corners with a greater sum fail and the
// box has to move inward.
TEST(Interpolation, MovesTheBoxInwardUntilAllCornersSucceed) {
  const double s = std::log(1e99) - 1e-7;
  double base = std::exp(kHole / std::exp(s));
  while (std::log(base) * std::exp(s) > kHole) base = std::nextafter(base, 0.0);
  while (std::log(base) * std::exp(s) < kHole) base = std::nextafter(base, 1.0);
  ASSERT_EQ(std::log(base) * std::exp(s), kHole);
  for (int n = 1; n <= 3; ++n) {
    std::vector<TermSpec> specs = {{FuncTypeConst, {}, s}};
    for (int j = 0; j < n; ++j) specs.push_back({FuncTypeLinear, {j}, j == 1 ? -0.5 : 0.5});
    CQRSData record = PlainRecord(n, specs);
    record.OutputTransformType = TransformLogA;
    record.OutputTransformValue = base;
    Vector lower(static_cast<std::size_t>(n), -10.0);
    Vector upper(static_cast<std::size_t>(n), 2.0);
    if (n > 1) {
      lower[1] = -2.0;  // here it is the smaller values that fail
      upper[1] = 10.0;
    }
    SetBox(record, lower, upper);
    ExpectAsLiteral(record, Vector(static_cast<std::size_t>(n), 0.0));
  }
}

TEST(Interpolation, ACornerMayBeAHoleItself) {
  // Holes at 0 and at 2, which is a corner of the box round 0.
  CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, kHole},
                                    {FuncTypeLinear, {0}, kHole / 2.0},
                                    {FuncTypePureQuad, {0, 0}, kHole / -4.0}});
  SetBox(record, {-200.0}, {200.0});
  ExpectAsLiteral(record, {0.0});
}

TEST(Interpolation, GivesUpWithStatus1) {
  const std::vector<TermSpec> everywhere = {{FuncTypeConst, {}, kHole}};
  double y = -7.0;
  const auto gives1 = [&](const CQRSData& record, double at, double left) {
    y = -7.0;
    const Vector x(static_cast<std::size_t>(record.NumberOfInputVariables), at);
    return kEvaluator.EvaluateResponseSurface(&record, x, y) == 1 && y == left;
  };
  for (const int n : {1, 2, 7, 13}) {  // a hole wherever one looks
    CQRSData record = PlainRecord(n, everywhere);
    const auto size = static_cast<std::size_t>(n);
    SetBox(record, Vector(size, 0.0), Vector(size, 3.0));
    EXPECT_TRUE(gives1(record, 1.0, 0.0)) << n;
    EXPECT_TRUE(gives1(record, 1.5, 0.0)) << n;
  }
  for (const int n : {0, 14}) {
    CQRSData record = PlainRecord(n, everywhere);
    const auto size = static_cast<std::size_t>(n);
    SetBox(record, Vector(size, 0.0), Vector(size, 3.0));
    EXPECT_TRUE(gives1(record, 1.0, -7.0)) << n;
  }
  CQRSData record = PlainRecord(2, everywhere);
  EXPECT_TRUE(gives1(record, 1.0, -7.0));  // no samples
  SetSamples(record, {{0.0, 1.0}, {1.0}}, {0.0, 0.0});
  EXPECT_TRUE(gives1(record, 1.0, -7.0));
}

TEST(Interpolation, AsksTheVirtualOperationForItsCorners) {
  class Counting : public CQRSEvaluator {
   public:
    using CQRSEvaluator::EvaluateResponseSurface;
    int EvaluateResponseSurface(const CRSData* data, const Vector& x, double& y) const override {
      points.push_back(x);
      return CQRSEvaluator::EvaluateResponseSurface(data, x, y);
    }
    mutable Matrix points;
  };
  CQRSData record = PlainRecord(1, {{FuncTypeConst, {}, kHole}, {FuncTypeLinear, {0}, 1e101}});
  SetBox(record, {-1.0}, {3.0});
  const Counting evaluator;
  double y = 0.0;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&record, {0.0}, y), 0);
  EXPECT_EQ(evaluator.points, (Matrix{{0.0}, {-0.01}, {0.03}}));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
