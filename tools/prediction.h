#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assignments.h"
#include "model_file.h"
#include "pxrom/evaluation_cost.h"
#include "pxrom/fitting_candidates.h"

namespace pxrom_command {

/// The space of a predicted error.
enum class ErrorSpace {
  Physical,  ///< from cross-validation data: in the output's unit
  Scaled,    ///< as a surface reports it: in the scaled space of the ensemble or of that surface
};

struct PredictedOutput {
  std::string id;
  double value = 0.0;
  std::optional<double> error;
  ErrorSpace error_space = ErrorSpace::Physical;
};

ErrorSpace ErrorSpaceOf(const Tarvane::Plexura::PXROM::CFittingCandidates& candidates);

/// The outputs of the combination of `point`, which exists.
const Model::OutputsByID& OutputsAt(const Model& model, const Point& point);

/// Refusal when a point of the combination of `point` costs more than `limit`.
void RequireWithin(const Tarvane::Plexura::PXROM::CEvaluationLimit& limit, const Model& model,
                   const Point& point);

/// Every output at `point`, by ID. Refusal when the library can't evaluate one of them, or when
/// that would cost more than `limit`.
///
/// Computes the errors output by output, so that a surface without a predictor error does not
/// affect the errors of other outputs.
std::vector<PredictedOutput> Predict(const Model& model, const Point& point,
                                     const Tarvane::Plexura::PXROM::CEvaluationLimit& limit);

}  // namespace pxrom_command
