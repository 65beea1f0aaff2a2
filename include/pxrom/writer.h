#pragma once

#include <string>
#include <utility>
#include <vector>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

class CDiscreteCombinations;

/// Turns live objects into the text of a database that CReaderPXROMDatabase reads, with the words
/// of the same table. docs/database-format.md describes the format.
///
/// **A written text reads back unchanged**: ranks, availability, bounds, the reachable combinations
/// in their order, every number to the last bit (in its shortest form), and so every value, error
/// and status of an evaluation. Writing what was read gives the same text again, byte for byte, on
/// any machine and in any locale.
///
/// **What the text can't hold is refused.** By the rules of the reader, these are:
///   - numbers that are not finite; counts that differ from the shapes of their lists;
///   - a name, unit or caption with one of `,` `;` `{` `}`, a line end, a tag, or a key that occurs
///     later in the registry; no parameter at all, or a single parameter with a blank name;
///   - a unit or bound of a parameter that is not continuous (its caption is kept);
///   - a combination that doesn't fit the current registry: another number of discrete inputs or of
///     enabled outputs, or values that a change of ranks has made unreachable;
///   - a candidate list that does not hold exactly one candidate, chosen for evaluation; a number
///     of weights that is not that of the surfaces; a version of a candidate or base record other
///     than the newest;
///   - data that the reader reads only with a flag, without that flag: cross-validation data
///     without error prediction, error data without SavePredictorError or of a record below version
///     192, an extra percentage without its option;
///   - support vector records below version 171, or with epsilon, nu or constant outside the range
///     of their Set operations; regression terms that are missing or have no type 1 to 4; surfaces
///     of no known family;
///   - a text that would exceed the work limit of its reader (surfaces of many samples without any
///     input).
///
/// Not written, because no operation of the object returns it: names other than IDs, infos of IDs
/// that aren't registered, and combinations that were registered again. Equal candidate lists share
/// one group.
///
/// Status of all operations: 0 with `out` replaced; 1 with `out` untouched. The forms with a
/// `reason` give the cause in one sentence, from the outside in, such as `output "mass" at Holes=2:
/// Genome 1: KrigingSigmaSquare is not a finite number`; on 0 it is emptied.
/// Cost: one pass, in time and memory proportional to the text.
/// Exceptions: std::bad_alloc, with `out` and `reason` untouched.
/// Threads: a writer has no state. Nothing may change the object during the call, including the
/// form of Evaluate that writes Kriging records (kriging.h).
class PXROM_API CWriterPXROMDatabase {
 public:
  /// Writes the registry, the discrete sets, and one group per different candidate list, numbered
  /// from 0 in the order of their first use: combinations as they were registered, outputs by ID.
  int WriteDiscreteCombinations(const CDiscreteCombinations& model, std::string& out) const;
  int WriteDiscreteCombinations(const CDiscreteCombinations& model, std::string& out,
                                std::string& reason) const;

  /// Writes the `FMU` group, to be appended to the text above: what ResumeFMUDescriptionVariables
  /// reads. Refuses a reference whose name the text can't hold.
  int WriteFMUDescriptionVariables(int reals, int integers, int booleans, int strings, int events,
                                   const std::vector<std::pair<std::string, int>>& references,
                                   std::string& out) const;
  int WriteFMUDescriptionVariables(int reals, int integers, int booleans, int strings, int events,
                                   const std::vector<std::pair<std::string, int>>& references,
                                   std::string& out, std::string& reason) const;
};

}  // namespace Tarvane::Plexura::PXROM
