#include "validation_section.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "html.h"
#include "html_table.h"
#include "numbers.h"
#include "scores.h"
#include "wording.h"

namespace pxrom_command {

namespace {

// Sizes in pixels.
constexpr double kSide = 220.0;
constexpr double kLeft = 60.0;
constexpr double kTop = 8.0;
constexpr double kBelow = 36.0;

std::string Pixels(double at) {
  constexpr int kDigits = 5;
  return Shown(at, kDigits);
}

/// Both axes of a picture, which have the same range.
class Axis {
 public:
  explicit Axis(const std::vector<MeasuredPair>& pairs) {
    for (const MeasuredPair& pair : pairs) {
      low_ = std::min({low_, pair.measured, pair.predicted});
      high_ = std::max({high_, pair.measured, pair.predicted});
    }
  }
  double Low() const { return low_; }
  double High() const { return high_; }
  double X(double value) const { return kLeft + Part(value) * kSide; }
  double Y(double value) const { return kTop + (1.0 - Part(value)) * kSide; }

 private:
  /// From 0 to 1; halves, since the range may be larger than a double.
  double Part(double value) const {
    const double width = high_ / 2 - low_ / 2;
    return width > 0.0 ? std::clamp((value / 2 - low_ / 2) / width, 0.0, 1.0) : 0.5;
  }

  double low_ = std::numeric_limits<double>::max();
  double high_ = std::numeric_limits<double>::lowest();
};

std::string SvgText(double x, double y, const char* anchor, const std::string& text) {
  return "<text x=\"" + Pixels(x) + "\" y=\"" + Pixels(y) + "\" text-anchor=\"" + anchor + "\">" +
         Escaped(text) + "</text>";
}

std::string PointsSvg(const std::vector<MeasuredPair>& pairs, const Axis& axis) {
  std::string bars;
  std::string dots;
  for (const MeasuredPair& pair : pairs) {
    const std::string x = Pixels(axis.X(pair.measured));
    if (std::isfinite(pair.error)) {
      const double reach = std::fabs(pair.error);
      bars += 'M' + x + ' ' + Pixels(axis.Y(pair.predicted - reach)) + 'V' +
              Pixels(axis.Y(pair.predicted + reach));
    }
    std::string title = "line " + std::to_string(pair.line) + ": measured " + Shown(pair.measured) +
                        ", predicted " + Shown(pair.predicted);
    const std::string combination = TextOf(pair.discrete);
    if (!combination.empty()) title += " at " + combination;
    dots += "<circle cx=\"" + x + "\" cy=\"" + Pixels(axis.Y(pair.predicted)) +
            "\" r=\"3\"><title>" + Escaped(title) + "</title></circle>\n";
  }
  return "<path class=\"errors\" d=\"" + bars + "\"/>\n" + dots;
}

std::string Picture(const ValidatedOutput& output, const std::string& unit) {
  const Axis axis(output.pairs);
  const double bottom = kTop + kSide;
  const double below = bottom + 14.0;
  const std::string name = output.id + (unit.empty() ? "" : " in " + unit);
  const std::size_t left_out = output.scores.count - output.pairs.size();
  std::string svg = "<figure>\n<figcaption>" + Escaped(name) +
                    (left_out == 0 ? "" : ", without the last " + Counted(left_out, "row")) +
                    "</figcaption>\n<svg width=\"" + Pixels(kLeft + kSide + kTop) + "\" height=\"" +
                    Pixels(bottom + kBelow) + "\" role=\"img\" aria-label=\"" +
                    Escaped(name + ": predicted over measured values") + "\">\n";
  svg += "<rect class=\"frame\" x=\"" + Pixels(kLeft) + "\" y=\"" + Pixels(kTop) + "\" width=\"" +
         Pixels(kSide) + "\" height=\"" + Pixels(kSide) + "\"/>\n";
  svg += "<line class=\"equal\" x1=\"" + Pixels(kLeft) + "\" y1=\"" + Pixels(bottom) + "\" x2=\"" +
         Pixels(kLeft + kSide) + "\" y2=\"" + Pixels(kTop) + "\"/>\n";
  svg += PointsSvg(output.pairs, axis);
  constexpr int kDigits = 4;
  const std::string low = Shown(axis.Low(), kDigits);
  const std::string high = Shown(axis.High(), kDigits);
  svg += SvgText(kLeft, below, "start", low) + SvgText(kLeft + kSide, below, "end", high) +
         SvgText(kLeft - 4, bottom, "end", low) + SvgText(kLeft - 4, kTop + 10, "end", high) +
         SvgText(kLeft + kSide / 2, below + 16, "middle", "measured") +
         SvgText(kLeft - 4, kTop + kSide / 2, "end", "predicted");
  return svg + "\n</svg>\n</figure>\n";
}

}  // namespace

std::string ValidationSection(const ReportedValidation& reported) {
  const Validation& validation = reported.validation;
  std::string pictures;
  for (std::size_t o = 0; o < validation.outputs.size(); ++o) {
    if (!validation.outputs[o].pairs.empty()) {
      pictures += Picture(validation.outputs[o], reported.units[o]);
    }
  }
  HtmlTable::Row heads = {{"Output", ""}, {"Combination", ""}};
  for (const std::string& heading : ScoreHeadings()) heads.push_back({heading, "number"});
  heads.push_back({"Unit", ""});
  HtmlTable table("Scores", heads);
  for (const ScoreLine& line : ScoreLinesOf(validation, reported.units)) {
    HtmlTable::Row row = {{line.output, "id"}, {line.combination, ""}};
    for (const std::string& cell : line.cells) row.push_back({cell, "number"});
    row.push_back({line.unit, ""});
    table.Add(row);
  }
  std::string scores;
  table.AppendTo(scores);
  const std::string bad =
      validation.bad == 0 ? "" : ", of which " + std::to_string(validation.bad) + " are bad";
  return Section(
      "validation", "Measured and predicted",
      "<p class=\"note\">" + Escaped(reported.table) + ": " + Counted(validation.rows, "row") +
          bad +
          ". On the line both agree; bars are predicted errors to both sides, where they "
          "are in the unit of the output.</p>\n<div class=\"validated\">\n" +
          pictures + "</div>\n" + scores + "<p class=\"note\">" + kScoresLegend + "</p>\n");
}

}  // namespace pxrom_command
