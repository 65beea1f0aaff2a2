#include "kernels/kernels.h"
#include "reference/kriging_literal.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(KrigingData, ResetKeepsTheErrorData) {
  std::mt19937 random(1U);
  CKrigingData record = literal::RandomKriging(random, CorrCubic, PolyLinear, 5, 2, false);
  record.KrigingDataVersion_ = E_CKrigingDataVersion(193);
  const CKrigingData before(record);
  EXPECT_EQ(record.ResetData(), 0);
  EXPECT_EQ(record.NumberOfSamples, 0);
  EXPECT_EQ(record.PolynomialType, 0);
  EXPECT_EQ(record.CorrelationFunctionType, 0);
  EXPECT_TRUE(record.PolynomialCoefficients.empty());
  EXPECT_TRUE(record.CorrelationCoefficients.empty());
  EXPECT_TRUE(record.CorrelationKernels.empty());
  EXPECT_FALSE(record.SavePredictorError);
  EXPECT_EQ(record.KrigingDataVersion(), 192);
  EXPECT_EQ(record.InvC, before.InvC);
  EXPECT_EQ(record.InvG, before.InvG);
  EXPECT_EQ(record.Ft, before.Ft);
  EXPECT_EQ(record.Ft.size(), 3U);
  EXPECT_EQ(record.Sigma2, before.Sigma2);
  EXPECT_EQ(record.NumberOfPolyCoeff, 3);
}

TEST(KrigingData, IsAllRightLooksAtEachPart) {
  void (*const changes[])(CKrigingData&) = {
      [](CKrigingData& r) { r.OutputSamples.pop_back(); },
      [](CKrigingData& r) { r.OutputScaleSlope = 0.0; },
      [](CKrigingData& r) { r.CorrelationCoefficients.push_back(1.0); },
      [](CKrigingData& r) { r.PolynomialType = PolyPureQuadratic; },
      [](CKrigingData& r) { r.PolynomialType = E_PolynomialType(7); },
  };
  std::mt19937 random(1U);
  EXPECT_TRUE(literal::RandomKriging(random, 1, PolyNone, 5, 2, false).IsAllRight());
  EXPECT_TRUE(CKrigingData().AreCorrelationKernelsCorrect());  // none for no inputs
  for (const auto change : changes) {
    CKrigingData record = literal::RandomKriging(random, 1, PolyFullQuadratic, 5, 2, false);
    record.InvC.clear();  // not looked at
    EXPECT_TRUE(record.IsAllRight());
    change(record);
    EXPECT_FALSE(record.IsAllRight());
  }
}

TEST(KrigingData, KrigingOneKernelPerInput) {
  std::mt19937 random(1U);
  CKrigingData record = literal::RandomKriging(random, CorrGaussian, PolyNone, 5, 2, true);
  ASSERT_EQ(record.CorrelationKernels.size(), 1U);
  EXPECT_FALSE(record.IsAllRight());
  EXPECT_FALSE(std::isnan(Value(CKrigingEvaluator(), record, {0.5, 0.5})));
  record.CorrelationKernels.push_back(1.0);
  EXPECT_TRUE(record.IsAllRight());
}

TEST(KrigingData, PolynomialVectorAndMatrixDifferInTheirStatuses) {
  const CKrigingData record;
  Vector out = {1.0};
  EXPECT_EQ(record.ComputeVandermondePolynomialVector({2.0}, PolyNone, out), 1);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(record.ComputeVandermondePolynomialVector({2.0}, E_PolynomialType(5), out), 0);
  Matrix rows = {{9.0}};
  EXPECT_EQ(record.ComputeVandermondePolynomialMatrix({{1.0}, {1.0, 2.0}}, PolyLinear, rows), 1);
  EXPECT_EQ(rows, Matrix{{9.0}});
  EXPECT_EQ(record.ComputeVandermondePolynomialMatrix({{2.0}, {3.0}}, PolyNone, rows), 0);
  EXPECT_EQ(rows, Matrix(2));
}

TEST(KrigingData, KrigingOutputIntercept) {
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
  // The old values are gone.
  EXPECT_EQ(record.InputScaleSlopes.size(), 4U);
  EXPECT_EQ(record.InputScaleIntercepts.size(), 4U);
  record.ComputeScalingFactorsForInputsUsingInfNorm();
  EXPECT_EQ(record.InputScaleSlopes.size(), 4U);
  EXPECT_EQ(record.InputScaleIntercepts.size(), 4U);
  EXPECT_EQ(record.ComputeScalingFactorForOutput(), 0);
  EXPECT_EQ(record.OutputScaleIntercept, -(deviation * 4.0));
  record.NumberOfInputVariables = 5;  // more than the samples have
  EXPECT_EQ(record.ComputeScalingFactorsForInputs(), 1);
  EXPECT_EQ(record.InputScaleSlopes.size(), 4U);
  for (const auto compute : {&CKrigingData::ComputeScalingFactorsForInputs,
                             &CKrigingData::ComputeScalingFactorsForInputsUsingInfNorm}) {
    record.InputScaleSlopes = record.InputScaleIntercepts = {1.0};
    record.NumberOfInputVariables = -1;
    EXPECT_EQ((record.*compute)(), 0);
    EXPECT_EQ(record.InputScaleSlopes, Vector());
    EXPECT_EQ(record.InputScaleIntercepts, Vector());
  }
}

// The correlation, or the status 1 as -1 for an `r` left alone and -2 for one that is 0.
double Correlate(int type, const Vector& kernels, const Vector& x, const Vector& y, int d) {
  CKrigingData record;
  record.NumberOfInputVariables = d;
  record.CorrelationFunctionType = E_KringingCorrelationFunctionType(type);
  record.CorrelationKernels = kernels;
  double r = -9.0;
  if (record.EvaluateCorrelationFunction(x, y, r) == 0) return r;
  return r == -9.0 ? -1.0 : r - 2.0;
}

TEST(KrigingCorrelation, AgreesWithFiftyDigits) {
  const auto cases = ReferenceData("kriging/correlations.json");
  ASSERT_EQ(cases.size(), 11U * 44U);
  for (const auto& each : cases) {
    const double got = Correlate(each[0], each[3], each[1], each[2], int(each[1].size()));
    EXPECT_NEAR(got, each[4], 4e-15 * std::fmax(1.0, std::fabs(got))) << each;
  }
}

// Exact where the reference's tolerance could hide the wrong side of a comparison.
TEST(KrigingCorrelation, CutsOffAtTheStatedPlaces) {
  EXPECT_EQ(Correlate(CorrSpline, {1.0}, {0.2}, {0.0}, 1),
            1.0 - 15.0 * 0.2 * 0.2 + 30.0 * 0.2 * 0.2 * 0.2);
  EXPECT_EQ(Correlate(CorrBesselJ0, {1.0}, {3.8318}, {0.0}, 1), 0.0);
  EXPECT_EQ(Correlate(CorrSinc, {1.0}, {1e-06}, {0.0}, 1), 1.0);
  EXPECT_LT(Correlate(CorrSinc, {-1.0}, {1.0001e-06}, {0.0}, 1), 1.0);
  // Beyond the cut-off 0 is assigned, not multiplied, and the loop continues after it.
  for (const int type : {CorrSpline, CorrParabolic}) {
    EXPECT_EQ(Correlate(type, {1.0}, {1.0}, {0.0}, 1), 0.0) << type;
    EXPECT_EQ(Correlate(type, {-1e200, 1.0}, {1.0, 2.0}, {0.0, 0.0}, 2), 0.0) << type;
    EXPECT_TRUE(std::isnan(Correlate(type, {1.0, -1e200}, {2.0, 1.0}, {0.0, 0.0}, 2))) << type;
  }
  for (const int type : kernels::NumbersOfCorrelations()) {
    const double got = Correlate(type, {0.5, -4.0}, {0.3, -1.7}, {0.3, -1.7}, 2);
    EXPECT_EQ(got, type == CorrMultiquadric ? 2.0 : 1.0) << type;
  }
}

TEST(KrigingCorrelation, KrigingMultiquadric) {
  EXPECT_EQ(Correlate(CorrMultiquadric, {2.0}, {5.0}, {0.0}, 1), std::sqrt(4.0 + 5.0));
}

TEST(KrigingCorrelation, RefusesWhatDoesNotFit) {
  const Vector two = {1.0, 2.0};
  EXPECT_EQ(Correlate(2, {1.0}, {}, {}, 0), -1.0);
  EXPECT_EQ(Correlate(2, {1.0}, two, {1.0}, 2), -1.0);
  EXPECT_EQ(Correlate(2, {1.0}, two, two, 3), -1.0);
  for (const int type : {0, -1, 99}) EXPECT_EQ(Correlate(type, {1.0}, two, two, 2), -2.0);
  EXPECT_EQ(Correlate(2, {}, two, two, 2), -2.0);
  EXPECT_EQ(Correlate(2, two, {1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, 3), -2.0);
}

TEST(KrigingData, KrigingUnknownTrend) {
  const struct {
    int type;
    int status;
    Vector basis;
  } cases[] = {{PolyNone, 1, {}},
               {PolyConstant, 0, {1}},
               {PolyLinear, 0, {1, 3, 5}},
               // An unknown type appends nothing and is not a failure.
               {99, 0, {}}};
  for (const auto& each : cases) {
    Vector basis = {kUntouched};
    const auto type = static_cast<E_PolynomialType>(each.type);
    EXPECT_EQ(CKrigingData().ComputeVandermondePolynomialVector({3, 5}, type, basis), each.status);
    EXPECT_EQ(basis, each.basis) << each.type;
  }
}

TEST(KrigingCorrelation, KrigingLowerTriangle) {
  CKrigingData record;
  record.NumberOfInputVariables = 1;
  record.CorrelationFunctionType = CorrLinear;
  record.CorrelationKernels = {0.25};
  Matrix out = {{5.0}};
  EXPECT_EQ(record.EvaluateCorrelationMatrix({{0.0}, {1.0, 2.0}}, out), 1);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(record.EvaluateCorrelationMatrix({{0.0}, {1.0}, {3.0}}, out), 0);
  EXPECT_EQ(out, (Matrix{{0, 0, 0}, {0.75, 0, 0}, {0.25, 0.5, 0}}));
  record.CorrelationKernels.clear();
  EXPECT_EQ(record.EvaluateCorrelationMatrix({{0.0}, {1.0}}, out), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
