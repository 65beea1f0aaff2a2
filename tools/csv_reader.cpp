#include "csv_reader.h"

#include <algorithm>
#include <ios>
#include <string_view>
#include <utility>

#include "refusal.h"

namespace pxrom_command {

namespace {

using Traits = std::char_traits<char>;

// An unclosed quotation mark would include all that follows: this limits it.
constexpr std::size_t kLongestRow = std::size_t{1} << 20U;

// Some programs write it at the start of a text.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr const char* kBlanks = " \t";

const char* const kUnclosed = "a quotation mark is never closed";
const char* const kMisplaced =
    "a quotation mark is inside a value (put the value in quotation marks and double the mark)";

}  // namespace

CsvReader::CsvReader(std::istream& input, std::string name)
    : input_(input.rdbuf()), name_(std::move(name)) {}

bool CsvReader::NextInputLine(Line& line) {
  line.text.clear();
  line.text.reserve(last_size_);
  line.end.clear();
  try {
    for (auto c = input_->sbumpc(); !Traits::eq_int_type(c, Traits::eof()); c = input_->sbumpc()) {
      const char byte = Traits::to_char_type(c);
      if (byte == '\n' || byte == '\r') {
        line.end = byte;
        last_size_ = line.text.size();
        const bool both =
            byte == '\r' && Traits::eq_int_type(input_->sgetc(), Traits::to_int_type('\n'));
        if (both) line.end += Traits::to_char_type(input_->sbumpc());
        return true;
      }
      line.text += byte;
      if (line.text.size() > kLongestRow) {
        throw Refusal(name_ + ":" + std::to_string(line_ + 1) +
                      ": the line is longer than a mebibyte: this is not a table of points");
      }
    }
  } catch (const std::ios_base::failure&) {
    throw Refusal("can't read " + name_ + ": reading failed");
  }
  return !line.text.empty();
}

bool CsvReader::NextLine(Line& line) {
  if (again_.empty()) {
    if (!NextInputLine(line)) return false;
  } else {
    line = std::move(again_.back());
    again_.pop_back();
  }
  ++line_;
  return true;
}

/// What is wrong with the quotation marks up to the end of `line`, or null.
const char* CsvReader::Feed(const Line& line) {
  std::string bytes = line.text + line.end;
  if (line_ == 1 && bytes.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    bytes.erase(0, kByteOrderMark.size());
  }
  for (const char byte : bytes) {
    if (!fields_.Take(byte)) return kMisplaced;
  }
  return line.end.empty() && !fields_.End() ? kUnclosed : nullptr;
}

/// The first line is the row; the lines after it are read again.
void CsvReader::EndAsFault(CsvRow& row, const std::vector<Line>& lines, const char* fault) {
  row.text = lines.front().text;
  row.line_end = lines.front().end;
  row.fault = fault;
  again_.insert(again_.end(), lines.rbegin(), lines.rend() - 1);
  line_ = row.line;
  fields_ = CsvFields();
}

void SplitFields(CsvRow& row) {
  std::string_view rest = row.text;
  row.fields.reserve(static_cast<std::size_t>(std::count(rest.begin(), rest.end(), ',')) + 1);
  for (bool more = true; more;) {
    const std::size_t comma = rest.find(',');
    more = comma != std::string_view::npos;
    const std::string_view cell = rest.substr(0, comma);
    const std::size_t first = cell.find_first_not_of(kBlanks);
    const std::size_t last = cell.find_last_not_of(kBlanks);
    row.fields.emplace_back(first == std::string_view::npos ? cell.substr(0, 0)
                                                            : cell.substr(first, last - first + 1));
    if (more) rest.remove_prefix(comma + 1);
  }
  row.is_split = true;
}

bool CsvReader::Next(CsvRow& row) {
  if (!NextUnsplit(row)) return false;
  if (!row.is_split) SplitFields(row);
  return true;
}

bool CsvReader::NextUnsplit(CsvRow& row) {
  row = CsvRow();
  std::vector<Line> lines;
  std::size_t size = 0;
  Line line;
  while (NextLine(line)) {
    const bool blank = line.text.find_first_not_of(kBlanks) == std::string::npos;
    if (blank && lines.empty()) continue;
    // The first line may begin with the mark.
    if (lines.empty() && line_ > 1 && line.text.find('"') == std::string::npos) {
      row.line = line_;
      row.text = std::move(line.text);
      row.line_end = std::move(line.end);
      row.is_split = false;
      return true;
    }
    if (lines.empty()) row.line = line_;
    lines.push_back(line);
    size += line.text.size();
    if (const char* const fault = Feed(line)) {
      EndAsFault(row, lines, fault);
      return true;
    }
    if (fields_.RowEnded()) {
      row.line_end = std::move(lines.back().end);
      lines.back().end.clear();
      for (const Line& part : lines) row.text += part.text + part.end;
      row.fields = fields_.TakeRow();
      return true;
    }
    if (size > kLongestRow) break;
  }
  if (lines.empty()) return false;
  EndAsFault(row, lines, kUnclosed);
  return true;
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char byte : text) quoted.append(byte == '"' ? 2 : 1, byte);
  return quoted + '"';
}

}  // namespace pxrom_command
