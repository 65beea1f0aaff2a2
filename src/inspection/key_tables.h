#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// How a value is written.
enum class Form : std::uint8_t {
  Int,
  Double,
  Bool,
  Ints,
  Doubles,
  Strings,
  IntPairs,
  DoublePairs,
  StringPairs,
  Line,    ///< read line by line
  Unread,  ///< nothing reads it
};

enum class Need : std::uint8_t {
  Required,  ///< without it the group means something else
  Optional,
};

/// The smallest and the largest int that has a meaning.
struct Range {
  int least = std::numeric_limits<int>::min();
  int most = std::numeric_limits<int>::max();
};

/// What the format says of one key.
struct KeyFact {
  const std::string& (*label)();
  Form form;
  Need need = Need::Required;
  Range range = {};
  /// The versions that are known, where the key holds one.
  std::array<int, 2> versions = {};
  /// Whether another version is refused.
  bool refusesVersions = false;
};

/// The keys of one kind of group, or of one part of it.
struct KeyTable {
  const KeyFact* facts;
  std::size_t count;

  const KeyFact* begin() const { return facts; }
  const KeyFact* end() const { return facts + count; }
};

extern const KeyTable kRegistryKeys;
extern const KeyTable kSetsKeys;
extern const KeyTable kCandidateKeys;
extern const KeyTable kCrossValidationKeys;
extern const KeyTable kGenomeKeys;
extern const KeyTable kKrigingErrorKeys;
extern const KeyTable kRegressionErrorKeys;
extern const KeyTable kWidthKeys;
extern const KeyTable kTermKeys;
extern const KeyTable kFmuKeys;
/// Keys that may stand anywhere and that nothing reads.
extern const KeyTable kUnreadKeys;

/// What the format says of one family of surfaces.
struct FamilyFact {
  E_DataType type;
  const char* name;
  KeyTable keys;
  /// Keys that only some of its records have.
  KeyTable furtherKeys;
  /// Whether its prediction uses the surface's own scaling.
  bool scalesInput;
  bool scalesOutput;
};

/// Null for a number that is no family.
const FamilyFact* FindFamilyFact(int type);
/// "Kriging", or "type 9".
std::string FamilyName(int type);

/// The kind of group that `key` belongs to, in words, or null when the format has no such key.
const char* FindPlaceOf(std::string_view key);

}  // namespace Tarvane::Plexura::PXROM::inspection
