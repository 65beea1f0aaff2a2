#pragma once

#include <string>
#include <vector>

namespace pxrom_command {

/// A table of a page. A long one is folded away.
struct HtmlTable {
  /// A cell's text is escaped where it is written.
  struct Cell {
    std::string text;
    std::string classes;
  };
  using Row = std::vector<Cell>;

  std::string title;
  Row heads;
  std::vector<Row> rows;
};

std::string Html(const HtmlTable& table);
/// `title` and `content` are HTML.
std::string Section(const std::string& id, const std::string& title, const std::string& content);

}  // namespace pxrom_command
