#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "text/inspection/findings.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// The group words of the format.
enum class Word : std::uint8_t {
  ParameterRegistry,
  DiscreteSets,
  PlexuraData,
  Genome,
  RegTerm,
  FMU,
};

constexpr std::size_t kWordCount = 6;

const std::string& TextOf(Word word);
/// Whether groups of `word` carry a number.
bool IsNumbered(Word word);

/// One group of a text, by index in its Outline.
struct Group {
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  Word word = Word::FMU;
  int id = 0;
  std::size_t parent = kNone;
  std::size_t tag = 0;    ///< the "<" of the opening tag
  std::size_t lower = 0;  ///< the first character of the body
  std::size_t upper = 0;  ///< the one after the body
  std::size_t end = 0;    ///< the one after the closing tag
  /// Whether both tags are in order. The content of other groups is not checked.
  bool isSound = true;
  std::vector<std::size_t> children;
};

/// The groups of a text as they were meant. Where a tag is missing or damaged, the outline assumes
/// the most likely tag and reports an error, so that one damage has one finding instead of one for
/// each group after it. In a sound text the groups are those that the reader's searches find.
class Outline {
 public:
  Outline(std::string_view text, Findings& findings);

  const Group& At(std::size_t index) const { return groups_[index]; }
  /// The first group of this word and number in `parent` (kNone: at the top), or null.
  const Group* Find(Word word, int id, std::size_t parent = Group::kNone) const;
  const Group* FindPlain(Word word) const { return Find(word, 0); }
  std::size_t IndexOf(const Group& group) const {
    return static_cast<std::size_t>(&group - groups_.data());
  }
  /// "PlexuraData 3 / Genome 1".
  std::string PathOf(const Group& group) const;
  /// The indices of the groups at the top, in the order of the text.
  const std::vector<std::size_t>& Top() const { return top_; }
  /// Whether a tag of `word`, or of any word, is damaged within [lower, upper). Then groups that
  /// seem to be missing may only be unrecognised.
  bool IsDamaged(Word word, std::size_t lower, std::size_t upper) const;
  bool IsDamaged(const Group& group) const;

 private:
  struct Tag {
    std::size_t offset = 0;
    std::uint32_t length = 0;
    int id = 0;
    Word word = Word::FMU;
    bool isClosing = false;
    bool isMalformed = false;
  };
  struct Key {
    std::size_t parent;
    Word word;
    int id;
    bool operator==(const Key& other) const {
      return parent == other.parent && word == other.word && id == other.id;
    }
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const;
  };

  void ListTags(std::string_view text);
  void ListTag(std::string_view text, std::size_t at);
  void ListTagWithoutBracket(std::string_view text, std::size_t lineStart);
  void ListMalformed(std::string_view text, std::size_t offset, std::size_t length);
  void Append(const Tag& tag);
  void Build(std::size_t textSize);
  void Open(std::size_t tag);
  void Close(const Tag& tag);
  /// Closes the innermost open group at `offset`, where its closing tag is missing.
  void Abandon(std::size_t offset);
  bool IsOpen(Word word) const;
  bool IsClosing(std::size_t place, Word word) const;
  void Report(E_FindingCode code, std::size_t offset, Word word, const std::string& group,
              std::string expected, std::string sentence);

  Findings& findings_;
  std::vector<Tag> tags_;
  /// Per word the indices of its tags, and per tag its place in that list.
  std::vector<std::size_t> tagsOf_[kWordCount];
  std::vector<std::size_t> placeOf_;
  /// Per word the offsets of damaged tags, in no order until all are known.
  std::vector<std::size_t> damages_[kWordCount];
  std::vector<Group> groups_;
  std::vector<std::size_t> top_;
  std::vector<std::size_t> open_;
  std::unordered_map<Key, std::size_t, KeyHash> first_;
};

}  // namespace Tarvane::Plexura::PXROM::inspection
