// Gradients of prepared models: against derivatives that mpmath found to 40 digits, and against
// differences of the values over fitted models.

#include <gtest/gtest.h>

#include "batch/batch_cases.h"
#include "families/gaussian_process/gaussian_process_fields.h"
#include "pxrom/constant.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

TEST(Gradients, AreTheReferencesOfEveryFamilyAndTheEnsemble) {
  const auto reference = ReferenceData("batch/gradients.json");
  CDiscreteCombinations model;
  ASSERT_EQ(Read(reference["model"], model), 0);

  std::vector<double> points;
  for (const auto& row : reference["points"]) points.insert(points.end(), row.begin(), row.end());
  const CPreparedModel prepared = Prepared(model);
  const std::size_t outputs = prepared.OutputIDs().size();
  ASSERT_EQ(outputs, reference["outputs"].size());
  const std::vector<double> values = ValuesOf(prepared, points);
  for (const auto set : InstructionSets()) {
    std::vector<double> gradients(2 * values.size(), -7.0);
    std::vector<int> statuses(values.size(), -7);
    ASSERT_EQ(PreparedModelAccess::With(prepared, set)
                  .EvaluateGradients(points.data(), values.size() / outputs, gradients.data(),
                                     statuses.data()),
              0);
    for (std::size_t at = 0; at < values.size(); ++at) {
      const std::string& id = prepared.OutputIDs()[at % outputs];
      const auto& wanted = reference["outputs"][id][at / outputs];
      SCOPED_TRACE(id + " at point " + std::to_string(at / outputs));
      // The matrices of moving least squares are nearly singular where few samples have weight.
      const double tolerance = id.rfind("moving", 0) == 0 ? 1e-6 : 2e-10;
      const auto isNear = [tolerance](double a, double b) {
        return std::fabs(a - b) <= tolerance * std::max(1.0, std::fabs(b));
      };
      EXPECT_EQ(statuses[at], 0);
      EXPECT_PRED2(isNear, values[at], wanted["value"].get<double>());
      for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_PRED2(isNear, gradients[2 * at + i], wanted["gradient"][i].get<double>());
      }
    }
  }
}

TEST(Gradients, AreTheReferencesOfGaussianProcesses) {
  for (const auto& each : ReferenceData("gaussian_process/predictions.json")) {
    const std::string text = each["text"];
    reading::DatabaseText whole(text);
    reading::AttributeRange range(whole, {0, text.size() - 1});
    CGaussianProcessData record;
    ASSERT_EQ(FamilyOf<CGaussianProcessData>::family.resume(range, &record), 0);
    const CPreparedModel prepared = Prepared(ModelOf(record));
    for (std::size_t i = 0; i < each["x"].size(); ++i) {
      const Vector x = each["x"][i];
      const Vector want = each["gradient"][i];
      Vector gradient(2);
      ASSERT_EQ(prepared.EvaluateGradients(x.data(), 1, gradient.data(), nullptr), 0);
      for (std::size_t k = 0; k < 2; ++k) {
        EXPECT_NEAR(gradient[k], want[k], 1e-10 * std::max(1.0, std::fabs(want[k])));
      }
    }
  }
}

TEST(Gradients, OfAStoppedSurfaceAreNaN) {
  CConstantData record;
  MakeReady(record, 2, {{0.5, 0.5}}, {1.0});
  record.Stopped = true;
  const double point[] = {0.5, 0.5};
  double gradient[] = {-7.0, -7.0};
  int status = -7;
  EXPECT_EQ(Prepared(ModelOf(record)).EvaluateGradients(point, 1, gradient, &status), 0);
  EXPECT_EQ(status, 1);
  EXPECT_TRUE(std::isnan(gradient[0]));
  EXPECT_TRUE(std::isnan(gradient[1]));
}

TEST(Gradients, AreTheDifferencesOfFittedModels) {
  ForEachFittedModel([](const CDiscreteCombinations& model) {
    Draw draw(11);
    for (const Question& question : QuestionsFor(model, 0.5)) {
      const CPreparedModel prepared = Prepared(model, question.discrete);
      for (int round = 0; round < 5; ++round) {
        std::vector<double> point;
        std::vector<double> ranges;
        for (const std::string& id : prepared.InputIDs()) {
          const double lower = model.ListLowerBound({id})[0].second;
          ranges.push_back(model.ListUpperBound({id})[0].second - lower);
          point.push_back(lower + draw.Real(0.1, 0.9) * ranges.back());
        }
        ASSERT_NO_FATAL_FAILURE(ExpectGradientsAreDifferences(prepared, point, ranges));
      }
    }
  });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
