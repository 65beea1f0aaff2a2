#include <cmath>

#include "families/regression/test_records.h"
#include "reference/regression_literal.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const double kHole = -9e99;
void ExpectAsLiteral(const CQRSData& record, const Vector& x) {
  double y[2] = {-7.0, -7.0};
  EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y[0]), 0);
  EXPECT_EQ(literal::EvaluateRegression(literal::Surface(record), x, y[1]), 0);
  EXPECT_EQ(y[0], y[1]);
  EXPECT_NE(y[0], kHole);
}

// The operation is private, but an explicit instantiation may name it.
using CodingOperation = int (CQRSEvaluator::*)(const CRSData*, const double*, Vector&) const;
CodingOperation Coding();
template <CodingOperation kOperation>
struct OpenCoding {
  friend CodingOperation Coding() { return kOperation; }
};
template struct OpenCoding<&CQRSEvaluator::EvalCodedUsedInpVar>;

// A hole at 0.
CQRSData HoleOnALine() {
  return PlainRecord(1, {{FuncTypeConst, {}, kHole}, {FuncTypeLinear, {0}, 1e101}},
                     {{-1.0}, {3.0}});
}

TEST(Interpolation, BlendsTheCornersRoundAHole) {
  for (int n = 1; n <= 4; ++n) {
    std::vector<TermSpec> specs = {{FuncTypeConst, {}, kHole}};
    for (int j = 0; j < n; ++j) specs.push_back({FuncTypePureQuad, {j, j}, 1e95 * (j + 1)});
    const auto size = static_cast<std::size_t>(n);
    CQRSData record = PlainRecord(n, specs, {Vector(size, -40.0), Vector(size, 110.0)});
    record.OutputScaleSlope = 3.0;
    record.OutputScaleIntercept = 1e90;
    ExpectAsLiteral(record, Vector(size, 0.0));
  }
  // By hand: x = 0 in -1 to 3 lies a quarter of the way, and so it does in the box -0.01 to 0.03.
  EXPECT_NEAR(Value(kEvaluator, HoleOnALine(), {0.0}),
              0.75 * (kHole - 1e99) + 0.25 * (kHole + 3e99), 1e86);
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
    Vector lower(static_cast<std::size_t>(n), -10.0);
    Vector upper(static_cast<std::size_t>(n), 2.0);
    if (n > 1) {
      lower[1] = -2.0;  // here it is the smaller values that fail
      upper[1] = 10.0;
    }
    CQRSData record = PlainRecord(n, specs, {lower, upper});
    record.OutputTransformType = TransformLogA;
    record.OutputTransformValue = base;
    ExpectAsLiteral(record, Vector(static_cast<std::size_t>(n), 0.0));
  }
}

TEST(Interpolation, ACornerMayBeAHoleItself) {
  // Holes at 0 and at 2, which is a corner of the box around 0.
  CQRSData record = PlainRecord(1,
                                {{FuncTypeConst, {}, kHole},
                                 {FuncTypeLinear, {0}, kHole / 2.0},
                                 {FuncTypePureQuad, {0, 0}, kHole / -4.0}},
                                {{-200.0}, {200.0}});
  ExpectAsLiteral(record, {0.0});
}

TEST(Interpolation, CodesAPointByTheBoxOfTheUnscaledSamples) {
  CQRSData record = PlainRecord(2, {}, {{-1.0, 10.0}, {3.0, 20.0}, {0.0, 30.0}});
  record.InputScaleSlopes = {5.0, 5.0};
  const Vector x = {2.0, 10.0};
  Vector coded = {kUntouched};
  EXPECT_EQ((kEvaluator.*Coding())(&record, x.data(), coded), 0);
  EXPECT_EQ(coded, (Vector{0.5, -1.0}));
  record.InputSamples[1].pop_back();
  EXPECT_EQ((kEvaluator.*Coding())(&record, x.data(), coded), 1);
  EXPECT_EQ(coded, Vector());
}

TEST(Interpolation, GivesUpWithStatus1) {
  const std::vector<TermSpec> everywhere = {{FuncTypeConst, {}, kHole}};
  // With the corners of too few or too many inputs, or no samples, it does not even begin.
  const auto expectRefused = [&](int n, const Matrix& samples, double at, double left) {
    const CQRSData record = PlainRecord(n, everywhere, samples);
    double y = -7.0;
    const Vector x(static_cast<std::size_t>(n), at);
    EXPECT_EQ(kEvaluator.EvaluateResponseSurface(&record, x, y), 1) << n;
    EXPECT_EQ(y, left) << n;
  };
  for (const int n : {0, 1, 2, 7, 13, 14}) {
    const auto size = static_cast<std::size_t>(n);
    const double left = n == 0 || n == 14 ? -7.0 : 0.0;
    expectRefused(n, {Vector(size, 0.0), Vector(size, 3.0)}, 1.0, left);
    expectRefused(n, {Vector(size, 0.0), Vector(size, 3.0)}, 1.5, left);
  }
  expectRefused(2, {}, 1.0, -7.0);
  expectRefused(2, {{0.0, 1.0}, {1.0}}, 1.0, -7.0);
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
  const Counting evaluator;
  Value(evaluator, HoleOnALine(), {0.0});
  EXPECT_EQ(evaluator.points, (Matrix{{0.0}, {-0.01}, {0.03}}));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
