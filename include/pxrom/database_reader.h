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
/// ResumeDiscreteCombinations. The reader keeps no reference to what it filled. It can read a new
/// text, or be destroyed, as soon as everything is read.
///
/// Deliberate (silent-reading): reading is a substring search, not a parse, and a failure gives
/// only status 1. Missing attributes are not reported (scalars start at 0 and bools at false), bad
/// numbers read as 0, and the search for a missing group can find something else
/// (docs/behaviours.md). Use InspectPXROMDatabase for files from others.
///
/// Limits: negative sizes of matrices, and counts that need more than the text holds, give status 1
/// before anything is allocated. A negative number of surfaces counts as 0. Any number of lines may
/// use one group: it is read once, and its content is held once (CFittingCandidate). Groups of a
/// damaged text can overlap. A text whose groups add up to more than 16 MiB plus 16 times its
/// length, counting 512 bytes extra for each group and 80 for each use, is refused with status 1.
/// So no text can exhaust memory or time: reading takes at most 64 MiB, or 64 times the length of a
/// longer text.
///
/// Exceptions: std::bad_alloc and std::out_of_range. Nothing leaks on any path.
///
/// Deliberate (reading-out-of-range): a text that is shorter than the bounds that its damaged
/// groups lead to (an empty text, for example) and an empty pair in a list throw std::out_of_range.
/// Treat it as status 1.
///
/// Threads: const operations only read, so several threads may read from one reader into different
/// targets. Nothing else may use the reader during ReadDataStream.
class PXROM_API CReaderPXROMDatabase : public CReader {
 public:
  CReaderPXROMDatabase();
  /// Makes an empty reader, as CReader does; assignment copies the text.
  CReaderPXROMDatabase(const CReaderPXROMDatabase&);
  CReaderPXROMDatabase& operator=(const CReaderPXROMDatabase&);

  ~CReaderPXROMDatabase() override;
  E_ReaderType ReaderType() const override;
  CReaderPXROMDatabase* Clone() const override;

  /// Reads the whole database. 0, or 1 with `out` holding what was read before the failure.
  ///
  /// Deliberate (reading-adds): `out` is **not** reset first, so a repeated read adds to it.
  int ResumeDiscreteCombinations(CDiscreteCombinations& out) const;
  /// Reads the counts and value references of the `FMU` group. A missing key leaves its target
  /// unchanged, but `references` is always replaced. 1 when the search for the group fails; for a
  /// database without that group it usually does not.
  int ResumeFMUDescriptionVariables(int& reals, int& integers, int& booleans, int& strings,
                                    int& events,
                                    std::vector<std::pair<std::string, int>>& references) const;

 protected:
  // Positions: `start` or `lower` is the first character of a group's body, `end` or `upper` the
  // "<" of its closing tag.

  // Finds the body of a group. There is no test that either tag was found: a missing opening tag
  // gives a `start` of its length less one, a missing closing tag an `end` of npos, and both
  // results are written in any case. 1 when `end` is not after `start`; the forms with a range
  // begin at `lower` and also give 1 when `end` is after `upper`. Else 0.
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, std::size_t& start,
                                std::size_t& end) const;
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, int id,
                                std::size_t& start, std::size_t& end) const;
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, int id,
                                std::size_t lower, std::size_t upper, std::size_t& start,
                                std::size_t& end) const;
  int SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag, std::size_t lower,
                                std::size_t upper, std::size_t& start, std::size_t& end) const;

  // Reads the value of the first `key` in the range, which includes the character at `upper` (npos:
  // to the end of the text). If the key is missing or its value is blank, a scalar target stays
  // unchanged and a list becomes empty. A `lower` beyond the text throws std::out_of_range.
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

  /// Finds the registry on its own; the bounds are ignored. 0 or 1.
  int ResumeParameterRegistry(CDiscreteCombinations& out, std::size_t first,
                              std::size_t last) const;
  /// Fills `out` with one candidate from `PlexuraData` group `id`. 1 leaves `out` untouched when
  /// the group is not found, and empty when its content is refused.
  int ResumeFittingCandidates(CFittingCandidates& out, int id) const;

  // One per family, on the bounds of one `Genome` group: 0 or 1. A null record gives 1, and so does
  // one of another family, which stays unchanged. The record is not checked (IsAllRight).
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
