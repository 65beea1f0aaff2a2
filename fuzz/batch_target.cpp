#include <cmath>
#include <map>

#include "model_inputs.h"
#include "pxrom/batch.h"
#include "targets.h"

namespace fuzz {

namespace {

using namespace Tarvane::Plexura::PXROM;

// A NaN is as good as another.
bool Equal(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void ComparePoint(const CDiscreteCombinations& model, const NamedInts& discrete,
                  const NamedValues& continuous, const CPreparedModel& prepared) {
  Require(prepared.InputIDs().size() == continuous.size(), "a row has all continuous inputs");
  const std::map<std::string, double> byID(continuous.begin(), continuous.end());
  std::vector<double> point;
  for (const std::string& id : prepared.InputIDs()) {
    const auto input = byID.find(id);
    Require(input != byID.end(), "an input of a row is one of the model's");
    point.push_back(input->second);
  }
  const std::size_t count = prepared.OutputIDs().size();
  std::vector<double> values(count);
  std::vector<int> statuses(count);
  Require(prepared.Evaluate(point.data(), 1, PrecisionExact, values.data(), nullptr,
                            statuses.data()) == 0,
          "a prepared model answers");
  NamedValues outputs;
  const int status = model.Evaluate(discrete, continuous, outputs);
  bool allGood = true;
  for (const int one : statuses) allGood = allGood && one == 0;
  Require(allGood == (status == 0), "a prepared model succeeds where its model does");
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    Require(outputs[i].first == prepared.OutputIDs()[i] && statuses[i] == 0 &&
                Equal(outputs[i].second, values[i]),
            "a prepared model has the same values");
  }

  std::vector<double> errors(count);
  prepared.Evaluate(point.data(), 1, PrecisionExact, values.data(), errors.data(), statuses.data());
  NamedValues plainErrors;
  const int plain =
      CDiscreteCombinations(model).Evaluate(discrete, continuous, outputs, plainErrors);
  if (plain == 0) {
    for (std::size_t i = 0; i < count; ++i) {
      Require(statuses[i] == 0 && Equal(plainErrors[i].second, errors[i]),
              "a prepared model has the same errors");
    }
  }
  prepared.Evaluate(point.data(), 1, PrecisionFast, values.data(), errors.data(), statuses.data());

  std::vector<double> lower(count);
  std::vector<double> upper(count);
  std::vector<int> inUnits(count);
  Require(prepared.EvaluateWithUnits(point.data(), 1, PrecisionExact,
                                     {values.data(), errors.data(), lower.data(), upper.data(),
                                      nullptr, inUnits.data()}) == 0,
          "a prepared model answers in units");
  for (std::size_t i = 0; i < count; ++i) {
    Require((inUnits[i] == 0) == !std::isnan(errors[i]), "an error is a number");
    Require(inUnits[i] != 0 || errors[i] >= 0.0, "an error is not negative");
    Require(inUnits[i] != 0 || prepared.ErrorOrigin(i).origin != ErrorNone,
            "an error is somebody's");
  }
  Require(prepared.LocatePoints(point.data(), 1, {inUnits.data(), values.data(), nullptr}) == 0,
          "a prepared model answers where a point is");
  // A gradient takes a number for each input of each output.
  constexpr std::size_t kMostNumbers = std::size_t{1} << 16U;
  if (count * point.size() > kMostNumbers) return;
  std::vector<double> gradients(count * point.size());
  Require(prepared.EvaluateGradients(point.data(), 1, gradients.data(), statuses.data()) == 0,
          "a prepared model answers with derivatives");
}

}  // namespace

void RunBatch(std::string_view data) {
  const ModelInputs inputs(data);
  CDiscreteCombinations model;
  if (!inputs.Read(model)) return;
  const NamedValues continuous = inputs.ContinuousOf(model);
  std::size_t tried = 0;
  for (const auto& combination : *model.GetDiscreteCombinationsIndexingPtr()) {
    if (++tried > inputs.MostCombinations()) break;
    const NamedInts discrete = inputs.DiscreteOf(model, combination.first);
    CPreparedModel prepared;
    std::string reason;
    const int status = CPreparedModel::Prepare(model, discrete, prepared, &reason);
    NamedValues outputs;
    Require(status == 0 || !reason.empty(), "a refusal has a reason");
    Require(status == 0 || model.Evaluate(discrete, continuous, outputs) == 1,
            "what evaluates can be prepared");
    if (status == 0) ComparePoint(model, discrete, continuous, prepared);
  }
}

}  // namespace fuzz
