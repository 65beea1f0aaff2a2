#include "html_table.h"

#include "html.h"
#include "wording.h"

namespace pxrom_command {

namespace {

constexpr std::size_t kLongTable = 40;

std::string ClassOf(const HtmlTable::Cell& cell) {
  return cell.classes.empty() ? "" : " class=\"" + cell.classes + '"';
}

}  // namespace

HtmlTable::HtmlTable(const std::string& title, const Row& heads)
    : head_("<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"" + Escaped(title) +
            "\"><table>\n<thead><tr>") {
  for (const Cell& head : heads) {
    head_ += "<th scope=\"col\"" + ClassOf(head) + '>' + Escaped(head.text) + "</th>";
  }
  head_ += "</tr></thead>\n<tbody>\n";
}

void HtmlTable::Add(const Row& row) {
  ++count_;
  rows_ += "<tr>";
  for (const Cell& cell : row) {
    rows_ += "<td" + ClassOf(cell) + '>' + Escaped(cell.text) + "</td>";
  }
  rows_ += "</tr>\n";
}

void HtmlTable::AppendTo(std::string& html) const {
  const bool isLong = count_ > kLongTable;
  if (isLong) html += "<details><summary>" + Counted(count_, "row") + "</summary>\n";
  html += head_;
  html += rows_;
  html += "</tbody></table></div>\n";
  if (isLong) html += "</details>\n";
}

std::string SectionStart(const std::string& id, const std::string& title) {
  return "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id +
         "-title\">" + title + "</h2>\n";
}

std::string Section(const std::string& id, const std::string& title, const std::string& content) {
  return SectionStart(id, title) + content + kSectionEnd;
}

}  // namespace pxrom_command
