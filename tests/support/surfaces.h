#pragma once

// What the tests of all surfaces share: comparison to the last bit, reference numbers, refusals,
// and a reader with its parts open.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "pxrom/database_reader.h"
#include "pxrom/rs_evaluator.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {

using Vector = std::vector<double>;
using Matrix = std::vector<Vector>;

/// What outputs hold before a call that must not touch them.
constexpr double kUntouched = -12345.5;

/// A NaN's sign is the compiler's.
inline bool SameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

inline bool SameBits(const Vector& a, const Vector& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](double p, double q) { return SameBits(p, q); });
}

/// Numbers that were computed without this library: a file of tests/data.
inline nlohmann::json ReferenceData(const char* file) {
  return nlohmann::json::parse(std::ifstream(SourcePath(std::string("tests/data/") + file)));
}

/// Sets an enumeration from reference data, also to an unknown number.
template <class Enum>
void Take(const nlohmann::json& number, Enum& target) {
  target = static_cast<Enum>(number.get<int>());
}

/// Makes a record ready, without any scaling.
inline void MakeReady(CRSData& record, int inputs, const Matrix& samples = {},
                      const Vector& outputs = {}) {
  record.NumberOfInputVariables = inputs;
  record.NumberOfSamples = static_cast<int>(samples.size());
  record.InputSamples = samples;
  record.OutputSamples = outputs;
  record.InputScaleSlopes.assign(static_cast<std::size_t>(inputs), 1.0);
  record.InputScaleIntercepts.assign(static_cast<std::size_t>(inputs), 0.0);
  record.OutputScaleSlope = 1.0;
  record.ReadyForEvaluation = true;
}

inline double Value(const CRSEvaluator& evaluator, const CRSData& record, const Vector& x) {
  double y = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&record, x, y), 0);
  return y;
}

/// Expects status 1 with nothing touched, in the form with errors too for families that have them.
inline void ExpectRefused(const CRSEvaluator& evaluator, const CRSData* record, const Vector& x,
                          const char* why, bool hasErrors = false) {
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(record, x, y), 1) << why;
  if (hasErrors) {
    EXPECT_EQ(evaluator.EvaluateResponseSurface(record, x, y, error), 1) << why;
  }
  EXPECT_EQ(y, kUntouched) << why;
  EXPECT_EQ(error, kUntouched) << why;
}

/// One way to break a record.
template <class Record>
struct Damage {
  const char* why;
  void (*apply)(Record&);
};

/// Expects that an evaluator's clone evaluates a sound record, and refuses each damage and those
/// that all families share.
template <class Record>
void ExpectEachRefused(const CRSEvaluator& cloned, const Record& sound, const Vector& x,
                       std::vector<Damage<Record>> damages, bool hasErrors = false) {
  const std::unique_ptr<const CRSEvaluator> own(cloned.Clone());
  const CRSEvaluator& evaluator = *own;
  ASSERT_FALSE(std::isnan(Value(evaluator, sound, x)));
  damages.push_back({"not ready", [](Record& r) { r.ReadyForEvaluation = false; }});
  damages.push_back({"stopped", [](Record& r) { r.Stopped = true; }});
  damages.push_back({"other inputs", [](Record& r) { ++r.NumberOfInputVariables; }});
  damages.push_back({"negative inputs", [](Record& r) { r.NumberOfInputVariables = -1; }});
  for (const Damage<Record>& damage : damages) {
    Record record = sound;
    damage.apply(record);
    ExpectRefused(evaluator, &record, x, damage.why, hasErrors);
  }
  ExpectRefused(evaluator, nullptr, x, "no record", hasErrors);
  CRSData other;
  MakeReady(other, static_cast<int>(x.size()));
  ExpectRefused(evaluator, &other, x, "a record of another family", hasErrors);
  const std::unique_ptr<CRSData> clone(sound.Clone());
  EXPECT_EQ(Value(evaluator, *clone, x), Value(evaluator, sound, x));
  EXPECT_EQ(clone->ResetData(), 0);
  ExpectRefused(evaluator, clone.get(), {}, "an empty record", hasErrors);
}

/// A reader of one text, with its protected operations open.
class OpenReader : public CReaderPXROMDatabase {
 public:
  explicit OpenReader(std::string text) { ReadDataStream(text); }
  using CReaderPXROMDatabase::CatchKeyValue;
  using CReaderPXROMDatabase::ResumeFittingCandidates;
  using CReaderPXROMDatabase::ResumeKrigingData;
  using CReaderPXROMDatabase::ResumeKrigingDataPredictorError;
  using CReaderPXROMDatabase::ResumeLBFData;
  using CReaderPXROMDatabase::ResumeMLSData;
  using CReaderPXROMDatabase::ResumeParameterRegistry;
  using CReaderPXROMDatabase::ResumeQRSData;
  using CReaderPXROMDatabase::ResumeQRSDataPredictorError;
  using CReaderPXROMDatabase::ResumeSVRData;
};

}  // namespace Tarvane::Plexura::PXROM
