#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Plexura::PXROM::inspection {

/// The Levenshtein distance: how many letters have to be inserted, deleted or replaced to turn `a`
/// into `b`, whatever their case. Wagner and Fischer, The string-to-string correction problem,
/// Journal of the ACM 21 (1974).
std::size_t EditDistance(std::string_view a, std::string_view b);

/// Whether one of the two begins or ends with the other, which has at least six letters.
bool IsPartOf(std::string_view a, std::string_view b);

/// The one of `words` that `typed` most likely means, or null when none is near. A word is also
/// near if `typed` is its beginning or its end.
const std::string* Nearest(std::string_view typed, const std::vector<const std::string*>& words);

}  // namespace Tarvane::Plexura::PXROM::inspection
