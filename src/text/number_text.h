#pragma once

#include <cstddef>
#include <string_view>

namespace Tarvane::Plexura::PXROM::reading {

/// `text`, or nothing when it is blanks only, such as the "\r" that a line end can leave.
std::string_view EmptyIfBlank(std::string_view text) noexcept;

/// Reads a number as `std::stringstream(text) >> target` does in the classic locale, whatever the
/// global locale is, without a stream. A blank text leaves the target; a text that does not begin
/// with a number stores 0; overflow stores the limit of the type.
void Extract(std::string_view text, int& target) noexcept;
void Extract(std::string_view text, double& target) noexcept;
/// 0 and 1 by number; any other number is true, any word false.
void Extract(std::string_view text, bool& target) noexcept;

/// Reads `count` doubles from the front of `text`, each up to the next `delimiter` or the end, as
/// Extract does into 0.0, and drops them from it. After the end all are 0.0. The characters from
/// the end of `text` up to `readable` have no effect on the values but must be readable: with them
/// the last numbers of a list take the short way too.
void ExtractTokens(std::string_view& text, char delimiter, double* values, std::size_t count,
                   const char* readable) noexcept;

}  // namespace Tarvane::Plexura::PXROM::reading
