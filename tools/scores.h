#pragma once

#include <string>
#include <utility>
#include <vector>

#include "pxrom/validation.h"
#include "validation.h"

namespace pxrom_command {

// The scores of a validation as people see them, in the terminal and on a page.

/// The headings of scores, all of numbers.
const std::vector<std::string>& ScoreHeadings();

/// The cells below the headings; "-" for a score that is undefined.
std::vector<std::string> ScoreCells(const Tarvane::Plexura::PXROM::CPredictionScores& scores);

/// One line of the table of scores.
struct ScoreLine {
  std::string output;
  std::string combination;
  std::vector<std::string> cells;
  std::string unit;
};

/// For each output a line for all rows, and one for each combination if there are several. `units`
/// has one for each output.
std::vector<ScoreLine> ScoreLinesOf(const Validation& validation,
                                    const std::vector<std::string>& units);

/// "Holes=2, Material=1"
std::string TextOf(const std::vector<std::pair<std::string, int>>& discrete);

constexpr const char* kScoresLegend =
    "Mean error and largest are those of absolute differences; bias is the mean of predicted minus "
    "measured.";

}  // namespace pxrom_command
