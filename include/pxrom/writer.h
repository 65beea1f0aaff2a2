#pragma once

#include <string>
#include <utility>
#include <vector>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

class CDiscreteCombinations;

/// Turns live objects into the text of a database: what CReaderPXROMDatabase reads, written by the
/// words of the same table. docs/database-format.md tells the format.
///
/// **What was written reads back as it was**: ranks, availability, bounds, the reachable
/// combinations in their order, every number to the last bit (in the shortest form that allows it),
/// and so every value, error and status of an evaluation. Writing what was read gives the same text
/// again, byte for byte, on any machine and in any locale.
///
/// **What the text can't hold is refused.** These are, by the rules of the reader:
///   - numbers that are not finite; counts that differ from the shapes of their lists;
///   - a name, unit or caption with one of `,` `;` `{` `}`, a line end, a tag, or a key of the
///     registry that stands further down; no parameter at all, or a single one of a blank name;
///   - a unit or bound of a parameter that is not continuous (its caption is kept);
///   - a combination that doesn't fit the registry as it is now: another number of discrete inputs
///     or of enabled outputs, or values that a change of ranks has put out of reach;
///   - a candidate list without exactly one candidate, that one chosen for evaluation; another
///     number of weights than of surfaces; a version of a candidate or base record other than the
///     newest;
///   - data that only a flag lets the reader read, without that flag: cross-validation data without
///     error prediction, error data without SavePredictorError or of a record below version 192, an
///     extra percentage without its option;
///   - support vector records below version 171, or with epsilon, nu or constant out of the range
///     of their Set operations; regression terms that are missing or of no type 1 to 4; surfaces of
///     no known family;
///   - a text that asks its reader for more work than that grants (surfaces of many samples without
///     any input).
///
/// Left out, since nothing tells a caller of the object about it: names other than IDs, infos of
/// IDs that aren't registered, and combinations that were registered again. Candidate lists that
/// are equal share one group.
///
/// Status of all operations: 0 with `out` replaced; 1 with `out` untouched. The forms with a
/// `reason` tell why in one sentence, from the outside in, such as `output "mass" at Holes=2:
/// Genome 1: KrigingSigmaSquare is not a finite number`; on 0 it is emptied.
/// Cost: one pass, in time and memory proportional to the text.
/// Exceptions: std::bad_alloc, with `out` and `reason` untouched.
/// Threads: a writer has no state. Nothing may change the object meanwhile, the form of Evaluate
/// that writes Kriging records included (kriging.h).
class PXROM_API CWriterPXROMDatabase {
 public:
  /// The registry, the discrete sets, and one group per different candidate list, numbered from 0
  /// in the order of their first use: combinations as they were registered, outputs by ID.
  int WriteDiscreteCombinations(const CDiscreteCombinations& model, std::string& out) const;
  int WriteDiscreteCombinations(const CDiscreteCombinations& model, std::string& out,
                                std::string& reason) const;

  /// The `FMU` group, to be put behind the text above: what ResumeFMUDescriptionVariables reads.
  /// Refused is a reference whose name the text can't hold.
  int WriteFMUDescriptionVariables(int reals, int integers, int booleans, int strings, int events,
                                   const std::vector<std::pair<std::string, int>>& references,
                                   std::string& out) const;
  int WriteFMUDescriptionVariables(int reals, int integers, int booleans, int strings, int events,
                                   const std::vector<std::pair<std::string, int>>& references,
                                   std::string& out, std::string& reason) const;
};

}  // namespace Tarvane::Plexura::PXROM
