#pragma once

// What the tests of the kernel and local surfaces share.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

using Matrix = std::vector<std::vector<double>>;
using Vector = std::vector<double>;

constexpr double kUntouched = -12345.5;

inline bool SameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

/// The numbers of tests/data/kernel_local, which were computed without this library.
inline const nlohmann::json& Reference(const char* kind) {
  static const auto reference =
      nlohmann::json::parse(std::ifstream(PXROM_TEST_DATA "/kernel_local/reference.json"));
  return reference.at(kind);
}

/// Takes an enumeration out of the reference data.
template <class Enum>
void Take(const nlohmann::json& number, Enum& target) {
  target = static_cast<Enum>(number.get<int>());
}

/// The base record of a prediction in the reference data.
template <class Record>
Record RecordFrom(const nlohmann::json& item) {
  Record record;
  record.InputSamples = item["samples"].get<Matrix>();
  record.OutputSamples = item["outputs"].get<Vector>();
  record.NumberOfSamples = static_cast<int>(record.InputSamples.size());
  record.NumberOfInputVariables = static_cast<int>(record.InputSamples[0].size());
  record.InputScaleSlopes = item["slopes"].get<Vector>();
  record.InputScaleIntercepts = item["intercepts"].get<Vector>();
  record.OutputScaleSlope = item["slope"];
  record.OutputScaleIntercept = item["intercept"];
  record.ReadyForEvaluation = true;
  return record;
}

inline double Value(const CRSEvaluator& evaluator, const CRSData& record, const Vector& x) {
  double y = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&record, x, y), 0);
  return y;
}

/// Expects status 1 with the value untouched.
inline void ExpectRefused(const CRSEvaluator& evaluator, const CRSData* record, const Vector& x,
                          const char* why) {
  double y = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(record, x, y), 1) << why;
  EXPECT_EQ(y, kUntouched) << why;
}

/// One way to break a record.
template <class Record>
struct Damage {
  const char* why;
  void (*apply)(Record&);
};

/// Expects that a sound record evaluates, that each damage is refused, those that all families
/// share too, and that there is neither an error nor a derivative.
template <class Record>
void ExpectEachRefused(const CRSEvaluator& evaluator, const Record& sound, const Vector& x,
                       std::vector<Damage<Record>> damages) {
  ASSERT_FALSE(std::isnan(Value(evaluator, sound, x)));
  damages.push_back({"not ready", [](Record& r) { r.ReadyForEvaluation = false; }});
  damages.push_back({"stopped", [](Record& r) { r.Stopped = true; }});
  damages.push_back({"other inputs", [](Record& r) { ++r.NumberOfInputVariables; }});
  damages.push_back({"negative inputs", [](Record& r) { r.NumberOfInputVariables = -1; }});
  damages.push_back({"negative samples", [](Record& r) { r.NumberOfSamples = -1; }});
  damages.push_back({"fewer rows", [](Record& r) { r.InputSamples.pop_back(); }});
  damages.push_back({"a short row", [](Record& r) { r.InputSamples.back().pop_back(); }});
  damages.push_back({"a long row", [](Record& r) { r.InputSamples.front().push_back(0.0); }});
  for (const Damage<Record>& damage : damages) {
    Record record = sound;
    damage.apply(record);
    ExpectRefused(evaluator, &record, x, damage.why);
  }
  ExpectRefused(evaluator, nullptr, x, "no record");
  auto other = RecordFrom<CRSData>(Reference("lbf_predictions")[0]);
  ExpectRefused(evaluator, &other, other.InputSamples[0], "a record of another family");
  const std::unique_ptr<CRSData> clone(sound.Clone());
  EXPECT_EQ(Value(evaluator, *clone, x), Value(evaluator, sound, x));
  EXPECT_EQ(clone->ResetData(), 0);
  ExpectRefused(evaluator, clone.get(), {}, "an empty record");
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&sound, x, y, error), 1);
  EXPECT_TRUE(y == 0.0 && error == 0.0);
  Vector gradient = {kUntouched};
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&sound, x, gradient), 1);
  EXPECT_EQ(gradient, Vector{kUntouched});
}

}  // namespace Tarvane::Plexura::PXROM
