#include "prediction.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

using Values = std::vector<std::pair<std::string, double>>;

/// The library does not name the output that fails, but it stops there: the first output without a
/// value.
[[noreturn]] void RefuseOutput(const Model::OutputsByID& outputs, const Values& done,
                               const Point& point) {
  std::string culprit;
  for (const auto& [id, candidates] : outputs) {
    culprit = id;
    if (done.empty() || id > done.back().first) break;
  }
  const std::string combination = point.CombinationText();
  throw Refusal("the library can't evaluate the output " + Quoted(culprit) +
                (combination.empty() ? "" : " of " + combination) +
                ": one of its surfaces is damaged, stopped or not ready");
}

}  // namespace

const Model::OutputsByID& OutputsAt(const Model& model, const Point& point) {
  const auto position = model.GetDiscreteCombinationsIndexingPtr()->at(point.Combination());
  return model.GetOutputsWrtDiscCombPtr()->at(static_cast<std::size_t>(position));
}

std::string WhoseError(const pxrom::CErrorOrigin& origin) {
  std::string whose;
  if (origin.origin == pxrom::ErrorFromCrossValidation) {
    whose = "cross-validation";
  } else if (origin.origin == pxrom::ErrorFromAllSurfaces) {
    whose = origin.surfaces == 1 ? "its surface"
                                 : "its " + std::to_string(origin.surfaces) + " surfaces";
  } else if (origin.origin == pxrom::ErrorFromOneSurface) {
    whose = "surface " + std::to_string(origin.surface + 1) + " of " +
            std::to_string(origin.surfaces) + " only";
  }
  return whose + (origin.firstOrder ? ", first order" : "");
}

SampleLocator::SampleLocator(const pxrom::CPreparedModel& model) {
  std::vector<std::string> ids;
  std::vector<std::size_t> place_of(model.OutputIDs().size());
  for (std::size_t o = 0; o < place_of.size(); ++o) {
    const std::size_t first = model.FirstWithSamplesOf(o);
    if (first == o) {
      place_of[o] = ids.size();
      ids.push_back(model.OutputIDs()[o]);
    }
    places_.push_back(place_of[first]);
  }
  model.Select(ids, model_);
}

SampleLocator::Places SampleLocator::Locate(const double* points, std::size_t rows) const {
  Places places;
  places.inside.resize(rows * Count());
  places.distances.resize(places.inside.size());
  places.sides.resize(places.inside.size() * model_.InputIDs().size());
  model_.LocatePoints(points, rows,
                      {places.inside.data(), places.distances.data(), places.sides.data()});
  return places;
}

void RequireWithin(const pxrom::CEvaluationLimit& limit, const Model& model, const Point& point) {
  pxrom::CEvaluationCost cost;
  std::string reason;
  const bool isKnown =
      pxrom::CPreparedModel::EstimateCost(model, point.discrete, cost, &reason) == 0;
  if (isKnown && CheckEvaluationCost(cost, limit, &reason) == 0) return;
  throw Refusal(reason + " --limit sets it.");
}

std::vector<PredictedOutput> Predict(const Model& model, const Point& point,
                                     const pxrom::CEvaluationLimit& limit) {
  RequireWithin(limit, model, point);
  const Model::OutputsByID& outputs = OutputsAt(model, point);
  Values values;
  if (model.Evaluate(point.discrete, point.continuous, values) != 0) {
    RefuseOutput(outputs, values, point);
  }

  pxrom::CPreparedModel prepared;
  std::string reason;
  if (pxrom::CPreparedModel::Prepare(model, point.discrete, prepared, &reason) != 0) {
    throw Refusal("the library can't prepare the model: " + reason);
  }
  // Both lists of outputs are by ID.
  const std::size_t count = values.size();
  const std::size_t inputs = prepared.InputIDs().size();
  std::vector<double> x;
  for (const auto& [name, value] : point.continuous) x.push_back(value);
  std::vector<double> errors(count), lower(count), upper(count), raw(count);
  std::vector<int> statuses(count);
  prepared.EvaluateWithUnits(
      x.data(), 1, pxrom::PrecisionExact,
      {nullptr, errors.data(), lower.data(), upper.data(), raw.data(), statuses.data()});
  const SampleLocator locator(prepared);
  const SampleLocator::Places places = locator.Locate(x.data(), 1);
  std::vector<std::vector<PredictedOutput::Outside>> outside(locator.Count());
  for (std::size_t k = 0; k < locator.Count(); ++k) {
    std::vector<double> lowest;
    std::vector<double> highest;
    locator.OutputsThatDiffer().SampleRanges(k, lowest, highest);
    for (std::size_t i = 0; i < inputs; ++i) {
      if (places.sides[k * inputs + i] == 0) continue;
      outside[k].push_back({prepared.InputIDs()[i], x[i], lowest[i], highest[i]});
    }
  }

  std::vector<PredictedOutput> predicted;
  for (std::size_t o = 0; o < count; ++o) {
    PredictedOutput output;
    output.id = values[o].first;
    output.value = values[o].second;
    output.origin = prepared.ErrorOrigin(o);
    if (statuses[o] == 0) output.error = {errors[o], lower[o], upper[o], raw[o]};
    const std::size_t place = locator.PlaceOf(o);
    if (places.inside[place] >= 0) output.inside = places.inside[place] == 1;
    if (!std::isnan(places.distances[place])) output.distance = places.distances[place];
    output.outside = outside[place];
    predicted.push_back(std::move(output));
  }
  return predicted;
}

}  // namespace pxrom_command
