#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace pxrom_command {

enum class Align { Left, Right };

/// A table for the terminal. A column whose cells are all empty is left out.
class Table {
 public:
  struct Column {
    std::string heading;
    Align align = Align::Left;
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// One cell per column. They are shown as Printed makes them, so that no text of a file can steer
  /// the terminal.
  void Add(std::vector<std::string> cells);
  void Print(std::ostream& out) const;

 private:
  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace pxrom_command
