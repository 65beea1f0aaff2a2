#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <set>

#include "codegen/lowering.h"
#include "codegen/source.h"
#include "codegen/text.h"
#include "pxrom/batch.h"
#include "pxrom/codegen.h"

namespace pxrom_codegen {

namespace {

using Model = pxrom::CDiscreteCombinations;
using Vector = std::vector<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
/// Points at which the code is compared with the library before it is written.
constexpr std::size_t kMeasuredPoints = 64;
constexpr std::size_t kMeasuredSamples = 200;
/// Stored points of the self-test, of all combinations together.
constexpr std::size_t kStoredPoints = 5;
constexpr std::size_t kStoredPointsOfAll = 24;
/// What one evaluation may cost, and all of those that compare the code with the library.
constexpr pxrom::CEvaluationLimit kLimit = {500'000'000, std::uint64_t{1} << 30U};
constexpr std::uint64_t kMostOperations = 4'000'000'000;
/// For the frames of the functions besides the working area.
constexpr std::uint64_t kFrameBytes = 768;
/// How far results may be from the library's. On this machine they have the same bits, unless a
/// build without optimisation computes a power in another way.
constexpr double kAgreement = 1e-12;

std::string Quoted(const std::string& text) { return '"' + InComment(text) + '"'; }

/// One combination of the model and what it predicts.
struct Combination {
  std::vector<int> key;
  std::vector<std::pair<std::string, int>> values;
  const Model::OutputsByID* outputs = nullptr;
  std::uint64_t operations = 0;
};

/// The IDs of `ranked` by rank. Refused where two have the same rank: their values would be sorted.
std::vector<std::string> ByRank(const Model& model, const std::vector<std::string>& ids) {
  std::vector<std::pair<std::int32_t, std::string>> ranked;
  ranked.reserve(ids.size());
  for (const std::string& id : ids) ranked.emplace_back(model.GetRegistrationRank()->at(id), id);
  std::sort(ranked.begin(), ranked.end());
  std::vector<std::string> sorted;
  for (std::size_t i = 0; i < ranked.size(); ++i) {
    if (i > 0 && ranked[i].first == ranked[i - 1].first) {
      throw Refused("The inputs " + Quoted(ranked[i - 1].second) + " and " +
                    Quoted(ranked[i].second) + " have the same rank.");
    }
    sorted.push_back(ranked[i].second);
  }
  return sorted;
}

std::vector<std::string> ContinuousInputs(const Model& model) {
  std::vector<std::string> ids;
  for (const std::string& id : model.ListParameterImmutableID(pxrom::CausalityInput, true)) {
    if (model.IsContinuous(id) && model.GetRegistrationRank()->count(id) != 0) ids.push_back(id);
  }
  return ByRank(model, ids);
}

std::vector<std::string> DiscreteInputs(const Model& model) {
  std::vector<std::string> ids;
  for (const std::string& id : model.ListParameterImmutableID(pxrom::CausalityInput, true)) {
    if (model.IsDiscrete(id) && model.GetRegistrationRank()->count(id) != 0) ids.push_back(id);
  }
  return ByRank(model, ids);
}

template <class Value>
Value FirstOf(const std::vector<std::pair<std::string, Value>>& list) {
  return list.empty() ? Value() : list.front().second;
}

std::string Joined(const std::vector<std::string>& parts, const char* between) {
  std::string text;
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    text += (text.empty() ? "" : between) + part;
  }
  return text;
}

Variable VariableOf(const Model& model, const std::string& id, const std::string& name) {
  Variable variable;
  variable.id = id;
  variable.name = name;
  variable.caption = FirstOf(model.ListParameterCaption({id}));
  variable.unit = FirstOf(model.ListParameterUnit({id}));
  variable.words = InComment(Joined({id, variable.caption == id ? "" : variable.caption,
                                     variable.unit.empty() ? "" : "[" + variable.unit + "]"},
                                    ", "));
  return variable;
}

/// A number for a comment.
std::string InWords(double value) {
  std::string text = Literal(value);
  const std::size_t size = text.size();
  if (size > 2 && text.compare(size - 2, 2, ".0") == 0) text.resize(size - 2);
  return text;
}

/// The ranges of the samples that the ensembles were fitted to, from the lower to the upper ends.
std::pair<Vector, Vector> RangesOfSamples(const std::vector<Combination>& combinations,
                                          std::size_t inputs) {
  Vector lower(inputs, kInfinity);
  Vector upper(inputs, -kInfinity);
  std::set<const pxrom::CFittingCandidates*> seen;
  for (const Combination& combination : combinations) {
    for (const auto& output : *combination.outputs) {
      if (!seen.insert(output.second).second) continue;
      const pxrom::CFittingCandidate* const candidate = output.second->GetEvaluationCandidatePtr();
      std::vector<Vector> rows;
      if (candidate != nullptr) candidate->GetInputSamples(rows);
      for (const Vector& row : rows) {
        for (std::size_t i = 0; i < std::min(inputs, row.size()); ++i) {
          if (!std::isfinite(row[i])) continue;
          lower[i] = std::min(lower[i], row[i]);
          upper[i] = std::max(upper[i], row[i]);
        }
      }
    }
  }
  return {lower, upper};
}

/// To six digits.
double Rounded(double value) {
  if (value == 0.0) return 0.0;
  const double digits = 5.0 - std::floor(std::log10(std::fabs(value)));
  const double unit = std::pow(10.0, std::fabs(digits));
  const double rounded =
      digits < 0.0 ? std::round(value / unit) * unit : std::round(value * unit) / unit;
  return std::isfinite(rounded) ? rounded : value;
}

std::vector<InputWords> InputWordsOf(const Model& model, const std::vector<std::string>& ids,
                                     const std::vector<Combination>& combinations) {
  std::vector<InputWords> inputs;
  const std::vector<std::string> names = UpperNames(ids);
  const auto samples = RangesOfSamples(combinations, ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    InputWords input;
    static_cast<Variable&>(input) = VariableOf(model, ids[i], names[i]);
    input.lower = FirstOf(model.ListLowerBound({ids[i]}));
    input.upper = FirstOf(model.ListUpperBound({ids[i]}));
    const char* from = "";
    input.isBounded = input.lower < input.upper;
    if (!input.isBounded) {
      input.lower = samples.first[i];
      input.upper = samples.second[i];
      from = " in the samples";
    }
    std::string range;
    if (input.lower <= input.upper) {
      range = InWords(input.lower) + " to " + InWords(input.upper) + from;
    } else {
      input.lower = -kInfinity;
      input.upper = kInfinity;
    }
    const double middle = samples.first[i] + (samples.second[i] - samples.first[i]) / 2.0;
    input.middle = std::isfinite(middle) ? Rounded(middle) : 0.0;
    input.middle = std::min(std::max(input.middle, input.lower), input.upper);
    input.words = Joined({input.words, range}, ", ");
    inputs.push_back(input);
  }
  return inputs;
}

/// Whether an error of an output is in its unit. Else it is as the surface reports it.
bool HasUnitOfError(const Model::OutputsByID& outputs, const std::string& id) {
  const pxrom::CFittingCandidate* const candidate = outputs.at(id)->GetEvaluationCandidatePtr();
  return candidate == nullptr || candidate->GetIsErrPredRequired();
}

std::vector<Combination> CombinationsOf(const Model& model, const Options& options,
                                        const std::vector<std::string>& discrete) {
  std::vector<Combination> combinations;
  for (const auto& [key, index] : *model.GetDiscreteCombinationsIndexingPtr()) {
    if (key.size() != discrete.size()) continue;
    std::vector<std::pair<std::string, int>> values;
    bool isChosen = true;
    for (std::size_t i = 0; i < key.size(); ++i) {
      values.emplace_back(discrete[i], key[i]);
      for (const auto& [id, value] : options.combination) {
        if (id == discrete[i] && value != key[i]) isChosen = false;
      }
    }
    if (!isChosen) continue;
    Combination combination;
    combination.key = key;
    combination.outputs = &(*model.GetOutputsWrtDiscCombPtr())[static_cast<std::size_t>(index)];
    pxrom::CEvaluationCost cost;
    std::string reason;
    if (pxrom::CPreparedModel::EstimateCost(model, values, cost, &reason) != 0 ||
        pxrom::CheckEvaluationCost(cost, kLimit, &reason) != 0) {
      throw Refused(reason);
    }
    combination.operations = cost.operations;
    combination.values = std::move(values);
    combinations.push_back(std::move(combination));
  }
  if (combinations.empty()) {
    throw Refused(options.combination.empty()
                      ? "The model has no combination."
                      : "The model has no combination of these discrete values.");
  }
  return combinations;
}

void RequireDiscrete(const Options& options, const std::vector<std::string>& discrete) {
  if (options.combination.empty()) return;
  std::set<std::string> named;
  for (const auto& [id, value] : options.combination) {
    if (std::find(discrete.begin(), discrete.end(), id) == discrete.end()) {
      throw Refused("The model has no enabled discrete input " + Quoted(id) + ".");
    }
    if (!named.insert(id).second) throw Refused("The input " + Quoted(id) + " is given twice.");
  }
  if (named.size() != discrete.size()) {
    throw Refused("A combination names all " + std::to_string(discrete.size()) +
                  " discrete inputs, but " + std::to_string(named.size()) + " are given.");
  }
}

/// The chosen outputs, in the order of IDs.
std::vector<std::string> OutputsOf(const std::vector<Combination>& combinations,
                                   const Options& options) {
  std::vector<std::string> all;
  for (const auto& output : *combinations.front().outputs) all.push_back(output.first);
  for (const Combination& combination : combinations) {
    std::vector<std::string> own;
    for (const auto& output : *combination.outputs) own.push_back(output.first);
    if (own != all) throw Refused("The combinations of the model have different outputs.");
  }
  for (const std::string& id : options.outputs) {
    if (std::find(all.begin(), all.end(), id) == all.end()) {
      throw Refused("The model has no output " + Quoted(id) + ".");
    }
  }
  std::vector<std::string> chosen;
  for (const std::string& id : all) {
    const bool isChosen =
        options.outputs.empty() ||
        std::find(options.outputs.begin(), options.outputs.end(), id) != options.outputs.end();
    if (isChosen) chosen.push_back(id);
  }
  if (chosen.empty()) throw Refused("The model has no output.");
  return chosen;
}

/// Point `k` of a sequence that fills the ranges evenly and begins in their middle: multiples of
/// the powers of a root of x^(d+1) = x + 1 (Roberts, The unreasonable effectiveness of quasirandom
/// sequences, 2018). Six digits, so that a stored point is short.
Vector PointInRanges(const std::vector<InputWords>& inputs, std::size_t k) {
  const auto d = static_cast<double>(inputs.size());
  double root = 1.5;
  for (int i = 0; i < 60; ++i) root = std::pow(1.0 + root, 1.0 / (d + 1.0));
  Vector point;
  double step = 1.0;
  for (const InputWords& input : inputs) {
    step /= root;
    const double part = std::fmod(0.5 + static_cast<double>(k) * step, 1.0);
    const bool isBounded = std::isfinite(input.lower) && std::isfinite(input.upper);
    const double x =
        isBounded ? input.lower + (input.upper - input.lower) * part : 2.0 * part - 1.0;
    const double unit = x == 0.0 ? 1.0 : std::pow(10.0, std::floor(std::log10(std::fabs(x))) - 5.0);
    point.push_back(std::floor(x / unit) * unit);
  }
  return point;
}

/// At most `count` of the samples that an output of a combination was fitted to.
void AppendSamples(const Combination& combination, std::size_t inputs, std::size_t count,
                   std::vector<Vector>& points) {
  std::vector<Vector> rows;
  const pxrom::CFittingCandidate* const candidate =
      combination.outputs->begin()->second->GetEvaluationCandidatePtr();
  if (candidate != nullptr) candidate->GetInputSamples(rows);
  const std::size_t stride = rows.size() / count + 1;
  for (std::size_t r = 0; r < rows.size(); r += stride) {
    if (rows[r].size() == inputs) points.push_back(rows[r]);
  }
}

/// The library's answers for the chosen outputs, whose places are `places`.
TestPoint Ask(const pxrom::CPreparedModel& library, const std::vector<std::size_t>& places,
              const Vector& point, bool errors, bool gradients) {
  const std::size_t outputs = library.OutputIDs().size();
  const std::size_t inputs = point.size();
  TestPoint test;
  test.inputs = point;
  Vector values(outputs);
  Vector errorValues(outputs);
  Vector slopes(gradients ? outputs * inputs : 0);
  std::vector<int> statuses(outputs);
  std::vector<int> errorStatuses(outputs);
  std::vector<int> slopeStatuses(outputs);
  library.Evaluate(point.data(), 1, pxrom::PrecisionExact, values.data(), nullptr, statuses.data());
  for (const std::size_t o : places) {
    test.values.push_back(values[o]);
    test.statuses.push_back(statuses[o]);
  }
  if (errors) {
    library.Evaluate(point.data(), 1, pxrom::PrecisionExact, values.data(), errorValues.data(),
                     errorStatuses.data());
    for (const std::size_t o : places) {
      test.errors.push_back(errorValues[o]);
      test.errorStatuses.push_back(errorStatuses[o]);
    }
  }
  if (gradients) {
    std::string reason;
    if (library.EvaluateGradients(point.data(), 1, slopes.data(), slopeStatuses.data(), &reason) !=
        0) {
      throw Refused(reason);
    }
    for (const std::size_t o : places) {
      const auto first = slopes.begin() + static_cast<std::ptrdiff_t>(o * inputs);
      test.gradients.insert(test.gradients.end(), first,
                            first + static_cast<std::ptrdiff_t>(inputs));
      test.gradientStatuses.push_back(slopeStatuses[o]);
    }
  }
  return test;
}

/// The answers of the code that is about to be written.
template <class Real>
class CodeAnswers {
 public:
  CodeAnswers(const Lowered<Real>& model, std::size_t combination)
      : ensembles_(model.combinations[combination].value), work_(model.work + kGuard) {}

  TestPoint At(const TestPoint& like) {
    const std::vector<Real> x(like.inputs.begin(), like.inputs.end());
    TestPoint test;
    for (const auto& ensemble : ensembles_) {
      Real value = 0;
      Real error = 0;
      const int status = Run([&](Real* work) {
        return Runtime<Real>::ensemble_value(&ensemble, x.data(), work, &value);
      });
      test.statuses.push_back(status);
      test.values.push_back(status == 1 ? kNaN : static_cast<double>(value));
      if (!like.errors.empty()) {
        const int errorStatus = Run([&](Real* work) {
          return Runtime<Real>::ensemble_error(&ensemble, x.data(), work, &value, &error);
        });
        test.errorStatuses.push_back(errorStatus);
        test.errors.push_back(errorStatus != 0 ? kNaN : static_cast<double>(error));
      }
      if (like.gradients.empty()) continue;
      std::vector<Real> gradient(x.size());
      const int slopeStatus = Run([&](Real* work) {
        return Runtime<Real>::ensemble_gradient(&ensemble, x.data(), work, gradient.data());
      });
      test.gradientStatuses.push_back(slopeStatus);
      for (const Real entry : gradient) {
        test.gradients.push_back(slopeStatus != 0 ? kNaN : static_cast<double>(entry));
      }
    }
    return test;
  }

 private:
  static constexpr std::size_t kGuard = 8;
  static constexpr Real kUntouched = Real{-12345.5};

  /// Runs a function on the working area, and checks that it stays in it.
  template <class Call>
  int Run(const Call& call) {
    std::fill(work_.end() - kGuard, work_.end(), kUntouched);
    const int status = call(work_.data());
    if (!std::all_of(work_.end() - kGuard, work_.end(), [](Real v) { return v == kUntouched; })) {
      throw Refused("The code would need more stack than its header says; please report this.");
    }
    return status;
  }

  const std::vector<typename Runtime<Real>::ensemble>& ensembles_;
  std::vector<Real> work_;
};

/// The largest magnitudes of one kind of results, column by column, and the largest difference.
class Difference {
 public:
  void Scale(const Vector& row) {
    largest_.resize(row.size(), 0.0);
    for (std::size_t c = 0; c < row.size(); ++c) {
      if (std::isfinite(row[c])) largest_[c] = std::max(largest_[c], std::fabs(row[c]));
    }
  }
  void Add(const Vector& want, const Vector& got) {
    for (std::size_t c = 0; c < want.size(); ++c) {
      const bool isSame = want[c] == got[c] || (std::isnan(want[c]) && std::isnan(got[c]));
      if (isSame) continue;
      const double scale = largest_[c] > 0.0 ? largest_[c] : 1.0;
      const double difference = std::fabs(want[c] - got[c]) / scale;
      most_ = std::isnan(difference) ? kInfinity : std::max(most_, difference);
    }
  }
  double Most() const { return most_; }

 private:
  Vector largest_;
  double most_ = 0.0;
};

template <class Real>
Lowered<Real> Lower(const std::vector<Combination>& combinations,
                    const std::vector<OutputWords>& outputs, std::size_t inputs,
                    const Options& options) {
  Lowered<Real> lowered;
  Lowering<Real> lowering(inputs, options.errors, options.gradients, lowered);
  std::map<const pxrom::CFittingCandidates*, typename Runtime<Real>::ensemble> lists;
  for (std::size_t c = 0; c < combinations.size(); ++c) {
    std::vector<typename Runtime<Real>::ensemble> ensembles;
    for (const OutputWords& output : outputs) {
      std::string name = "o_" + output.name;
      for (char& letter : name)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
      std::string words = "the output " + Quoted(output.id);
      if (combinations.size() > 1) {
        name += "_c" + std::to_string(c + 1);
        words += " in combination " + std::to_string(c + 1);
      }
      // Combinations can share a list of candidates, which is written once.
      const pxrom::CFittingCandidates* const list = combinations[c].outputs->at(output.id);
      auto known = lists.find(list);
      if (known == lists.end()) {
        // A list that hands out its surfaces no longer shares them with other outputs. So a copy
        // does, and for a moment only.
        const pxrom::CFittingCandidates copy(*list);
        known = lists.emplace(list, lowering.Ensemble(copy, name, words)).first;
      }
      ensembles.push_back(known->second);
    }
    lowered.combinations.push_back(
        {"combination_" + std::to_string(c + 1), "", std::move(ensembles)});
  }
  if (sizeof(Real) == sizeof(double)) lowered.pieces.insert("HOLES");
  AddNeededPieces(lowered.pieces);
  return lowered;
}

/// How many points of a combination are compared.
std::size_t PointsOf(const Combination& combination, std::size_t combinations, std::size_t stored) {
  constexpr std::uint64_t kLeast = 1000;
  const std::uint64_t each = std::max(combination.operations, kLeast);
  const std::uint64_t points = kMostOperations / each / combinations;
  return std::max(stored, static_cast<std::size_t>(
                              std::min<std::uint64_t>(points, kMeasuredPoints + kMeasuredSamples)));
}

/// Narrows the ranges that all samples have in common by those of one combination.
void NarrowBySamples(const pxrom::CPreparedModel& library, const std::vector<std::size_t>& places,
                     std::vector<InputWords>& inputs) {
  for (const std::size_t place : places) {
    Vector lower;
    Vector upper;
    if (library.SampleRanges(place, lower, upper) != 0) continue;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      inputs[i].lowest = std::max(inputs[i].lowest, lower[i]);
      inputs[i].highest = std::min(inputs[i].highest, upper[i]);
    }
  }
}

/// Compares the code with the library and returns the largest difference. The answers at the first
/// points of each combination go into `interface`, and so do the ranges of the samples.
template <class Real>
double Compare(const Model& model, const Lowered<Real>& lowered,
               const std::vector<Combination>& combinations, const std::vector<std::size_t>& places,
               const Options& options, Interface& interface) {
  const std::size_t stored =
      std::max<std::size_t>(1, std::min(kStoredPoints, kStoredPointsOfAll / combinations.size()));
  double most = 0.0;
  bool isStatusOther = false;
  interface.tests.clear();
  for (InputWords& input : interface.inputs) {
    input.lowest = -kInfinity;
    input.highest = kInfinity;
  }
  for (std::size_t c = 0; c < combinations.size(); ++c) {
    // One at a time: together they could take far more memory than the model.
    pxrom::CPreparedModel library;
    std::string reason;
    if (pxrom::CPreparedModel::Prepare(model, combinations[c].values, library, &reason, kLimit) !=
        0) {
      throw Refused(reason);
    }
    NarrowBySamples(library, places, interface.inputs);
    const std::size_t count = PointsOf(combinations[c], combinations.size(), stored);
    std::vector<Vector> points;
    for (std::size_t k = 0; k < std::min(count, kMeasuredPoints); ++k) {
      points.push_back(PointInRanges(interface.inputs, k));
    }
    if (count > kMeasuredPoints) {
      AppendSamples(combinations[c], interface.inputs.size(), count - kMeasuredPoints, points);
    }
    std::vector<TestPoint> wanted;
    Difference differences[3];
    for (Vector& point : points) {
      for (double& x : point) x = static_cast<double>(static_cast<Real>(x));
      wanted.push_back(Ask(library, places, point, options.errors, options.gradients));
      wanted.back().combination = c;
      differences[0].Scale(wanted.back().values);
      differences[1].Scale(wanted.back().errors);
      differences[2].Scale(wanted.back().gradients);
    }
    CodeAnswers<Real> code(lowered, c);
    for (std::size_t k = 0; k < wanted.size(); ++k) {
      const TestPoint& want = wanted[k];
      const TestPoint got = code.At(want);
      isStatusOther = isStatusOther || got.statuses != want.statuses ||
                      got.errorStatuses != want.errorStatuses ||
                      got.gradientStatuses != want.gradientStatuses;
      differences[0].Add(want.values, got.values);
      differences[1].Add(want.errors, got.errors);
      // At a sample some covariances have a kink, on which float and double can take other sides.
      if (sizeof(Real) == sizeof(double) || k < kMeasuredPoints) {
        differences[2].Add(want.gradients, got.gradients);
      }
      if (k < stored) interface.tests.push_back(want);
    }
    for (const Difference& difference : differences) most = std::max(most, difference.Most());
  }
  for (InputWords& input : interface.inputs) {
    if (std::isinf(input.lowest) && std::isinf(input.highest)) {
      input.lowest = input.lower;
      input.highest = input.upper;
    }
  }
  if (isStatusOther && sizeof(Real) == sizeof(double)) return kInfinity;
  return most;
}

std::string KeyWords(const std::vector<std::string>& discrete, const std::vector<int>& key) {
  std::vector<std::string> parts;
  for (std::size_t i = 0; i < key.size(); ++i) {
    parts.push_back(InComment(discrete[i]) + " = " + std::to_string(key[i]));
  }
  return Joined(parts, ", ");
}

template <class Real>
void WriteTexts(const Lowered<Real>& lowered, Interface& interface, Code& code) {
  interface.stackBytes = lowered.work * sizeof(Real) + kFrameBytes;
  code.source = SourceText(lowered, interface);
  code.header = HeaderText(interface, sizeof(Real) == sizeof(float));
}

}  // namespace

Code GenerateOrThrow(const Model& model, const Options& options, Interface& interface) {
  if (!IsName(options.name)) {
    throw Refused(
        Quoted(options.name) +
        " is no name for code: it needs a letter, and then up to 39 letters, digits or _.");
  }
  const std::vector<std::string> inputIDs = ContinuousInputs(model);
  const std::vector<std::string> discreteIDs = DiscreteInputs(model);
  if (inputIDs.empty()) throw Refused("The model has no continuous input.");
  RequireDiscrete(options, discreteIDs);
  const std::vector<Combination> combinations = CombinationsOf(model, options, discreteIDs);
  const std::vector<std::string> outputIDs = OutputsOf(combinations, options);

  interface = Interface();
  interface.name = options.name;
  interface.upper = UpperName(options.name);
  interface.errors = options.errors;
  interface.gradients = options.gradients;
  interface.inputs = InputWordsOf(model, inputIDs, combinations);
  const std::vector<std::string> outputNames = UpperNames(outputIDs);
  std::vector<std::size_t> places;
  for (std::size_t o = 0; o < outputIDs.size(); ++o) {
    OutputWords output;
    static_cast<Variable&>(output) = VariableOf(model, outputIDs[o], outputNames[o]);
    output.hasUnitOfError = HasUnitOfError(*combinations.front().outputs, outputIDs[o]);
    if (options.errors && !output.hasUnitOfError) {
      output.words += "; error as the surface reports it, in its scaled space";
    }
    interface.outputs.push_back(output);
    // The library orders outputs by ID.
    const auto& all = *combinations.front().outputs;
    places.push_back(static_cast<std::size_t>(std::distance(all.begin(), all.find(outputIDs[o]))));
  }
  const bool isOne = discreteIDs.empty() || !options.combination.empty();
  if (isOne) {
    interface.chosen = KeyWords(discreteIDs, combinations.front().key);
  } else {
    const std::vector<std::string> names = UpperNames(discreteIDs);
    for (std::size_t i = 0; i < discreteIDs.size(); ++i) {
      interface.discrete.push_back(VariableOf(model, discreteIDs[i], names[i]));
    }
    for (const Combination& combination : combinations) interface.keys.push_back(combination.key);
  }
  for (const Combination& combination : combinations) {
    interface.operations = std::max(interface.operations, combination.operations);
  }

  Code code;
  const auto exact = Lower<double>(combinations, interface.outputs, inputIDs.size(), options);
  const double difference = Compare(model, exact, combinations, places, options, interface);
  code.largestDifference = difference;
  if (!(difference <= kAgreement)) {
    throw Refused("The code would not give the library's results (difference " +
                  Literal(difference) + "); please report this.");
  }
  if (options.isFloat) {
    const auto rounded = Lower<float>(combinations, interface.outputs, inputIDs.size(), options);
    interface.largestDifference = Compare(model, rounded, combinations, places, options, interface);
    if (!std::isfinite(interface.largestDifference)) {
      throw Refused("With float, some results would be missing or not finite; use double.");
    }
    // Rounded up to two digits.
    const double unit =
        interface.largestDifference > 0.0
            ? std::pow(10.0, std::floor(std::log10(interface.largestDifference)) - 1.0)
            : 1.0;
    interface.largestDifference = std::ceil(interface.largestDifference / unit) * unit;
    interface.tolerance = std::max(4.0 * interface.largestDifference, 1e-5);
    code.largestDifference = interface.largestDifference;
    WriteTexts(rounded, interface, code);
  } else {
    interface.tolerance = 1e-9;
    WriteTexts(exact, interface, code);
  }
  code.needs = {interface.tableBytes, interface.codeBytes, interface.stackBytes,
                interface.operations};
  const std::uint64_t flash = code.needs.tableBytes + code.needs.codeBytes;
  if (options.budget != 0 && flash > options.budget) {
    throw Refused("The code would take about " + std::to_string(flash) + " bytes of flash (" +
                  std::to_string(code.needs.tableBytes) + " of tables), more than the budget of " +
                  std::to_string(options.budget) + ".");
  }
  return code;
}

int GenerateCode(const Model& model, const Options& options, Code& code, std::string& reason) {
  try {
    Interface interface;
    code = GenerateOrThrow(model, options, interface);
    return 0;
  } catch (const Refused& refused) {
    reason = refused.what();
    return 1;
  }
}

}  // namespace pxrom_codegen
