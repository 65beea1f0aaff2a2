#include "table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "wording.h"

namespace pxrom_command {

namespace {

struct CodePoints {
  std::uint32_t first;
  std::uint32_t last;
};

/// Marks that combine with the letter before them.
constexpr CodePoints kCombining[] = {
    {0x300, 0x36F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}};
/// Letters of East Asian scripts and pictures, which terminals draw two columns wide.
constexpr CodePoints kWide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                                {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};

template <std::size_t N>
bool IsIn(const CodePoints (&ranges)[N], std::uint32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges), [code](const CodePoints& range) {
    return code >= range.first && code <= range.last;
  });
}

/// The code point that begins at `text[i]`; moves `i` past it. A byte that begins no code point, as
/// in a text of another encoding, counts as one.
std::uint32_t NextCodePoint(const std::string& text, std::size_t& i) {
  const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const std::uint32_t lead = byte(i++);
  const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
  if (following == 0) return lead;
  std::uint32_t code = lead & (0x3FU >> following);
  for (int k = 0; k < following && i < text.size() && (byte(i) & 0xC0U) == 0x80U; ++k) {
    code = code << 6U | (byte(i++) & 0x3FU);
  }
  return code;
}

/// The columns that a terminal needs for UTF-8 `text`.
std::size_t Width(const std::string& text) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::uint32_t code = NextCodePoint(text, i);
    if (!IsIn(kCombining, code)) width += IsIn(kWide, code) ? 2U : 1U;
  }
  return width;
}

/// A cell that is wider moves the rest of its own line: to fill up all others to its width would
/// take their number times that.
constexpr std::size_t kWidest = 300;

std::string Padded(const std::string& text, std::size_t width, Align align) {
  const std::string blanks(width - std::min(width, Width(text)), ' ');
  return align == Align::Left ? text + blanks : blanks + text;
}

}  // namespace

void Table::Add(std::vector<std::string> cells) {
  for (std::string& cell : cells) cell = Printed(std::move(cell));
  rows_.push_back(std::move(cells));
}

void Table::Print(std::ostream& out) const {
  std::vector<std::string> lines(rows_.size() + 2);
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    std::size_t width = 0;
    bool empty = true;
    for (const auto& row : rows_) {
      const std::size_t own = Width(row[c]);
      if (own <= kWidest) width = std::max(width, own);
      empty = empty && own == 0;
    }
    if (empty) continue;
    width = std::max(width, Width(columns_[c].heading));

    const std::string gap = lines[0].empty() ? "" : "  ";
    lines[0] += gap + Padded(columns_[c].heading, width, columns_[c].align);
    lines[1] += gap + std::string(width, '-');
    for (std::size_t r = 0; r < rows_.size(); ++r) {
      lines[r + 2] += gap + Padded(rows_[r][c], width, columns_[c].align);
    }
  }
  for (std::string& line : lines) {
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

}  // namespace pxrom_command
