#include "text/inspection/outline.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "pxrom/database_labels.h"
#include "text/database_text.h"
#include "text/inspection/suggestion.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using reading::Labels;

constexpr std::size_t kLongestTag = 64;
// The number of a group whose tag has lost it.
constexpr int kUnknownId = std::numeric_limits<int>::min();

struct WordFact {
  const std::string& (*text)();
  bool isNumbered;
  /// The word of the group around it; the word itself at the top.
  Word around;
};

// By Word.
constexpr WordFact kWords[kWordCount] = {
    {&Labels::tagParameterRegistry, false, Word::ParameterRegistry},
    {&Labels::tagDiscreteSets, false, Word::DiscreteSets},
    {&Labels::tagPlexuraData, true, Word::PlexuraData},
    {&Labels::tagGenome, true, Word::PlexuraData},
    {&Labels::tagQRSRegTerm, true, Word::Genome},
    {&Labels::tagFMU, false, Word::FMU},
};

const WordFact& FactOf(Word word) { return kWords[static_cast<std::size_t>(word)]; }

bool IsBlankInLine(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlankInLine(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlankInLine(text.back())) text.remove_suffix(1);
  return text;
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string TagText(Word word, int id) {
  return FactOf(word).isNumbered ? reading::OpeningTag(TextOf(word), id)
                                 : reading::OpeningTag(TextOf(word));
}

// The word that `typed` most likely means.
std::optional<Word> NearestWord(std::string_view typed) {
  for (std::size_t w = 0; w < kWordCount; ++w) {
    const std::string& word = kWords[w].text();
    const std::size_t slips = word.size() < 5 ? 0 : 2;
    if (EditDistance(typed, word) <= slips) return static_cast<Word>(w);
  }
  return std::nullopt;
}

}  // namespace

const std::string& TextOf(Word word) { return FactOf(word).text(); }

bool IsNumbered(Word word) { return FactOf(word).isNumbered; }

std::size_t Outline::KeyHash::operator()(const Key& key) const {
  const std::size_t low =
      static_cast<unsigned>(key.id) * kWordCount + static_cast<unsigned>(key.word);
  return std::hash<std::size_t>()(low ^ key.parent * 0x9E3779B97F4A7C15U);
}

Outline::Outline(std::string_view text, Findings& findings) : findings_(findings) {
  ListTags(text);
  Build(text.size());
  for (auto& offsets : damages_) std::sort(offsets.begin(), offsets.end());
}

void Outline::Append(const Tag& tag) {
  auto& list = tagsOf_[static_cast<std::size_t>(tag.word)];
  placeOf_.push_back(list.size());
  list.push_back(tags_.size());
  tags_.push_back(tag);
}

void Outline::Report(E_FindingCode code, std::size_t offset, Word word, const std::string& group,
                     std::string expected, std::string sentence) {
  damages_[static_cast<std::size_t>(word)].push_back(offset);
  findings_.Add(SeverityError, code, {offset, group, "", "", std::move(expected)},
                std::move(sentence));
}

void Outline::ListTags(std::string_view text) {
  // Tags by their bracket, anywhere; in a line without a bracket, a tag that has lost it.
  std::size_t lineStart = 0;
  std::size_t bracket = text.find('<');
  while (lineStart < text.size()) {
    const std::size_t lineEnd = std::min(text.find('\n', lineStart), text.size());
    if (bracket >= lineEnd) ListTagWithoutBracket(text, lineStart);
    for (; bracket < lineEnd; bracket = text.find('<', bracket + 1)) ListTag(text, bracket);
    lineStart = lineEnd + 1;
  }
}

void Outline::ListTagWithoutBracket(std::string_view text, std::size_t lineStart) {
  const std::string_view line = text.substr(lineStart, kLongestTag);
  const std::size_t end = line.find('\n');
  const std::string_view trimmed = Trimmed(line.substr(0, end));
  if (trimmed.size() < 2 || trimmed.back() != '>') return;
  if (trimmed.front() != '/' && !IsLetter(trimmed.front())) return;
  ListMalformed(text, static_cast<std::size_t>(trimmed.data() - text.data()), trimmed.size());
}

void Outline::ListTag(std::string_view text, std::size_t at) {
  const std::string_view rest = text.substr(at, kLongestTag);
  const std::size_t close = std::min(rest.find('>'), rest.find('\n'));
  if (close != std::string_view::npos && rest[close] == '>') {
    Tag tag;
    tag.offset = at;
    tag.length = static_cast<std::uint32_t>(close + 1);
    std::string_view inner = rest.substr(1, close - 1);
    tag.isClosing = !inner.empty() && inner.front() == '/';
    if (tag.isClosing) inner.remove_prefix(1);
    for (std::size_t w = 0; w < kWordCount; ++w) {
      const std::string& word = kWords[w].text();
      if (inner.substr(0, word.size()) != word) continue;
      tag.word = static_cast<Word>(w);
      const std::string_view number = inner.substr(word.size());
      if (tag.isClosing || !kWords[w].isNumbered) {
        if (!number.empty()) break;
        Append(tag);
        return;
      }
      const std::string opening = " " + Labels::attID();
      if (number.substr(0, opening.size()) != opening) break;
      const std::string_view digits = number.substr(opening.size());
      const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), tag.id);
      // The reader searches for a number without a plus or leading zeros.
      if (result.ec != std::errc() || digits != std::to_string(tag.id)) break;
      Append(tag);
      return;
    }
  }
  // Something like a tag in the middle of a line is text.
  std::size_t before = at;
  while (before > 0 && IsBlankInLine(text[before - 1])) --before;
  if (before > 0 && text[before - 1] != '\n') return;
  ListMalformed(text, at,
                std::min({close == std::string_view::npos ? rest.size() : close + 1, rest.size()}));
}

void Outline::ListMalformed(std::string_view text, std::size_t offset, std::size_t length) {
  const std::string_view written = Trimmed(text.substr(offset, std::min(length, kLongestTag)));
  std::string_view inner = written.substr(0, written.find('\n'));
  while (!inner.empty() && !IsLetter(inner.front()) && inner.front() != '/') inner.remove_prefix(1);
  Tag tag;
  tag.offset = offset;
  tag.length = static_cast<std::uint32_t>(length);
  tag.isMalformed = true;
  tag.id = kUnknownId;
  tag.isClosing = !inner.empty() && inner.front() == '/';
  while (!inner.empty() && !IsLetter(inner.front())) inner.remove_prefix(1);
  const auto* const wordEnd = std::find_if_not(inner.begin(), inner.end(), IsLetter);
  const std::string_view typed = inner.substr(0, static_cast<std::size_t>(wordEnd - inner.begin()));
  const std::optional<Word> word = NearestWord(typed);
  if (!word) {
    if (written.size() > 2 && written.front() == '<' && written.back() == '>') {
      findings_.Add(SeverityWarning, FindingStrayText, {offset, "", "", Shortened(written), ""},
                    Quoted(written) + " is no tag of the format: nothing reads what it marks");
    }
    return;
  }
  tag.word = *word;
  const std::string_view behind = inner.substr(typed.size());
  const std::size_t digit = behind.find_first_of("0123456789");
  const bool hasNumber = digit != std::string_view::npos;
  if (hasNumber) std::from_chars(behind.data() + digit, behind.data() + behind.size(), tag.id);
  if (!IsNumbered(*word)) tag.id = 0;
  // A number suggests an opening tag and a slash a closing one. Where they disagree, the tag is
  // taken for the one that has to come next.
  if (IsNumbered(*word) && tag.isClosing == hasNumber) {
    const auto& list = tagsOf_[static_cast<std::size_t>(*word)];
    tag.isClosing = !list.empty() && !tags_[list.back()].isClosing;
  }
  const std::string meant = tag.isClosing                     ? reading::ClosingTag(TextOf(*word))
                            : hasNumber || !IsNumbered(*word) ? TagText(*word, tag.id)
                                                              : "<" + TextOf(*word) + " ID=n>";
  damages_[static_cast<std::size_t>(*word)].push_back(offset);
  findings_.Add(SeverityError, FindingTagMalformed, {offset, "", "", Shortened(written), meant},
                Quoted(written) + " is no tag, the reader does not find it; did you mean " +
                    Quoted(meant) + "?");
  Append(tag);
}

bool Outline::IsOpen(Word word) const {
  return std::any_of(open_.begin(), open_.end(),
                     [&](std::size_t g) { return groups_[g].word == word; });
}

bool Outline::IsClosing(std::size_t place, Word word) const {
  const auto& list = tagsOf_[static_cast<std::size_t>(word)];
  return place < list.size() && tags_[list[place]].isClosing;
}

void Outline::Abandon(std::size_t offset) {
  Group& group = groups_[open_.back()];
  open_.pop_back();
  group.upper = offset;
  group.end = offset;
  group.isSound = false;
  Report(FindingGroupUnclosed, group.tag, group.word, PathOf(group),
         reading::ClosingTag(TextOf(group.word)),
         "the group " + PathOf(group) + " has no closing tag " +
             Quoted(reading::ClosingTag(TextOf(group.word))));
}

void Outline::Open(std::size_t t) {
  const Tag& tag = tags_[t];
  const Word around = FactOf(tag.word).around;
  bool isNested = false;
  if (IsOpen(tag.word)) {
    if (!IsNumbered(tag.word) && !tag.isMalformed && !IsClosing(placeOf_[t] + 1, tag.word)) {
      // A text has only one of these groups, so a second opening tag is a closing tag that has lost
      // its slash.
      const std::string closing = reading::ClosingTag(TextOf(tag.word));
      Report(FindingTagMalformed, tag.offset, tag.word, "", closing,
             Quoted(TagText(tag.word, 0)) + " opens the group a second time; did you mean " +
                 Quoted(closing) + "?");
      Close(tag);
      return;
    }
    // If two closing tags follow, the groups are nested; else the outer group has lost its own.
    isNested = IsClosing(placeOf_[t] + 1, tag.word) && IsClosing(placeOf_[t] + 2, tag.word);
    while (!isNested && IsOpen(tag.word)) Abandon(tag.offset);
  } else {
    // An open group that may not contain this one has lost its closing tag, unless one follows.
    while (!open_.empty() && groups_[open_.back()].word != around) {
      const Word inner = groups_[open_.back()].word;
      const auto& list = tagsOf_[static_cast<std::size_t>(inner)];
      const auto next = std::upper_bound(list.begin(), list.end(), t);
      if (next != list.end() && tags_[*next].isClosing) break;
      Abandon(tag.offset);
    }
  }

  Group group;
  group.word = tag.word;
  group.id = tag.id;
  group.tag = tag.offset;
  group.lower = tag.offset + tag.length;
  group.isSound = !tag.isMalformed && !isNested;
  if (!open_.empty()) group.parent = open_.back();
  const std::size_t index = groups_.size();
  (group.parent == Group::kNone ? top_ : groups_[group.parent].children).push_back(index);
  groups_.push_back(group);
  open_.push_back(index);

  const std::string path = PathOf(groups_[index]);
  const bool isInside = group.parent != Group::kNone;
  const bool isPlaced =
      around == tag.word ? !isInside : isInside && groups_[group.parent].word == around;
  if (isNested) {
    groups_[group.parent].isSound = false;
    Report(FindingGroupNested, tag.offset, tag.word, path, "",
           "the group " + path + " begins inside a group of its own word; the first " +
               Quoted(reading::ClosingTag(TextOf(tag.word))) + " ends both");
  } else if (!isPlaced) {
    Report(
        FindingGroupMisplaced, tag.offset, tag.word, path,
        around == tag.word ? "at the top" : "in a " + TextOf(around) + " group",
        "the group " + path + " is where the reader does not look for it; it belongs " +
            (around == tag.word ? "outside of other groups" : "in a " + TextOf(around) + " group"));
  }
  const bool isFirst = first_.emplace(Key{group.parent, tag.word, tag.id}, index).second;
  if (!isFirst && tag.id != kUnknownId) {
    groups_[index].isSound = false;
    Report(FindingGroupTwice, tag.offset, tag.word, path, "",
           "there is a group " + path + " already, this one is never read");
  }
}

void Outline::Close(const Tag& tag) {
  if (!IsOpen(tag.word)) {
    const std::string closing = reading::ClosingTag(TextOf(tag.word));
    Report(FindingGroupUnopened, tag.offset, tag.word, "", "",
           Quoted(closing) + " closes a group that no tag has opened");
    return;
  }
  while (groups_[open_.back()].word != tag.word) Abandon(tag.offset);
  Group& group = groups_[open_.back()];
  open_.pop_back();
  group.upper = tag.offset;
  group.end = tag.offset + tag.length;
  if (tag.isMalformed) group.isSound = false;
}

void Outline::Build(std::size_t textSize) {
  for (std::size_t t = 0; t < tags_.size(); ++t) {
    if (tags_[t].isClosing) {
      Close(tags_[t]);
    } else {
      Open(t);
    }
  }
  while (!open_.empty()) Abandon(textSize);
}

const Group* Outline::Find(Word word, int id, std::size_t parent) const {
  const auto found = first_.find(Key{parent, word, id});
  return found == first_.end() ? nullptr : &groups_[found->second];
}

bool Outline::IsDamaged(Word word, std::size_t lower, std::size_t upper) const {
  const auto& offsets = damages_[static_cast<std::size_t>(word)];
  const auto first = std::lower_bound(offsets.begin(), offsets.end(), lower);
  return first != offsets.end() && *first < upper;
}

bool Outline::IsDamaged(const Group& group) const {
  for (std::size_t w = 0; w < kWordCount; ++w) {
    if (IsDamaged(static_cast<Word>(w), group.tag, group.end)) return true;
  }
  return false;
}

std::string Outline::PathOf(const Group& group) const {
  std::string path = TextOf(group.word);
  if (IsNumbered(group.word))
    path += group.id == kUnknownId ? " ?" : ' ' + std::to_string(group.id);
  return group.parent == Group::kNone ? path : PathOf(groups_[group.parent]) + " / " + path;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
