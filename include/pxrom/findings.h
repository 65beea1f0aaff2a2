#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// How much a finding matters.
enum E_FindingSeverity : std::int32_t {
  SeverityNote = 0,     ///< true and worth knowing; nothing is wrong
  SeverityWarning = 1,  ///< the text reads and evaluates, but probably not as its author meant
  SeverityError = 2,    ///< damaged: the text is refused, or is read as something else than it says
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
  // What the library does with the text.
  FindingReadingRefused = 601,
  FindingEvaluationRefused = 602,
  FindingErrorFormRefused = 603,
  FindingErrorNone = 604,
  FindingDerivativeNone = 605,
  FindingValueNotFinite = 606,
  FindingNotTried = 607,
  // The check points at the end of a text.
  FindingCheckPointsDamaged = 701,
  FindingTextChanged = 702,
  FindingLineEndsChanged = 703,
  FindingAnswersSame = 704,
  FindingAnswersClose = 705,
  FindingAnswersDiffer = 706,
};

/// The name of a code as it is printed, such as "group-missing"; empty for an unknown number.
PXROM_API const char* FindingCodeName(E_FindingCode code);
/// One line on what a code means; empty for an unknown number.
PXROM_API const char* FindingCodeExplanation(E_FindingCode code);
/// All codes, ascending.
PXROM_API std::vector<E_FindingCode> ListFindingCodes();

/// `text` with an escape such as `\u202E` in place of each character that changes the direction of
/// the text around it (U+061C, U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069). Names and
/// captions of a database come from others, and such characters can make a line show something else
/// than it holds. Messages and findings of the library are already escaped; a host should escape
/// whatever else it shows of a database.
PXROM_API std::string VisibleText(std::string text);

/// One thing that an inspection found. Its texts can be shown as they are: short, without control
/// characters, and escaped by VisibleText.
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
  /// What the text holds and what it should hold, shortened; empty if the sentence says it.
  std::string found;
  std::string expected;
  /// One sentence for a person.
  std::string sentence;
};

}  // namespace Tarvane::Plexura::PXROM
