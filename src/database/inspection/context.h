#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pxrom/inspection.h"
#include "text/check_points.h"
#include "text/inspection/findings.h"
#include "text/inspection/outline.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// The facts of the registry, once for each ID.
struct RegistryFacts {
  struct Parameter {
    int causality = 0;
    int type = 0;
    bool isEnabled = false;
  };

  bool IsDiscreteInput(const std::string& id) const;
  bool IsOutput(const std::string& id) const;
  /// "; did you mean "..."?" for the nearest ID, or an empty text.
  std::string DidYouMean(std::string_view typed) const;

  /// False when the registry is too damaged to know its parameters.
  bool isKnown = false;
  /// The offset of the IDs.
  std::size_t offset = 0;
  std::map<std::string, Parameter> parameters;
  /// The enabled parameters, which a line and an evaluation name.
  std::vector<std::string> discreteInputs;
  std::vector<std::string> continuousInputs;
  std::vector<std::string> outputs;
};

/// The data that the checks of one text share.
struct Context {
  /// Without its check points.
  std::string_view text;
  const LineTable& lines;
  Findings& findings;
  const Outline& outline;
  CDatabaseOverview& overview;
  RegistryFacts registry;
  /// The groups that lines use, by number.
  std::map<int, const Group*> used;
  /// The floating-point operations that evaluations of this text may still take.
  double workLeft = 0.0;
};

// The checks, in the order in which they have to run.

void CheckRegistry(Context& context);
/// Needs the registry; fills `used`.
void CheckDiscreteSets(Context& context);
/// Needs both.
void CheckEnsembles(Context& context);
void CheckFmu(Context& context);
/// Reads and evaluates the text, and reports what the library silently refuses.
void TryText(Context& context, const std::string& text);
/// Compares `whole` with the checksum of its check points, and evaluates these. `text` is the part
/// before them, which was tried.
void CheckCheckPoints(Context& context, std::string_view whole, const std::string& text,
                      const reading::CheckPointsGroup& group);

}  // namespace Tarvane::Plexura::PXROM::inspection
