#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "kriging/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

CKrigingData Record(int type, const Vector& kernels, int d) {
  CKrigingData record;
  record.NumberOfInputVariables = d;
  record.CorrelationFunctionType = static_cast<E_KringingCorrelationFunctionType>(type);
  record.CorrelationKernels = kernels;
  return record;
}

double Correlate(int type, const Vector& kernels, const Vector& x, const Vector& y) {
  double r = -9.0;
  const CKrigingData record = Record(type, kernels, static_cast<int>(x.size()));
  EXPECT_EQ(record.EvaluateCorrelationFunction(x, y, r), 0);
  return r;
}

TEST(Correlation, AgreesWithFiftyDigits) {
  const auto cases =
      nlohmann::json::parse(std::ifstream(PXROM_TEST_DATA "/kriging/correlations.json"));
  ASSERT_EQ(cases.size(), 11U * 48U);
  for (const auto& each : cases) {
    const double want = each[4];
    const double got = Correlate(each[0], each[3], each[1], each[2]);
    EXPECT_LE(std::fabs(got - want), 4e-15 * std::fmax(1.0, std::fabs(want))) << each;
  }
}

// Exact where the reference's tolerance could hide the wrong side of a comparison.
TEST(Correlation, CutsOffAtTheStatedPlaces) {
  EXPECT_EQ(Correlate(CorrBesselJ0, {1.0}, {3.8318}, {0.0}), 0.0);
  EXPECT_EQ(Correlate(CorrSinc, {1.0}, {1e-06}, {0.0}), 1.0);
  EXPECT_LT(Correlate(CorrSinc, {-1.0}, {1.0001e-06}, {0.0}), 1.0);
  // Beyond the cut-off 0 is assigned, not multiplied, and the loop goes on behind it.
  for (const int type : {CorrSpline, CorrParabolic}) {
    EXPECT_EQ(Correlate(type, {1.0}, {1.0}, {0.0}), 0.0) << type;
    EXPECT_EQ(Correlate(type, {-1e200, 1.0}, {1.0, 2.0}, {0.0, 0.0}), 0.0) << type;
    EXPECT_TRUE(std::isnan(Correlate(type, {1.0, -1e200}, {2.0, 1.0}, {0.0, 0.0}))) << type;
  }
  const Vector x = {0.3, -1.7, 4.0};
  for (int type = CorrExponential; type <= CorrSinc; ++type) {
    EXPECT_EQ(Correlate(type, {0.5, -2.0, 3.0}, x, x), type == CorrMultiquadric ? 3.0 : 1.0);
  }
}

TEST(Correlation, RefusesWhatDoesNotFit) {
  const Vector three = {1.0, 2.0, 3.0};
  struct {
    int type;
    Vector kernels, x, y;
    double r;  // what is left of -9
  } const cases[] = {
      {2, {1.0}, {}, {}, -9.0},           {2, {1.0}, three, {1.0}, -9.0},
      {2, {1.0}, {1.0}, {1.0}, -9.0},  // the record has three inputs
      {0, {1.0}, three, three, 0.0},      {-1, {1.0}, three, three, 0.0},
      {12, {1.0}, three, three, 0.0},     {2, {}, three, three, 0.0},
      {2, {1.0, 1.0}, three, three, 0.0},
  };
  for (const auto& each : cases) {
    double r = -9.0;
    EXPECT_EQ(Record(each.type, each.kernels, 3).EvaluateCorrelationFunction(each.x, each.y, r), 1);
    EXPECT_EQ(r, each.r) << each.type << " with " << each.kernels.size() << " kernels";
  }
}

TEST(Correlation, MatrixFillsTheStrictLowerTriangleOnly) {
  const CKrigingData record = Record(CorrLinear, {0.25}, 1);
  Matrix out = {{5.0}};
  EXPECT_EQ(record.EvaluateCorrelationMatrix({{0.0}, {1.0}, {3.0}}, out), 0);
  EXPECT_EQ(out, (Matrix{{0, 0, 0}, {0.75, 0, 0}, {0.25, 0.5, 0}}));
  EXPECT_EQ(record.EvaluateCorrelationMatrix({{0.0}, {1.0, 2.0}}, out), 1);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(record.EvaluateCorrelationMatrix({{0.0, 0.0}, {1.0, 1.0}}, out), 1);
  EXPECT_EQ(out, Matrix(2, Vector(2, 0.0)));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
