#include "pxrom/linear_basis.h"

#include "families/kernel_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

class Evaluator : public CLBFEvaluator {
 public:
  using CLBFEvaluator::ComputeVandermondePolynomialVector;
  using CLBFEvaluator::EvaluateBasisFunction;
};

const Evaluator kEvaluator;

// Rational functions of width 1 at 0 and 2, and the trend 10 + 100 x. The point is doubled; nothing
// else is scaled.
CLBFData SmallRecord() {
  CLBFData record;
  MakeReady(record, 1, {{0}, {2}}, {7, 8});
  record.InputScaleSlopes = {2};
  record.BasisFunctionType = LBFRational;
  record.PolynomialType = PolyLinear;
  record.KernelValues = {1, 1};
  record.PolynomialCoefficients = {10, 100};
  record.KernelCoefficients = {5, 1};
  return record;
}

TEST(LinearBasis, RadialFunctionsMatchTheFormulasAtAndAroundTheirCutOffs) {
  CLBFData record;
  record.NumberOfSamples = 1;
  for (const auto& item : Reference("lbf")) {
    record.NumberOfInputVariables = item["d"];
    Take(item["type"], record.BasisFunctionType);
    Vector x(item["d"].get<std::size_t>(), 0.0);
    record.InputSamples = {x};
    record.KernelValues = {item["h"]};
    x[1] = item["r"];
    Vector out;
    ASSERT_EQ(kEvaluator.EvaluateBasisFunction(&record, x, out), 0);
    const double want = item["value"];
    ASSERT_EQ(out.size(), 1U);
    EXPECT_NEAR(out[0], want, 2e-15) << item;
    // Values at or beyond a cut-off are exact.
    if (want == 0.0 || want == 1.0) {
      EXPECT_EQ(out[0], want) << item;
    }
  }
}

TEST(LinearBasis, PredictionsMatchTheFormulas) {
  const auto fill = [](const nlohmann::json& item, CLBFData& record) {
    Take(item["function"], record.BasisFunctionType);
    Take(item["basis"], record.PolynomialType);
    record.KernelValues = item["widths"].get<Vector>();
    record.PolynomialCoefficients = item["trend"].get<Vector>();
    record.KernelCoefficients = item["weights"].get<Vector>();
  };
  ExpectPredictions<CLBFData>("lbf_predictions", kEvaluator, 1e-12, fill);
}

TEST(LinearBasis, RecordsThatCannotBeHonouredAreRefused) {
  ExpectValuesOnly<CLBFData>(
      kEvaluator, SmallRecord(), {1},
      {{"no trend", [](CLBFData& r) { Take(0, r.PolynomialType), r.PolynomialCoefficients = {}; }},
       {"negative samples", [](CLBFData& r) { r.NumberOfSamples = -1; }},
       {"a short row", [](CLBFData& r) { r.InputSamples.back().pop_back(); }},
       {"fewer widths", [](CLBFData& r) { r.KernelValues.pop_back(); }},
       {"a weight too many", [](CLBFData& r) { r.KernelCoefficients.push_back(0); }},
       {"a coefficient too many", [](CLBFData& r) { r.PolynomialCoefficients.push_back(0); }},
       {"no output", [](CLBFData& r) { r.NumberOfSamples = 1, r.OutputSamples = {}; }}});
}

TEST(LinearBasis, LbfSamplesUnscaled) {
  CLBFData record = SmallRecord();
  record.OutputSamples.pop_back();
  // The scaled point 2 lies on the second sample: 5 / (4 + 1) + 1 / (0 + 1) + 10 + 200.
  EXPECT_EQ(Value(kEvaluator, record, {1}), 212.0);
  record.InputSamples[0].push_back(99.0);  // after the inputs
  EXPECT_EQ(Value(kEvaluator, record, {1}), 212.0);
}

TEST(LinearBasis, ScalingThatDoesNotFit) {
  CLBFData record = SmallRecord();
  record.InputScaleSlopes.push_back(1.0);
  EXPECT_EQ(Value(kEvaluator, record, {2}), 212.0);
}

TEST(LinearBasis, LbfSingleSample) {
  CLBFData record = SmallRecord();
  record.NumberOfSamples = 1;
  record.OutputScaleSlope = 0;
  Take(6, record.BasisFunctionType);
  record.PolynomialType = PolyNone;
  record.KernelValues.clear();
  record.InputSamples.clear();
  EXPECT_EQ(Value(kEvaluator, record, {-4}), 7.0);
}

TEST(LinearBasis, RefusedPartsLeaveWhatTheyPromise) {
  CLBFData record = SmallRecord();
  Take(6, record.BasisFunctionType);
  Vector out = {kUntouched};
  EXPECT_EQ(kEvaluator.EvaluateBasisFunction(&record, {1}, out), 1);
  EXPECT_EQ(out, (Vector{0, 0}));
  EXPECT_EQ(kEvaluator.EvaluateBasisFunction(&record, {}, out), 1);
  EXPECT_TRUE(out.empty());
  // Distances use the inputs of the record; further values of the point are ignored.
  record.BasisFunctionType = LBFRational;
  EXPECT_EQ(kEvaluator.EvaluateBasisFunction(&record, {2, 77}, out), 0);
  EXPECT_EQ(out, (Vector{0.2, 1}));
  // The trend takes its number of inputs from the point.
  EXPECT_EQ(kEvaluator.ComputeVandermondePolynomialVector(&record, {3, 5}, out), 0);
  EXPECT_EQ(out, (Vector{1, 3, 5}));
  record.PolynomialType = PolyNone;
  EXPECT_EQ(kEvaluator.ComputeVandermondePolynomialVector(&record, {3, 5}, out), 1);
  EXPECT_TRUE(out.empty());
  // 200,000 inputs would ask for 160 GB of products.
  record.PolynomialType = PolyFullQuadratic;
  EXPECT_EQ(kEvaluator.ComputeVandermondePolynomialVector(&record, Vector(200000), out), 1);
  EXPECT_TRUE(out.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
