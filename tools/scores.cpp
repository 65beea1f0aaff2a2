#include "scores.h"

#include <cmath>

#include "assignments.h"
#include "numbers.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

std::string ScoreCell(double score) {
  constexpr int kDigits = 4;
  return std::isnan(score) ? "-" : Shown(score, kDigits);
}

/// "67 %, 95 %, 100 %", and of how many rows if some have no error.
std::string WithinCell(const pxrom::CPredictionScores& scores) {
  if (scores.withError == 0) return "-";
  std::string text;
  for (const std::size_t count : scores.within) {
    constexpr double kPercent = 100.0;
    constexpr int kDigits = 3;
    const double part = static_cast<double>(count) / static_cast<double>(scores.withError);
    text += (text.empty() ? "" : ", ") + Shown(kPercent * part, kDigits) + " %";
  }
  if (scores.withError < scores.count) text += " of " + Counted(scores.withError, "row");
  return text;
}

}  // namespace

const std::vector<std::string>& ScoreHeadings() {
  static const std::vector<std::string> headings = {
      "Rows", "R2", "RMSE", "Mean error", "Largest", "Bias", "Within 1, 2, 3 errors"};
  return headings;
}

std::vector<std::string> ScoreCells(const pxrom::CPredictionScores& scores) {
  return {std::to_string(scores.count),
          ScoreCell(scores.r2),
          ScoreCell(scores.rmse),
          ScoreCell(scores.meanAbsoluteError),
          ScoreCell(scores.largestAbsoluteError),
          ScoreCell(scores.bias),
          WithinCell(scores)};
}

std::vector<ScoreLine> ScoreLinesOf(const Validation& validation,
                                    const std::vector<std::string>& units) {
  std::vector<ScoreLine> lines;
  for (std::size_t o = 0; o < validation.outputs.size(); ++o) {
    const ValidatedOutput& output = validation.outputs[o];
    const bool several = output.parts.size() > 1;
    std::string combination = "all";
    if (!several) combination = output.parts.empty() ? "" : TextOf(output.parts.front().discrete);
    lines.push_back({output.id, combination, ScoreCells(output.scores), units[o]});
    if (!several) continue;
    for (const ValidatedOutput::Part& part : output.parts) {
      lines.push_back({"", TextOf(part.discrete), ScoreCells(part.scores), ""});
    }
  }
  return lines;
}

std::string TextOf(const std::vector<std::pair<std::string, int>>& discrete) {
  Point point;
  point.discrete = discrete;
  return point.CombinationText();
}

}  // namespace pxrom_command
