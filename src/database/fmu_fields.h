#pragma once

#include <string>
#include <utility>
#include <vector>

#include "text/fields.h"

namespace Tarvane::Plexura::PXROM {

/// The counts and value references of an FMI description.
struct FmuText {
  int reals = 0;
  int integers = 0;
  int booleans = 0;
  int strings = 0;
  int events = 0;
  std::vector<std::pair<std::string, int>> references;
};

template <class Visitor, class Description>
void FmuFields(Visitor& visit, Description& fmu) {
  using fields::Key;
  using fields::Labels;
  visit.Kept(Key(&Labels::attFMUNumberOfReals).Count(), "Reals", fmu.reals);
  visit.Kept(Key(&Labels::attFMUNumberOfIntegers).Count(), "Integers", fmu.integers);
  visit.Kept(Key(&Labels::attFMUNumberOfBooleans).Count(), "Booleans", fmu.booleans);
  visit.Kept(Key(&Labels::attFMUNumberOfStrings).Count(), "Strings", fmu.strings);
  visit.Kept(Key(&Labels::attFMUNumberOfEvents).Count(), "Events", fmu.events);
  // Last, so that no name comes before a key that is searched for.
  visit(Key(&Labels::attFMUIDToValRef), "References", fmu.references);
}

}  // namespace Tarvane::Plexura::PXROM
