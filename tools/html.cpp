#include "html.h"

#include <cstddef>
#include <cstdint>

#include "pxrom/inspection.h"

namespace pxrom_command {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

unsigned char At(std::string_view text, std::size_t i) {
  return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
}

/// The length of the UTF-8 sequence at `i`, or 0 if there is none: RFC 3629, which excludes
/// surrogates, overlong forms and everything after U+10FFFF.
std::size_t SequenceLength(std::string_view text, std::size_t i) {
  struct Form {
    unsigned char first;
    unsigned char last;
    unsigned char second_from;
    unsigned char second_to;
    std::size_t length;
  };
  static constexpr Form kForms[] = {
      {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  const unsigned char first = At(text, i);
  for (const Form& form : kForms) {
    if (first < form.first || first > form.last) continue;
    if (form.length == 1) return 1;
    if (At(text, i + 1) < form.second_from || At(text, i + 1) > form.second_to) return 0;
    for (std::size_t k = 2; k < form.length; ++k) {
      if ((At(text, i + k) & 0xC0U) != 0x80U) return 0;
    }
    return form.length;
  }
  return 0;
}

std::string_view EntityOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
}

}  // namespace

std::string Escaped(std::string_view given) {
  const std::string text = Tarvane::Plexura::PXROM::VisibleText(std::string(given));
  std::string escaped;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = SequenceLength(text, i);
    const std::string_view entity = EntityOf(text[i]);
    if (length == 0 || IsControl(text[i])) {
      escaped += kReplacement;
    } else if (!entity.empty()) {
      escaped += entity;
    } else {
      escaped.append(text, i, length);
    }
    i += length == 0 ? 1 : length;
  }
  return escaped;
}

std::string JsonOfBytes(std::string_view bytes) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string json = "\"";
  json.reserve(bytes.size() + bytes.size() / 16 + 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    // "<" could end the element, or begin a comment in it.
    const bool plain = byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\' && c != '<';
    if (plain) {
      json += c;
    } else if (c == '\n') {
      json += "\\n";
    } else {
      json += "\\u00";
      json += kHex[byte >> 4U];
      json += kHex[byte & 0xFU];
    }
  }
  return json + '"';
}

std::string Base64(std::string_view bytes) {
  static constexpr char kLetters[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::uint32_t group = (std::uint32_t{At(bytes, i)} << 16U) |
                                (std::uint32_t{At(bytes, i + 1)} << 8U) | At(bytes, i + 2);
    const std::size_t given = bytes.size() - i;
    text += kLetters[group >> 18U];
    text += kLetters[(group >> 12U) & 0x3FU];
    text += given > 1 ? kLetters[(group >> 6U) & 0x3FU] : '=';
    text += given > 2 ? kLetters[group & 0x3FU] : '=';
  }
  return text;
}

}  // namespace pxrom_command
