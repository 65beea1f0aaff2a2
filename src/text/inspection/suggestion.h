#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Plexura::PXROM::inspection {

/// The number of letters to insert, delete or exchange until `a` becomes `b`, capitals and small
/// letters alike.
std::size_t EditDistance(std::string_view a, std::string_view b);

/// Whether one of the two begins or ends with the other, of which at least six letters are there.
bool IsPartOf(std::string_view a, std::string_view b);

/// The one of `words` that was most likely meant by `typed`, or null when none is near. A word of
/// which only the beginning or the end is there is near too.
const std::string* Nearest(std::string_view typed, const std::vector<const std::string*>& words);

}  // namespace Tarvane::Plexura::PXROM::inspection
