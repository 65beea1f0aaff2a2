#include "text/check_points.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace Tarvane::Plexura::PXROM::reading {

namespace {

constexpr std::string_view kOpening = "<CheckPoints>";
constexpr std::string_view kClosing = "</CheckPoints>";
constexpr std::string_view kVersion = "Version 1";
constexpr std::string_view kPoint = "Point ";
constexpr std::string_view kChecksum = "Checksum ";
constexpr std::uint64_t kBasis = 0xcbf29ce484222325U;
constexpr std::uint64_t kPrime = 0x100000001b3U;
constexpr int kHexadecimal = 16;

std::uint64_t Hashed(std::uint64_t hash, char byte) {
  return (hash ^ static_cast<unsigned char>(byte)) * kPrime;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// Takes the first part of `rest`, up to `separator` or the end.
std::string_view TakePart(std::string_view& rest, char separator) {
  const std::size_t end = rest.find(separator);
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return part;
}

template <class Number, class... Base>
bool ParseNumber(std::string_view text, Number& number, Base... base) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base...);
  return result.ec == std::errc() && result.ptr == end;
}

/// A list of numbers; an empty text is an empty list.
template <class Number>
bool ParseList(std::string_view text, std::vector<Number>& numbers) {
  if (text.empty()) return true;
  bool isLast = false;
  while (!isLast) {
    isLast = text.find(',') == std::string_view::npos;
    if (!ParseNumber(TakePart(text, ','), numbers.emplace_back())) return false;
  }
  return true;
}

bool ParseAnswer(std::string_view text, CheckAnswer& answer) {
  constexpr std::size_t kMost = 3;
  std::vector<double> numbers;
  if (!ParseList(text, numbers) || numbers.empty() || numbers.size() > kMost) return false;
  if (numbers.size() == 1) return numbers[0] == 1.0;
  answer.value = numbers[1];
  answer.status = numbers.size() == kMost ? 0 : -2;
  if (answer.status == 0) answer.error = numbers[2];
  return numbers[0] == answer.status;
}

template <class Number>
void Append(Number number, std::string& text) {
  char digits[32];
  text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

void Append(double number, std::string& text) {
  // All that is not a number is one in comparisons too; a sign would differ between machines.
  if (std::isnan(number)) {
    text += "nan";
    return;
  }
  char digits[32];
  text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

template <class Number>
void AppendList(const std::vector<Number>& numbers, std::string& text) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) text += ',';
    Append(numbers[i], text);
  }
}

/// The lines of a group, one after the other.
class Lines {
 public:
  Lines(std::string_view text, std::size_t from) : text_(text), next_(from) {}

  bool IsAtEnd() const { return next_ >= text_.size(); }
  /// Without its line end, which may be "\r\n".
  CheckPointsGroup::Line Take() {
    const std::size_t end = std::min(text_.find('\n', next_), text_.size());
    CheckPointsGroup::Line line{next_, text_.substr(next_, end - next_)};
    if (!line.text.empty() && line.text.back() == '\r') line.text.remove_suffix(1);
    next_ = end + 1;
    return line;
  }

 private:
  std::string_view text_;
  std::size_t next_;
};

/// Fills `group`, which has its begin. Returns what is wrong with `at`, or null.
const char* ReadGroup(std::string_view text, CheckPointsGroup& group, std::size_t& at) {
  Lines lines(text, group.begin);
  const auto take = [&] {
    const CheckPointsGroup::Line line = lines.Take();
    at = line.offset;
    return line.text;
  };
  if (take() != kOpening) return "the tag of the check points is not alone in its line";
  if (lines.IsAtEnd() || take() != kVersion) return "the check points have no version 1";
  std::string_view line;
  while (!lines.IsAtEnd() && StartsWith(line = take(), kPoint)) {
    group.points.push_back({at + kPoint.size(), line.substr(kPoint.size())});
  }
  constexpr std::size_t kDigits = 16;
  if (!StartsWith(line, kChecksum) || line.size() != kChecksum.size() + kDigits ||
      !ParseNumber(line.substr(kChecksum.size()), group.checksum, kHexadecimal)) {
    return "this is neither a check point nor the checksum after them";
  }
  group.covered = at;
  if (lines.IsAtEnd() || take() != kClosing) return "the checksum does not end the check points";
  while (!lines.IsAtEnd()) {
    if (!take().empty()) return "text follows the check points, which have to be the last";
  }
  return nullptr;
}

}  // namespace

CheckPointsGroup FindCheckPoints(std::string_view text) {
  CheckPointsGroup group;
  group.begin = text.size();
  std::size_t at = text.rfind(kOpening);
  while (at != std::string_view::npos && at > 0 && text[at - 1] != '\n') {
    at = text.rfind(kOpening, at - 1);
  }
  if (at == std::string_view::npos) return group;
  group.begin = at;
  group.fault = ReadGroup(text, group, group.faultAt);
  return group;
}

bool ParseCheckPoint(std::string_view line, CheckPoint& point) {
  if (!ParseList(TakePart(line, ';'), point.key)) return false;
  if (!ParseList(TakePart(line, ';'), point.point)) return false;
  while (!line.empty()) {
    if (!ParseAnswer(TakePart(line, ';'), point.answers.emplace_back())) return false;
  }
  return true;
}

void AppendCheckPoints(const std::vector<CheckPoint>& points, std::string& text) {
  text += kOpening;
  text += '\n';
  text += kVersion;
  text += '\n';
  for (const CheckPoint& point : points) {
    text += kPoint;
    AppendList(point.key, text);
    text += ';';
    AppendList(point.point, text);
    for (const CheckAnswer& answer : point.answers) {
      text += ';';
      Append(answer.status, text);
      if (answer.status == 1) continue;
      text += ',';
      Append(answer.value, text);
      if (answer.status != 0) continue;
      text += ',';
      Append(answer.error, text);
    }
    text += '\n';
  }
  const std::uint64_t checksum = ChecksumOf(text);
  text += kChecksum;
  constexpr unsigned kBitsPerDigit = 4;
  for (unsigned shift = 64; shift > 0; shift -= kBitsPerDigit) {
    text += "0123456789abcdef"[(checksum >> (shift - kBitsPerDigit)) & 0xfU];
  }
  text += '\n';
  text += kClosing;
  text += '\n';
}

std::uint64_t ChecksumOf(std::string_view text) {
  std::uint64_t hash = kBasis;
  for (const char byte : text) hash = Hashed(hash, byte);
  return hash;
}

std::uint64_t ChecksumWithoutReturns(std::string_view text) {
  std::uint64_t hash = kBasis;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isReturn = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (!isReturn) hash = Hashed(hash, text[i]);
  }
  return hash;
}

}  // namespace Tarvane::Plexura::PXROM::reading
