#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/batch.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/export.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// One surface of an ensemble at a point.
struct CSurfaceExplanation {
  E_DataType type = DT_RSData;
  /// The family in words: "Kriging".
  std::string family;
  double weight = 0.0;
  /// What the surface predicts on its own, in the unit of the output.
  double value = std::numeric_limits<double>::quiet_NaN();
  /// weight * value. Where the weights add up to 1, the shares add up to the value of the ensemble.
  double share = std::numeric_limits<double>::quiet_NaN();
};

/// One of the samples that are nearest to a point.
struct CSampleExplanation {
  /// In the order of CExplanation::inputs, in physical units.
  std::vector<double> point;
  double measured = 0.0;
  /// As LocatePoints gives it (batch.h), in units of the typical spacing of the samples; NaN where
  /// there is no typical spacing.
  double distance = std::numeric_limits<double>::quiet_NaN();
};

/// One input of an output at a point.
struct CInputExplanation {
  /// The derivative of the value, in physical units; NaN where the value has no derivative.
  double gradient = std::numeric_limits<double>::quiet_NaN();
  /// The change of the value, to first order, for a change of one percent of the range of the
  /// input: of its bounds or, without bounds, of its samples.
  double onePercent = std::numeric_limits<double>::quiet_NaN();
  /// The range of the samples; NaN where the model holds none.
  double lowest = std::numeric_limits<double>::quiet_NaN();
  double highest = std::numeric_limits<double>::quiet_NaN();
  /// -1 if the input lies below this range, 1 if above, else 0.
  int side = 0;
};

/// What one output says at a point, and why.
struct COutputExplanation {
  std::string id;
  /// Value, error and interval as EvaluateWithUnits gives them, with its status.
  int status = 1;
  double value = std::numeric_limits<double>::quiet_NaN();
  double error = std::numeric_limits<double>::quiet_NaN();
  double lower = std::numeric_limits<double>::quiet_NaN();
  double upper = std::numeric_limits<double>::quiet_NaN();
  CErrorOrigin origin;
  /// 1 inside the ranges of the samples, 0 outside, -1 if the model does not hold them.
  int inside = -1;
  double distance = std::numeric_limits<double>::quiet_NaN();
  std::vector<CSurfaceExplanation> surfaces;
  /// What the ensemble predicts without each of its folds, in the unit of the output; empty without
  /// cross-validation data.
  std::vector<double> folds;
  std::vector<CInputExplanation> inputs;
  /// The nearest first; empty where the ensemble holds no samples.
  std::vector<CSampleExplanation> nearest;
};

/// Why a model predicts what it predicts at one point.
struct CExplanation {
  std::vector<std::string> inputs;
  std::vector<double> point;
  std::vector<COutputExplanation> outputs;
};

/// Explains one point: each enabled discrete and continuous input named once, in any order. At most
/// `samples` of the nearest samples are listed for each output; samples at one distance in the
/// order of the database. 0 with `out` replaced; 1 with it untouched and a sentence in `reason`: a
/// name, a number of names or the combination does not fit, or a point costs more than `limit`.
/// Exceptions: std::bad_alloc only. Threads: no shared state; nothing may change the model.
PXROM_API int ExplainPoint(const CDiscreteCombinations& model,
                           const std::vector<std::pair<std::string, int>>& discreteValues,
                           const std::vector<std::pair<std::string, double>>& continuousValues,
                           std::size_t samples, CExplanation& out, std::string& reason,
                           const CEvaluationLimit& limit = CEvaluationLimit());

}  // namespace Tarvane::Plexura::PXROM
