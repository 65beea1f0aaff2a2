#include "pxrom/support_vector.h"

#include "families/kernel_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

const CSVREvaluator kEvaluator;

// Samples at 0, 1 and 2 with the linear kernel 1 + x y, without any scaling.
CSVRData SmallRecord() {
  CSVRData record;
  MakeReady(record, 1, {{0}, {1}, {2}}, {0, 0, 0});
  record.SVRKernType = SVRKernLinear;
  record.KernelArray = {1};
  record.Alphas = {0, 1, 0};
  record.AlphasStar = {1, 0, 4};
  record.Betas = {10, 0, 0};
  return record;
}

TEST(SupportVector, KernelsMatchTheFormulasAtAndAroundTheirCutOffs) {
  CSVRData record;
  for (const auto& item : Reference("svr")) {
    Take(item["type"], record.SVRKernType);
    record.KernelArray = item["widths"].get<Vector>();
    double value = kUntouched;
    ASSERT_EQ(record.EvaluateSVRKernel(record.SVRKernType, item["x"].get<Vector>(),
                                       item["y"].get<Vector>(), value),
              0);
    const double want = item["value"];
    EXPECT_NEAR(value, want, 1e-15 * std::fmax(1.0, std::fabs(want))) << item;
    if (want == 0.0) {
      EXPECT_EQ(value, 0.0) << item;
    }
  }
}

TEST(SupportVector, SvrEpanechnikov) {
  CSVRData record;
  record.KernelArray = {1};
  double value = kUntouched;
  EXPECT_EQ(record.EvaluateSVRKernel(SVRKernEpanechnikov, {0.5}, {0}, value), 0);
  EXPECT_EQ(value, 0.75 * (1.0 - 0.25 * 0.25));
}

TEST(SupportVector, ScalingThatDoesNotFit) {
  CSVRData record = SmallRecord();
  const double unscaled = Value(kEvaluator, record, {3});
  record.InputScaleSlopes = {2, 2};
  EXPECT_EQ(Value(kEvaluator, record, {3}), unscaled);
}

TEST(SupportVector, PredictionsMatchTheFormulas) {
  const auto fill = [](const nlohmann::json& item, CSVRData& record) {
    Take(item["kernel"], record.SVRKernType);
    Take(item["loss"], record.SVRLossFuncType);
    record.Alphas = item["alphas"].get<Vector>();
    record.AlphasStar = item["alphas_star"].get<Vector>();
    record.Betas = item["betas"].get<Vector>();
    record.ConstantCoefficient = item["bias"];
    record.KernelArray = item["widths"].get<Vector>();
  };
  ExpectPredictions<CSVRData>("svr_predictions", kEvaluator, 1e-12, fill);
}

TEST(SupportVector, RecordsThatCannotBeHonouredAreRefused) {
  ExpectValuesOnly<CSVRData>(
      kEvaluator, SmallRecord(), {1},
      {{"no widths", [](CSVRData& r) { r.KernelArray.clear(); }},
       {"a width too many", [](CSVRData& r) { r.KernelArray.push_back(1); }},
       {"a short row", [](CSVRData& r) { r.InputSamples.back().pop_back(); }},
       {"a long row", [](CSVRData& r) { r.InputSamples.front().push_back(0.0); }},
       {"a multiplier too many", [](CSVRData& r) { r.AlphasStar = r.Alphas = Vector(4, 0.0); }},
       {"unpaired multipliers", [](CSVRData& r) { r.Alphas.pop_back(); }},
       {"betas too many", [](CSVRData& r) { Take(2, r.SVRLossFuncType), r.Betas = Vector(4); }}});
}

TEST(SupportVector, EvaluatorsSkipChecks) {
  CSVRData record = SmallRecord();
  record.Betas = Vector(9, 1.0);
  // 1 k(0) - 1 k(1) + 4 k(2) at 3, with k(y) = 1 + 3 y.
  EXPECT_EQ(Value(kEvaluator, record, {3}), 1.0 - 4.0 + 28.0);
  Take(2, record.SVRLossFuncType);
  record.Alphas.clear();
  record.AlphasStar = Vector(9, 1.0);
  record.Betas = {10};
  EXPECT_EQ(Value(kEvaluator, record, {3}), 10.0);
  for (const int samples : {-1, 0, 99}) {  // the rows count
    record.NumberOfSamples = samples;
    EXPECT_EQ(Value(kEvaluator, record, {3}), 10.0);
  }
  // Without samples no kernel is evaluated, so none can be refused.
  record.InputSamples.clear();
  record.Betas.clear();
  record.KernelArray.clear();
  record.ConstantCoefficient = 2.5;
  record.OutputScaleIntercept = 0.5;
  EXPECT_EQ(Value(kEvaluator, record, {3}), 2.0);
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
  const std::tuple<Matrix, int, Vector> cases[] = {
      {{{1, 2}, {3, 6}}, 0, {0.5 / 5.0, 0.5 / 5.0}},  // variances 2 and 8
      {{{1, 2}, {1, 2}}, 1, Vector()},
      // The mean of no variances is 0/0, which is not 0. All variances of a single row are 0/0.
      {Matrix(), 0, Vector()},
      {{{1, 2}, {3}}, 0, Vector()},
      {{{1, 2}}, 0, Vector(2, std::nan(""))}};
  for (const auto& [rows, status, widths] : cases) {
    Vector out = {kUntouched};
    EXPECT_EQ(CSVRData().EvaluateKernelArray(rows, out), status);
    EXPECT_TRUE(SameBits(out, widths));
  }
}

TEST(SupportVector, SvrKernelArrayCheck) {
  CSVRData record = SmallRecord();
  EXPECT_TRUE(record.IsKernelArrayCorrect());
  EXPECT_TRUE(record.IsAllRight());
  record.Betas.pop_back();
  EXPECT_FALSE(record.AreMultipliersCorrect());
  EXPECT_FALSE(record.IsAllRight());
  record = SmallRecord();
  record.KernelArray = {1, 1, 1};
  EXPECT_FALSE(record.IsKernelArrayCorrect());
  EXPECT_FALSE(record.IsAllRight());
}

TEST(SupportVector, SettersWithARangeKeepTheFieldOutsideOfIt) {
  CSVRData record;
  for (const double value : {0.0, 1.0, std::nan("")}) {
    EXPECT_EQ(record.SetEpsVal(value), 1);
    EXPECT_EQ(record.SetNuVal(value), 1);
  }
  EXPECT_EQ(record.SetConstVal(0.0), 1);
  EXPECT_EQ(record.EpsilonValue, 0.2);
  EXPECT_EQ(record.NuValue, 0.5);
  EXPECT_EQ(record.ConstantValue, 1e6);
  EXPECT_EQ(record.SetEpsVal(1e-300), 0);
  EXPECT_EQ(record.SetNuVal(1 - 1e-16), 0);
  EXPECT_EQ(record.SetConstVal(1e-9), 0);
  EXPECT_EQ(record.EpsilonValue, 1e-300);
  EXPECT_LT(record.NuValue, 1);
  EXPECT_EQ(record.ConstantValue, 1e-9);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
