#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"

namespace fuzz {

using NamedInts = std::vector<std::pair<std::string, int>>;
using NamedValues = std::vector<std::pair<std::string, double>>;

bool SameBits(const NamedValues& a, const NamedValues& b);

/// Data taken apart: the text of a database up to the last "\0", doubles after it.
class ModelInputs {
 public:
  explicit ModelInputs(std::string_view data);

  const std::string& Text() const { return text_; }
  /// Reads the text into `model`, which may hold a part of it if that fails. False without any
  /// combination.
  bool Read(Tarvane::Plexura::PXROM::CDiscreteCombinations& model) const;
  /// How many combinations to try: all of those that a text of the lengths that are fuzzed can
  /// have, and few of a long one, since trying one may copy the whole model.
  std::size_t MostCombinations() const;
  /// The doubles, repeated as needed.
  std::vector<double> Values(int count) const;
  NamedInts DiscreteOf(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model,
                       const std::vector<int>& key) const;
  NamedValues ContinuousOf(const Tarvane::Plexura::PXROM::CDiscreteCombinations& model) const;

 private:
  std::string text_;
  std::vector<double> values_;
};

}  // namespace fuzz
