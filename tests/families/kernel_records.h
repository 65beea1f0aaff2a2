#pragma once

#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {

inline const nlohmann::json& Reference(const char* kind) {
  static const nlohmann::json reference = ReferenceData("kernel_local/reference.json");
  return reference.at(kind);
}

/// Expects the predictions of `kind`, from records to which `fill` adds what their family knows.
template <class Record>
void ExpectPredictions(const char* kind, const CRSEvaluator& evaluator, double tolerance,
                       void (*fill)(const nlohmann::json&, Record&)) {
  for (const auto& item : Reference(kind)) {
    Record record;
    const Matrix samples = item["samples"];
    MakeReady(record, static_cast<int>(samples[0].size()), samples, item["outputs"]);
    record.InputScaleSlopes = item["slopes"].get<Vector>();
    record.InputScaleIntercepts = item["intercepts"].get<Vector>();
    record.OutputScaleSlope = item["slope"];
    record.OutputScaleIntercept = item["intercept"];
    fill(item, record);
    const double want = item["value"];
    EXPECT_NEAR(Value(evaluator, record, item["x"]), want,
                tolerance * std::fmax(1.0, std::fabs(want)))
        << item;
  }
}

/// Expects that each damage is refused, a missing sample too, and that there is neither an error
/// nor a derivative.
template <class Record>
void ExpectValuesOnly(const CRSEvaluator& evaluator, const Record& sound, const Vector& x,
                      std::vector<Damage<Record>> damages) {
  damages.push_back({"fewer rows", [](Record& r) { r.InputSamples.pop_back(); }});
  ExpectEachRefused(evaluator, sound, x, damages);
  double y = kUntouched;
  double error = kUntouched;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(&sound, x, y, error), 1);
  EXPECT_EQ(y, 0.0);
  EXPECT_EQ(error, 0.0);
  Vector gradient = {kUntouched};
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&sound, x, gradient), 1);
  EXPECT_EQ(gradient, Vector{kUntouched});
}

}  // namespace Tarvane::Plexura::PXROM
