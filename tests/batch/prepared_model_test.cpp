// What a prepared model refuses, and cases that random models rarely have.

#include <gtest/gtest.h>

#include <algorithm>

#include "batch/batch_cases.h"
#include "pxrom/constant.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/regression_terms.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

CConstantData Constant(double value) {
  CConstantData surface;
  MakeReady(surface, 1, {{0.5}});
  surface.SetConstantValue(value);
  return surface;
}

TEST(PreparedModel, RefusesWithAReasonAndChangesNothing) {
  CPreparedModel prepared = Prepared(ModelOf(Constant(7.0)));
  CDiscreteCombinations beam;
  ReadModel(SourcePath("examples/beam.pxdb"), beam);
  const struct {
    DiscreteValues values;
    const char* reason;
  } cases[] = {
      {{}, "The model has 2 enabled discrete inputs, but 0 discrete values are given."},
      {{{"q", 3}, {"Holes", 1}}, "The model has no parameter 'q'."},
      {{{"Holes", 1}, {"Material", 3}},
       "The model has no combination of the discrete values 1, 3."},
  };
  for (const auto& refused : cases) {
    std::string reason;
    EXPECT_EQ(CPreparedModel::Prepare(beam, refused.values, prepared, &reason), 1);
    EXPECT_EQ(reason, refused.reason);
    EXPECT_EQ(CPreparedModel::Prepare(beam, refused.values, prepared), 1);
  }
  std::string reason;
  EXPECT_EQ(CPreparedModel::Prepare(CDiscreteCombinations(), {}, prepared, &reason), 1);
  EXPECT_EQ(reason, "The model has no combination without discrete values.");

  // It still gives the same results, and so do copies after it is destroyed.
  CPreparedModel copy;
  copy = CPreparedModel(prepared);
  const CPreparedModel moved = std::move(prepared);
  prepared = copy;
  const double point = 0.25;
  double value = 0.0;
  EXPECT_EQ(copy.Evaluate(&point, 1, PrecisionExact, &value, nullptr, nullptr), 0);
  EXPECT_EQ(value, 7.0);

  value = -1.0;
  const auto noMode = static_cast<E_PrecisionMode>(2);
  EXPECT_EQ(moved.Evaluate(&point, 1, noMode, &value, nullptr, nullptr), 1);
  EXPECT_EQ(moved.Evaluate(nullptr, 1, PrecisionFast, &value, nullptr, nullptr), 1);
  EXPECT_EQ(moved.Evaluate(&point, 1, PrecisionExact, nullptr, nullptr, nullptr), 1);
  EXPECT_EQ(moved.EvaluateGradients(&point, 1, nullptr, nullptr), 1);
  EXPECT_EQ(CPreparedModel().Evaluate(&point, 1, PrecisionExact, &value, nullptr, nullptr), 1);
  EXPECT_EQ(CPreparedModel().EvaluateGradients(&point, 1, &value, nullptr), 1);
  EXPECT_TRUE(CPreparedModel().InputIDs().empty());
  EXPECT_TRUE(CPreparedModel().OutputIDs().empty());
  EXPECT_EQ(value, -1.0);
}

TEST(PreparedModel, SelectsOutputsInTheGivenOrder) {
  CDiscreteCombinations beam;
  ReadModel(SourcePath("examples/beam.pxdb"), beam);
  CPreparedModel all;
  ASSERT_EQ(CPreparedModel::Prepare(beam, {{"Material", 1}, {"Holes", 2}}, all), 0);
  const double point[] = {90.0, 3000.0, 1.5, 45.0};
  Table wanted(3);  // deflection, mass, stress
  all.Evaluate(point, 1, PrecisionExact, wanted.values.data(), wanted.errors.data(), nullptr);

  CPreparedModel some = all;
  ASSERT_EQ(some.Select({"stress", "mass"}, some), 0);
  EXPECT_EQ(some.OutputIDs(), (std::vector<std::string>{"stress", "mass"}));
  Table got(2);
  some.Evaluate(point, 1, PrecisionExact, got.values.data(), got.errors.data(), nullptr);
  EXPECT_EQ(got.values[0], wanted.values[2]);
  EXPECT_EQ(got.values[1], wanted.values[1]);
  EXPECT_EQ(got.errors[0], wanted.errors[2]);
  EXPECT_EQ(got.errors[1], wanted.errors[1]);

  CPreparedModel mass;
  ASSERT_EQ(some.Select({"mass"}, mass), 0);
  EXPECT_LT(mass.Cost().operations, some.Cost().operations);
  EXPECT_LT(some.GradientCost().operations, all.GradientCost().operations);
  std::string reason;
  EXPECT_EQ(some.Select({"mass", "deflection"}, mass, &reason), 1);
  EXPECT_EQ(reason, "The combination has no output 'deflection'.");
  EXPECT_EQ(mass.OutputIDs(), (std::vector<std::string>{"mass"}));
  EXPECT_EQ(CPreparedModel().Select({}, mass), 1);
}

// Its results are copied, with errors and statuses, row by row.
TEST(PreparedModel, AnOutputThatIsSelectedTwiceHasItsResultsTwice) {
  CDiscreteCombinations beam;
  ReadModel(SourcePath("examples/beam.pxdb"), beam);
  CPreparedModel all;
  ASSERT_EQ(CPreparedModel::Prepare(beam, {{"Material", 1}, {"Holes", 2}}, all), 0);
  const double points[] = {90.0, 3000.0, 1.5,  45.0,   kNaN, 3000.0,
                           1.5,  45.0,   80.0, 2500.0, 1.2,  40.0};
  CPreparedModel once;
  ASSERT_EQ(all.Select({"stress", "mass"}, once), 0);
  CPreparedModel twice;
  ASSERT_EQ(once.Select({"stress", "stress", "mass", "stress"}, twice), 0);
  Table wanted(6);
  Table got(12);
  for (const E_PrecisionMode mode : {PrecisionExact, PrecisionFast}) {
    once.Evaluate(points, 3, mode, wanted.values.data(), wanted.errors.data(),
                  wanted.statuses.data());
    twice.Evaluate(points, 3, mode, got.values.data(), got.errors.data(), got.statuses.data());
    for (std::size_t i = 0; i < 12; ++i) {
      SCOPED_TRACE(i);
      const std::size_t from = i / 4 * 2 + (i % 4 == 2 ? 1 : 0);
      EXPECT_TRUE(SameBits(got.values[i], wanted.values[from]));
      EXPECT_TRUE(SameBits(got.errors[i], wanted.errors[from]));
      EXPECT_EQ(got.statuses[i], wanted.statuses[from]);
    }
  }
  // The place of an output is not its number among different ones.
  ASSERT_EQ(twice.Select({"mass"}, twice), 0);
  twice.Evaluate(points, 1, PrecisionExact, got.values.data(), nullptr, nullptr);
  EXPECT_TRUE(SameBits(got.values[0], wanted.values[1]));
}

// A record in memory may have products of three and more variables, between other terms.
TEST(PreparedModel, LongProductsKeepTheirPlaceInTheSum) {
  for (std::uint32_t seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Draw draw(seed);
    const int inputs = draw.Int(3, 5);
    CQRSData record;
    static_cast<CRSData&>(record) = *RandomSurface(draw, DT_QRSData, 3, 40, false);
    record.NumberOfInputVariables = inputs;
    record.InputScaleSlopes = draw.Reals(inputs, 0.5, 2);
    record.InputScaleIntercepts = draw.Reals(inputs, -1, 1);
    // Of inputs below 0 too, with all forms that the transformation has.
    record.InputTransformType = seed % 2 == 0 ? TransformYeo : TransformNone;
    record.InputTransformValues.assign(record.InputScaleSlopes.size(), 1.0);
    record.InputLambdas.assign(record.InputScaleSlopes.size(), 0.5 * draw.Int(0, 4));
    std::vector<std::unique_ptr<RegTerm>> terms;
    std::vector<RegTerm*> pointers;
    for (int k = 0; k < 9; ++k) {
      const int count = draw.Int(1, 5);
      std::vector<int> indices;
      for (int v = 0; v < count; ++v) indices.push_back(draw.Int(0, inputs - 1));
      if (count == 1) terms.push_back(std::make_unique<LinearTerm>());
      if (count == 2) terms.push_back(std::make_unique<CrossQuadTerm>());
      if (count > 2) terms.push_back(std::make_unique<CrossPolyTerm>());
      const double coefficient = draw.Real(-3, 3);
      pointers.push_back(terms.back().get());
      pointers.back()->SetParamVal(1, &coefficient);
      pointers.back()->SetUsedInpVarIdx(count, indices.data());
    }
    record.SetRegTerm(pointers.data(), 9);
    record.NumberOfSelectedRegTerms = 9;
    record.SavePredictorError = true;
    record.Sigma2 = 0.5;
    for (int i = 0; i < 9; ++i) record.InvXtX.push_back(draw.Reals(9, -0.1, 0.1));
    for (std::size_t i = 0; i < 9; ++i) record.InvXtX[i][i] = 2.0;
    const CDiscreteCombinations model = ModelOf(record);
    const std::size_t rows = 37;
    const std::vector<double> points = draw.Reals(static_cast<int>(rows) * inputs, -1, 1);
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(model, points, rows));

    const std::vector<double> first(points.begin(), points.begin() + inputs);
    ASSERT_NO_FATAL_FAILURE(ExpectGradientsAreDifferences(Prepared(model), first,
                                                          std::vector<double>(first.size(), 1.0)));
  }
}

// Inputs of one rank are ordered by their values, as Evaluate sorts them.
TEST(PreparedModel, InputsOfEqualRankChangePlaces) {
  Draw draw(3);
  CDiscreteCombinations tied = ModelOf(*RandomSurface(draw, DT_KrigingData, 3, 20, false));
  tied.SetRegistrationRank({{"x00", 0}, {"x01", 1}, {"x02", 0}, {"y", 3}});
  const CPreparedModel prepared = Prepared(tied);
  for (const std::vector<double>& x :
       {std::vector<double>{0.2, 0.5, 0.8}, {0.8, 0.5, 0.2}, {0.3, 0.3, 0.3}}) {
    std::vector<std::pair<std::string, double>> named;
    std::vector<double> point;
    for (const std::string& id : prepared.InputIDs()) {
      point.push_back(x[static_cast<std::size_t>(id.back() - '0')]);
      named.emplace_back(id, point.back());
    }
    std::vector<std::pair<std::string, double>> outputs;
    ASSERT_EQ(tied.Evaluate({}, named, outputs), 0);
    EXPECT_EQ(ValuesOf(prepared, point), std::vector<double>{outputs[0].second});
    // Each derivative belongs to the input that was at its place.
    if (x[0] == x[2]) continue;
    ASSERT_NO_FATAL_FAILURE(ExpectGradientsAreDifferences(prepared, point, {1.0, 1.0, 1.0}));
  }
}

// Distances of a fold that differ by less than the tolerance of its sort, in all orders, and a NaN.
// The first one after the sort is then not the least one.
TEST(PreparedModel, FoldsOfNearlyEqualDistances) {
  CConstantData constants[] = {Constant(4.0), Constant(3.0), Constant(6.0)};
  const std::vector<CRSData*> surfaces = {&constants[0], &constants[1], &constants[2]};
  std::vector<double> offsets = {0.0, 0.7e-12, 1.5e-12, 2.2e-12};
  do {
    // The candidate's number of inputs determines the tolerance, not that of the point.
    for (const auto& [odd, inputs] : {std::pair(1.0, 1), std::pair(1.0, 4), std::pair(kNaN, 1)}) {
      CFittingCandidate candidate;
      candidate.SetNumberOfInputVariables(inputs);
      candidate.SetInputScaleSlopes({1.0});
      candidate.SetInputScaleIntercepts({0.0});
      candidate.SetOutputScaleSlope(2.0);
      ASSERT_EQ(candidate.SetRSAndWeights(surfaces, {1.0}, true), 0);
      std::vector<std::vector<double>> rows;
      for (const double offset : offsets) rows.push_back({0.25 + offset});
      rows.push_back({odd});
      rows.push_back({0.75});
      std::vector<int> counts = {5, 1};
      candidate.SetCrossValidationData(rows, counts);
      double scale = 0.1;
      candidate.SetDPMinDist(scale);
      std::vector<double> points;
      for (int i = 0; i < 40; ++i) points.push_back(0.25 + 0.02 * i);
      ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOf(candidate, 1), points, points.size()));
    }
  } while (std::next_permutation(offsets.begin(), offsets.end()));
}

// Records that no text can give: counts and lengths that the evaluators do not compare.
TEST(PreparedModel, HandBuiltRecordsThatTheEvaluatorsTake) {
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Draw draw(seed);
    const std::vector<double> points = draw.Reals(3 * 11, -0.2, 1.2);
    for (const E_DataType type : {DT_KrigingData, DT_SVRData, DT_MLSData, DT_LBFData}) {
      SCOPED_TRACE("family " + std::to_string(type));
      const auto record = RandomSurface(draw, type, 3, 30, true);
      if (type == DT_KrigingData || type == DT_SVRData) {
        record->NumberOfSamples = -1;
      } else {
        record->InputSamples[static_cast<std::size_t>(draw.Int(0, 29))].push_back(0.5);
      }
      // A local problem that is solved to enough digits for differences.
      if (auto* const local = dynamic_cast<CMLSData*>(record.get())) {
        local->PolynomialType = PolyLinear;
        local->NumberOfBasisFunctions = 4;
        local->NumberOfUsedPoints = 30;
        local->WeightFunction = WeightRational;
      }
      const CDiscreteCombinations model = ModelOf(*record);
      ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(model, points, 11));
      if (type != DT_MLSData) continue;
      const std::vector<double> first(points.begin(), points.begin() + 3);
      ASSERT_NO_FATAL_FAILURE(
          ExpectGradientsAreDifferences(Prepared(model), first, std::vector<double>(3, 1.0)));
    }
  }
}

// The only constant that has an error.
TEST(PreparedModel, AConstantWithoutInputs) {
  CConstantData record = Constant(4.0);
  MakeReady(record, 0);
  ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOf(record), {}, 3));
}

// Where the data of cross-validation don't fit, the errors are refused and the values are not.
TEST(PreparedModel, CrossValidationThatDoesNotFit) {
  CConstantData constants[] = {Constant(4.0), Constant(3.0), Constant(6.0)};
  const std::vector<CRSData*> surfaces = {&constants[0], &constants[1], &constants[2]};
  const std::vector<int> folds[] = {{1, 1}, {1}, {2, 1}, {1, 1, 1}, {-1, 3}, {0, 2}, {}};
  for (std::vector<int> counts : folds) {
    CFittingCandidate candidate;
    candidate.SetNumberOfInputVariables(1);
    candidate.SetInputScaleSlopes({1.0});
    candidate.SetInputScaleIntercepts({0.0});
    candidate.SetOutputScaleSlope(2.0);
    ASSERT_EQ(candidate.SetRSAndWeights(surfaces, {1.0}, true), 0);
    std::vector<std::vector<double>> rows = {{0.25}, {0.75}};
    candidate.SetCrossValidationData(rows, counts);
    double scale = 0.1;
    candidate.SetDPMinDist(scale);
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOf(candidate, 1), {0.1, 0.5, 0.9}, 3));
  }
}

// The value of a linear basis surface with one sample is its output. A sum that marks a hole gets
// the value of the evaluator.
TEST(PreparedModel, RecordsOfOneSampleOrTermOrNoFamily) {
  CLBFData basis;
  CQRSData regression;
  for (CRSData* const record : std::initializer_list<CRSData*>{&basis, &regression}) {
    MakeReady(*record, 1, {{0.5}}, {3.0});
    record->OutputScaleSlope = 2.0;
  }
  ConstTerm hole;
  const double mark = -9e99;
  hole.SetParamVal(1, &mark);
  RegTerm* terms[] = {&hole};
  regression.SetRegTerm(terms, 1);
  // A record of no family has no evaluator: its status is 1.
  CRSData none;
  MakeReady(none, 1, {{0.5}}, {3.0});
  for (const CRSData* const record :
       std::initializer_list<const CRSData*>{&basis, &regression, &none}) {
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOf(*record), {0.1, 0.5, 0.9}, 3));
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
