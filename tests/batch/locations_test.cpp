// Where points are relative to samples, against numbers by hand and a literal search.

#include <gtest/gtest.h>

#include <algorithm>

#include "batch/batch_cases.h"
#include "pxrom/constant.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

struct Locations {
  Locations(const CPreparedModel& model, const std::vector<double>& points, std::size_t rows)
      : inside(rows * model.OutputIDs().size(), -7),
        distances(inside.size(), -7.0),
        sides(inside.size() * model.InputIDs().size(), -7) {
    EXPECT_EQ(
        model.LocatePoints(points.data(), rows, {inside.data(), distances.data(), sides.data()}),
        0);
  }

  std::vector<int> inside;
  std::vector<double> distances;
  std::vector<signed char> sides;
};

CPreparedModel ModelWith(const Matrix& samples, int inputs) {
  CConstantData surface;
  MakeReady(surface, inputs, samples);
  return Prepared(ModelOf(surface));
}

TEST(Locations, ByHand) {
  // Scaled by the ranges 4 and 10: (0, 0), (1, 0), (0.5, 1), and a copy of the second. The last
  // input has no range. Distances to the nearest are 1, 1 and sqrt(1.25): the median is 1.
  const CPreparedModel model = ModelWith({{0, 20, 5}, {4, 20, 5}, {2, 30, 5}, {4, 20, 5}}, 3);
  std::vector<double> lower;
  std::vector<double> upper;
  ASSERT_EQ(model.SampleRanges(0, lower, upper), 0);
  EXPECT_EQ(lower, (std::vector<double>{0, 20, 5}));
  EXPECT_EQ(upper, (std::vector<double>{4, 30, 5}));
  const Locations got(model, {2, 22.5, 5, 4, 35, 5, -2, 20, 6, kNaN, 20, 5, 0, HUGE_VAL, 5}, 5);
  EXPECT_EQ(got.inside, (std::vector<int>{1, 0, 0, 0, 0}));
  const std::vector<signed char> sides = {0, 0, 0, 0, 1, 0, -1, 0, 1, 1, 0, 0, 0, 1, 0};
  EXPECT_EQ(got.sides, sides);
  EXPECT_DOUBLE_EQ(got.distances[0], std::sqrt(0.25 + 0.0625));
  EXPECT_DOUBLE_EQ(got.distances[1], std::sqrt(0.25 + 0.25));
  EXPECT_DOUBLE_EQ(got.distances[2], 0.5);
  EXPECT_TRUE(std::isnan(got.distances[3]));
  EXPECT_EQ(got.distances[4], HUGE_VAL);
}

TEST(Locations, WithoutEnoughSamplesAreUnknown) {
  const Locations none(ModelWith({}, 1), {0.5}, 1);
  EXPECT_EQ(none.inside[0], -1);
  EXPECT_TRUE(std::isnan(none.distances[0]));
  const CPreparedModel one = ModelWith({{2}, {2}}, 1);
  const Locations got(one, {2.0, 2.5}, 2);
  EXPECT_EQ(got.inside, (std::vector<int>{1, 0}));
  EXPECT_TRUE(std::isnan(got.distances[0]));
  std::vector<double> lower = {7.0};
  std::vector<double> upper = {8.0};
  EXPECT_EQ(ModelWith({}, 1).SampleRanges(0, lower, upper), 1);
  EXPECT_EQ(one.SampleRanges(1, lower, upper), 1);
  EXPECT_EQ(lower, std::vector<double>{7.0});
  const CPreparedModel noInputs = ModelWith({{}, {}}, 0);
  EXPECT_EQ(Locations(noInputs, {}, 1).inside[0], -1);
}

// Samples of surfaces alone are in the scaled space of the ensemble.
TEST(Locations, OfSurfacesAreScaledBack) {
  CConstantData surface;
  MakeReady(surface, 1, {{-1}, {0.5}, {1}});
  CFittingCandidate candidate = CandidateOf(surface);
  candidate.SetInputSamples({});
  candidate.SetInputScaleSlopes({0.1});
  candidate.SetInputScaleIntercepts({-0.3});
  const CPreparedModel model = Prepared(ModelOf(candidate, 1));
  std::vector<double> lower;
  std::vector<double> upper;
  ASSERT_EQ(model.SampleRanges(0, lower, upper), 0);
  EXPECT_DOUBLE_EQ(lower[0], -7.0);
  EXPECT_DOUBLE_EQ(upper[0], 13.0);
  // The largest sample is inside, whatever the scaling makes of its last digits.
  const Locations got(model, {13.0, 13.0000001, -7.0}, 3);
  EXPECT_EQ(got.inside, (std::vector<int>{1, 0, 1}));
}

/// Word by word, over all samples.
std::vector<double> LiteralDistances(Matrix rows, Matrix points) {
  const std::size_t d = rows[0].size();
  for (std::size_t i = 0; i < d; ++i) {
    double low = rows[0][i];
    double high = low;
    for (const Vector& row : rows) {
      low = std::min(low, row[i]);
      high = std::max(high, row[i]);
    }
    for (Vector& row : rows) row[i] = (row[i] - low) / (high - low);
    for (Vector& row : points) row[i] = (row[i] - low) / (high - low);
  }
  const auto distance = [d](const Vector& a, const Vector& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < d; ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
    return std::sqrt(sum);
  };
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  std::vector<double> nearest;
  const std::size_t asked = std::min<std::size_t>(rows.size(), 1024);
  for (std::size_t k = 0; k < asked; ++k) {
    const std::size_t own = k * rows.size() / asked;
    double least = HUGE_VAL;
    for (std::size_t r = 0; r < rows.size(); ++r) {
      if (r != own) least = std::min(least, distance(rows[own], rows[r]));
    }
    nearest.push_back(least);
  }
  std::sort(nearest.begin(), nearest.end());
  const std::size_t half = nearest.size() / 2;
  const double spacing =
      nearest.size() % 2 == 1 ? nearest[half] : (nearest[half - 1] + nearest[half]) / 2.0;
  std::vector<double> distances;
  for (const Vector& point : points) {
    double least = HUGE_VAL;
    for (const Vector& row : rows) least = std::min(least, distance(point, row));
    distances.push_back(least / spacing);
  }
  return distances;
}

TEST(Locations, AreThoseOfALiteralSearch) {
  for (const int samples : {2, 33, 70, 1500}) {
    SCOPED_TRACE(samples);
    Draw draw(static_cast<std::uint32_t>(samples));
    const int inputs = draw.Int(1, 4);
    Matrix rows;
    for (int r = 0; r < samples; ++r) rows.push_back(draw.Reals(inputs, -2, 5));
    if (samples > 2) rows[1] = rows[0];
    Matrix points;
    std::vector<double> flat;
    for (int r = 0; r < 37; ++r) {
      points.push_back(draw.Reals(inputs, -4, 7));
      flat.insert(flat.end(), points.back().begin(), points.back().end());
    }
    const CPreparedModel model = ModelWith(rows, inputs);
    const std::vector<double> want = LiteralDistances(rows, points);
    for (const auto set : InstructionSets()) {
      // Each set finds the spacing anew, in a model of its own.
      const CPreparedModel fresh = PreparedModelAccess::With(ModelWith(rows, inputs), set);
      EXPECT_EQ(Locations(fresh, flat, points.size()).distances, want);
    }
  }
}

TEST(Locations, CountAndAreLimited) {
  CConstantData surface;
  MakeReady(surface, 1, {{1}, {2}, {3}});
  const CDiscreteCombinations few = ModelOf(surface);
  MakeReady(surface, 1, Matrix(1000, {1}));
  const CDiscreteCombinations many = ModelOf(surface);
  const std::uint64_t enough = Prepared(few).LocationCost().operations;
  EXPECT_GT(Prepared(many).LocationCost().operations, enough + 1000);
  EXPECT_GE(Prepared(many).Cost().bytes, Prepared(few).Cost().bytes + 997 * sizeof(double));
  CPreparedModel limited;
  CEvaluationLimit limit;
  limit.operations = enough;
  ASSERT_EQ(CPreparedModel::Prepare(many, {}, limited, nullptr, limit), 0);
  const double point = 1.0;
  int inside = -7;
  std::string reason;
  EXPECT_EQ(limited.LocatePoints(&point, 1, {&inside, nullptr, nullptr}, &reason), 1);
  EXPECT_NE(reason, "");
  EXPECT_EQ(inside, -7);
  EXPECT_EQ(CPreparedModel().LocatePoints(&point, 1, {&inside, nullptr, nullptr}), 1);
  EXPECT_EQ(Prepared(few).LocatePoints(nullptr, 1, {&inside, nullptr, nullptr}), 1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
