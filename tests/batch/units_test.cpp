// Errors in the units of outputs, whose they are, and that no value is lost for them.

#include <gtest/gtest.h>

#include "batch/batch_cases.h"
#include "pxrom/constant.h"
#include "pxrom/polynomial.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

/// All results at some points.
struct Units {
  Units(const CPreparedModel& model, const std::vector<double>& points, std::size_t rows,
        E_PrecisionMode mode = PrecisionExact)
      : values(rows * model.OutputIDs().size(), -7.0),
        errors(values),
        lower(values),
        upper(values),
        raw(values),
        statuses(values.size(), -7) {
    EXPECT_EQ(model.EvaluateWithUnits(points.data(), rows, mode,
                                      {values.data(), errors.data(), lower.data(), upper.data(),
                                       raw.data(), statuses.data()}),
              0);
  }

  std::vector<double> values, errors, lower, upper, raw;
  std::vector<int> statuses;
};

/// A surface of one input whose sum is `sum` everywhere, with the standard error `error`.
CPolynomialData Sum(double sum, double error, E_QRSTransformationType back = TransformNone) {
  CPolynomialData surface;
  MakeReady(surface, 1);
  surface.VariableInputs = {0};
  surface.Degrees = {0};
  surface.Coefficients = {sum};
  surface.SavePredictorError = true;
  surface.Covariance = {{error * error}};
  surface.OutputTransformType = back;
  return surface;
}

CConstantData ConstantOf(double value) {
  CConstantData surface;
  MakeReady(surface, 1);
  surface.SetConstantValue(value);
  return surface;
}

/// An ensemble with the output scaling -0.5 y + 3, in which surfaces are counted with weights.
CFittingCandidate Turned(const std::vector<std::pair<const CRSData*, double>>& surfaces) {
  CFittingCandidate candidate = CandidateOf(*surfaces.front().first);
  candidate.ResetData();
  for (const auto& [surface, weight] : surfaces) candidate.AddRSAndWeight(surface, weight);
  candidate.SetInputScaleSlopes({1.0});
  candidate.SetInputScaleIntercepts({0.0});
  candidate.SetOutputScaleSlope(-0.5);
  candidate.SetOutputScaleIntercept(3.0);
  return candidate;
}

void ExpectOrigin(const CErrorOrigin& got, E_ErrorOrigin origin, std::size_t surface,
                  std::size_t surfaces, bool firstOrder) {
  EXPECT_EQ(got.origin, origin);
  EXPECT_EQ(got.surface, surface);
  EXPECT_EQ(got.surfaces, surfaces);
  EXPECT_EQ(got.firstOrder, firstOrder);
}

TEST(ErrorsInUnits, OfAllSurfacesAddUpByTheirWeights) {
  const CPolynomialData first = Sum(2.0, 0.5);
  const CPolynomialData second = Sum(1.0, 0.25);
  const CConstantData unused = ConstantOf(9.0);
  const CPreparedModel model =
      Prepared(ModelOf(Turned({{&first, 2.0}, {&unused, 0.0}, {&second, -4.0}}), 1));
  ExpectOrigin(model.ErrorOrigin(0), ErrorFromAllSurfaces, 0, 3, false);
  const Units got(model, {0.0}, 1);
  // (2 * 2 - 4 * 1 - 3) / -0.5 and (2 * 0.5 + 4 * 0.25) / 0.5.
  EXPECT_EQ(got.statuses[0], 0);
  EXPECT_EQ(got.values[0], 6.0);
  EXPECT_EQ(got.errors[0], 4.0);
  EXPECT_EQ(got.lower[0], 2.0);
  EXPECT_EQ(got.upper[0], 10.0);
  EXPECT_EQ(got.raw[0], 0.25);
}

TEST(ErrorsInUnits, OfOneSurfaceAreNamedAndNotWeighted) {
  const CPolynomialData first = Sum(2.0, 0.5);
  const CConstantData silent = ConstantOf(1.0);
  const CPreparedModel model = Prepared(ModelOf(Turned({{&silent, 0.25}, {&first, 0.75}}), 1));
  ExpectOrigin(model.ErrorOrigin(0), ErrorFromOneSurface, 1, 2, false);
  const Units got(model, {0.0}, 1);
  EXPECT_EQ(got.statuses[0], 0);
  EXPECT_EQ(got.values[0], (0.25 + 1.5 - 3.0) / -0.5);
  EXPECT_EQ(got.errors[0], 1.0);
  ExpectOrigin(model.ErrorOrigin(1), ErrorNone, 0, 0, false);
}

// The ends of the interval are those of the sum, exp(1 - 0.2) and exp(1 + 0.2).
TEST(ErrorsInUnits, GoThroughATransformationToFirstOrder) {
  const CPolynomialData surface = Sum(1.0, 0.2, TransformLogE);
  const CPreparedModel model = Prepared(ModelOf(Turned({{&surface, 1.0}}), 1));
  ExpectOrigin(model.ErrorOrigin(0), ErrorFromAllSurfaces, 0, 1, true);
  const Units got(model, {0.0}, 1);
  EXPECT_NEAR(got.errors[0], 0.2 * 2.718281828459045 / 0.5, 1e-15);
  // The scaling turns the interval.
  EXPECT_NEAR(got.lower[0], (3.3201169227365475 - 3.0) / -0.5, 1e-14);
  EXPECT_NEAR(got.upper[0], (2.225540928492468 - 3.0) / -0.5, 1e-14);
}

TEST(ErrorsInUnits, HaveAnEndWhereTheTransformationHasNone) {
  const CPolynomialData nearZero = Sum(0.1, 0.2, TransformExpo);  // back by a logarithm
  const Units open(Prepared(ModelOf(nearZero)), {0.0}, 1);
  EXPECT_NEAR(open.errors[0], 2.0, 1e-15);
  EXPECT_EQ(open.lower[0], -HUGE_VAL);
  EXPECT_NEAR(open.upper[0], std::log(0.3), 1e-15);
  // The square of 0.1 - 0.2 is not below that of 0.1.
  const CPolynomialData square = Sum(0.1, 0.2, TransformSquare);
  const Units bent(Prepared(ModelOf(square)), {0.0}, 1);
  EXPECT_NEAR(bent.lower[0], 0.01 - 0.04, 1e-16);
  EXPECT_NEAR(bent.upper[0], 0.01 + 0.04, 1e-16);
}

TEST(ErrorsInUnits, KeepTheValueOfAFoldThatFails) {
  const CConstantData surface = ConstantOf(5.0);
  CPolynomialData fold = Sum(4.0, 0.0);
  CFittingCandidate candidate = CandidateOf(surface);
  fold.VariableTransformTypes = {TransformBox};  // refuses an input below 0
  fold.VariableLambdas = {0.0};
  fold.VariableTransformValues = {0.0};
  candidate.AddSubRS(&fold);
  Matrix samples = {{1.0}, {2.0}};
  std::vector<int> counts = {2};
  double scale = 1.0;
  candidate.SetCrossValidationData(samples, counts);
  candidate.SetDPMinDist(scale);
  const CPreparedModel model = Prepared(ModelOf(candidate, 1));
  ExpectOrigin(model.ErrorOrigin(0), ErrorFromCrossValidation, 0, 1, false);
  const Units got(model, {-1.0, 3.0}, 2);
  EXPECT_EQ(got.statuses, (std::vector<int>{-2, 0}));
  EXPECT_EQ(got.values, (std::vector<double>{5.0, 5.0}));
  EXPECT_TRUE(std::isnan(got.errors[0]));
  EXPECT_GT(got.errors[1], 0.0);
  EXPECT_EQ(got.upper[1], 5.0 + got.errors[1]);
}

// Against the other forms: values are those without errors, and the raw error is that of Evaluate.
void ExpectUnitsLikeOtherForms(const CPreparedModel& model, const std::vector<double>& points,
                               std::size_t rows) {
  const std::size_t outputs = model.OutputIDs().size();
  Table plain(rows * outputs);
  Table withErrors(rows * outputs);
  model.Evaluate(points.data(), rows, PrecisionExact, plain.values.data(), nullptr,
                 plain.statuses.data());
  model.Evaluate(points.data(), rows, PrecisionExact, withErrors.values.data(),
                 withErrors.errors.data(), withErrors.statuses.data());
  for (const auto set : InstructionSets()) {
    SCOPED_TRACE(testing::Message() << "instruction set " << static_cast<int>(set));
    const Units got(PreparedModelAccess::With(model, set), points, rows);
    for (std::size_t at = 0; at < plain.values.size(); ++at) {
      SCOPED_TRACE(testing::Message() << "at " << at);
      const E_ErrorOrigin origin = model.ErrorOrigin(at % outputs).origin;
      ASSERT_PRED2([](double a, double b) { return SameBits(a, b); }, got.values[at],
                   plain.values[at]);
      ASSERT_EQ(got.statuses[at] == 1, plain.statuses[at] == 1);
      if (origin == ErrorNone) {
        ASSERT_NE(got.statuses[at], 0);
      }
      if (got.statuses[at] != 0 || withErrors.statuses[at] != 0) continue;
      ASSERT_EQ(got.raw[at], withErrors.errors[at]);
      ASSERT_GE(got.errors[at], 0.0);
      if (origin == ErrorFromCrossValidation) {
        ASSERT_EQ(got.errors[at], std::fabs(got.raw[at]));
      }
    }
  }
}

TEST(ErrorsInUnits, LoseNoValueOfRandomModels) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations model;
    RandomModelOptions options;
    options.maxDiscreteInputs = 0;
    FillRandomModel(seed, options, model);
    const CPreparedModel prepared = Prepared(model);
    const std::size_t rows = seed % 2 == 0 ? 5 : 70;
    Draw draw(seed);
    const std::vector<double> points =
        draw.Reals(static_cast<int>(rows * prepared.InputIDs().size()), -1, 9);
    ASSERT_NO_FATAL_FAILURE(ExpectUnitsLikeOtherForms(prepared, points, rows));
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
