// The engine of the database reader for derived readers: searches and typed values on any text.

#include "pxrom/database_reader.h"

#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM {

using reading::Bounds;
using reading::DatabaseText;
using reading::Labels;

namespace {

int SearchBounds(const std::string& text, const std::string& opening, const std::string& tag,
                 std::size_t from, std::size_t& start, std::size_t& end) {
  Bounds bounds;
  const int status =
      DatabaseText(text).SearchBounds(opening, reading::ClosingTag(tag), from, bounds);
  start = bounds.lower;
  end = bounds.upper;
  return status;
}

// The value of the first `key` in the range. Any string can be a key here, so this is a plain
// search; the reader's own reads use AttributeRange.
bool FindValue(const std::string& text, const std::string& key, std::size_t lower,
               std::size_t upper, std::string_view& value) {
  const std::string_view range = reading::ViewOf(text, lower, upper);
  const std::size_t at = range.find(key);
  if (at == std::string_view::npos) return false;
  value = reading::RestOfLine(range, at + key.size());
  return true;
}

template <class Scalar>
void CatchScalar(const std::string& text, const std::string& key, Scalar& target, std::size_t lower,
                 std::size_t upper) {
  std::string_view value;
  if (FindValue(text, key, lower, upper, value)) reading::Extract(value, target);
}

template <class Value>
void CatchList(const std::string& text, const std::string& key, std::vector<Value>& target,
               std::size_t lower, std::size_t upper) {
  std::string_view value;
  FindValue(text, key, lower, upper, value);
  reading::Tokenize(reading::EmptyIfBlank(value), Labels::strSep()[0], target);
}

template <class Value>
void CatchPairs(const std::string& text, const std::string& key,
                std::vector<std::pair<std::string, Value>>& target, std::size_t lower,
                std::size_t upper) {
  std::string_view value;
  FindValue(text, key, lower, upper, value);
  reading::TokenizePairs(reading::EmptyIfBlank(value), Labels::strSep()[0], Labels::strSubSep()[0],
                         target);
}

}  // namespace

CReaderPXROMDatabase::CReaderPXROMDatabase() = default;
CReaderPXROMDatabase::CReaderPXROMDatabase(const CReaderPXROMDatabase&) = default;
CReaderPXROMDatabase& CReaderPXROMDatabase::operator=(const CReaderPXROMDatabase&) = default;
CReaderPXROMDatabase::~CReaderPXROMDatabase() = default;

E_ReaderType CReaderPXROMDatabase::ReaderType() const { return ReaderTypeText; }

CReaderPXROMDatabase* CReaderPXROMDatabase::Clone() const {
  return new CReaderPXROMDatabase(*this);
}

int CReaderPXROMDatabase::SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag,
                                                    std::size_t& start, std::size_t& end) const {
  return SearchBounds(text, reading::OpeningTag(tag), tag, 0, start, end);
}

int CReaderPXROMDatabase::SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag,
                                                    int id, std::size_t& start,
                                                    std::size_t& end) const {
  return SearchBounds(text, reading::OpeningTag(tag, id), tag, 0, start, end);
}

int CReaderPXROMDatabase::SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag,
                                                    int id, std::size_t lower, std::size_t upper,
                                                    std::size_t& start, std::size_t& end) const {
  // `upper` limits the result and not the search, so bounds after it are written too.
  const int status = SearchBounds(text, reading::OpeningTag(tag, id), tag, lower, start, end);
  return end > upper ? 1 : status;
}

int CReaderPXROMDatabase::SearchBoundsOfTaggedGroup(const std::string& text, const std::string& tag,
                                                    std::size_t lower, std::size_t upper,
                                                    std::size_t& start, std::size_t& end) const {
  const int status = SearchBounds(text, reading::OpeningTag(tag), tag, lower, start, end);
  return end > upper ? 1 : status;
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::string& target, std::size_t lower,
                                         std::size_t upper) const {
  std::string_view value;
  if (FindValue(text, key, lower, upper, value)) target = std::string(value);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         int& target, std::size_t lower, std::size_t upper) const {
  CatchScalar(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         double& target, std::size_t lower,
                                         std::size_t upper) const {
  CatchScalar(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         bool& target, std::size_t lower, std::size_t upper) const {
  CatchScalar(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::vector<int>& target, std::size_t lower,
                                         std::size_t upper) const {
  CatchList(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::vector<double>& target, std::size_t lower,
                                         std::size_t upper) const {
  CatchList(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::vector<std::string>& target, std::size_t lower,
                                         std::size_t upper) const {
  CatchList(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::vector<std::pair<std::string, int>>& target,
                                         std::size_t lower, std::size_t upper) const {
  CatchPairs(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::vector<std::pair<std::string, double>>& target,
                                         std::size_t lower, std::size_t upper) const {
  CatchPairs(text, key, target, lower, upper);
}

void CReaderPXROMDatabase::CatchKeyValue(const std::string& text, const std::string& key,
                                         std::vector<std::pair<std::string, std::string>>& target,
                                         std::size_t lower, std::size_t upper) const {
  CatchPairs(text, key, target, lower, upper);
}

std::size_t CReaderPXROMDatabase::CountAttribute(const std::string& text, const std::string& key,
                                                 std::size_t lower, std::size_t upper) const {
  return reading::CountLinesWith(reading::ViewOf(text, lower, upper), key);
}

}  // namespace Tarvane::Plexura::PXROM
