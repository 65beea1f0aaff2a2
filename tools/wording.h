#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pxrom_command {

/// `text`, which may come from a file, fit for one line on a terminal: without control characters
/// and without characters that change the order of others.
std::string Printed(std::string text);
/// `text`, or its first `most` bytes and "...", without splitting a character.
std::string Cut(std::string text, std::size_t most);
/// "text" in quotation marks.
std::string Quoted(const std::string& text);

/// "no rows", "1 row", "2 rows".
std::string Counted(std::size_t count, const std::string& one);

/// "a", "a and b", "a, b and c"; beyond `most` items "a, b and 7 more".
std::string Listed(const std::vector<std::string>& items, std::size_t most = 12);

/// "; did you mean "..."?" for the nearest of `names`, or an empty string if none is near.
std::string Suggestion(const std::string& typed, const std::vector<std::string>& names);

}  // namespace pxrom_command
