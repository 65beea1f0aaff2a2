#pragma once

#include <string>
#include <string_view>

namespace pxrom_command {

// Text of a database in a page. All of it is untrusted.

/// `text` as the content of an element or of a quoted attribute. What is no UTF-8, and control
/// characters, become U+FFFD.
std::string Escaped(std::string_view text);

/// `bytes` as a JSON string in ASCII that may stand inside of a script element: one character
/// for each byte, so that any bytes come through.
std::string JsonOfBytes(std::string_view bytes);

std::string Base64(std::string_view bytes);

}  // namespace pxrom_command
