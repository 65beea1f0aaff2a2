#include <cstddef>

#include "pxrom/findings.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr std::size_t kNowhere = std::string::npos;

// The escape of the character at `at`, whose first byte may be that of a bidirectional control, and
// the character's length; an empty escape for any other character.
const char* EscapeAt(const std::string& text, std::size_t at, std::size_t& length) {
  // The characters that Unicode lists as bidirectional controls, in UTF-8.
  static constexpr struct {
    char bytes[4];
    char escape[7];
  } kControls[] = {
      {"\xD8\x9C", "\\u061C"},     {"\xE2\x80\x8E", "\\u200E"}, {"\xE2\x80\x8F", "\\u200F"},
      {"\xE2\x80\xAA", "\\u202A"}, {"\xE2\x80\xAB", "\\u202B"}, {"\xE2\x80\xAC", "\\u202C"},
      {"\xE2\x80\xAD", "\\u202D"}, {"\xE2\x80\xAE", "\\u202E"}, {"\xE2\x81\xA6", "\\u2066"},
      {"\xE2\x81\xA7", "\\u2067"}, {"\xE2\x81\xA8", "\\u2068"}, {"\xE2\x81\xA9", "\\u2069"}};
  for (const auto& control : kControls) {
    length = control.bytes[2] == '\0' ? 2 : 3;
    if (text.compare(at, length, control.bytes) == 0) return control.escape;
  }
  length = 1;
  return "";
}

}  // namespace

std::string VisibleText(std::string text) {
  const char* const kFirstBytes = "\xD8\xE2";
  std::size_t at = text.find_first_of(kFirstBytes);
  if (at == kNowhere) return text;
  std::string visible;
  std::size_t done = 0;
  for (; at != kNowhere; at = text.find_first_of(kFirstBytes, at)) {
    std::size_t length = 1;
    const char* const escape = EscapeAt(text, at, length);
    if (*escape != '\0') {
      visible.append(text, done, at - done).append(escape);
      done = at + length;
    }
    at += length;
  }
  return visible.append(text, done);
}

}  // namespace Tarvane::Plexura::PXROM
