// A prepared model gives the results of the evaluators, to the last bit or within the fast mode's
// tolerance, with every instruction set of this machine.

#include <gtest/gtest.h>

#include <algorithm>

#include "batch/batch_cases.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "support/rounds.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

/// Rows between the bounds and a little outside; sometimes one that is far away.
std::vector<double> PointsFor(Draw& draw, const CDiscreteCombinations& model,
                              const std::vector<std::string>& ids, std::size_t rows) {
  std::vector<double> points;
  for (std::size_t r = 0; r < rows; ++r) {
    for (const std::string& id : ids) {
      const double lower = model.ListLowerBound({id})[0].second;
      const double upper = model.ListUpperBound({id})[0].second;
      const double reach = draw.Chance(3) ? 1e4 : 0.05;
      points.push_back(lower + draw.Real(-reach, 1.0 + reach) * (upper - lower));
    }
  }
  return points;
}

void ExpectAsEvaluatedAtRandom(const CDiscreteCombinations& model, std::uint32_t seed,
                               std::size_t rows) {
  Draw draw(seed);
  const auto ids = model.ListEnabledDiscreteParameterWrtRegistrationRank();
  for (const auto& [key, place] : *model.GetDiscreteCombinationsIndexingPtr()) {
    DiscreteValues discrete;
    for (std::size_t i = 0; i < ids.size(); ++i) discrete.emplace_back(ids[i], key[i]);
    const CPreparedModel prepared = Prepared(model, discrete);
    const auto& outputs = model.GetOutputsWrtDiscCombPtr()->at(static_cast<std::size_t>(place));
    const std::vector<double> points = PointsFor(draw, model, prepared.InputIDs(), rows);
    ASSERT_NO_FATAL_FAILURE(tests::ExpectAsEvaluated(prepared, outputs, points, rows));
  }
}

TEST(PreparedModel, EvaluatesRandomModelsAsTheModelDoes) {
  // Rows for whole blocks of points and a rest of one or several points.
  const std::size_t rowCounts[] = {1, 33, 32, 70, 3, 9};
  for (std::uint32_t seed = 1; seed <= 120; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations model;
    FillRandomModel(seed, {}, model);
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluatedAtRandom(model, seed, rowCounts[seed % 6]));
  }
}

// More inputs and samples than the random models have, so that loops over samples need several
// parts.
TEST(PreparedModel, EvaluatesAsTheEvaluatorOfEachFamily) {
  const std::vector<E_DataType> families = RandomFamilies();
  for (int round = 0; round < Rounds(360); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Draw draw(static_cast<std::uint32_t>(round));
    const int inputs = draw.Int(1, 6);
    const E_DataType family = families[static_cast<std::size_t>(round) % families.size()];
    const auto surface = RandomSurface(draw, family, inputs, draw.Int(60, 140), true);
    const std::size_t rows = 45;
    std::vector<double> points = draw.Reals(static_cast<int>(rows) * inputs, 0, 1);
    // A point on a sample, and one with a NaN or an infinity.
    std::copy_n(surface->InputSamples[7].begin(), inputs, points.begin() + 3 * inputs);
    points[static_cast<std::size_t>(40 * inputs)] = round % 4 < 2 ? kNaN : HUGE_VAL;
    ASSERT_NO_FATAL_FAILURE(tests::ExpectAsEvaluated(ModelOf(*surface), points, rows));
  }
}

enum class Shape { Full, Triangle, ZerosInPlaces };

void GiveShape(Draw& draw, Shape shape, Matrix& matrix) {
  for (std::size_t r = 0; r < matrix.size() && shape != Shape::Full; ++r) {
    const bool isCut = shape == Shape::Triangle || draw.Chance(30);
    const std::size_t first = shape == Shape::Triangle ? r + 1 : matrix.size() / 2;
    for (std::size_t c = first; isCut && c < matrix.size(); ++c) {
      matrix[r][c] = draw.Chance(50) ? 0.0 : -0.0;
    }
  }
}

// The products of an error take rows, samples and points in pieces. Zeros at the ends of rows are
// left out; they count where a correlation is not finite.
TEST(PreparedModel, EvaluatesErrorsOfAnyNumberOfSamplesAsTheEvaluator) {
  Draw draw(7);
  for (const int samples : {1, 5, 6, 7, 13, 97, 130, 290}) {
    for (const Shape shape : {Shape::Full, Shape::Triangle, Shape::ZerosInPlaces}) {
      SCOPED_TRACE(testing::Message() << samples << " samples, shape " << static_cast<int>(shape));
      const auto surface = RandomSurface(draw, DT_KrigingData, 2, samples, true);
      GiveShape(draw, shape, dynamic_cast<CKrigingData&>(*surface).InvC);
      const auto process = RandomSurface(draw, DT_GaussianProcessData, 2, samples, true);
      const std::size_t rows = samples == 290 ? 270 : 35;
      std::vector<double> points = draw.Reals(static_cast<int>(rows) * 2, 0, 1);
      points[4] = kNaN;
      points[2 * rows - 8] = HUGE_VAL;
      points[2 * rows - 3] = 1e200;
      ASSERT_NO_FATAL_FAILURE(tests::ExpectAsEvaluated(ModelOf(*surface), points, rows));
      ASSERT_NO_FATAL_FAILURE(tests::ExpectAsEvaluated(ModelOf(*process), points, rows));
    }
  }
}

// Errors close to samples are small differences of large numbers. No tolerance would do, so the
// fast mode has none: its bound for them is 0.
TEST(PreparedModel, EvaluatesErrorsOfSurfacesExactlyInTheFastMode) {
  const int inputs = 3;
  const std::size_t rows = 60;
  for (int round = 0; round < Rounds(90); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    Draw draw(static_cast<std::uint32_t>(round));
    const std::vector<E_DataType> families = RandomFamilies();
    const E_DataType family = families[static_cast<std::size_t>(round) % families.size()];
    const auto surface = RandomSurface(draw, family, inputs, 40, true);
    std::vector<double> points;
    for (std::size_t r = 0; r < rows; ++r) {
      const double distance = std::pow(10.0, -0.3 * static_cast<double>(r));
      for (const double x : surface->InputSamples[r % 40]) points.push_back(x + distance);
    }
    const CPreparedModel prepared = Prepared(ModelOf(*surface));
    Table exact(rows);
    Table fast(rows);
    prepared.Evaluate(points.data(), rows, PrecisionExact, exact.values.data(), exact.errors.data(),
                      nullptr);
    prepared.Evaluate(points.data(), rows, PrecisionFast, fast.values.data(), fast.errors.data(),
                      nullptr);
    for (std::size_t r = 0; r < rows; ++r) {
      const auto areSame = [](double a, double b) { return SameBits(a, b); };
      EXPECT_PRED2(areSame, fast.errors[r], exact.errors[r]) << "at " << r;
    }
  }
}

// The fast form of a far centre cancels: all centres count for the bound, not the nearest.
TEST(PreparedModel, EvaluatesAsTheModelDoesNearAFarCentre) {
  CKrigingData record;
  MakeReady(record, 2, {{0.0, 0.0}, {1e4, 1e4}}, {1.0, 2.0});
  record.CorrelationFunctionType = CorrGaussian;
  record.CorrelationKernels = {1.0, 1.0};
  record.CorrelationCoefficients = {1.0, 1.0};
  const CDiscreteCombinations model = ModelOf(record);
  ExpectAsEvaluated(Prepared(model), model.GetOutputsWrtDiscCombPtr()->at(0),
                    {1e4 + 0.3, 1e4 - 0.4}, 1);
}

TEST(PreparedModel, EvaluatesFittedModelsAsTheModelDoes) {
  ForEachFittedModel([](const auto& model) { ExpectAsEvaluatedAtRandom(model, 5, 50); });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
