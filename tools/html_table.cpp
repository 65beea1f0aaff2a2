#include "html_table.h"

#include <cstddef>

#include "html.h"
#include "wording.h"

namespace pxrom_command {

namespace {

constexpr std::size_t kLongTable = 40;

std::string ClassOf(const HtmlTable::Cell& cell) {
  return cell.classes.empty() ? "" : " class=\"" + cell.classes + '"';
}

}  // namespace

std::string Html(const HtmlTable& table) {
  std::string html = "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"" +
                     Escaped(table.title) + "\"><table>\n<thead><tr>";
  for (const HtmlTable::Cell& head : table.heads) {
    html += "<th scope=\"col\"" + ClassOf(head) + '>' + Escaped(head.text) + "</th>";
  }
  html += "</tr></thead>\n<tbody>\n";
  for (const HtmlTable::Row& row : table.rows) {
    html += "<tr>";
    for (const HtmlTable::Cell& cell : row)
      html += "<td" + ClassOf(cell) + '>' + Escaped(cell.text) + "</td>";
    html += "</tr>\n";
  }
  html += "</tbody></table></div>\n";
  if (table.rows.size() <= kLongTable) return html;
  return "<details><summary>" + Counted(table.rows.size(), "row") + "</summary>\n" + html +
         "</details>\n";
}

std::string Section(const std::string& id, const std::string& title, const std::string& content) {
  return "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-title\">\n<h2 id=\"" + id +
         "-title\">" + title + "</h2>\n" + content + "</section>\n";
}

}  // namespace pxrom_command
