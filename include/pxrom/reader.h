#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// The base of the text readers: owns the text and splits the values of its lines.
///
/// Deliberate (classic-locale): numbers follow the syntax of a stream extraction in the classic
/// locale, whatever the global locale of the process is. Leading blanks and a plus sign are
/// accepted, and text after the number is ignored. "1e", "inf" and "nan" give 0, 1e999 gives the
/// largest double, and an int beyond its range gives the limit of that range. A text that is not a
/// number gives 0 and is not reported.
///
/// Threads: nothing else may use the object during ReadDataStream; const operations may run at the
/// same time.
class PXROM_API CReader {
 public:
  CReader();
  /// Deliberate (reader-copy-is-empty): makes an empty reader, **the text is not copied**.
  /// Assignment does copy it.
  CReader(const CReader&);
  CReader& operator=(const CReader&);

  virtual ~CReader();
  virtual E_ReaderType ReaderType() const;
  /// A new, empty reader of the same class, owned by the caller. Give it its text again.
  virtual CReader* Clone() const;
  /// Copies `text`. Always 0.
  virtual int ReadDataStream(std::string& text);
  /// Copies the whole buffer of the stream, whatever its read position; consumes nothing. Always 0.
  virtual int ReadDataStream(std::stringstream& text);

  // Splitters. A delimiter at the very end adds no token, two in a row give an empty token, and an
  // empty text gives no token.

  /// One value per token; a token that is not a number counts as 0.0.
  std::vector<double> TokenizeDouble(const std::string& text, const char& delimiter) const;
  /// One value per token; a token that is not a number counts as 0, and **a blank token repeats the
  /// value before it** (0 for the first).
  std::vector<int> TokenizeInt(const std::string& text, const char& delimiter) const;
  /// The tokens unchanged, except the last one, which loses its first "\n" and then its first "\r".
  std::vector<std::string> TokenizeString(const std::string& text, const char& delimiter) const;
  // Pairs such as {a;1},{b;2}. In a token without an inner delimiter, the whole token is both key
  // and value. Keys and values are not trimmed.

  /// Drops the first and the last character of each token, whatever they are. An empty token throws
  /// std::out_of_range.
  std::vector<std::pair<std::string, double>> TokenizePairStringDouble(
      const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const;
  /// Like TokenizePairStringDouble.
  std::vector<std::pair<std::string, int>> TokenizePairStringInt(const std::string& text,
                                                                 const char& pairDelimiter,
                                                                 const char& innerDelimiter) const;
  /// Reads the text between the first "{" and the first "}" of each token. Without a "{" it begins
  /// with the token; without a "}", or with a "}" before the "{", it ends with the token.
  std::vector<std::pair<std::string, std::string>> TokenizePairStringString(
      const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const;

 protected:
  std::string DataStream;
};

}  // namespace Tarvane::Plexura::PXROM
