#include "csv_fields.h"

#include <utility>

namespace pxrom_command {

namespace {

bool IsBlank(char byte) { return byte == ' ' || byte == '\t'; }
bool IsLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

}  // namespace

void CsvFields::EndField() {
  if (state_ == State::kBare) field_.erase(field_.find_last_not_of(" \t") + 1);
  fields_.push_back(std::move(field_));
  field_.clear();
  state_ = State::kBeforeField;
}

void CsvFields::EndRow() {
  EndField();
  state_ = State::kBeforeRow;
  row_ended_ = true;
}

/// The first byte of a field that is neither blank nor an end.
void CsvFields::Start(char byte) {
  if (byte == '"') {
    state_ = State::kQuoted;
  } else {
    state_ = State::kBare;
    field_ += byte;
  }
}

bool CsvFields::Take(char byte) {
  if (state_ == State::kQuoted) {
    if (byte == '"') {
      state_ = State::kAfterMark;
    } else {
      field_ += byte;
    }
    return true;
  }
  if (IsLineEnd(byte)) {
    if (state_ != State::kBeforeRow) EndRow();
    return true;
  }
  if (byte == ',') {
    EndField();
    return true;
  }
  switch (state_) {
    case State::kBare:
      field_ += byte;
      return byte != '"';
    case State::kAfterMark:
      // The mark ended the value, or it is the first of two that mean one.
      state_ = byte == '"' ? State::kQuoted : State::kAfterQuoted;
      if (byte == '"') field_ += byte;
      return byte == '"' || IsBlank(byte);
    case State::kAfterQuoted:
      return IsBlank(byte);
    default:
      if (!IsBlank(byte)) Start(byte);
      return true;
  }
}

bool CsvFields::End() {
  if (state_ == State::kQuoted) return false;
  if (state_ != State::kBeforeRow) EndRow();
  return true;
}

std::vector<std::string> CsvFields::TakeRow() {
  row_ended_ = false;
  return std::exchange(fields_, {});
}

}  // namespace pxrom_command
