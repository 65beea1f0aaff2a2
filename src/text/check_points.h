#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Plexura::PXROM::reading {

// The group of check points at the end of a text: points with all answers, and a checksum.
//
//     <CheckPoints>
//     Version 1
//     Point 2,1;90,3000,1.5,45;0,6.32775215038798,0.5777785085493568;-2,47.27948243363868
//     Checksum 85944171f73967e8
//     </CheckPoints>
//
// The reader of databases never finds anything in it, whatever it searches for:
//   - every key ends in "=", and the group has no "=";
//   - every tag that is searched for is "<", one of the format's other words and so on, and the
//   only
//     "<" in the group begin its own two tags;
//   - the group begins on a line of its own, so that the last line before it ends where it did, and
//     no key or tag, which hold no line end, begins before the group and ends in it.
// So each search for a key or a tag has the result that it has without the group. A range that is
// never closed extends to the end of the text and so over the group, where no key is found. A text
// that is shorter than a tag, which holds no model, can be refused in another way; the limits of
// the reader only grow with the text.

/// What an evaluation gave for one output at a check point.
struct CheckAnswer {
  /// 0 with an error, -2 without one, 1 without a value.
  int status = 1;
  double value = std::numeric_limits<double>::quiet_NaN();
  double error = std::numeric_limits<double>::quiet_NaN();
};

struct CheckPoint {
  /// The discrete values of the combination and the continuous values, both by rank.
  std::vector<int> key;
  std::vector<double> point;
  /// By output ID.
  std::vector<CheckAnswer> answers;
};

/// A group of check points in a text. Offsets are those of the text.
struct CheckPointsGroup {
  /// Where its opening tag begins; the size of the text if it has no such group.
  std::size_t begin = 0;
  struct Line {
    std::size_t offset;
    std::string_view text;
  };
  /// Of its points, after "Point ".
  std::vector<Line> points;
  /// The checksum in the group, and the end of what it covers.
  std::uint64_t checksum = 0;
  std::size_t covered = 0;
  /// The first line that is not as it should be; null if all are.
  const char* fault = nullptr;
  std::size_t faultAt = 0;
};

/// The last group of check points of a text.
CheckPointsGroup FindCheckPoints(std::string_view text);
/// False if the line is not of this form. It holds no more numbers than characters.
bool ParseCheckPoint(std::string_view line, CheckPoint& point);

/// Appends the group to a text that ends with a line end or is empty. Numbers have all digits.
void AppendCheckPoints(const std::vector<CheckPoint>& points, std::string& text);

/// FNV-1a with 64 bits (Fowler, Noll and Vo). Each step can be undone, so a text with one changed
/// byte always has another checksum.
std::uint64_t ChecksumOf(std::string_view text);
/// The checksum of a text whose line ends were changed from "\n" to "\r\n".
std::uint64_t ChecksumWithoutReturns(std::string_view text);

}  // namespace Tarvane::Plexura::PXROM::reading
