#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pxrom_command {

/// A table of a page. A long one is folded away. Rows become HTML as they are added, since there
/// can be one for every few characters of a model.
class HtmlTable {
 public:
  /// A cell's text is escaped where it is written.
  struct Cell {
    std::string text;
    std::string classes;
  };
  using Row = std::vector<Cell>;

  HtmlTable(const std::string& title, const Row& heads);

  void Add(const Row& row);
  void AppendTo(std::string& html) const;

 private:
  std::string head_;
  std::string rows_;
  std::size_t count_ = 0;
};

// `title` and `content` are HTML.
std::string SectionStart(const std::string& id, const std::string& title);
inline constexpr const char* kSectionEnd = "</section>\n";
std::string Section(const std::string& id, const std::string& title, const std::string& content);

}  // namespace pxrom_command
