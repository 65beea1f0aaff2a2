#include "text/inspection/suggestion.h"

#include <algorithm>
#include <numeric>

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

bool IsPartOf(std::string_view a, std::string_view b) {
  if (a.size() > b.size()) std::swap(a, b);
  constexpr std::size_t kLeast = 6;
  return a.size() >= kLeast && (b.substr(0, a.size()) == a || b.substr(b.size() - a.size()) == a);
}

std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t exchanged = diagonal + (Lower(a[i]) == Lower(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
    }
  }
  return row[b.size()];
}

const std::string* Nearest(std::string_view typed, const std::vector<const std::string*>& words) {
  // A third of the letters may be wrong.
  const std::size_t limit = (typed.size() + 2) / 3;
  std::size_t best = limit + 1;
  const std::string* nearest = nullptr;
  for (const std::string* word : words) {
    std::size_t distance = EditDistance(typed, *word);
    if (distance > limit && IsPartOf(typed, *word)) distance = limit;
    if (distance < best) {
      best = distance;
      nearest = word;
    }
  }
  return nearest;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
