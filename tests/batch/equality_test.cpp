// A prepared model gives the results of the evaluators, to the last bit or within the fast mode's
// tolerance, with every instruction set of this machine.

#include <gtest/gtest.h>

#include <algorithm>

#include "batch/batch_cases.h"
#include "pxrom/kriging.h"

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
  for (int round = 0; round < 360; ++round) {
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
