#include "testing/random_models.h"

#include <algorithm>
#include <string>

namespace Tarvane::Plexura::PXROM::tests {

namespace {

using Lists = std::vector<std::pair<std::string, CFittingCandidates*>>;

// A name may have blanks, signs and letters outside ASCII.
const std::vector<std::string> kNames = {
    "L", "b", "h",     "Load case", "Wand-St\xC3\xA4rke", "x_1",  "x_10",   "T/K", "p (bar)",
    "0", "#", "alpha", "beta",      "Stiffness",          "mass", "stress", "Q=2", "omega",
    "n", "z"};

/// A surface without one of its folds needs enough samples for a full trend.
constexpr int kFewestSamples = 11;

class ModelMaker {
 public:
  ModelMaker(std::uint32_t seed, const RandomModelOptions& options, CDiscreteCombinations& model)
      : draw_(seed), options_(options), model_(model) {}

  void Make() {
    RegisterParameters();
    for (const std::vector<int>& key : Keys()) {
      std::vector<std::pair<std::string, int>> values;
      for (std::size_t i = 0; i < key.size(); ++i) values.emplace_back(discrete_[i], key[i]);
      Lists outputs;
      for (const std::string& id : outputs_) outputs.emplace_back(id, CandidateList());
      model_.RegisterDiscreteCombination(values, outputs);
    }
  }

 private:
  void RegisterParameters() {
    const int discrete = draw_.Int(0, options_.maxDiscreteInputs);
    const int continuous = draw_.Int(1, options_.maxContinuousInputs);
    const int outputs = draw_.Int(1, options_.maxOutputs);
    for (int i = 0; i < discrete; ++i) {
      discrete_.push_back(Register(NextName(), CausalityInput, DiscreteParameter, true));
    }
    for (int i = 0; i < continuous; ++i) {
      const auto type = draw_.Chance(50) ? ContinuousManufacturable : ContinuousNotManufacturable;
      continuous_.push_back(Register(NextName(), CausalityInput, type, true));
    }
    for (int i = 0; i < outputs; ++i) {
      outputs_.push_back(Register(NextName(), CausalityOutput, ContinuousNotManufacturable, true));
    }
    RegisterIdle(NextName(), CausalityInput, DerivedParameter, true);
    RegisterIdle(NextName(), CausalityInput, DiscreteParameter, false);
    RegisterIdle(NextName(), CausalityOutput, ContinuousNotManufacturable, false);
    ShuffleRanks();
  }

  std::string NextName() {
    const auto at = names_.begin() + draw_.Int(0, static_cast<int>(names_.size()) - 1);
    std::string name = *at;
    names_.erase(at);
    return name;
  }

  std::string Register(const std::string& id, E_ParameterCausality causality, E_ParameterType type,
                       bool enabled) {
    model_.RegisterParameter(id, causality, type, enabled);
    const std::string caption = draw_.Chance(70) ? "The " + id + " of it" : "";
    if (model_.IsContinuous(id)) {
      const double lower = draw_.Real(-100, 100);
      const std::string unit = draw_.OneOf<std::string>({"", "mm", "kg/m^3", "-", "1 / s"});
      model_.RegisterParameterExtraInfos(id, "", unit, caption, lower + draw_.Real(0.5, 50), lower);
    } else {
      model_.RegisterParameterExtraInfos(id, "", "", caption, 0, 0);
    }
    return id;
  }

  void RegisterIdle(const std::string& id, E_ParameterCausality causality, E_ParameterType type,
                    bool enabled) {
    if (draw_.Chance(options_.idleParameters)) Register(id, causality, type, enabled);
  }

  // Ranks with gaps and below zero, which do not follow from the IDs or their order.
  void ShuffleRanks() {
    const std::vector<std::string> ids = model_.ListParameterImmutableID();
    std::vector<std::pair<std::string, int>> ranks;
    for (std::size_t i = 0; i < ids.size(); ++i) {
      ranks.emplace_back(ids[i], 3 * static_cast<int>(i) - 7);
    }
    for (std::size_t i = ranks.size(); i > 1; --i) {
      const auto other = static_cast<std::size_t>(draw_.Int(0, static_cast<int>(i) - 1));
      std::swap(ranks[i - 1].second, ranks[other].second);
    }
    model_.SetRegistrationRank(ranks);
  }

  // Some of the combinations, in any order.
  std::vector<std::vector<int>> Keys() {
    std::vector<std::vector<int>> keys = {{}};
    for (std::size_t i = 0; i < discrete_.size(); ++i) {
      std::vector<std::vector<int>> longer;
      for (const std::vector<int>& key : keys) {
        for (const int value : {7, -1, 12}) {
          if (longer.size() >= 2 && draw_.Chance(30)) continue;
          longer.push_back(key);
          longer.back().push_back(value);
        }
      }
      keys = longer;
    }
    std::rotate(keys.begin(), keys.begin() + draw_.Int(0, static_cast<int>(keys.size()) - 1),
                keys.end());
    return keys;
  }

  CFittingCandidates* CandidateList() {
    if (!lists_.empty() && draw_.Chance(options_.sharedLists)) return draw_.OneOf(lists_);
    auto list = std::make_unique<CFittingCandidates>();
    list->AddFittingCandidate(Candidate());
    lists_.push_back(list.get());
    return list.release();
  }

  CFittingCandidate Candidate() {
    const auto inputs = static_cast<int>(continuous_.size());
    const int samples = draw_.Int(options_.minSamples, options_.maxSamples);
    CFittingCandidate candidate;
    candidate.SetNumberOfInputVariables(inputs);
    candidate.SetNumberOfSamples(samples);
    SetScaling(candidate);
    std::vector<std::vector<double>> rows;
    for (int s = 0; s < samples; ++s) rows.push_back(draw_.Reals(inputs, 0, 1));
    if (draw_.Chance(options_.crossValidation)) {
      SetCrossValidation(candidate, rows);
    } else {
      for (int i = draw_.Int(1, options_.maxSurfaces); i > 0; --i) {
        const E_DataType family = draw_.OneOf(options_.families);
        const bool errorData = draw_.Chance(options_.errorData);
        const auto surface = RandomSurface(draw_, family, inputs, samples, errorData);
        candidate.AddRSAndWeight(surface.get(), draw_.Real(-1, 2));
      }
    }
    // From the scaled rows, which are in the order of the folds, back to physical ones.
    std::vector<double> slopes;
    std::vector<double> intercepts;
    candidate.GetInputScaleSlopes(slopes);
    candidate.GetInputScaleIntercepts(intercepts);
    for (std::vector<double>& row : rows) {
      for (std::size_t v = 0; v < row.size(); ++v) row[v] = (row[v] - intercepts[v]) / slopes[v];
    }
    candidate.SetInputSamples(rows);
    candidate.SetOutputSamples(draw_.Reals(samples, -5, 5));
    return candidate;
  }

  // Scales the bounds, by rank, to 0 and 1.
  void SetScaling(CFittingCandidate& candidate) {
    std::vector<std::pair<int, std::string>> ranked;
    for (const std::string& id : continuous_) {
      ranked.emplace_back(model_.GetRegistrationRank()->at(id), id);
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<double> slopes;
    std::vector<double> intercepts;
    for (const auto& [rank, id] : ranked) {
      const double lower = model_.ListLowerBound({id})[0].second;
      const double upper = model_.ListUpperBound({id})[0].second;
      slopes.push_back(1 / (upper - lower));
      intercepts.push_back(-lower / (upper - lower));
    }
    candidate.SetInputScaleSlopes(slopes);
    candidate.SetInputScaleIntercepts(intercepts);
    candidate.SetOutputScaleSlope(draw_.Real(0.1, 3));
    candidate.SetOutputScaleIntercept(draw_.Real(-2, 2));
  }

  void SetCrossValidation(CFittingCandidate& candidate, std::vector<std::vector<double>>& rows) {
    const auto samples = static_cast<int>(rows.size());
    // Folds of at least one row, and none so large that a surface without it has too few samples.
    std::vector<int> counts;
    for (int left = samples; left > 0; left -= counts.back()) {
      counts.push_back(std::min(left, draw_.Int(1, samples - kFewestSamples)));
    }
    const auto inputs = static_cast<int>(continuous_.size());
    for (int i = draw_.Int(1, options_.maxSurfaces); i > 0; --i) {
      const E_DataType family = draw_.OneOf(options_.families);
      const double weight = draw_.Real(0, 1);
      const auto surface = [&](int count) {
        return RandomSurface(draw_, family, inputs, count, false);
      };
      candidate.AddRSAndWeight(surface(samples).get(), weight);
      for (const int count : counts) candidate.AddSubRS(surface(samples - count).get());
    }
    candidate.SetCrossValidationData(rows, counts);
    double distanceScale = draw_.Real(0.01, 0.5);
    candidate.SetDPMinDist(distanceScale);
  }

  Draw draw_;
  const RandomModelOptions& options_;
  CDiscreteCombinations& model_;
  std::vector<std::string> names_ = kNames;
  std::vector<std::string> discrete_;
  std::vector<std::string> continuous_;
  std::vector<std::string> outputs_;
  /// The lists that the model owns.
  std::vector<CFittingCandidates*> lists_;
};

}  // namespace

int Draw::Int(int low, int high) {
  const auto count = static_cast<std::uint32_t>(high - low) + 1;
  return low + static_cast<int>(random_() % count);
}

double Draw::Real(double low, double high) {
  constexpr double kCount = 4294967296.0;
  // Two draws, so that all digits are used.
  const double coarse = static_cast<double>(random_()) / kCount;
  const double fine = static_cast<double>(random_()) / kCount / kCount;
  return low + (high - low) * (coarse + fine);
}

std::vector<double> Draw::Reals(int count, double low, double high) {
  std::vector<double> values;
  for (int i = 0; i < count; ++i) values.push_back(Real(low, high));
  return values;
}

void FillRandomModel(std::uint32_t seed, const RandomModelOptions& options,
                     CDiscreteCombinations& model) {
  ModelMaker(seed, options, model).Make();
}

std::vector<Question> QuestionsFor(const CDiscreteCombinations& model, double fraction) {
  Question question;
  std::vector<std::string> discrete;
  for (const std::string& id : model.ListEnabledDiscreteParameterWrtRegistrationRank()) {
    if (model.IsInput(id)) discrete.push_back(id);
  }
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    if (!model.IsContinuous(id)) continue;
    const double lower = model.ListLowerBound({id})[0].second;
    const double upper = model.ListUpperBound({id})[0].second;
    question.continuous.emplace_back(id, lower + fraction * (upper - lower));
  }
  std::vector<Question> questions;
  for (const auto& combination : *model.GetDiscreteCombinationsIndexingPtr()) {
    question.discrete.clear();
    for (std::size_t i = 0; i < discrete.size(); ++i) {
      question.discrete.emplace_back(discrete[i], combination.first[i]);
    }
    questions.push_back(question);
  }
  return questions;
}

std::vector<double> AnswersOf(const CDiscreteCombinations& model, bool withErrors) {
  std::vector<double> answers;
  for (const double fraction : {0.25, 0.75}) {
    for (const Question& question : QuestionsFor(model, fraction)) {
      std::vector<std::pair<std::string, double>> outputs;
      std::vector<std::pair<std::string, double>> errors;
      answers.push_back(
          withErrors ? model.Evaluate(question.discrete, question.continuous, outputs, errors)
                     : model.Evaluate(question.discrete, question.continuous, outputs));
      for (const auto& output : outputs) answers.push_back(output.second);
      for (const auto& error : errors) answers.push_back(error.second);
    }
  }
  return answers;
}

}  // namespace Tarvane::Plexura::PXROM::tests
