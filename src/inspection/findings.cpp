#include "inspection/findings.h"

#include <algorithm>
#include <charconv>
#include <tuple>

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

constexpr std::size_t kMostPerCode = 100;
constexpr std::size_t kLongestShown = 60;

}  // namespace

LineTable::LineTable(std::string_view text) : starts_(1, 0) {
  for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at)) {
    ++at;
    // What follows the last line end is no line of its own.
    if (at < text.size()) starts_.push_back(at);
  }
}

void LineTable::Locate(std::size_t offset, std::size_t& line, std::size_t& column) const {
  const auto behind = std::upper_bound(starts_.begin(), starts_.end(), offset);
  line = static_cast<std::size_t>(behind - starts_.begin());
  column = offset - *(behind - 1) + 1;
}

bool Findings::IsFull(E_FindingCode code) const {
  const auto tally = tallies_.find(code);
  return tally != tallies_.end() && tally->second.listed >= kMostPerCode;
}

void Findings::Add(E_FindingSeverity severity, E_FindingCode code, Subject subject,
                   std::string sentence) {
  ++bySeverity_[severity];
  if (severity == SeverityError && (groupsWithErrors_.empty() || subject.group != lastGroup_)) {
    // The group and all around it.
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

void Findings::Deliver(CInspectionReport& report) {
  std::stable_sort(list_.begin(), list_.end(), [](const CFinding& a, const CFinding& b) {
    return std::tuple(a.line, a.column, -a.severity) < std::tuple(b.line, b.column, -b.severity);
  });
  for (const auto& [code, tally] : tallies_) {
    if (tally.leftOut == 0) continue;
    const auto last = std::find_if(list_.rbegin(), list_.rend(),
                                   [code = code](const auto& f) { return f.code == code; });
    last->sentence += " (and " + std::to_string(tally.leftOut) + " more findings of this kind)";
  }
  report.findings = std::move(list_);
  report.errors = bySeverity_[SeverityError];
  report.warnings = bySeverity_[SeverityWarning];
  report.notes = bySeverity_[SeverityNote];
}

std::string Shortened(std::string_view text) {
  std::string shown(text.substr(0, kLongestShown));
  // Not through the middle of a character of UTF-8.
  if (text.size() > kLongestShown) {
    while (!shown.empty() && (static_cast<unsigned char>(text[shown.size()]) & 0xC0U) == 0x80U) {
      shown.pop_back();
    }
    shown += "...";
  }
  for (char& c : shown) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return shown;
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
