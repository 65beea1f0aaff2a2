#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assignments.h"
#include "model_file.h"
#include "pxrom/fitting_candidates.h"

namespace pxrom_command {

/// Where a predicted error is to be read.
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

/// Every output at `point`, by ID. Refusal when the library can't evaluate one of them.
///
/// Errors are asked for output by output, so that one surface without a predictor error costs no
/// other output its own.
std::vector<PredictedOutput> Predict(const Model& model, const Point& point);

}  // namespace pxrom_command
