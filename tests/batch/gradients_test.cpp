// Gradients of prepared models: against derivatives that mpmath found to 40 digits, against
// differences of the values over fitted models, and what they are where there is none.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "batch/batch_cases.h"
#include "pxrom/database_reader.h"
#include "pxrom/kriging.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "support/model_files.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

namespace fs = std::filesystem;

struct Gradients {
  std::vector<double> values;
  std::vector<int> statuses;
};

Gradients GradientsOf(const CPreparedModel& model, const std::vector<double>& points) {
  const std::size_t inputs = model.InputIDs().size();
  const std::size_t rows = points.size() / inputs;
  Gradients out;
  out.values.assign(rows * model.OutputIDs().size() * inputs, -7.0);
  out.statuses.assign(rows * model.OutputIDs().size(), -7);
  EXPECT_EQ(model.EvaluateGradients(points.data(), rows, out.values.data(), out.statuses.data()),
            0);
  return out;
}

std::vector<double> ValuesOf(const CPreparedModel& model, const std::vector<double>& points) {
  const std::size_t rows = points.size() / model.InputIDs().size();
  std::vector<double> values(rows * model.OutputIDs().size());
  EXPECT_EQ(model.Evaluate(points.data(), rows, PrecisionExact, values.data(), nullptr, nullptr),
            0);
  return values;
}

TEST(Gradients, AreTheReferencesOfEveryFamilyAndTheEnsemble) {
  std::ifstream file(PXROM_TEST_DATA "/batch/gradients.json");
  const auto reference = nlohmann::json::parse(file);
  std::string text = reference["model"].get<std::string>();
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CDiscreteCombinations model;
  ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0);

  std::vector<double> points;
  for (const auto& row : reference["points"]) points.insert(points.end(), row.begin(), row.end());
  const CPreparedModel prepared = Prepared(model);
  const std::size_t outputs = prepared.OutputIDs().size();
  ASSERT_EQ(outputs, reference["outputs"].size());
  const std::vector<double> values = ValuesOf(prepared, points);
  for (const auto set : InstructionSets()) {
    const Gradients got = GradientsOf(PreparedModelAccess::With(prepared, set), points);
    for (std::size_t o = 0; o < outputs; ++o) {
      const auto& rows = reference["outputs"][prepared.OutputIDs()[o]];
      for (std::size_t r = 0; r < rows.size(); ++r) {
        const std::string& id = prepared.OutputIDs()[o];
        SCOPED_TRACE(id + " at point " + std::to_string(r));
        // The Gram matrices of moving least squares are near singular where few samples weigh.
        const double tolerance = id.rfind("moving", 0) == 0 ? 1e-6 : 2e-10;
        const auto isNear = [tolerance](double a, double b) {
          return std::fabs(a - b) <= tolerance * std::max(1.0, std::fabs(b));
        };
        const std::size_t at = r * outputs + o;
        EXPECT_EQ(got.statuses[at], 0);
        EXPECT_PRED2(isNear, values[at], rows[r]["value"].get<double>());
        for (std::size_t i = 0; i < 2; ++i) {
          EXPECT_PRED2(isNear, got.values[2 * at + i], rows[r]["gradient"][i].get<double>());
        }
      }
    }
  }
}

TEST(Gradients, AreTheDifferencesOfFittedModels) {
  for (const auto& entry : fs::directory_iterator(PXROM_TEST_DATA "/models")) {
    if (!entry.is_directory()) continue;
    SCOPED_TRACE(entry.path().filename().string());
    CDiscreteCombinations model;
    ASSERT_NO_FATAL_FAILURE(ReadModel((entry.path() / "model.pxdb").string(), model));
    Draw draw(11);
    for (const Question& question : QuestionsFor(model, 0.5)) {
      CPreparedModel prepared;
      ASSERT_EQ(CPreparedModel::Prepare(model, question.discrete, prepared), 0);
      const auto& ids = prepared.InputIDs();
      const std::size_t outputs = prepared.OutputIDs().size();
      for (int round = 0; round < 5; ++round) {
        std::vector<double> point;
        std::vector<double> ranges;
        for (const std::string& id : ids) {
          const double lower = model.ListLowerBound({id})[0].second;
          ranges.push_back(model.ListUpperBound({id})[0].second - lower);
          point.push_back(lower + draw.Real(0.1, 0.9) * ranges.back());
        }
        const Gradients got = GradientsOf(prepared, point);
        for (std::size_t i = 0; i < ids.size(); ++i) {
          // A step so small that it hardly meets a kink.
          std::vector<double> pair = point;
          pair.insert(pair.end(), point.begin(), point.end());
          pair[i] -= 1e-5 * ranges[i];
          pair[ids.size() + i] += 1e-5 * ranges[i];
          const double step = pair[ids.size() + i] - pair[i];
          const std::vector<double> ends = ValuesOf(prepared, pair);
          const std::vector<double> values = ValuesOf(prepared, point);
          for (std::size_t o = 0; o < outputs; ++o) {
            const double want = (ends[outputs + o] - ends[o]) / step;
            const double scale = std::fabs(want) + std::fabs(values[o]) / ranges[i];
            EXPECT_EQ(got.statuses[o], 0);
            EXPECT_NEAR(got.values[o * ids.size() + i], want, 1e-5 * scale)
                << prepared.OutputIDs()[o] << " by " << ids[i];
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
