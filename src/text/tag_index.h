#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace Tarvane::Plexura::PXROM::reading {

/// The number of `places`, which ascend, that are below `from`. It searches from `near` outwards,
/// so searches that follow each other through a text take a few steps.
std::size_t CountBelow(const std::size_t* places, std::size_t count, std::size_t from,
                       std::size_t near);

/// The places of all tags of a text by tag: a table with open addressing and one list of places,
/// since a text can have tens of thousands of tags that occur once. For one thread.
class TagIndex {
 public:
  /// `brackets` are the places of every "<" in ascending order. The text must outlive the index.
  void Fill(std::string_view text, const std::vector<std::size_t>& brackets);

  /// Whether a search for `tag` can use the index.
  static bool Covers(std::string_view tag);
  /// The first place of `tag` at or after `from`; npos without one.
  std::size_t Find(std::string_view tag, std::size_t from) const;

 private:
  struct Tag {
    std::string_view text;
    std::size_t hash = 0;
    /// Its part of `places_`.
    std::size_t first = 0;
    std::size_t count = 0;
    /// The result of the last search.
    mutable std::size_t last = 0;
  };
  /// The slot of a tag, or the empty one where it belongs.
  std::size_t SlotOf(std::string_view tag, std::size_t hash) const;

  /// Numbers of tags from 1 on; 0 is empty. Its size is a power of two.
  std::vector<std::size_t> slots_;
  std::vector<Tag> tags_;
  std::vector<std::size_t> places_;
};

}  // namespace Tarvane::Plexura::PXROM::reading
