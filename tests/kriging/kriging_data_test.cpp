#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "kriging/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(KrigingData, ResetKeepsTheErrorDataAndCloneCopiesThem) {
  CKrigingData record = SmallRecord();
  record.KrigingDataVersion_ = E_CKrigingDataVersion(193);
  const std::unique_ptr<CRSData> clone(record.Clone());
  const auto& copy = dynamic_cast<const CKrigingData&>(*clone);
  EXPECT_EQ(record.ResetData(), 0);
  EXPECT_EQ(record.NumberOfSamples, 0);
  EXPECT_EQ(record.KrigingDataVersion(), KrigingDataVersion192);
  EXPECT_EQ(record.PolynomialType + record.CorrelationFunctionType, 0);
  EXPECT_TRUE(record.PolynomialCoefficients.empty() && record.CorrelationCoefficients.empty() &&
              record.CorrelationKernels.empty() && !record.SavePredictorError);
  EXPECT_EQ(copy.KrigingDataVersion(), 193);
  EXPECT_EQ(copy.CorrelationKernels, Vector{0.25});
  EXPECT_EQ(copy.InvC, (Matrix{{3.0, 0.0}, {0.0, 4.0}}));
  EXPECT_EQ(record.InvC, copy.InvC);
  EXPECT_EQ(record.InvG, Matrix{{0.75}});
  EXPECT_EQ(record.Ft, (Matrix{{1.0, 0.5}}));
  EXPECT_EQ(record.Sigma2, 2.0);
}

TEST(KrigingData, IsAllRightLooksAtEachPart) {
  using Change = void (*)(CKrigingData&);
  const Change changes[] = {
      [](CKrigingData& r) { r.OutputSamples.pop_back(); },
      [](CKrigingData& r) { r.OutputScaleSlope = 0.0; },
      [](CKrigingData& r) { r.CorrelationCoefficients.push_back(1.0); },
      [](CKrigingData& r) { r.PolynomialCoefficients.clear(); },
      [](CKrigingData& r) { r.PolynomialType = E_PolynomialType(7); },
      [](CKrigingData& r) { r.PolynomialType = PolyNone; },
      [](CKrigingData& r) { r.CorrelationKernels.push_back(1.0); },
  };
  for (const Change& change : changes) {
    CKrigingData record = SmallRecord();
    record.InvC.clear();  // not looked at
    EXPECT_TRUE(record.IsAllRight());
    change(record);
    EXPECT_FALSE(record.IsAllRight()) << &change - changes;
  }
}

TEST(KrigingData, PolynomialVectorAndMatrixDifferInTheirStatuses) {
  const CKrigingData record;
  Vector out = {1.0};
  EXPECT_EQ(record.ComputeVandermondePolynomialVector({2.0}, PolyNone, out), 1);
  EXPECT_TRUE(out.empty());
  out = {1.0};
  EXPECT_EQ(record.ComputeVandermondePolynomialVector({2.0}, E_PolynomialType(5), out), 0);
  EXPECT_TRUE(out.empty());
  Matrix rows = {{9.0}};
  EXPECT_EQ(record.ComputeVandermondePolynomialMatrix({}, PolyLinear, rows), 1);
  EXPECT_EQ(record.ComputeVandermondePolynomialMatrix({{1.0}, {1.0, 2.0}}, PolyLinear, rows), 1);
  EXPECT_EQ(rows, Matrix{{9.0}});
  EXPECT_EQ(record.ComputeVandermondePolynomialMatrix({{2.0}, {3.0}}, PolyNone, rows), 0);
  EXPECT_EQ(rows, Matrix(2));
}

TEST(KrigingData, ScalingFactorsKeepTheirUnevenRules) {
  CKrigingData record;
  record.NumberOfInputVariables = 4;
  record.InputSamples = {{1.0, -1e-08, 1e+30, 9e-09}, {5.0, 0.0, 0.0, 0.0}};
  record.OutputSamples = {2.0, 6.0};
  record.OutputScaleIntercept = 7.0;
  EXPECT_EQ(record.ComputeScalingFactorsForInputsUsingInfNorm(), 0);
  EXPECT_EQ(record.InputScaleSlopes, (Vector{1 / 5.0, 1 / 1e-08, 1 / 1e+30, 1.0}));
  EXPECT_EQ(record.InputScaleIntercepts, Vector(4, 0.0));
  EXPECT_EQ(record.ComputeScalingFactorForOutputUsingInfNorm(), 0);
  EXPECT_EQ(record.OutputScaleIntercept, 7.0);
  const double deviation = std::sqrt(8.0);
  EXPECT_EQ(record.ComputeScalingFactorsForInputs(), 0);
  EXPECT_EQ(record.InputScaleIntercepts[0], -(1 / deviation) * 3.0);
  EXPECT_EQ(record.ComputeScalingFactorForOutput(), 0);
  EXPECT_EQ(record.OutputScaleSlope, 1 / deviation);
  EXPECT_EQ(record.OutputScaleIntercept, -(deviation * 4.0));
  record.NumberOfInputVariables = 5;  // more than the samples have
  EXPECT_EQ(record.ComputeScalingFactorsForInputs(), 1);
  EXPECT_EQ(record.ComputeScalingFactorsForInputsUsingInfNorm(), 1);
  EXPECT_EQ(record.InputScaleSlopes.size(), 4U);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
