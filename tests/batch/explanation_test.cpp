#include "pxrom/explanation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using Named = std::vector<std::pair<std::string, double>>;

const std::vector<std::pair<std::string, int>> kSteel = {{"Material", 1}, {"Holes", 2}};

class Explanation : public testing::Test {
 protected:
  Explanation() { ReadModel(SourcePath("examples/beam.pxdb"), model_); }

  CExplanation At(const Named& point) const {
    CExplanation explanation;
    std::string reason;
    EXPECT_EQ(ExplainPoint(model_, kSteel, point, 3, explanation, reason), 0) << reason;
    return explanation;
  }
  double ValueAt(const Named& point, const std::string& output) const {
    Named values;
    EXPECT_EQ(model_.Evaluate(kSteel, point, values), 0);
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const auto& named) { return named.first == output; });
    return found == values.end() ? std::nan("") : found->second;
  }

  CDiscreteCombinations model_;
  const Named point_ = {{"L", 1.5}, {"b", 45.0}, {"h", 90.0}, {"F", 3000.0}};
};

TEST_F(Explanation, HasSharesThatAddUpToTheValue) {
  for (const COutputExplanation& output : At(point_).outputs) {
    SCOPED_TRACE(output.id);
    double sum = 0.0;
    for (const CSurfaceExplanation& surface : output.surfaces) sum += surface.share;
    EXPECT_NEAR(sum, output.value, 1e-12 * std::fabs(output.value));
    EXPECT_EQ(output.value, ValueAt(point_, output.id));
  }
}

TEST_F(Explanation, HasTheEffectOfOnePercentOfTheBounds) {
  const CExplanation explanation = At(point_);
  const auto length = std::find(explanation.inputs.begin(), explanation.inputs.end(), "L");
  ASSERT_NE(length, explanation.inputs.end());
  const auto place = static_cast<std::size_t>(length - explanation.inputs.begin());
  for (const COutputExplanation& output : explanation.outputs) {
    SCOPED_TRACE(output.id);
    // L lies between 1 and 2.
    Named below = point_;
    Named above = point_;
    below[0].second -= 0.005;
    above[0].second += 0.005;
    const double change = ValueAt(above, output.id) - ValueAt(below, output.id);
    EXPECT_NEAR(output.inputs[place].onePercent, change, 1e-3 * std::fabs(change));
  }
}

TEST_F(Explanation, ListsTheSamplesByTheirDistance) {
  for (const COutputExplanation& output : At(point_).outputs) {
    SCOPED_TRACE(output.id);
    ASSERT_EQ(output.nearest.size(), 3u);
    EXPECT_NEAR(output.nearest[0].distance, output.distance, 1e-12);
    EXPECT_LE(output.nearest[0].distance, output.nearest[1].distance);
    EXPECT_LE(output.nearest[1].distance, output.nearest[2].distance);
  }
}

TEST_F(Explanation, FindsASampleAtItself) {
  const CExplanation explanation = At(point_);
  const CSampleExplanation& sample = explanation.outputs[0].nearest[0];
  Named there;
  for (std::size_t k = 0; k < explanation.inputs.size(); ++k) {
    there.emplace_back(explanation.inputs[k], sample.point[k]);
  }
  const COutputExplanation output = At(there).outputs[0];
  EXPECT_EQ(output.nearest[0].distance, 0.0);
  EXPECT_EQ(output.nearest[0].measured, sample.measured);
}

TEST_F(Explanation, HasOnePredictionForEachFold) {
  const CExplanation explanation = At(point_);
  EXPECT_EQ(explanation.outputs[0].folds.size(), 5u);
  EXPECT_TRUE(explanation.outputs[1].folds.empty()) << "mass has no cross-validation data";
  for (const double fold : explanation.outputs[0].folds) {
    EXPECT_NEAR(fold, explanation.outputs[0].value, 0.05 * explanation.outputs[0].value);
  }
}

TEST_F(Explanation, RefusesPointsThatDoNotFit) {
  CExplanation explanation;
  explanation.inputs = {"kept"};
  std::string reason;
  EXPECT_EQ(ExplainPoint(model_, {{"Material", 1}}, point_, 3, explanation, reason), 1);
  EXPECT_EQ(ExplainPoint(model_, kSteel, {{"L", 1.5}}, 3, explanation, reason), 1);
  EXPECT_EQ(reason, "a point names each of its 4 inputs once");
  Named other = point_;
  other[0].first = "l";
  EXPECT_EQ(ExplainPoint(model_, kSteel, other, 3, explanation, reason), 1);
  EXPECT_EQ(reason, "the point has no value for \"L\"");
  CEvaluationLimit limit;
  limit.operations = 1;
  EXPECT_EQ(ExplainPoint(model_, kSteel, point_, 3, explanation, reason, limit), 1);
  EXPECT_EQ(explanation.inputs, std::vector<std::string>{"kept"});
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
