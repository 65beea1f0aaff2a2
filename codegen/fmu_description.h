#pragma once

#include <string>
#include <vector>

#include "codegen/source.h"

namespace pxrom_codegen {

/// A variable of an FMU. Its reference is its place in the list.
struct FmuVariable {
  enum Kind { Time, Input, Discrete, Output };
  Kind kind = Time;
  std::string name;
  std::string description;
  std::string unit;
  /// Numbers, as text; an empty one is left out of the description.
  std::string min;
  std::string max;
  std::string start;
};

/// The outputs that have a predicted error at one of the points of the self-test at least.
std::vector<std::size_t> OutputsWithErrors(const Interface& interface);

/// Time, inputs, discrete inputs, outputs, their errors, and whether the inputs are inside.
std::vector<FmuVariable> FmuVariables(const Interface& interface);

/// modelDescription.xml of FMI `version` 2 or 3.
std::string ModelDescription(const Interface& interface, const std::vector<FmuVariable>& variables,
                             int version, const std::string& token);

/// buildDescription.xml of FMI 3.
std::string BuildDescription(const std::string& identifier,
                             const std::vector<std::string>& sources);

}  // namespace pxrom_codegen
