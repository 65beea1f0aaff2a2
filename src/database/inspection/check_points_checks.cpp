// Has the text changed since its check points were written, and does it evaluate to the same here?

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "database/inspection/context.h"
#include "model/check_answers.h"
#include "model/ensemble_cost.h"
#include "pxrom/discrete_combinations.h"
#include "text/check_points.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using reading::CheckAnswer;
using reading::CheckPoint;
using reading::CheckPointsGroup;

const char* const kCheckPointsPath = "CheckPoints";
/// Machines with other C libraries differ by less.
constexpr double kSameAnswers = 1e-12;

void Report(Context& context, E_FindingSeverity severity, E_FindingCode code, std::size_t offset,
            std::string sentence) {
  context.findings.Add(severity, code, {offset, kCheckPointsPath, "", "", ""}, std::move(sentence));
}

/// False if the text is not the one that was written.
bool CheckTransit(Context& context, std::string_view whole, const CheckPointsGroup& group) {
  const std::string_view covered = whole.substr(0, group.covered);
  if (reading::ChecksumOf(covered) == group.checksum) return true;
  if (reading::ChecksumWithoutReturns(covered) == group.checksum) {
    Report(context, SeverityNote, FindingLineEndsChanged, group.begin,
           "the line ends were changed after the text was written, and nothing else");
    return true;
  }
  Report(context, SeverityError, FindingTextChanged, group.begin,
         "the text was changed or damaged after its check points were written: its checksum is "
         "another one");
  return false;
}

/// How far the answers are from those in the text, over all points.
class Differences {
 public:
  void Add(const CheckPoint& point, const std::vector<CheckAnswer>& here) {
    std::vector<Scale>& scales = scales_[point.key];
    scales.resize(here.size());
    for (std::size_t o = 0; o < here.size(); ++o) {
      const CheckAnswer& there = point.answers[o];
      isStatusOther_ = isStatusOther_ || there.status != here[o].status;
      Add(there.value, here[o].value, scales[o].value);
      Add(there.error, here[o].error, scales[o].error);
    }
    ++points_;
  }

  bool AreNone() const { return !isStatusOther_ && !isOther_; }
  std::size_t Points() const { return points_; }
  /// The largest difference, relative to the largest number of the same kind: the values, or the
  /// errors, of one output of a combination. Infinite where one of them is not finite.
  double Largest() const {
    double largest = isStatusOther_ ? HUGE_VAL : 0.0;
    for (const auto& [key, outputs] : scales_) {
      for (const Scale& scale : outputs) {
        largest = std::max({largest, scale.value.Part(), scale.error.Part()});
      }
    }
    return largest;
  }

 private:
  struct Numbers {
    double largest = 0.0;
    double difference = 0.0;
    double Part() const { return difference == 0.0 ? 0.0 : difference / largest; }
  };
  struct Scale {
    Numbers value;
    Numbers error;
  };

  void Add(double there, double here, Numbers& numbers) {
    if (std::isnan(there) && std::isnan(here)) return;
    if (std::isfinite(there)) numbers.largest = std::max(numbers.largest, std::fabs(there));
    if (there == here && std::signbit(there) == std::signbit(here)) return;
    isOther_ = true;
    const double difference = std::fabs(here - there);
    numbers.difference =
        std::isnan(difference) ? HUGE_VAL : std::max(numbers.difference, difference);
  }

  std::map<std::vector<int>, std::vector<Scale>> scales_;
  bool isOther_ = false;
  bool isStatusOther_ = false;
  std::size_t points_ = 0;
};

/// The outputs of the combination of a point, or null if its numbers don't fit the model.
const CDiscreteCombinations::OutputsByID* OutputsFor(const CDiscreteCombinations& model,
                                                     std::size_t inputs, const CheckPoint& point) {
  const auto& indexing = *model.GetDiscreteCombinationsIndexingPtr();
  const auto combination = indexing.find(point.key);
  if (combination == indexing.end() || point.point.size() != inputs) return nullptr;
  const auto& outputs =
      (*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(combination->second)];
  return outputs.size() == point.answers.size() ? &outputs : nullptr;
}

/// Evaluates the points as far as the limit of an inspection allows.
void CheckAnswers(Context& context, const std::string& text, const CheckPointsGroup& group) {
  CDiscreteCombinations model;
  std::string reason;
  if (ReadExplainedPXROMDatabase(text, model, reason) != 0) return;
  const std::size_t inputs = context.registry.continuousInputs.size();
  std::map<const void*, double> costs;
  Differences differences;
  std::size_t notTried = 0;
  for (const CheckPointsGroup::Line& line : group.points) {
    CheckPoint point;
    const auto* const outputs =
        reading::ParseCheckPoint(line.text, point) ? OutputsFor(model, inputs, point) : nullptr;
    if (outputs == nullptr) {
      Report(context, SeverityError, FindingCheckPointsDamaged, line.offset,
             "this check point does not fit the model: its combination, inputs and outputs are not "
             "those of the text");
      return;
    }
    const auto [cost, isNew] = costs.emplace(outputs, 0.0);
    if (isNew) {
      cost->second = static_cast<double>(CostOf(*outputs).OfEvaluation().operations);
      if (NeedsCopies(*outputs)) cost->second += static_cast<double>(text.size());
    }
    if (cost->second > context.workLeft) {
      ++notTried;
      continue;
    }
    context.workLeft -= cost->second;
    differences.Add(point, AnswersAt(*outputs, point.point));
  }
  if (notTried > 0) {
    Report(context, SeverityWarning, FindingNotTried, group.begin,
           Counted(notTried, "check point") + " would take out of proportion long, not tried");
  }
  const std::string points = Counted(differences.Points(), "check point");
  if (differences.Points() == 0) return;
  if (differences.AreNone()) {
    Report(context, SeverityNote, FindingAnswersSame, group.begin,
           points + " gave the same bits here as where the text was written");
  } else if (differences.Largest() <= kSameAnswers) {
    Report(context, SeverityNote, FindingAnswersClose, group.begin,
           points + " gave the same here to 1e-12, but not to the last bit");
  } else {
    Report(context, SeverityError, FindingAnswersDiffer, group.begin,
           points + " gave other answers here than where the text was written");
  }
}

}  // namespace

void CheckCheckPoints(Context& context, std::string_view whole, const std::string& text,
                      const CheckPointsGroup& group) {
  if (group.fault != nullptr) {
    Report(context, SeverityError, FindingCheckPointsDamaged, group.faultAt,
           std::string(group.fault));
    return;
  }
  if (CheckTransit(context, whole, group) && !context.findings.HasErrorIn("")) {
    CheckAnswers(context, text, group);
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
