#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/export.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// How much a finding matters.
enum E_FindingSeverity : std::int32_t {
  SeverityNote = 0,     ///< true and worth knowing; nothing is wrong
  SeverityWarning = 1,  ///< reads and evaluates, but probably not as it was meant
  SeverityError = 2,    ///< damaged: it is refused, or means something else than it says
};

/// What a finding is about. Numbers and names (FindingCodeName) never change;
/// FindingCodeExplanation has a line on each.
enum E_FindingCode : std::int32_t {
  // The text and its groups.
  FindingGroupMissing = 101,
  FindingTagMalformed = 102,
  FindingGroupUnclosed = 103,
  FindingGroupUnopened = 104,
  FindingGroupNested = 105,
  FindingGroupTwice = 106,
  FindingGroupMisplaced = 107,
  FindingGroupUnused = 108,
  FindingStrayText = 109,
  FindingLineEndsMixed = 110,
  // Keys.
  FindingKeyMissing = 201,
  FindingKeyUnknown = 202,
  FindingKeyTwice = 203,
  FindingKeyCaught = 204,
  FindingKeyMisplaced = 205,
  // Values.
  FindingValueMissing = 301,
  FindingValueNotANumber = 302,
  FindingValueTrailingText = 303,
  FindingValueOverflow = 304,
  FindingValueOutOfRange = 305,
  FindingPairMalformed = 306,
  FindingVersionUnknown = 307,
  FindingCountMismatch = 308,
  FindingScaleSlopeZero = 309,
  // Parameters and combinations.
  FindingParameterTwice = 401,
  FindingParameterUnknown = 402,
  FindingParameterMissing = 403,
  FindingRankIncomplete = 404,
  FindingRankEqual = 405,
  FindingBoundsUnusable = 406,
  FindingNothingToPredict = 407,
  FindingCombinationTwice = 408,
  FindingDiscreteInputWrong = 409,
  FindingOutputMissing = 410,
  FindingOutputUnexpected = 411,
  // Ensembles and surfaces.
  FindingInputsMismatch = 501,
  FindingCardinalityMismatch = 502,
  FindingFamilyMismatch = 503,
  FindingFoldsMismatch = 504,
  FindingSurfaceNotReady = 505,
  FindingSurfaceStopped = 506,
  FindingSurfaceWithoutValue = 507,
  FindingTermWrong = 508,
  FindingWeightSum = 509,
  FindingErrorDataIgnored = 510,
  // What the library answered.
  FindingReadingRefused = 601,
  FindingEvaluationRefused = 602,
  FindingErrorFormRefused = 603,
  FindingErrorNone = 604,
  FindingDerivativeNone = 605,
  FindingValueNotFinite = 606,
  FindingNotTried = 607,
};

/// The name of a code as it is printed, such as "group-missing"; empty for a number that is none.
PXROM_API const char* FindingCodeName(E_FindingCode code);
/// One line on what a code means; empty for a number that is none.
PXROM_API const char* FindingCodeExplanation(E_FindingCode code);
/// All codes, ascending.
PXROM_API std::vector<E_FindingCode> ListFindingCodes();

/// One thing that an inspection found.
struct CFinding {
  E_FindingSeverity severity = SeverityNote;
  E_FindingCode code = FindingGroupMissing;
  /// Where, both from 1. Columns count bytes.
  std::size_t line = 1;
  std::size_t column = 1;
  /// "PlexuraData 3 / Genome 1"; empty for the text as a whole.
  std::string group;
  /// With its "=", or empty.
  std::string key;
  /// What is there and what belongs there, shortened; empty where the sentence alone says it.
  std::string found;
  std::string expected;
  /// One sentence for a person.
  std::string sentence;
};

/// What a database says of one parameter.
struct CParameterOverview {
  std::string id;
  std::string caption;
  std::string unit;
  E_ParameterCausality causality = CausalityInput;
  E_ParameterType type = ContinuousNotManufacturable;
  bool enabled = false;
  int rank = 0;
  /// Bounds are those of the text, also where the library registers none.
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
};

/// Where the predicted error of an ensemble comes from.
enum E_PredictedErrorKind : std::int32_t {
  PredictedErrorNone = 0,             ///< none: the form with errors answers 1 or -2
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
  std::size_t characters = 0;
};

/// One "DiscreteSet=" line.
struct CCombinationOverview {
  std::size_t line = 0;
  std::vector<std::pair<std::string, int>> discreteValues;
  /// Output and number of its `PlexuraData` group.
  std::vector<std::pair<std::string, int>> outputs;
};

/// What a database holds, as far as its damage lets that be told.
struct CDatabaseOverview {
  std::size_t characters = 0;
  std::size_t lines = 0;
  std::vector<CParameterOverview> parameters;      ///< in the order of "IDs="
  std::vector<CCombinationOverview> combinations;  ///< in the order of the lines
  std::vector<CEnsembleOverview> ensembles;        ///< those that a line names, by number
};

struct CInspectionReport {
  /// By place, and at one place the graver first.
  std::vector<CFinding> findings;
  /// How many there are, with those that the list left out.
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t notes = 0;
  CDatabaseOverview overview;
};

/// Says what is in the text of a database and whether it is sound, where reading is silent.
///
/// A text without a finding of severity error is read by CReaderPXROMDatabase with status 0, and
/// each of its combinations then evaluates with status 0 where every input is in the middle of its
/// bounds (0.5 * lower + 0.5 * upper); the form with errors gives 0 or -2 there on a fresh copy,
/// unless a finding says FindingErrorFormRefused. A text that reading or such an evaluation refuses
/// has an error that says why. For that the text is read and evaluated here as well. Surfaces that
/// would take out of proportion long to evaluate are left out, and a FindingNotTried says so.
///
/// Any text is taken; time and memory are in proportion to it, by the limits of the reader. A code
/// is listed a hundred times at most; the last of its findings then tells how many more there are.
/// Exceptions: std::bad_alloc only. Threads: no shared state.
PXROM_API CInspectionReport InspectPXROMDatabase(const std::string& text);

/// Reads a database into the empty `out`, and says why where that fails: 1 with the first error of
/// an inspection and its line in `reason`, also for a text without any combination; `out` then
/// holds what was read before. 0 with `reason` untouched. Exceptions: std::bad_alloc only. Threads:
/// needs `out` and `reason` alone.
PXROM_API int ReadExplainedPXROMDatabase(std::string text, CDiscreteCombinations& out,
                                         std::string& reason);

}  // namespace Tarvane::Plexura::PXROM
