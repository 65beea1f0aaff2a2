#pragma once

// What the tests of the kernel and local surfaces share.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

using Matrix = std::vector<std::vector<double>>;
using Vector = std::vector<double>;

constexpr double kUntouched = -12345.5;

inline bool SameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

/// The numbers of tests/data/kernel_local, which were computed without this library.
inline const nlohmann::json& Reference() {
  static const nlohmann::json reference = nlohmann::json::parse(
      std::ifstream(PXROM_TEST_DATA "/kernel_local/reference.json", std::ios::binary));
  return reference;
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
                          const std::string& why) {
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

/// Expects that a sound record evaluates, and that each damage of the family and each that all
/// families share is refused.
template <class Record>
void ExpectEachRefused(const CRSEvaluator& evaluator, const Record& sound, const Vector& x,
                       const std::vector<Damage<Record>>& damages) {
  ASSERT_FALSE(std::isnan(Value(evaluator, sound, x)));
  std::vector<Damage<Record>> all = damages;
  all.push_back({"not ready", [](Record& r) { r.ReadyForEvaluation = false; }});
  all.push_back({"stopped", [](Record& r) { r.Stopped = true; }});
  all.push_back({"other inputs", [](Record& r) { ++r.NumberOfInputVariables; }});
  all.push_back({"negative inputs", [](Record& r) { r.NumberOfInputVariables = -1; }});
  all.push_back({"negative samples", [](Record& r) { r.NumberOfSamples = -1; }});
  all.push_back({"fewer rows", [](Record& r) { r.InputSamples.pop_back(); }});
  all.push_back({"a short row", [](Record& r) { r.InputSamples.back().pop_back(); }});
  all.push_back({"a long row", [](Record& r) { r.InputSamples.front().push_back(0.0); }});
  for (const Damage<Record>& damage : all) {
    Record record = sound;
    damage.apply(record);
    ExpectRefused(evaluator, &record, x, damage.why);
  }
  ExpectRefused(evaluator, nullptr, x, "no record");
  CRSData other;
  other.NumberOfInputVariables = static_cast<int>(x.size());
  other.ReadyForEvaluation = true;
  ExpectRefused(evaluator, &other, x, "a record of another family");
  // What these families do not offer.
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&sound, x, y, error), 1);
  EXPECT_TRUE(y == 0.0 && error == 0.0);
  Vector gradient = {kUntouched};
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&sound, x, gradient), 1);
  EXPECT_EQ(gradient, Vector{kUntouched});
}

}  // namespace Tarvane::Plexura::PXROM
