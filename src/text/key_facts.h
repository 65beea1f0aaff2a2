#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace Tarvane::Plexura::PXROM::fields {

/// How a value is written.
enum class Form : std::uint8_t {
  Int,
  Double,
  Bool,
  Flag,  ///< an int; any but 0 is true
  Ints,
  Doubles,
  Matrix,  ///< doubles, row by row
  Strings,
  IntPairs,
  DoublePairs,
  StringPairs,
  Line,    ///< read line by line
  Unread,  ///< never read
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

/// A word of the format: an operation of the table of words.
using Label = const std::string& (*)();

/// What the format says about one key. A description of fields (fields.h) gives the label and the
/// exceptions: `Key(&Labels::attX).Optional().Between(0, 4)`. The form follows from the field's
/// type.
struct Key {
  Label label = nullptr;
  Form form = Form::Int;
  Need need = Need::Required;
  Range range = {};
  /// The versions that are known, where the key holds one; else 0.
  std::array<int, 2> versions = {};
  /// Whether the evaluation refuses another version.
  bool refusesVersions = false;

  constexpr explicit Key(Label word) : label(word) {}

  constexpr Key Of(Form written) const {
    Key key = *this;
    key.form = written;
    return key;
  }
  constexpr Key Optional() const {
    Key key = *this;
    key.need = Need::Optional;
    return key;
  }
  constexpr Key Between(int least, int most) const {
    Key key = *this;
    key.range = {least, most};
    return key;
  }
  /// A number of things: 0 or more.
  constexpr Key Count() const { return Between(0, std::numeric_limits<int>::max()); }
  constexpr Key Version(int known, int alsoKnown) const {
    Key key = *this;
    key.versions = {known, alsoKnown};
    return key;
  }
  constexpr Key Version(int known) const { return Version(known, known); }
  constexpr Key RefusesOthers() const {
    Key key = *this;
    key.refusesVersions = true;
    return key;
  }
};

/// The keys of one kind of group, or of one part of it.
using KeyTable = std::vector<Key>;

}  // namespace Tarvane::Plexura::PXROM::fields
