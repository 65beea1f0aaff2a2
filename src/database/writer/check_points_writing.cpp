#include <random>
#include <utility>
#include <vector>

#include "model/check_answers.h"
#include "model/ensemble_cost.h"
#include "pxrom/check_points.h"
#include "pxrom/inspection.h"
#include "text/check_points.h"

namespace Tarvane::Plexura::PXROM {

namespace {

class OpenModel : public CDiscreteCombinations {
 public:
  using CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank;
};

/// From 0 to below 1, the same on any machine.
double Drawn(std::mt19937_64& random) {
  constexpr unsigned kDropped = 11;
  constexpr double kStep = 0x1p-53;
  return static_cast<double>(random() >> kDropped) * kStep;
}

/// The bounds of the inputs of a point.
struct Range {
  std::string id;
  double lower = 0.0;
  double upper = 1.0;
};

std::vector<Range> RangesOf(const CDiscreteCombinations& model) {
  std::vector<Range> ranges;
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    if (!model.IsContinuous(id)) continue;
    Range range;
    range.id = id;
    const auto lower = model.ListLowerBound({id});
    const auto upper = model.ListUpperBound({id});
    if (!lower.empty() && !upper.empty() && lower[0].second < upper[0].second) {
      range.lower = lower[0].second;
      range.upper = upper[0].second;
    }
    ranges.push_back(std::move(range));
  }
  return ranges;
}

}  // namespace

int AddCheckPoints(std::string& text, std::size_t perCombination, const CEvaluationLimit& limit,
                   std::string& reason) {
  constexpr std::size_t kMost = 1000000;
  std::string result = text.substr(0, reading::FindCheckPoints(text).begin);
  if (!result.empty() && result.back() != '\n') result += '\n';
  OpenModel model;
  if (ReadExplainedPXROMDatabase(result, model, reason) != 0) return 1;

  const auto& indexing = *model.GetDiscreteCombinationsIndexingPtr();
  if (perCombination > kMost / indexing.size()) {
    reason = "there would be more than " + std::to_string(kMost) + " check points";
    return 1;
  }
  const std::vector<Range> ranges = RangesOf(model);
  std::mt19937_64 random;
  std::vector<reading::CheckPoint> points;
  for (const auto& [key, position] : indexing) {
    const auto& outputs = (*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(position)];
    if (CheckEvaluationCost(CostOf(outputs).OfEvaluation(), limit, &reason) != 0) return 1;
    for (std::size_t n = 0; n < perCombination; ++n) {
      std::vector<std::pair<std::string, double>> named;
      for (const Range& range : ranges) {
        const double part = Drawn(random);
        named.emplace_back(range.id, (1.0 - part) * range.lower + part * range.upper);
      }
      reading::CheckPoint point;
      point.key = key;
      model.PickAndSortValuesWrtParameterRegistrationRank(named, point.point);
      point.answers = AnswersAt(outputs, point.point);
      points.push_back(std::move(point));
    }
  }
  reading::AppendCheckPoints(points, result);
  text = std::move(result);
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
