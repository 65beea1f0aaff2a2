#pragma once

#include <string>
#include <string_view>

namespace pxrom_command {

// Writes untrusted text of a database into a page.

/// `text` as the content of an element or of a quoted attribute. Bytes that are not UTF-8, and
/// control characters, become U+FFFD; characters that change the direction of others become escapes
/// such as \u202E.
std::string Escaped(std::string_view text);

/// `bytes` as a JSON string in ASCII that is safe inside a script element: one character for each
/// byte, so any bytes are possible.
std::string JsonOfBytes(std::string_view bytes);

std::string Base64(std::string_view bytes);

}  // namespace pxrom_command
