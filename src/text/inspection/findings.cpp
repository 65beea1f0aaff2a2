#include "text/inspection/findings.h"

#include <algorithm>
#include <charconv>
#include <tuple>
#include <utility>

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

// The distance of the places that a LineTable keeps, in characters.
constexpr std::size_t kBlock = 512;
constexpr std::size_t kMostPerCode = 100;
constexpr std::size_t kLongestShown = 60;

}  // namespace

LineTable::LineTable(std::string_view text) : text_(text), blocks_(1, Place{1, 0}) {
  std::size_t start = 0;
  for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at)) {
    ++at;
    // Nothing follows the last line end, so no line begins there.
    if (at == text.size()) break;
    for (; blocks_.size() * kBlock < at;) blocks_.push_back({count_, start});
    ++count_;
    start = at;
  }
  while (blocks_.size() * kBlock <= text.size()) blocks_.push_back({count_, start});
}

void LineTable::Locate(std::size_t offset, std::size_t& line, std::size_t& column) const {
  const std::size_t block = std::min(offset / kBlock, blocks_.size() - 1);
  Place place = blocks_[block];
  // A line end at the very end of the text begins no line.
  const std::string_view before = text_.substr(0, std::min(offset, text_.size() - 1));
  std::size_t at = before.find('\n', block * kBlock);
  for (; at != std::string_view::npos; at = before.find('\n', at + 1)) {
    place = {place.line + 1, at + 1};
  }
  line = place.line;
  column = offset - place.start + 1;
}

bool Findings::IsFull(E_FindingCode code) const {
  const auto tally = tallies_.find(code);
  return tally != tallies_.end() && tally->second.listed >= kMostPerCode;
}

void Findings::Add(E_FindingSeverity severity, E_FindingCode code, Subject subject,
                   std::string sentence) {
  ++bySeverity_[severity];
  if (severity == SeverityError && (groupsWithErrors_.empty() || subject.group != lastGroup_)) {
    // The group and all groups around it.
    lastGroup_ = subject.group;
    groupsWithErrors_.emplace();
    for (std::size_t end = subject.group.find(" / ");; end = subject.group.find(" / ", end + 1)) {
      groupsWithErrors_.insert(subject.group.substr(0, end));
      if (end == std::string::npos) break;
    }
  }
  Tally& tally = tallies_[code];
  if (tally.listed >= kMostPerCode) {
    ++tally.leftOut;
    return;
  }
  ++tally.listed;
  CFinding finding;
  finding.severity = severity;
  finding.code = code;
  lines_.Locate(subject.offset, finding.line, finding.column);
  finding.group = std::move(subject.group);
  finding.key = std::move(subject.key);
  finding.found = std::move(subject.found);
  finding.expected = std::move(subject.expected);
  finding.sentence = std::move(sentence);
  list_.push_back(std::move(finding));
}

bool Findings::HasErrorIn(const std::string& group) const {
  return groupsWithErrors_.count(group) > 0;
}

std::vector<CFinding> Findings::Deliver() {
  std::stable_sort(list_.begin(), list_.end(), [](const CFinding& a, const CFinding& b) {
    return std::tuple(a.line, a.column, -a.severity) < std::tuple(b.line, b.column, -b.severity);
  });
  for (const auto& [code, tally] : tallies_) {
    if (tally.leftOut == 0) continue;
    const auto last = std::find_if(list_.rbegin(), list_.rend(),
                                   [code = code](const auto& f) { return f.code == code; });
    last->sentence += " (and " + std::to_string(tally.leftOut) + " more findings of this kind)";
  }
  return std::move(list_);
}

std::string Shortened(std::string_view text) {
  std::string shown(text.substr(0, kLongestShown));
  // Does not cut a UTF-8 character in its middle.
  if (text.size() > kLongestShown) {
    while (!shown.empty() && (static_cast<unsigned char>(text[shown.size()]) & 0xC0U) == 0x80U) {
      shown.pop_back();
    }
    shown += "...";
  }
  for (char& c : shown) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return VisibleText(std::move(shown));
}

std::string Quoted(std::string_view text) { return '"' + Shortened(text) + '"'; }

std::string Counted(std::size_t count, const std::string& one) {
  return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
}

std::string NumberText(double value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, result.ptr};
}

}  // namespace Tarvane::Plexura::PXROM::inspection
