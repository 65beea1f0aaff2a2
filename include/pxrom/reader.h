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
/// Numbers follow the syntax of a stream extraction in the classic locale, whatever the global
/// locale of the process is: leading blanks and a plus sign are taken, text behind the number is
/// ignored, "1e", "inf" and "nan" give 0, 1e999 the largest double, an int beyond its range the
/// limit of that range. What is no number gives 0 and is not reported.
///
/// Threads: ReadDataStream needs the object alone; everything const may run side by side.
class PXROM_API CReader {
 public:
  CReader();
  /// Makes an empty reader: **the text is not copied.** Assignment does copy it.
  CReader(const CReader&);
  CReader& operator=(const CReader&);

  virtual ~CReader();
  virtual E_ReaderType ReaderType() const;
  /// A new, empty reader of the same class, owned by the caller. It has to be given its text again.
  virtual CReader* Clone() const;
  /// Takes a copy of `text`. Always 0.
  virtual int ReadDataStream(std::string& text);
  /// Takes the stream's whole buffer, whatever its read position; nothing is consumed. Always 0.
  virtual int ReadDataStream(std::stringstream& text);

  // Splitters. A delimiter at the very end adds no token, two in a row give an empty one, an empty
  // text gives none.

  /// One value per token; what is no number counts as 0.0.
  std::vector<double> TokenizeDouble(const std::string& text, const char& delimiter) const;
  /// One value per token; what is no number counts as 0, and **a blank token repeats the value
  /// before it** (0 for the first). Deliberate.
  std::vector<int> TokenizeInt(const std::string& text, const char& delimiter) const;
  /// The tokens as they stand, but for the last one, which loses its first "\n" and then its first
  /// "\r".
  std::vector<std::string> TokenizeString(const std::string& text, const char& delimiter) const;
  // Pairs such as {a;1},{b;2}. Without an inner delimiter the whole of a token is key and value.
  // Keys and values are not trimmed.

  /// The first and the last character of each token are dropped, whatever they are. An empty token
  /// throws std::out_of_range.
  std::vector<std::pair<std::string, double>> TokenizePairStringDouble(
      const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const;
  /// As TokenizePairStringDouble.
  std::vector<std::pair<std::string, int>> TokenizePairStringInt(const std::string& text,
                                                                 const char& pairDelimiter,
                                                                 const char& innerDelimiter) const;
  /// Takes what stands between the first "{" and the first "}" of each token. Without a "{" it
  /// begins with the token; without a "}", or with one in front of the "{", it ends with the token.
  std::vector<std::pair<std::string, std::string>> TokenizePairStringString(
      const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const;

 protected:
  std::string DataStream;
};

}  // namespace Tarvane::Plexura::PXROM
