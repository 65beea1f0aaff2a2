#pragma once

#include <string>
#include <vector>

namespace pxrom_command {

/// Splits a table of comma-separated values (RFC 4180) into fields, byte by byte. Blanks around a
/// value are no part of it.
class CsvFields {
 public:
  /// False at a quotation mark inside a value, after which the rest has no meaning.
  bool Take(char byte);
  /// The end of the table also ends its last row. False inside a value in quotation marks.
  bool End();

  /// Whether the last row has ended; `TakeRow` then gives its fields and makes way for the next.
  bool RowEnded() const { return row_ended_; }
  std::vector<std::string> TakeRow();

 private:
  enum class State { kBeforeRow, kBeforeField, kBare, kQuoted, kAfterMark, kAfterQuoted };

  void EndField();
  void EndRow();
  void Start(char byte);

  State state_ = State::kBeforeRow;
  std::string field_;
  std::vector<std::string> fields_;
  bool row_ended_ = false;
};

}  // namespace pxrom_command
