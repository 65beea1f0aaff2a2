#include "pxrom/support_vector.h"

#include <limits>

#include "kernel_local/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const CSVREvaluator kEvaluator;

CSVRData RecordOfPrediction(const nlohmann::json& item) {
  auto record = RecordFrom<CSVRData>(item);
  record.SVRKernType = static_cast<E_SVRKernType>(item["kernel"].get<int>());
  record.SVRLossFuncType = static_cast<E_SVRLossFuncType>(item["loss"].get<int>());
  record.Alphas = item["alphas"].get<Vector>();
  record.AlphasStar = item["alphas_star"].get<Vector>();
  record.Betas = item["betas"].get<Vector>();
  record.ConstantCoefficient = item["bias"];
  record.KernelArray = item["widths"].get<Vector>();
  return record;
}

// Samples at 0, 1 and 2 with the linear kernel 1 + x y, without any scaling.
CSVRData SmallRecord() {
  CSVRData record;
  record.NumberOfInputVariables = 1;
  record.NumberOfSamples = 3;
  record.InputSamples = {{0}, {1}, {2}};
  record.OutputSamples = {0, 0, 0};
  record.InputScaleSlopes = {1};
  record.InputScaleIntercepts = {0};
  record.OutputScaleSlope = 1;
  record.ReadyForEvaluation = true;
  record.SVRKernType = SVRKernLinear;
  record.KernelArray = {1};
  record.Alphas = {0, 1, 0};
  record.AlphasStar = {1, 0, 4};
  record.Betas = {10, 0, 0};
  return record;
}

TEST(SupportVector, KernelsMatchTheFormulasAtAndAroundTheirCutOffs) {
  CSVRData record;
  for (const auto& item : Reference()["svr"]) {
    record.KernelArray = item["widths"].get<Vector>();
    const double want = item["value"];
    double value = kUntouched;
    ASSERT_EQ(record.EvaluateSVRKernel(static_cast<E_SVRKernType>(item["type"].get<int>()),
                                       item["x"].get<Vector>(), item["y"].get<Vector>(), value),
              0);
    EXPECT_NEAR(value, want, 1e-15 * std::fmax(1.0, std::fabs(want))) << item;
  }
}

TEST(SupportVector, PredictionsMatchTheFormulas) {
  for (const auto& item : Reference()["svr_predictions"]) {
    EXPECT_NEAR(Value(kEvaluator, RecordOfPrediction(item), item["x"].get<Vector>()),
                item["value"].get<double>(), 1e-12)
        << item["kernel"] << " " << item["loss"];
  }
}

TEST(SupportVector, RecordsThatCannotBeHonouredAreRefused) {
  ExpectEachRefused<CSVRData>(
      kEvaluator, SmallRecord(), {1},
      {{"unknown kernel", [](CSVRData& r) { r.SVRKernType = static_cast<E_SVRKernType>(4); }},
       {"no widths", [](CSVRData& r) { r.KernelArray.clear(); }},
       {"a width too many", [](CSVRData& r) { r.KernelArray.push_back(1); }},
       {"a multiplier too many", [](CSVRData& r) { r.AlphasStar = r.Alphas = Vector(4, 0.0); }},
       {"unpaired multipliers", [](CSVRData& r) { r.Alphas.pop_back(); }},
       {"a beta too many", [](CSVRData& r) {
          r.SVRLossFuncType = static_cast<E_SVRLossFuncType>(2);
          r.Betas.push_back(0);
        }}});
}

TEST(SupportVector, TheLossFunctionSelectsTheMultipliersAndShortListsEndTheSum) {
  CSVRData record = SmallRecord();
  // 1 k(0) - 1 k(1) + 4 k(2) at 3, with k(y) = 1 + 3 y.
  EXPECT_EQ(Value(kEvaluator, record, {3}), 1.0 - 4.0 + 28.0);
  record.Betas = Vector(9, 1.0);  // not looked at
  record.AlphasStar.pop_back();
  EXPECT_EQ(Value(kEvaluator, record, {3}), 1.0 - 4.0);
  record.SVRLossFuncType = static_cast<E_SVRLossFuncType>(2);
  record.Alphas.clear();
  record.AlphasStar = Vector(9, 1.0);
  record.Betas = {10};
  EXPECT_EQ(Value(kEvaluator, record, {3}), 10.0);
  record.NumberOfSamples = 0;  // fewer than the rows: the rows count
  EXPECT_EQ(Value(kEvaluator, record, {3}), 10.0);
  // Without samples no kernel is asked for, so that none can be refused.
  record.InputSamples.clear();
  record.Betas.clear();
  record.KernelArray.clear();
  record.ConstantCoefficient = 2.5;
  record.OutputScaleIntercept = 0.5;
  EXPECT_EQ(Value(kEvaluator, record, {3}), 2.0);
}

TEST(SupportVector, AScalingThatDoesNotFitIsLeftOutForPointAndSamples) {
  CSVRData record = SmallRecord();
  const double plain = Value(kEvaluator, record, {3});
  record.InputScaleSlopes = {2};
  EXPECT_EQ(Value(kEvaluator, record, {3}), 1.0 - 13.0 + 100.0);
  record.InputScaleIntercepts = {0, 0};
  EXPECT_EQ(Value(kEvaluator, record, {3}), plain);
}

TEST(SupportVector, TheKernelMatrixHasARowPerFirstPointAndKeepsWhatCameBeforeAFailure) {
  CSVRData record = SmallRecord();
  Matrix out = {{kUntouched}};
  EXPECT_EQ(record.EvaluateKernelMatrix({{1}, {2}}, {{3}, {4}, {5}}, out), 0);
  EXPECT_EQ(out, (Matrix{{4, 5, 6}, {7, 9, 11}}));
  EXPECT_EQ(record.EvaluateKernelMatrix({{1}, {2}}, {{3}, {4, 4}}, out), 1);
  EXPECT_EQ(out, (Matrix{{4, 0}, {0, 0}}));
  out = {{1}, {2}};
  EXPECT_EQ(record.EvaluateKernelMatrix(out, out, out), 0);
  EXPECT_EQ(out, (Matrix{{2, 3}, {3, 5}}));
  const Matrix kept = out;
  EXPECT_EQ(record.EvaluateKernelMatrix({}, {{1}}, out), 1);
  EXPECT_EQ(record.EvaluateKernelMatrix({{1}, {1, 2}}, {{1}}, out), 1);
  record.Stopped = true;
  EXPECT_EQ(record.EvaluateKernelMatrix({{1}}, {{1}}, out), 1);
  EXPECT_EQ(out, kept);
}

TEST(SupportVector, WidthsAreHalfTheInverseMeanVariance) {
  const CSVRData record;
  Vector out;
  EXPECT_EQ(record.EvaluateKernelArray({{1, 2}, {3, 6}}, out), 0);  // variances 2 and 8
  EXPECT_EQ(out, (Vector{0.5 / 5.0, 0.5 / 5.0}));
  EXPECT_EQ(record.EvaluateKernelArray({{1, 2}, {1, 2}}, out), 1);
  EXPECT_TRUE(out.empty());
  // The mean of no variances is 0/0, which is not 0; of a single row all are.
  for (const Matrix& rows : {Matrix{}, Matrix{{1, 2}, {3}}}) {
    out = {1};
    EXPECT_EQ(record.EvaluateKernelArray(rows, out), 0);
    EXPECT_TRUE(out.empty());
  }
  EXPECT_EQ(record.EvaluateKernelArray({{1, 2}}, out), 0);
  EXPECT_TRUE(out.size() == 2 && std::isnan(out[0]) && std::isnan(out[1]));
}

TEST(SupportVector, TheCheckOfTheWidthsAsksForADifference) {
  CSVRData record = SmallRecord();
  EXPECT_TRUE(record.IsKernelArrayCorrect() && record.IsAllRight());
  record.KernelArray = {1, 1, 1};
  EXPECT_FALSE(record.IsKernelArrayCorrect() || record.IsAllRight());
  record.KernelArray = {1};
  for (Vector* list : {&record.Alphas, &record.AlphasStar, &record.Betas}) {
    list->push_back(0);
    EXPECT_FALSE(record.AreMultipliersCorrect() || record.IsAllRight());
    list->pop_back();
  }
  record.OutputScaleSlope = 0;
  EXPECT_FALSE(record.IsAllRight());
}

TEST(SupportVector, SettersWithARangeKeepTheFieldOutsideOfIt) {
  CSVRData record;
  for (const double value : {0.0, 1.0, -1.0, 2.0, std::nan("")}) {
    EXPECT_EQ(record.SetEpsVal(value), 1);
    EXPECT_EQ(record.SetNuVal(value), 1);
  }
  EXPECT_EQ(record.SetConstVal(0.0), 1);
  EXPECT_EQ(record.SetConstVal(-1.0), 1);
  EXPECT_TRUE(record.EpsilonValue == 0.2 && record.NuValue == 0.5 && record.ConstantValue == 1e6);
  const double least = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(record.SetEpsVal(least) + record.SetNuVal(1 - 1e-16) + record.SetConstVal(least), 0);
  EXPECT_TRUE(record.EpsilonValue == least && record.NuValue < 1.0);
}

TEST(SupportVector, ClonesAreWholeAndAResetRecordIsNew) {
  const auto& item = Reference()["svr_predictions"][0];
  CSVRData record = RecordOfPrediction(item);
  record.SVRDataVersion_ = static_cast<E_CSVRDataVersion>(9);
  record.SetEpsVal(0.75);
  const std::unique_ptr<CRSData> clone(record.Clone());
  const Vector x = item["x"].get<Vector>();
  const double before = Value(kEvaluator, record, x);
  EXPECT_EQ(record.ResetData(), 0);
  EXPECT_EQ(Value(kEvaluator, *clone, x), before);
  EXPECT_EQ(static_cast<CSVRData&>(*clone).EpsilonValue, 0.75);
  EXPECT_TRUE(record.InputSamples.empty() && !record.ReadyForEvaluation);
  EXPECT_TRUE(record.Alphas.empty() && record.AlphasStar.empty() && record.Betas.empty());
  EXPECT_TRUE(record.KernelArray.empty() && record.ConstantCoefficient == 0.0);
  EXPECT_EQ(record.SVRDataVersion(), SVRDataVersion171);
  EXPECT_EQ(record.SVRKernType, SVRKernGaussian);
  EXPECT_EQ(record.SVRLossFuncType, 3);
  EXPECT_EQ(record.EpsilonValue, 0.2);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
