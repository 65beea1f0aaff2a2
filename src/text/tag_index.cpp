#include "text/tag_index.h"

#include <algorithm>
#include <functional>

namespace Tarvane::Plexura::PXROM::reading {

namespace {

// Longer than any tag of the format can be.
constexpr std::size_t kLongestTag = 64;

/// The tag that begins at `place`; empty if it does not end.
std::string_view TagAt(std::string_view text, std::size_t place) {
  const std::string_view rest = text.substr(place, kLongestTag);
  for (std::size_t i = 1; i < rest.size(); ++i) {
    if (rest[i] == '>') return rest.substr(0, i + 1);
  }
  return {};
}

}  // namespace

std::size_t CountBelow(const std::size_t* places, std::size_t count, std::size_t from,
                       std::size_t near) {
  std::size_t low = 0;
  std::size_t high = count;
  near = std::min(near, count);
  std::size_t step = 1;
  if (near < count && places[near] < from) {
    for (low = near + 1; low + step < count && places[low + step] < from; step *= 2) low += step;
    high = std::min(low + step, count);
  } else {
    for (high = near; high > step && places[high - step] >= from; step *= 2) high -= step;
    low = high > step ? high - step : 0;
  }
  return static_cast<std::size_t>(std::lower_bound(places + low, places + high, from) - places);
}

bool TagIndex::Covers(std::string_view tag) { return tag.size() <= kLongestTag; }

std::size_t TagIndex::SlotOf(std::string_view tag, std::size_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash & mask;
  for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
    const Tag& known = tags_[slots_[slot] - 1];
    if (known.hash == hash && known.text == tag) break;
  }
  return slot;
}

void TagIndex::Fill(std::string_view text, const std::vector<std::size_t>& brackets) {
  std::vector<std::size_t> numbers(brackets.size());
  std::size_t size = 2;
  while (size < 2 * brackets.size()) size *= 2;
  slots_.assign(size, 0);
  for (std::size_t i = 0; i < brackets.size(); ++i) {
    const std::string_view tag = TagAt(text, brackets[i]);
    if (tag.empty()) continue;
    const std::size_t hash = std::hash<std::string_view>()(tag);
    std::size_t& number = slots_[SlotOf(tag, hash)];
    if (number == 0) {
      tags_.push_back({tag, hash});
      number = tags_.size();
    }
    ++tags_[number - 1].count;
    numbers[i] = number;
  }
  std::size_t first = 0;
  for (Tag& tag : tags_) {
    tag.first = tag.last = first;
    first += tag.count;
  }
  places_.resize(first);
  for (std::size_t i = 0; i < brackets.size(); ++i) {
    if (numbers[i] != 0) places_[tags_[numbers[i] - 1].last++] = brackets[i];
  }
  for (const Tag& tag : tags_) tag.last = 0;
}

std::size_t TagIndex::Find(std::string_view tag, std::size_t from) const {
  if (slots_.empty()) return std::string_view::npos;
  const std::size_t number = slots_[SlotOf(tag, std::hash<std::string_view>()(tag))];
  if (number == 0) return std::string_view::npos;
  const Tag& known = tags_[number - 1];
  const std::size_t* const places = places_.data() + known.first;
  known.last = CountBelow(places, known.count, from, known.last);
  return known.last == known.count ? std::string_view::npos : places[known.last];
}

}  // namespace Tarvane::Plexura::PXROM::reading
