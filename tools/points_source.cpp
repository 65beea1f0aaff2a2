#include "points_source.h"

#include <iostream>
#include <utility>

#include "model_file.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

PointsSource::PointsSource(const std::string& path) : name_(path == "-" ? "<stdin>" : path) {
  if (path != "-") file_ = OpenFile(path);
  // Otherwise the standard input is read character by character.
  std::ios::sync_with_stdio(false);
}

std::istream& PointsSource::Stream() { return name_ == "<stdin>" ? std::cin : file_; }

CsvRow HeaderOf(CsvReader& reader, const std::string& name) {
  CsvRow header;
  if (!reader.Next(header)) {
    throw Refusal(Quoted(name) + " is empty: its first line has to name the columns");
  }
  return header;
}

std::vector<CsvRow> NextRows(CsvReader& reader, std::size_t most) {
  // A block of rows ends early when its rows are long.
  constexpr std::size_t kCharacters = std::size_t{1} << 22U;
  std::vector<CsvRow> rows;
  std::size_t characters = 0;
  CsvRow row;
  while (rows.size() < most && characters < kCharacters && reader.NextUnsplit(row)) {
    characters += row.text.size();
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace pxrom_command
