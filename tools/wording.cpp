#include "wording.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "pxrom/inspection.h"

namespace pxrom_command {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Levenshtein distance, upper and lower case alike.
std::size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t substituted = diagonal + (Lower(a[i]) == Lower(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({substituted, row[j] + 1, diagonal + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

std::string Printed(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return Tarvane::Plexura::PXROM::VisibleText(std::move(text));
}

std::string Cut(std::string text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0U) == 0x80U) --most;
  text.resize(most);
  return text + "...";
}

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

std::string Counted(std::size_t count, const std::string& one) {
  return (count == 0 ? "no" : std::to_string(count)) + ' ' + one + (count == 1 ? "" : "s");
}

std::string Listed(const std::vector<std::string>& items, std::size_t most) {
  std::vector<std::string> shown(
      items.begin(), items.begin() + static_cast<std::ptrdiff_t>(std::min(most, items.size())));
  if (shown.size() < items.size()) {
    shown.push_back(std::to_string(items.size() - shown.size()) + " more");
  }
  std::string text;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (i > 0) text += i + 1 == shown.size() ? " and " : ", ";
    text += shown[i];
  }
  return text;
}

std::string Suggestion(const std::string& typed, const std::vector<std::string>& names) {
  // Names of a file may be many and long, but those that people type are neither.
  constexpr std::size_t kLongest = 64;
  constexpr std::size_t kMostNames = 1000;
  if (typed.size() > kLongest) return "";
  // A third of the letters may be wrong, but never all of them.
  std::size_t best = (typed.size() + 2) / 3 + 1;
  const std::string* nearest = nullptr;
  for (std::size_t i = 0; i < std::min(names.size(), kMostNames); ++i) {
    const std::string& name = names[i];
    if (name.size() > kLongest) continue;
    const std::size_t distance = EditDistance(typed, name);
    if (distance < best && distance < std::max(typed.size(), name.size())) {
      best = distance;
      nearest = &name;
    }
  }
  return nearest == nullptr ? std::string() : "; did you mean " + Quoted(*nearest) + "?";
}

}  // namespace pxrom_command
