// Writing of a whole database: the registry, then one "DiscreteSet=" line per combination and the
// groups that the lines name.

#include <algorithm>
#include <iterator>

#include "ensemble/candidate_writing.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/writer.h"
#include "reading/database_text.h"

namespace Tarvane::Plexura::PXROM {

namespace writing {

namespace {

/// The version of registries that are in use. No reader asks for it.
constexpr int kRegistryVersion = 170;
constexpr int kNoNumber = -1;

/// The attributes of the registry with names, units or captions, and those that a reader looks for,
/// in the order in which they are written.
const std::string* const* RegistryKeys(std::size_t& count) {
  static const std::string* const keys[] = {
      &Labels::attParameterIDs(),          &Labels::attParameterCausalities(),
      &Labels::attParameterTypes(),        &Labels::attParameterAvailability(),
      &Labels::attParameterDiscreteIndexing(), &Labels::attParameterRegistrationRank(),
      &Labels::attParameterUnits(),        &Labels::attParameterCaptions(),
      &Labels::attParameterLowerBound(),   &Labels::attParameterUpperBound()};
  count = std::size(keys);
  return keys;
}

std::string Quoted(const std::string& word) { return "\"" + word + "\""; }

/// Refuses a word that the registry's line `key` can't hold. A search for a later key would stop at
/// one inside of it.
void CheckWord(AttributeSink& out, const std::string& what, const std::string& word,
               const std::string& key) {
  const std::string reason = ReasonAgainst(word);
  if (!reason.empty()) return out.Refuse(what + " " + reason);
  std::size_t count = 0;
  const std::string* const* const keys = RegistryKeys(count);
  bool isLater = false;
  for (std::size_t i = 0; i < count; ++i) {
    if (isLater && word.find(*keys[i]) != std::string::npos) {
      return out.Refuse(what + " holds the key " + Quoted(*keys[i]));
    }
    isLater = isLater || *keys[i] == key;
  }
}

}  // namespace

}  // namespace writing

}  // namespace Tarvane::Plexura::PXROM
