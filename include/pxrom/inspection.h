#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/evaluation_cost.h"
#include "pxrom/export.h"
#include "pxrom/findings.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// What a database says about one parameter.
struct CParameterOverview {
  std::string id;
  std::string caption;
  std::string unit;
  E_ParameterCausality causality = CausalityInput;
  E_ParameterType type = ContinuousNotManufacturable;
  bool enabled = false;
  int rank = 0;
  /// The bounds in the text, also if the library registers none.
  bool hasBounds = false;
  double lowerBound = 0.0;
  double upperBound = 0.0;
  /// The values that the combinations have, ascending; for a discrete input.
  std::vector<int> values;
};

/// One surface of an ensemble.
struct CSurfaceOverview {
  int genome = 0;
  E_DataType type = DT_RSData;
  double weight = 0.0;
  int samples = 0;
  /// The family in words: "Kriging"; "type 9" where surfaces of this type have no value.
  std::string family;
};

/// Where the predicted error of an ensemble comes from.
enum E_PredictedErrorKind : std::int32_t {
  PredictedErrorNone = 0,             ///< none: the form with errors gives 1 or -2
  PredictedErrorSurface = 1,          ///< from its surfaces, in a scaled space
  PredictedErrorCrossValidation = 2,  ///< from cross-validation data, in the output's unit
};

/// One `PlexuraData` group.
struct CEnsembleOverview {
  int id = 0;
  int inputs = 0;
  int samples = 0;
  std::vector<CSurfaceOverview> surfaces;
  std::size_t subSurfaces = 0;
  std::size_t folds = 0;
  E_PredictedErrorKind errorKind = PredictedErrorNone;
  /// The cost of an evaluation; zeros for a group that cannot be read.
  CEvaluationCost cost;
  std::size_t characters = 0;
};

/// One "DiscreteSet=" line.
struct CCombinationOverview {
  std::size_t line = 0;
  std::vector<std::pair<std::string, int>> discreteValues;
  /// Output and number of its `PlexuraData` group.
  std::vector<std::pair<std::string, int>> outputs;
};

/// What a database holds, as far as its damage allows.
struct CDatabaseOverview {
  std::size_t characters = 0;
  std::size_t lines = 0;
  std::vector<CParameterOverview> parameters;      ///< in the order of "IDs="
  std::vector<CCombinationOverview> combinations;  ///< in the order of the lines
  std::vector<CEnsembleOverview> ensembles;        ///< those that a line names, by number
};

struct CInspectionReport {
  /// In the order of the text; at the same place, the more severe first.
  std::vector<CFinding> findings;
  /// The numbers of findings, including those that the list leaves out.
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t notes = 0;
  CDatabaseOverview overview;
};

/// Says what the text of a database holds and whether it is sound, which reading does not report.
///
/// CReaderPXROMDatabase reads a text without a finding of severity error with status 0, and each of
/// its combinations then evaluates with status 0 where every input is in the middle of its bounds
/// (0.5 * lower + 0.5 * upper). The form with errors gives 0 or -2 there on a fresh copy, unless
/// there is a FindingErrorFormRefused. A text that reading or such an evaluation refuses has an
/// error that says why. To know that, the inspection also reads and evaluates the text. It leaves
/// out surfaces that would take disproportionately long, and a FindingNotTried says so.
///
/// Accepts any text. Time and memory are in proportion to it, by the limits of the reader. A code
/// is listed at most a hundred times; the last of its findings then says how many more there are.
/// Exceptions: std::bad_alloc only. Threads: no shared state.
PXROM_API CInspectionReport InspectPXROMDatabase(const std::string& text);

/// Reads a database into the empty `out`. 0 with `reason` untouched; 1 with the first error of an
/// inspection and its line in `reason`, also for a text without any combination; `out` then holds
/// what was read before. Exceptions: std::bad_alloc only. Threads: nothing else may use `out` and
/// `reason` during the call.
PXROM_API int ReadExplainedPXROMDatabase(std::string text, CDiscreteCombinations& out,
                                         std::string& reason);

}  // namespace Tarvane::Plexura::PXROM
