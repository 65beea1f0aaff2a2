#pragma once

#include <cstddef>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/reader.h"
#include "pxrom/rs_data.h"

namespace Tarvane::Plexura::PXROM {

class CDiscreteCombinations;
class CFittingCandidates;

namespace reading {
class AttributeRange;
}

/// Turns the text of a database into live objects: construct, ReadDataStream, then
/// ResumeDiscreteCombinations. The reader keeps no reference to what it filled and may be given a
/// new text and used again; once everything is read it may be dropped.
///
/// Reading is a substring search, not a parse, and silent by design: status 1 is all that a failure
/// tells. Missing attributes are not reported (scalars start at 0 and bools at false), bad numbers
/// read as 0, and the search for a missing group can find something else (docs/behaviours.md).
///
/// What a text can't claim: counts that are negative or that ask for more values than the list
/// holds give status 1 before anything is allocated. Groups may be shared by several lines or
/// openings, and each use reads them anew; a text whose uses add up to more than 16 MiB plus 16
/// times its length, with 512 bytes for each group, is refused with status 1, so that no text can
/// exhaust memory or time: reading takes at most 64 MiB, or 64 times the length of a longer text.
///
/// Exceptions: std::bad_alloc; std::out_of_range from a text that is shorter than the bounds its
/// damaged groups lead to (an empty text, for one) and from an empty pair in a list. Nothing leaks
/// on any path.
/// Threads: everything const only reads, so several threads may read one reader into different
/// targets; ReadDataStream needs the object alone.
class PXROM_API CReaderPXROMDatabase : public CReader {
 public:
  CReaderPXROMDatabase();
  /// Makes an empty reader, as CReader does; assignment copies the text.
  CReaderPXROMDatabase(const CReaderPXROMDatabase&);
  CReaderPXROMDatabase& operator=(const CReaderPXROMDatabase&);

  ~CReaderPXROMDatabase() override;
  E_ReaderType ReaderType() const override;
  CReaderPXROMDatabase* Clone() const override;

  /// Reads the whole database into `out`, which is **not** reset first: a repeated read adds to it.
  /// 0, or 1 with `out` holding what was read before the failure.
  int ResumeDiscreteCombinations(CDiscreteCombinations& out) const;
  /// Reads the counts and value references of the `FMU` group. A key that is not there leaves its
  /// target, but `references` is always replaced. 1 when the group's search fails, which a database
  /// without that group usually does not make happen.
  int ResumeFMUDescriptionVariables(int& reals, int& integers, int& booleans, int& strings,
                                    int& events,
                                    std::vector<std::pair<std::string, int>>& references) const;

 protected:
  // Positions: `start` or `lower` is the first character of a group's body, `end` or `upper` the
  // "<" of its closing tag.

  // Finds the body of a group. There is no test that either tag was found: a missing opening tag
  // gives a `start` of its length less one, a missing closing tag an `end` of npos, and both
  // results are written in any case. 1 when `end` is not behind `start`; the forms in a range begin
  // at `lower` and also give 1 when `end` lies behind `upper`. Else 0.
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, std::size_t& start,
                                std::size_t& end) const;
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, int id,
                                std::size_t& start, std::size_t& end) const;
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, int id,
                                std::size_t lower, std::size_t upper, std::size_t& start,
                                std::size_t& end) const;
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, std::size_t lower,
                                std::size_t upper, std::size_t& start, std::size_t& end) const;

  // Reads the value of the first `key` in the range, whose last character is the one at `upper`
  // (npos: to the end of the text). A scalar target stays as it was when the key is missing or its
  // value is blank; a list is always replaced, by an empty one in these cases. A `lower` beyond the
  // text throws std::out_of_range.
  void CatchKeyValue(const std::string& text, const std::string& key, std::string& target,
                     std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key, int& target,
                     std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key, double& target,
                     std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key, bool& target,
                     std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key, std::vector<int>& target,
                     std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key, std::vector<double>& target,
                     std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key,
                     std::vector<std::string>& target, std::size_t lower, std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key,
                     std::vector<std::pair<std::string, int>>& target, std::size_t lower,
                     std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key,
                     std::vector<std::pair<std::string, double>>& target, std::size_t lower,
                     std::size_t upper) const;
  void CatchKeyValue(const std::string& text, const std::string& key,
                     std::vector<std::pair<std::string, std::string>>& target, std::size_t lower,
                     std::size_t upper) const;
  /// The number of lines of the range that hold `key`.
  std::size_t CountAttribute(const std::string& text, const std::string& key, std::size_t lower,
                             std::size_t upper) const;

  /// Finds the registry itself; the bounds that are passed do not matter. 0 or 1.
  int ResumeParameterRegistry(CDiscreteCombinations& out, std::size_t first,
                              std::size_t last) const;
  /// Fills `out` with one candidate from `PlexuraData` group `id`. 1 leaves `out` untouched when
  /// the group is not found, and empty when its content is refused.
  int ResumeFittingCandidates(CFittingCandidates& out, int id) const;

  // One per family, on the bounds of one `Genome` group: 0 or 1. A null record or one of another
  // family gives 1 and is left alone. The record is not checked for soundness (IsAllRight).
  int ResumeRSData(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeConstantData(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeKrigingData(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeKrigingDataPredictorError(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeQRSData(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeQRSDataPredictorError(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeSVRData(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeMLSData(CRSData* data, std::size_t lower, std::size_t upper) const;
  int ResumeLBFData(CRSData* data, std::size_t lower, std::size_t upper) const;

 private:
  int ResumeInRange(int (*resume)(reading::AttributeRange&, CRSData*), CRSData* data,
                    std::size_t lower, std::size_t upper) const;
};

}  // namespace Tarvane::Plexura::PXROM
