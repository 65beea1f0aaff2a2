#pragma once

#include <optional>
#include <string>
#include <vector>

#include "assignments.h"
#include "model_file.h"
#include "pxrom/batch.h"
#include "pxrom/evaluation_cost.h"

namespace pxrom_command {

/// One output at one point.
struct PredictedOutput {
  struct Error {
    double in_unit = 0.0;
    double lower = 0.0;
    double upper = 0.0;
    double raw = 0.0;
  };
  /// An input that lies outside the range of the samples.
  struct Outside {
    std::string input;
    double value = 0.0;
    double lowest = 0.0;
    double highest = 0.0;
  };

  std::string id;
  double value = 0.0;
  std::optional<Error> error;
  Tarvane::Plexura::PXROM::CErrorOrigin origin;
  /// Nothing if the model does not hold the samples.
  std::optional<bool> inside;
  /// To the nearest sample, in typical spacings.
  std::optional<double> distance;
  std::vector<Outside> outside;
};

/// Whose error it is, in words: "cross-validation", "its 2 surfaces", "surface 2 of 3 only".
std::string WhoseError(const Tarvane::Plexura::PXROM::CErrorOrigin& origin);

/// The place of points among the samples of the outputs, of which many have the same samples.
class SampleLocator {
 public:
  SampleLocator() = default;
  explicit SampleLocator(const Tarvane::Plexura::PXROM::CPreparedModel& model);

  /// For each row of `points` and each output of Count: as CPreparedModel::LocatePoints.
  struct Places {
    std::vector<int> inside;
    std::vector<double> distances;
    std::vector<signed char> sides;
  };
  Places Locate(const double* points, std::size_t rows) const;

  /// The number of outputs that differ in their samples.
  std::size_t Count() const { return model_.OutputIDs().size(); }
  /// Which of them has the samples of output number `output` of the model.
  std::size_t PlaceOf(std::size_t output) const { return places_[output]; }
  const Tarvane::Plexura::PXROM::CPreparedModel& OutputsThatDiffer() const { return model_; }

 private:
  Tarvane::Plexura::PXROM::CPreparedModel model_;
  std::vector<std::size_t> places_;
};

/// The outputs of the combination of `point`, which exists.
const Model::OutputsByID& OutputsAt(const Model& model, const Point& point);

/// Refusal when a point of the combination of `point` costs more than `limit`.
void RequireWithin(const Tarvane::Plexura::PXROM::CEvaluationLimit& limit, const Model& model,
                   const Point& point);

/// Every output at `point`, by ID. Refusal when the library can't evaluate one of them, or when
/// that would cost more than `limit`.
std::vector<PredictedOutput> Predict(const Model& model, const Point& point,
                                     const Tarvane::Plexura::PXROM::CEvaluationLimit& limit);

}  // namespace pxrom_command
