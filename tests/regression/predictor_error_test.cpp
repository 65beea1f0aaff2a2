#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

/// One active constant, 11 samples: the error is sqrt(1.25 * 4) times the quantile.
CQRSData ConstantRecord() {
  CQRSData record = PlainRecord(1, {{FuncTypeLinear, {0}, 1.0, false}, {FuncTypeConst, {}, 5.0}});
  record.NumberOfSamples = 11;
  record.InvXtX = {{0.25}};
  record.Sigma2 = 4.0;
  return record;
}

TEST(PredictorError, AgreesWithScipy) {
  const auto reference =
      nlohmann::json::parse(std::ifstream(PXROM_TEST_DATA "/regression/reference.json"));
  for (const auto& each : reference["errors"]) {
    std::vector<TermSpec> specs;
    for (const auto& indices : each["terms"]) {
      specs.push_back({static_cast<E_FuncType>(indices.empty()       ? 1
                                               : indices.size() == 1 ? 2
                                                                     : 4),
                       indices, 1.0, false});
    }
    for (const int k : each["active"]) specs[static_cast<std::size_t>(k)].isActive = true;
    CQRSData record = PlainRecord(each["inputs"], specs);
    record.NumberOfSamples = each["samples"];
    record.RegTermFilterConfVal = each["level"];
    record.Sigma2 = each["sigma2"];
    record.OutputScaleSlope = each["slope"];
    record.InvXtX = each["inverse"].get<Matrix>();
    record.SavePredictorError = true;
    Matrix points = each["points"].get<Matrix>();
    Vector errors;
    EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);  // not as many points as samples
    ASSERT_EQ(errors.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
      const double want = each["errors"][i];
      // From 500 degrees of freedom on the quantile is an approximation by the Gauss distribution.
      const double tolerance = record.NumberOfSamples > 500 ? 5e-6 : 2e-6;
      EXPECT_NEAR(errors[i], want, tolerance * want) << record.NumberOfSamples;
      double alone = 0.0;
      EXPECT_EQ(record.GetPredictorError(points[i], alone), 0);
      EXPECT_EQ(alone, errors[i]);
    }
  }
}

TEST(PredictorError, LeavesOutInactiveTermsAndDividesBySlope) {
  CQRSData record = ConstantRecord();
  Vector x = {3.0};
  double error = 0.0;
  EXPECT_EQ(record.GetPredictorError(x, error), 0);
  EXPECT_NEAR(error, 4.0528, 1e-4);
  record.OutputScaleSlope = 2.0;
  double half = 0.0;
  EXPECT_EQ(record.GetPredictorError(x, half), 0);
  EXPECT_EQ(half, error / 2.0);
}

TEST(PredictorError, RefusesWhatCannotBeTold) {
  Vector x = {3.0};
  double error = -7.0;
  CQRSData record = ConstantRecord();
  record.SetAllRegTermActive();  // now the matrix is too small
  EXPECT_EQ(record.GetPredictorError(x, error), 1);
  record.InvXtX = {{1.0, 0.0}, {1.0}};
  EXPECT_EQ(record.GetPredictorError(x, error), 1);
  record.InvXtX = {{1.0, 0.0}, {0.0, 1.0}};
  x.clear();
  EXPECT_EQ(record.GetPredictorError(x, error), 1);
  x = {3.0};
  record.NumberOfSamples = 2;
  EXPECT_NE(record.GetPredictorError(x, error), 0);  // no degrees of freedom
  record.NumberOfSamples = 11;
  record.RegTermFilterConfVal = 1.0;
  EXPECT_EQ(record.GetPredictorError(x, error), 3);
  record.RegTermFilterConfVal = 0.0;
  EXPECT_EQ(record.GetPredictorError(x, error), 2);
  EXPECT_EQ(error, -7.0);
}

TEST(PredictorError, RelativeErrorsAreAppended) {
  const CQRSData record;
  Vector out = {9.0};
  EXPECT_EQ(
      record.GetRelativePredictorError({0.0001, -0.001, 4.0, 1.0}, {2.0, 1.0, 2.0, 1.0}, 3, out),
      0);
  EXPECT_EQ(out, (Vector{9.0, 2.0, 1.0 / 0.001, 0.5}));
  EXPECT_EQ(record.GetRelativePredictorError({1.0}, {1.0, 1.0}, 2, out), 1);
  EXPECT_EQ(out.size(), 4U);
}

TEST(PredictorError, ABatchFillsTheErrorsWhateverItsStatus) {
  CQRSData record = ConstantRecord();
  Matrix points(11, Vector{3.0});
  Vector errors;
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 0);
  EXPECT_TRUE(errors.empty());  // nothing saved
  record.SavePredictorError = true;
  points.push_back({4.0});
  points[1].clear();
  errors = {-7.0, -7.0, -7.0};
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  ASSERT_EQ(errors.size(), 12U);
  EXPECT_NEAR(errors[0], 4.0528, 1e-4);
  EXPECT_EQ(errors[1], errors[0]);  // the active constant reads no input
  SetTerms(record, {{FuncTypeLinear, {0}, 1.0}});
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  EXPECT_EQ(errors[1], 0.0);
  EXPECT_EQ(errors[11], 2.0 * std::sqrt(5.0) * (errors[11] / (2.0 * std::sqrt(5.0))));
  EXPECT_GT(errors[11], errors[0]);
  points.clear();
  EXPECT_EQ(record.EvalErrorPredictions(points, errors), 1);
  EXPECT_TRUE(errors.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
