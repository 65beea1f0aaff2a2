#include "pxrom/moving_least_squares.h"

#include <limits>

#include "families/kernel_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

class Evaluator : public CMLSEvaluator {
 public:
  using CMLSEvaluator::ComputeB;
  using CMLSEvaluator::ComputeWeights;
  using CMLSEvaluator::EvaluateBasisFunction;
  using CMLSEvaluator::EvaluateWeightFuction;
  using CMLSEvaluator::EvaluateWeightFuction162;
  using CMLSEvaluator::EvaluateWeightFuction170;
};

const Evaluator kEvaluator;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A line through the first three of four samples, at 1, 2, 3 and 5; from 0 these are the distances.
CMLSData SmallRecord() {
  CMLSData record;
  MakeReady(record, 1, {{1}, {2}, {3}, {5}}, {1, 4, 9, 25});
  record.WeightFunction = WeightRational;
  record.PolynomialType = PolyLinear;
  record.NumberOfBasisFunctions = 2;
  record.NumberOfUsedPoints = 3;
  return record;
}

TEST(MovingLeastSquares, WeightsMatchTheFormulasAtAndAroundTheirCutOffs) {
  CMLSData record;
  for (const auto& item : Reference("mls")) {
    record.NumberOfInputVariables = item["d"];
    Take(item["function"], record.WeightFunction);
    Take(item["version"], record.MLSDataVersion_);
    const auto direct = record.MLSDataVersion_ == 162 ? &Evaluator::EvaluateWeightFuction162
                                                      : &Evaluator::EvaluateWeightFuction170;
    const double want = item["value"];
    for (const auto weight : {&Evaluator::EvaluateWeightFuction, direct}) {
      double w = kUntouched;
      ASSERT_EQ((kEvaluator.*weight)(&record, item["r"], item["rho"], w), 0);
      EXPECT_NEAR(w, want, 4e-15 * std::fabs(want) + 1e-45) << item;
    }
  }
  double w = kUntouched;
  EXPECT_EQ(kEvaluator.EvaluateWeightFuction(&record, -1e-300, 1, w), 1);
  Take(171, record.MLSDataVersion_);
  EXPECT_EQ(kEvaluator.EvaluateWeightFuction(&record, 1, 1, w), 1);
  EXPECT_EQ(w, kUntouched);
}

TEST(MovingLeastSquares, PredictionsMatchTheFormulas) {
  const auto fill = [](const nlohmann::json& item, CMLSData& record) {
    Take(item["version"], record.MLSDataVersion_);
    Take(item["function"], record.WeightFunction);
    Take(item["basis"], record.PolynomialType);
    record.NumberOfBasisFunctions = item["p"];
    record.NumberOfUsedPoints = item["used"];
  };
  ExpectPredictions<CMLSData>("mls_predictions", kEvaluator, 1e-8, fill);
}

TEST(MovingLeastSquares, MlsIgnoresScaling) {
  CMLSData record = SmallRecord();
  const double plain = Value(kEvaluator, record, {1.5});
  record.InputScaleSlopes = {4.0};
  record.OutputScaleIntercept = 9.0;
  EXPECT_EQ(Value(kEvaluator, record, {1.5}), plain);
}

TEST(MovingLeastSquares, MlsRefusesRegressionLine) {
  CMLSData record = SmallRecord();
  record.WeightFunction = WeightConstant;
  ExpectRefused(kEvaluator, &record, {1.5}, "a line with constant weights");
  record.PolynomialType = PolyConstant;
  record.NumberOfBasisFunctions = 1;
  EXPECT_NEAR(Value(kEvaluator, record, {1.5}), (1.0 + 4.0 + 9.0) / 3.0, 1e-6);
}

TEST(MovingLeastSquares, RecordsThatCannotBeHonouredAreRefused) {
  ExpectValuesOnly<CMLSData>(
      kEvaluator, SmallRecord(), {1.5},
      {{"unknown version", [](CMLSData& r) { Take(169, r.MLSDataVersion_); }},
       {"no basis", [](CMLSData& r) { Take(0, r.PolynomialType), r.NumberOfBasisFunctions = 0; }},
       {"unknown basis", [](CMLSData& r) { Take(5, r.PolynomialType); }},
       {"negative functions", [](CMLSData& r) { r.NumberOfBasisFunctions = -2; }},
       {"too many functions", [](CMLSData& r) { r.NumberOfBasisFunctions = 2147483647; }},
       {"negative samples", [](CMLSData& r) { r.NumberOfSamples = -1; }},
       {"fewer samples than functions", [](CMLSData& r) { r.NumberOfSamples = 1; }},
       {"a short used row", [](CMLSData& r) { r.InputSamples.front().clear(); }},
       {"negative used", [](CMLSData& r) { r.NumberOfUsedPoints = -1; }},
       {"more used than samples", [](CMLSData& r) { r.NumberOfUsedPoints = 5; }},
       {"fewer outputs than used", [](CMLSData& r) { r.OutputSamples.resize(2); }},
       {"all samples at one point", [](CMLSData& r) { r.InputSamples = Matrix(4, {1.5}); }}});
}

TEST(MovingLeastSquares, TheBasisIsThatOfTheRecordAndTheUsedSamples) {
  CMLSData record = SmallRecord();
  Matrix B;
  EXPECT_EQ(kEvaluator.ComputeB(&record, B), 0);
  EXPECT_EQ(B, (Matrix{{1, 1}, {1, 2}, {1, 3}}));
  for (const int used : {-1, 1, 5}) {
    record.NumberOfUsedPoints = used;
    EXPECT_EQ(kEvaluator.ComputeB(&record, B), 1);
  }
  Vector f;
  for (const int functions : {2, 3}) {
    record.NumberOfBasisFunctions = functions;
    EXPECT_EQ(kEvaluator.EvaluateBasisFunction(&record, {3, 7}, f), functions == 2 ? 0 : 1);
    EXPECT_EQ(f, (Vector{1, 3}));
  }
  EXPECT_EQ(kEvaluator.EvaluateBasisFunction(&record, {}, f), 1);
  EXPECT_TRUE(f.empty());
  // With a wrong count the basis of 200,000 inputs is not computed.
  record.PolynomialType = PolyFullQuadratic;
  record.NumberOfInputVariables = 200000;
  EXPECT_EQ(kEvaluator.EvaluateBasisFunction(&record, Vector(200000), f), 1);
  EXPECT_TRUE(f.empty());
  // The third nearest sample gives the width of the weights. If its distance is NaN, so are all
  // weights.
  record = SmallRecord();
  record.InputSamples = {{1}, {2}, {kNaN}, {kNaN}};
  record.NumberOfUsedPoints = 2;
  EXPECT_EQ(kEvaluator.ComputeWeights(&record, {0}, f), 0);
  ASSERT_EQ(f.size(), 2U);
  EXPECT_TRUE(std::isnan(f[0]));
  // Weights for more functions than samples, and for more samples than there are.
  record = SmallRecord();
  record.NumberOfBasisFunctions = 5;
  EXPECT_EQ(kEvaluator.ComputeWeights(&record, {0}, f), 1);
  record.NumberOfSamples = 5;
  EXPECT_EQ(kEvaluator.ComputeWeights(&record, {0}, f), 1);
}

TEST(MovingLeastSquares, ASampleOfAnotherLengthIsAtThePointAndGivesItsFirstValues) {
  CMLSData record = SmallRecord();
  record.InputSamples[1] = {2, 99};
  // Distances 0.5, 0, 1.5 and 3.5, so that rho is 1.5.
  Vector weights;
  EXPECT_EQ(kEvaluator.ComputeWeights(&record, {1.5}, weights), 0);
  const Vector expected = {0.9 / 2.4, 1 / 2.4, 0.5 / 2.4};
  ASSERT_EQ(weights.size(), 3U);
  for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(weights[j], expected[j], 1e-15);
  Matrix B;
  EXPECT_EQ(kEvaluator.ComputeB(&record, B), 0);
  EXPECT_EQ(B, (Matrix{{1, 1}, {1, 2}, {1, 3}}));
  // The line through the samples, whatever the weights, with the first value of the longer sample.
  record.OutputSamples = {10, 20, 30, -1};
  EXPECT_NEAR(Value(kEvaluator, record, {1.5}), 15.0, 1e-6);
  // An unused sample needs no value. For a constant no sample needs one: distances 0, 0.5, 1.5
  // and 3.5 with rho 0.5.
  record.InputSamples = {{1}, {2}, {3}, {}};
  EXPECT_NEAR(Value(kEvaluator, record, {1.5}), 15.0, 1e-6);
  record.InputSamples = {{}, {2}, {3}, {5}};
  record.PolynomialType = PolyConstant;
  record.NumberOfBasisFunctions = 1;
  EXPECT_NEAR(Value(kEvaluator, record, {1.5}), (10 + 20 * 0.5 + 30 * 0.1) / 1.6, 1e-6);
  record.NumberOfUsedPoints = -1;
  EXPECT_EQ(kEvaluator.ComputeWeights(&record, {1.5}, weights), 0);
  EXPECT_TRUE(weights.empty());
}

TEST(MovingLeastSquares, CholeskySolvesAndRefusesWithTheResultUntouched) {
  Matrix A = {{4, 2, 6}, {2, 10, 9}, {6, 9, 14}};
  Vector b = {25, 54.5, 68};
  EXPECT_EQ(kEvaluator.SolveLinearSystemCholeskyMth(A, b, b), 0);
  EXPECT_EQ(A, (Matrix{{2, 0, 0}, {1, 3, 0}, {3, 2, 1}}));
  EXPECT_EQ(b, (Vector{1, 3, 2.5}));

  const double above = 1 + 2.0 * std::numeric_limits<double>::epsilon();
  std::tuple<const char*, Matrix, Vector, int> cases[] = {
      {"nothing to solve", {}, {}, 0},
      {"zero", {{0}}, {1}, 1},
      {"negative", {{-1}}, {1}, 1},
      {"the root is above the tolerance, what is under it not", {{1e-31}}, {1}, 0},
      {"a root below the tolerance", {{4e-32}}, {1}, 1},
      {"not a number", {{kNaN}}, {1}, 0},
      {"not a number off the diagonal", {{1, kNaN}, {kNaN, 1}}, {1, 1}, 1},
      {"nearly symmetric", {{4, 1}, {above, 4}}, {1, 1}, 1},
      {"indefinite", {{1, 2}, {2, 1}}, {1, 1}, 1},
      {"wide", {{1, 0}}, {1}, 1},
      {"ragged", {{1, 0}, {0}}, {1, 1}, 1},
      {"a short right-hand side", {{1, 0}, {0, 1}}, {1}, 1}};
  for (auto& [what, matrix, side, status] : cases) {
    Vector out = {kUntouched};
    EXPECT_EQ(kEvaluator.SolveLinearSystemCholeskyMth(matrix, side, out), status) << what;
    EXPECT_EQ(out == Vector{kUntouched}, status != 0) << what;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
