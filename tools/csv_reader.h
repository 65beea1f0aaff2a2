#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

#include "csv_fields.h"

namespace pxrom_command {

/// One row of a table of comma-separated values.
struct CsvRow {
  /// Where it begins, from 1.
  std::size_t line = 0;
  /// Unchanged, without its line end, which is empty at the end of some files.
  std::string text;
  std::string line_end;
  /// The values alone: without quotation marks, and without the blanks around a bare value.
  std::vector<std::string> fields;
  /// What is wrong with its quotation marks, or empty. With a fault, `fields` has no meaning.
  std::string fault;
  /// False while `fields` waits for SplitFields.
  bool is_split = true;
};

/// Fills `fields` of a row that has no quotation mark.
void SplitFields(CsvRow& row);

/// Reads any number of rows, one by one. Lines end with "\n", "\r\n" or "\r"; blank lines are
/// skipped. A quoted value may hold commas, line ends and doubled quotation marks. A row whose
/// quotation marks don't fit is one line with a fault, and the next line begins a new row.
class CsvReader {
 public:
  /// `input` has to outlive the reader; refusals call it `name`.
  CsvReader(std::istream& input, std::string name);

  /// False at the end. Refusal when reading fails and at a line that is too long for a table.
  bool Next(CsvRow& row);
  /// The same, but leaves a row without quotation marks to SplitFields, which any thread can call.
  bool NextUnsplit(CsvRow& row);

 private:
  struct Line {
    std::string text;
    std::string end;
  };

  bool NextLine(Line& line);
  bool NextInputLine(Line& line);
  const char* Feed(const Line& line);
  void EndAsFault(CsvRow& row, const std::vector<Line>& lines, const char* fault);

  std::streambuf* input_;
  std::string name_;
  CsvFields fields_;
  std::size_t line_ = 0;
  std::size_t last_size_ = 0;  ///< of a line, since the next one is likely to be as long
  /// Lines to be read again, the next one last.
  std::vector<Line> again_;
};

/// `text` as one value of a table: in quotation marks where it needs them.
std::string CsvField(const std::string& text);

}  // namespace pxrom_command
