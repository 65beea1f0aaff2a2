#pragma once

// What the tests of prepared models share: points, and the results of the evaluators there.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "batch/prepared_model_access.h"
#include "kernels/loops/loop_table.h"
#include "pxrom/batch.h"
#include "pxrom/fitting_candidates.h"
#include "support/model_files.h"
#include "support/source_path.h"
#include "support/surfaces.h"
#include "support/test_models.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {

/// Results of a batch, as the prepared model lays them out.
struct Table {
  explicit Table(std::size_t size) : values(size, -7.0), errors(size, -7.0), statuses(size, -7) {}

  std::vector<double> values;
  std::vector<double> errors;
  std::vector<int> statuses;
};

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The instruction sets that this machine has.
inline std::vector<simd::InstructionSet> InstructionSets() {
  std::vector<simd::InstructionSet> sets;
  for (const simd::InstructionSet set : simd::kInstructionSets) {
    if (kernels::FindLoops(set) != nullptr) sets.push_back(set);
  }
  return sets;
}

/// A model of one output "y" with the given candidate, and inputs that sort as x00, x01, ...
inline CDiscreteCombinations ModelOf(const CFittingCandidate& candidate, int inputs) {
  CDiscreteCombinations model;
  for (int i = 0; i < inputs; ++i) {
    const std::string id = "x" + std::string(i < 10 ? "0" : "") + std::to_string(i);
    model.RegisterParameter(id, CausalityInput, ContinuousNotManufacturable, true);
  }
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  EXPECT_EQ(model.RegisterDiscreteCombination({}, {{"y", ListOf(candidate)}}), 0);
  return model;
}

inline CDiscreteCombinations ModelOf(const CRSData& surface) {
  return ModelOf(CandidateOf(surface), surface.NumberOfInputVariables);
}

/// Calls `check` with each model that was fitted to data.
template <class Check>
void ForEachFittedModel(Check check) {
  int models = 0;
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("tests/data/models"))) {
    if (!entry.is_directory()) continue;
    SCOPED_TRACE(entry.path().filename().string());
    CDiscreteCombinations model;
    ASSERT_NO_FATAL_FAILURE(ReadModel((entry.path() / "model.pxdb").string(), model));
    ASSERT_NO_FATAL_FAILURE(check(model));
    ++models;
  }
  EXPECT_GE(models, 11);
}

using DiscreteValues = std::vector<std::pair<std::string, int>>;

inline CPreparedModel Prepared(const CDiscreteCombinations& model,
                               const DiscreteValues& discrete = {}) {
  CPreparedModel prepared;
  std::string reason;
  EXPECT_EQ(CPreparedModel::Prepare(model, discrete, prepared, &reason), 0) << reason;
  return prepared;
}

/// The evaluator's results for the combination `outputs`, each on a fresh copy.
inline Table Expected(const CDiscreteCombinations::OutputsByID& outputs,
                      const std::vector<double>& points, std::size_t rows, bool withErrors) {
  const std::size_t inputs = points.size() / rows;
  Table table(rows * outputs.size());
  const CFittingCandidatesEvaluator evaluator;
  std::size_t at = 0;
  for (std::size_t r = 0; r < rows; ++r) {
    const auto* const row = points.data() + r * inputs;
    const std::vector<double> x(row, row + inputs);
    for (const auto& output : outputs) {
      double value = 0.0;
      double error = 0.0;
      int status = 0;
      if (withErrors) {
        const std::unique_ptr<const CFittingCandidates> fresh(output.second->Clone());
        status = evaluator.EvaluateResponseSurfaceCandidate(*fresh, x, value, error);
      } else {
        status = evaluator.EvaluateResponseSurfaceCandidate(*output.second, x, value);
      }
      table.values[at] = status == 1 ? kNaN : value;
      table.errors[at] = status == 0 ? error : kNaN;
      table.statuses[at++] = status;
    }
  }
  return table;
}

/// Compares both modes and forms, and all instruction sets, with the evaluators: the same bits, or
/// in the fast mode numbers within 1e-11 of the largest one of their output.
inline void ExpectAsEvaluated(const CPreparedModel& model,
                              const CDiscreteCombinations::OutputsByID& outputs,
                              const std::vector<double>& points, std::size_t rows) {
  for (const bool withErrors : {false, true}) {
    const Table want = Expected(outputs, points, rows, withErrors);
    const auto expectNumbers = [&](const std::vector<double>& got,
                                   const std::vector<double>& wanted, double tolerance) {
      std::vector<double> largest(outputs.size(), 0.0);
      for (std::size_t at = 0; at < wanted.size(); ++at) {
        double& top = largest[at % outputs.size()];
        if (std::isfinite(wanted[at])) top = std::max(top, std::fabs(wanted[at]));
      }
      for (std::size_t at = 0; at < wanted.size(); ++at) {
        const double allowed = tolerance * largest[at % outputs.size()];
        const auto isNear = [=](double a, double b) {
          return SameBits(a, b) || (tolerance > 0.0 && std::fabs(a - b) <= allowed);
        };
        ASSERT_PRED2(isNear, got[at], wanted[at]) << "at " << at;
      }
    };
    for (const auto set : InstructionSets()) {
      const CPreparedModel prepared = PreparedModelAccess::With(model, set);
      for (const E_PrecisionMode mode : {PrecisionExact, PrecisionFast}) {
        SCOPED_TRACE(testing::Message() << "instruction set " << static_cast<int>(set) << ", mode "
                                        << mode << (withErrors ? ", with errors" : ""));
        const double tolerance = mode == PrecisionExact ? 0.0 : 1e-11;
        Table got(want.values.size());
        ASSERT_EQ(prepared.Evaluate(points.data(), rows, mode, got.values.data(),
                                    withErrors ? got.errors.data() : nullptr, got.statuses.data()),
                  0);
        ASSERT_EQ(got.statuses, want.statuses);
        ASSERT_NO_FATAL_FAILURE(expectNumbers(got.values, want.values, tolerance));
        if (!withErrors) continue;
        ASSERT_NO_FATAL_FAILURE(expectNumbers(got.errors, want.errors, tolerance));
      }
    }
  }
}

/// The same of a model's only combination.
inline void ExpectAsEvaluated(const CDiscreteCombinations& model, const std::vector<double>& points,
                              std::size_t rows) {
  ExpectAsEvaluated(Prepared(model), model.GetOutputsWrtDiscCombPtr()->front(), points, rows);
}

inline std::vector<double> ValuesOf(const CPreparedModel& model,
                                    const std::vector<double>& points) {
  const std::size_t rows = points.size() / model.InputIDs().size();
  std::vector<double> values(rows * model.OutputIDs().size());
  EXPECT_EQ(model.Evaluate(points.data(), rows, PrecisionExact, values.data(), nullptr, nullptr),
            0);
  return values;
}

/// Compares each derivative at a point with a difference of values, over a step that is too small a
/// part of the input's range to meet a kink often.
inline void ExpectGradientsAreDifferences(const CPreparedModel& model,
                                          const std::vector<double>& point,
                                          const std::vector<double>& ranges) {
  const std::size_t inputs = point.size();
  const std::size_t outputs = model.OutputIDs().size();
  std::vector<double> gradients(outputs * inputs);
  std::vector<int> statuses(outputs, -7);
  ASSERT_EQ(model.EvaluateGradients(point.data(), 1, gradients.data(), statuses.data()), 0);
  EXPECT_EQ(statuses, std::vector<int>(outputs, 0));
  const std::vector<double> values = ValuesOf(model, point);
  for (std::size_t i = 0; i < inputs; ++i) {
    std::vector<double> pair = point;
    pair.insert(pair.end(), point.begin(), point.end());
    pair[i] -= 1e-5 * ranges[i];
    pair[inputs + i] += 1e-5 * ranges[i];
    const std::vector<double> ends = ValuesOf(model, pair);
    for (std::size_t o = 0; o < outputs; ++o) {
      const double want = (ends[outputs + o] - ends[o]) / (pair[inputs + i] - pair[i]);
      const double scale = std::fabs(want) + std::fabs(values[o]) / ranges[i];
      EXPECT_NEAR(gradients[o * inputs + i], want, 1e-5 * scale)
          << model.OutputIDs()[o] << " by " << model.InputIDs()[i];
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM::tests
