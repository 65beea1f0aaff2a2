#pragma once

// What the tests of prepared models share: points, and what the evaluators say at them.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "batch/prepared_model_access.h"
#include "pxrom/batch.h"
#include "pxrom/fitting_candidates.h"
#include "support/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {

/// Results of a batch, as the prepared model lays them out.
struct Table {
  explicit Table(std::size_t size) : values(size, -7.0), errors(size, -7.0), statuses(size, -7) {}

  std::vector<double> values;
  std::vector<double> errors;
  std::vector<int> statuses;
};

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Same bits, or both no number.
inline bool AreSame(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

/// The instruction sets that this machine has.
inline std::vector<lanes::InstructionSet> InstructionSets() {
  std::vector<lanes::InstructionSet> sets;
  for (const auto set : {lanes::InstructionSet::Portable, lanes::InstructionSet::Avx2,
                         lanes::InstructionSet::Avx512}) {
    if (lanes::FindLanes(set) != nullptr) sets.push_back(set);
  }
  return sets;
}

/// A model of one output "y" with the given candidate, and inputs that sort as x00, x01, ...
inline void FillModel(const CFittingCandidate& candidate, int inputs,
                      CDiscreteCombinations& model) {
  for (int i = 0; i < inputs; ++i) {
    const std::string id = "x" + std::string(i < 10 ? "0" : "") + std::to_string(i);
    model.RegisterParameter(id, CausalityInput, ContinuousNotManufacturable, true);
  }
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  auto list = std::make_unique<CFittingCandidates>();
  list->AddFittingCandidate(candidate);
  ASSERT_EQ(model.RegisterDiscreteCombination({}, {{"y", list.release()}}), 0);
}

inline void FillModel(const CRSData& surface, CDiscreteCombinations& model) {
  CFittingCandidates list;
  ASSERT_EQ(list.GenerateCandidateFromCRSData(&surface), 0);
  FillModel(*list.GetEvaluationCandidatePtr(), surface.NumberOfInputVariables, model);
}

inline CPreparedModel Prepared(const CDiscreteCombinations& model) {
  CPreparedModel prepared;
  std::string reason;
  EXPECT_EQ(CPreparedModel::Prepare(model, {}, prepared, &reason), 0) << reason;
  return prepared;
}

/// The evaluator's answers to the one combination `outputs`, each on a fresh copy.
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

inline void ExpectSame(const Table& got, const Table& want, bool withErrors) {
  for (std::size_t at = 0; at < want.values.size(); ++at) {
    ASSERT_EQ(got.statuses[at], want.statuses[at]) << "at " << at;
    ASSERT_PRED2(AreSame, got.values[at], want.values[at]) << "at " << at;
    if (withErrors) {
      ASSERT_PRED2(AreSame, got.errors[at], want.errors[at]) << "at " << at;
    }
  }
}

/// Both modes and forms, and all instruction sets, against the evaluators.
inline void ExpectAsEvaluated(const CPreparedModel& model,
                              const CDiscreteCombinations::OutputsByID& outputs,
                              const std::vector<double>& points, std::size_t rows) {
  for (const bool withErrors : {false, true}) {
    const Table want = Expected(outputs, points, rows, withErrors);
    std::vector<double> largest(2 * outputs.size(), 0.0);
    for (std::size_t at = 0; at < want.values.size(); ++at) {
      double& value = largest[at % outputs.size()];
      double& error = largest[outputs.size() + at % outputs.size()];
      if (std::isfinite(want.values[at])) value = std::max(value, std::fabs(want.values[at]));
      if (std::isfinite(want.errors[at])) error = std::max(error, std::fabs(want.errors[at]));
    }
    for (const auto set : InstructionSets()) {
      SCOPED_TRACE("instruction set " + std::to_string(static_cast<int>(set)) +
                   (withErrors ? " with errors" : ""));
      const CPreparedModel prepared = PreparedModelAccess::With(model, set);
      Table got(want.values.size());
      double* const errors = withErrors ? got.errors.data() : nullptr;
      ASSERT_EQ(prepared.Evaluate(points.data(), rows, PrecisionExact, got.values.data(), errors,
                                  got.statuses.data()),
                0);
      ASSERT_NO_FATAL_FAILURE(ExpectSame(got, want, withErrors));

      Table fast(want.values.size());
      ASSERT_EQ(prepared.Evaluate(points.data(), rows, PrecisionFast, fast.values.data(),
                                  withErrors ? fast.errors.data() : nullptr, fast.statuses.data()),
                0);
      EXPECT_EQ(fast.statuses, want.statuses);
      for (std::size_t at = 0; at < want.values.size(); ++at) {
        const std::size_t output = at % outputs.size();
        const auto isNear = [](double a, double b, double tolerance) {
          return AreSame(a, b) || std::fabs(a - b) <= tolerance;
        };
        ASSERT_PRED3(isNear, fast.values[at], want.values[at], 1e-11 * largest[output])
            << "at " << at;
        if (!withErrors) continue;
        ASSERT_PRED3(isNear, fast.errors[at], want.errors[at],
                     1e-11 * largest[outputs.size() + output])
            << "at " << at;
      }
    }
  }
}

}  // namespace Tarvane::Plexura::PXROM::tests
