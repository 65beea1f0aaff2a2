#pragma once

// Sound models of every kind, made from a seed: the same on any machine.

#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"

namespace Tarvane::Plexura::PXROM::tests {

/// Draws that depend on the seed alone, not on the standard library.
class Draw {
 public:
  explicit Draw(std::uint32_t seed) : random_(seed) {}

  /// low to high, both included, which lie less than 2^31 apart.
  int Int(int low, int high);
  double Real(double low, double high);
  bool Chance(int percent) { return Int(1, 100) <= percent; }
  std::vector<double> Reals(int count, double low, double high);
  template <class Element>
  const Element& OneOf(const std::vector<Element>& elements) {
    return elements[static_cast<std::size_t>(Int(0, static_cast<int>(elements.size()) - 1))];
  }

 private:
  std::mt19937 random_;
};

/// All families that RandomSurface knows.
std::vector<E_DataType> RandomFamilies();

struct RandomModelOptions {
  std::vector<E_DataType> families = RandomFamilies();
  int maxDiscreteInputs = 2;
  int maxContinuousInputs = 3;
  int maxOutputs = 2;
  int maxSurfaces = 3;
  /// At least 14: a full quadratic trend of three inputs has 10 functions.
  int minSamples = 14;
  int maxSamples = 18;
  /// Percentages: of candidates with cross-validation data, of records with error data among those
  /// that can have them, of outputs that reuse the candidate list of another combination, and of
  /// parameters that are registered but not passed (disabled, derived).
  int crossValidation = 30;
  int errorData = 60;
  int sharedLists = 10;
  int idleParameters = 40;
};

/// Fills an empty `model`. Every combination evaluates with 0 at every point between the bounds;
/// with errors it gives 0 or -2, or 1 where an output has no predicted error.
void FillRandomModel(std::uint32_t seed, const RandomModelOptions& options,
                     CDiscreteCombinations& model);

/// A ready surface of `family` for inputs between 0 and 1. All types that the family knows are
/// drawn; `samples` as for RandomModelOptions, at most 3 inputs.
std::unique_ptr<CRSData> RandomSurface(Draw& draw, E_DataType family, int inputs, int samples,
                                       bool errorData);

/// The arguments of one evaluation.
struct Question {
  std::vector<std::pair<std::string, int>> discrete;
  std::vector<std::pair<std::string, double>> continuous;
};

/// One question per combination of `model`, in the order of their keys, at a point between the
/// bounds of the continuous inputs: `fraction` of the way from the lower to the upper one.
std::vector<Question> QuestionsFor(const CDiscreteCombinations& model, double fraction);

/// The statuses, values and, if asked for, errors of all combinations of `model` at two points.
std::vector<double> AnswersOf(const CDiscreteCombinations& model, bool withErrors);

}  // namespace Tarvane::Plexura::PXROM::tests
