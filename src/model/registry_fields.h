#pragma once

#include <string>
#include <utility>
#include <vector>

#include "text/fields.h"

namespace Tarvane::Plexura::PXROM {

/// The registry in the form of its text: lists by parameter, and pairs of a parameter and a value.
struct RegistryText {
  template <class Value>
  using Pairs = std::vector<std::pair<std::string, Value>>;

  /// The version that every registry has.
  int version = 170;
  std::vector<std::string> ids;
  std::vector<int> causalities;
  std::vector<int> types;
  std::vector<int> availability;
  Pairs<int> discreteIndexing;
  Pairs<int> ranks;
  Pairs<std::string> units;
  Pairs<std::string> captions;
  Pairs<double> lowerBounds;
  Pairs<double> upperBounds;
};

/// The parameters and their ranks.
template <class Visitor, class Registry>
void RoleFields(Visitor& visit, Registry& registry) {
  using fields::Key;
  using fields::Labels;
  visit.NotRead(Key(&Labels::attParameterVersion).Version(170), registry.version);
  visit(Key(&Labels::attParameterIDs), "IDs", registry.ids);
  visit(Key(&Labels::attParameterCausalities), "Causalities", registry.causalities);
  visit(Key(&Labels::attParameterTypes), "Types", registry.types);
  visit(Key(&Labels::attParameterAvailability), "Availability", registry.availability);
  // Its content is not used, but it is read: a damaged pair in it ends the reading as in any other
  // list of pairs.
  visit(Key(&Labels::attParameterDiscreteIndexing).Optional(), "DiscreteIndexing",
        registry.discreteIndexing);
  visit(Key(&Labels::attParameterRegistrationRank), "RegistrationRank", registry.ranks);
}

/// The infos of parameters. Reading registers the parameters first.
template <class Visitor, class Registry>
void InfoFields(Visitor& visit, Registry& registry) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attParameterUnits).Optional(), "Units", registry.units);
  visit(Key(&Labels::attParameterCaptions).Optional(), "Captions", registry.captions);
  visit(Key(&Labels::attParameterLowerBound).Optional(), "LowerBounds", registry.lowerBounds);
  visit(Key(&Labels::attParameterUpperBound).Optional(), "UpperBounds", registry.upperBounds);
}

}  // namespace Tarvane::Plexura::PXROM
