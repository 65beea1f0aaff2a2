#pragma once

// Evaluation by names, step by step: it goes through maps for every count, builds a table of
// evaluators for every output, and clones an evaluator for every surface.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"

namespace literal {

class Combinations {
 public:
  using NamedInts = std::vector<std::pair<std::string, int>>;
  using NamedValues = std::vector<std::pair<std::string, double>>;

  /// Takes what it needs from `source`, which must outlive it.
  explicit Combinations(const Tarvane::Plexura::PXROM::CDiscreteCombinations& source);

  int Evaluate(const NamedInts& discreteValues, const NamedValues& continuousValues,
               NamedValues& outputs) const;
  int Evaluate(const NamedInts& discreteValues, const NamedValues& continuousValues,
               NamedValues& outputs, NamedValues& errors) const;

 private:
  std::size_t Count(int causality, int type, bool enabled) const;
  int FindPoint(const NamedInts& discreteValues, const NamedValues& continuousValues,
                std::vector<double>& point,
                std::map<std::vector<int>, std::int32_t>::const_iterator& combination) const;

  std::map<std::string, std::int32_t> ranks_;
  std::map<std::string, int> causalities_;
  std::map<std::string, int> types_;
  std::map<std::string, bool> availability_;
  std::map<std::vector<int>, std::int32_t> indexing_;
  const std::vector<std::map<std::string, Tarvane::Plexura::PXROM::CFittingCandidates*>>& outputs_;
};

}  // namespace literal
