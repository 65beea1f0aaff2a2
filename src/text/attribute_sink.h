#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pxrom/database_labels.h"

namespace Tarvane::Plexura::PXROM::writing {

/// Short for the table of words.
using Labels = CPXROMDatabaseLabels;

/// Builds the text of groups, the counterpart of reading::AttributeRange: one line per attribute,
/// values in the classic locale, doubles in the shortest form that reads back to the same bits.
///
/// The first value that no text can hold gives the reason of a refusal. The text after it has no
/// meaning, so only loops need to test IsRefused.
///
/// It also counts the work of reading the text, as the reader does.
class AttributeSink {
 public:
  explicit AttributeSink(std::string& text) : text_(text) {}
  AttributeSink(const AttributeSink&) = delete;
  AttributeSink& operator=(const AttributeSink&) = delete;

  std::string& Text() { return text_; }

  // One attribute. Enumerations are written by number, flags as 0 or 1.
  void Put(const std::string& key, int value);
  void Put(const std::string& key, bool value) { Put(key, value ? 1 : 0); }
  void Put(const std::string& key, double value);
  void Put(const std::string& key, const std::vector<int>& list);
  void Put(const std::string& key, const std::vector<double>& list);
  void Put(const std::string& key, const std::vector<std::string>& list);
  template <class Value>
  void Put(const std::string& key, const std::vector<std::pair<std::string, Value>>& pairs) {
    PutJoined(key, pairs, [&](const std::pair<std::string, Value>& pair) {
      text_ += Labels::strGrpStart();
      text_ += pair.first;
      text_ += Labels::strSubSep();
      Append(key, pair.second);
      text_ += Labels::strGrpEnd();
    });
  }
  /// A matrix, flat by rows. Refused unless it has exactly that shape.
  void PutMatrix(const std::string& key, const std::vector<std::vector<double>>& matrix, int rows,
                 int columns);

  /// The group `word`, with the number `id` unless it is negative, and the attributes that `write`
  /// puts into it. The reason of a refusal inside the group begins with its word and number.
  template <class Write>
  void PutGroup(const std::string& word, int id, Write write) {
    const bool wasRefused = IsRefused();
    const std::size_t outerRows = std::exchange(emptyRows_, 0);
    const std::size_t body = Open(word, id);
    ++depth_;
    write();
    --depth_;
    Close(word, body);
    emptyRows_ = outerRows;
    if (IsRefused() && !wasRefused && depth_ > 0) {
      reason_.insert(0, word + " " + std::to_string(id) + ": ");
    }
  }

  /// Keeps the first reason.
  void Refuse(const std::string& reason) {
    if (reason_.empty()) reason_ = reason;
  }
  bool IsRefused() const { return !reason_.empty(); }
  const std::string& Reason() const { return reason_; }

  /// The work of reading the text so far, each group once (reading::DatabaseText).
  std::size_t Work() const { return work_; }

 private:
  std::size_t Open(const std::string& word, int id);
  void Close(const std::string& word, std::size_t body);

  template <class Elements, class Append>
  void PutJoined(const std::string& key, const Elements& elements, Append append) {
    text_ += key;
    const std::size_t start = text_.size();
    bool isFirst = true;
    for (const auto& element : elements) {
      if (!isFirst) text_ += Labels::strSep();
      isFirst = false;
      append(element);
    }
    work_ += text_.size() - start;
    text_ += Labels::strEOL();
  }
  void PutRows(const std::string& key, const std::vector<double>* rows, std::size_t count);
  void RequireFinite(const std::string& key, double value);
  void Append(const std::string& key, int value);
  void Append(const std::string& key, double value);
  void Append(const std::string&, std::string_view value) { text_ += value; }

  std::string& text_;
  std::string reason_;
  std::size_t work_ = 0;
  int depth_ = 0;
  /// The largest number of rows without columns in the group that is open.
  std::size_t emptyRows_ = 0;
};

/// "NumberOfSamples" for "NumberOfSamples=", as reasons name an attribute.
std::string NameOf(const std::string& key);

/// `word` in quotation marks and on one line, for names from outside in a reason.
std::string Quoted(std::string word);

/// Whether `value` is that of a field that nobody has set: +0.0.
bool IsUnset(double value);

/// Why no text can hold `word` as a name, unit or caption, as the end of a sentence whose beginning
/// names it; empty if a text can hold it.
std::string ReasonAgainst(std::string_view word);

}  // namespace Tarvane::Plexura::PXROM::writing
