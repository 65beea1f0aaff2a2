#include "overview.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <utility>

#include "numbers.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

const char* WordOf(pxrom::E_FindingSeverity severity) {
  switch (severity) {
    case pxrom::SeverityError:
      return "error";
    case pxrom::SeverityWarning:
      return "warning";
    case pxrom::SeverityNote:
      break;
  }
  return "note";
}

std::string TypeOf(pxrom::E_ParameterType type) {
  static const char* const kWords[] = {"continuous", "continuous, manufacturable", "discrete",
                                       "derived"};
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kWords) ? kWords[index] : "type " + std::to_string(type);
}

std::string RoleOf(const pxrom::CParameterOverview& parameter) {
  return parameter.causality == pxrom::CausalityOutput ? "output" : "input";
}

const char* ErrorKindOf(const pxrom::CEnsembleOverview& ensemble) {
  switch (ensemble.errorKind) {
    case pxrom::PredictedErrorCrossValidation:
      return "cross-validation";
    case pxrom::PredictedErrorSurface:
      return "surface";
    case pxrom::PredictedErrorNone:
      break;
  }
  return "none";
}

std::string RangeOf(const pxrom::CParameterOverview& parameter) {
  if (!parameter.values.empty()) {
    std::string range;
    for (const int value : parameter.values) {
      range += (range.empty() ? "" : ", ") + std::to_string(value);
    }
    return range;
  }
  const bool is_continuous = parameter.type <= pxrom::ContinuousManufacturable;
  const bool is_empty = parameter.lowerBound == 0.0 && parameter.upperBound == 0.0;
  if (!parameter.hasBounds || !is_continuous || is_empty) return "";
  return Shown(parameter.lowerBound) + " to " + Shown(parameter.upperBound);
}

ParametersByRank ByRank(const pxrom::CDatabaseOverview& overview) {
  ParametersByRank parameters = overview.parameters;
  std::stable_sort(parameters.begin(), parameters.end(),
                   [](const auto& a, const auto& b) { return a.rank < b.rank; });
  return parameters;
}

EnsemblesById ById(const pxrom::CDatabaseOverview& overview) {
  EnsemblesById ensembles;
  for (const auto& ensemble : overview.ensembles) ensembles[ensemble.id] = &ensemble;
  return ensembles;
}

RanksById RanksOf(const ParametersByRank& by_rank) {
  RanksById ranks;
  for (std::size_t i = 0; i < by_rank.size(); ++i) ranks.emplace(by_rank[i].id, i);
  return ranks;
}

std::string TextOf(const pxrom::CCombinationOverview& combination, const RanksById& ranks) {
  std::map<std::size_t, const std::pair<std::string, int>*> by_rank;
  for (const auto& named : combination.discreteValues) {
    const auto rank = ranks.find(named.first);
    if (rank != ranks.end()) by_rank.emplace(rank->second, &named);
  }
  std::string text;
  for (const auto& [rank, named] : by_rank) {
    text += (text.empty() ? "" : ", ") + named->first + '=' + std::to_string(named->second);
  }
  return text;
}

std::string SurfacesOf(const pxrom::CEnsembleOverview& ensemble) {
  std::string text;
  for (const auto& surface : ensemble.surfaces) {
    text += (text.empty() ? "" : ", ") + Shown(surface.weight) + ' ' + surface.family;
  }
  return text;
}

}  // namespace pxrom_command
