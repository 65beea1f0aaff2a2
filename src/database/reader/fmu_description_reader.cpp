#include "pxrom/fmu_description_reader.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "text/number_text.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
// The limit for the sum of all values' lengths. In a sound text they add up to less than its
// length.
constexpr std::size_t kRoomForAnyText = std::size_t{1} << 20;
constexpr std::size_t kRoomPerCharacter = 4;

// The first place of a word at or after positions that never decrease. The last place is kept, so
// all searches together go through the text once, also for a word that does not occur.
class ForwardSearch {
 public:
  ForwardSearch(std::string_view text, std::string word) : text_(text), word_(std::move(word)) {}

  // kNone if the word does not follow; from kNone nothing is found.
  std::size_t From(std::size_t position) {
    if (!hasSearched_ || place_ < position) place_ = text_.find(word_, position);
    hasSearched_ = true;
    return place_;
  }

 private:
  std::string_view text_;
  std::string word_;
  bool hasSearched_ = false;
  std::size_t place_ = 0;
};

// The value of the first attribute `key` at or after positions that never decrease. It begins one
// character after the key, which is after the opening quotation mark, and ends before the next
// quotation mark or at the end of the text.
class QuotedAttribute {
 public:
  QuotedAttribute(std::string_view text, const std::string& key)
      : text_(text), keyLength_(key.size()), key_(text, key), closing_(text, "\"") {}

  // Empty without the key.
  std::optional<std::string_view> From(std::size_t position) {
    const std::size_t place = key_.From(position);
    if (place == kNone) return std::nullopt;
    const std::size_t begin = place + keyLength_ + 1;
    if (begin >= text_.size()) return std::string_view();
    const std::size_t end = closing_.From(begin);
    return text_.substr(begin, end == kNone ? kNone : end - begin);
  }

 private:
  std::string_view text_;
  std::size_t keyLength_;
  ForwardSearch key_;
  ForwardSearch closing_;
};

std::vector<std::string> NamesOf(const std::map<std::string, int>& values, int value) {
  std::vector<std::string> names;
  for (const auto& entry : values) {
    if (entry.second == value) names.push_back(entry.first);
  }
  return names;
}

}  // namespace

CReaderFMUModelDescription::CReaderFMUModelDescription() = default;

CReaderFMUModelDescription::CReaderFMUModelDescription(const CReaderFMUModelDescription& other)
    : CReader(other) {
  // The base's copy is an empty reader, so assignment copies everything.
  *this = other;
}

CReaderFMUModelDescription& CReaderFMUModelDescription::operator=(
    const CReaderFMUModelDescription&) = default;

CReaderFMUModelDescription::~CReaderFMUModelDescription() = default;

E_ReaderType CReaderFMUModelDescription::ReaderType() const { return ReaderTypeText; }

CReaderFMUModelDescription* CReaderFMUModelDescription::Clone() const {
  return new CReaderFMUModelDescription(*this);
}

int CReaderFMUModelDescription::ParseFMUModelDescription() {
  const std::string_view text = DataStream;
  const std::size_t root = text.find("<" + RootWord);
  if (root == kNone) return 0;
  if (const auto guid = QuotedAttribute(text, GUIDKey).From(root)) GUID = std::string(*guid);
  if (const auto states = QuotedAttribute(text, ContinuousStatesKey).From(root)) {
    reading::Extract(*states, NumberOfContinuousStates);
  }
  ParseVariables(text.find("<" + VariablesWord, root));
  return 0;
}

void CReaderFMUModelDescription::ParseVariables(std::size_t from) {
  const std::string_view text = DataStream;
  ForwardSearch opening(text, "<" + VariableWord);
  ForwardSearch closing(text, "</" + VariableWord);
  ForwardSearch real(text, "<" + RealWord);
  ForwardSearch integer(text, "<" + IntegerWord);
  QuotedAttribute nameAttribute(text, NameKey);
  QuotedAttribute referenceAttribute(text, ValueReferenceKey);
  QuotedAttribute causalityAttribute(text, CausalityKey);

  std::size_t room = kRoomForAnyText + kRoomPerCharacter * text.size();
  std::size_t position = from;
  for (;;) {
    const std::size_t current = opening.From(position);
    if (current == kNone) return;
    position = closing.From(current);
    // Deliberate (fmi-word-scan): none of these searches ends with the variable, so an attribute
    // that it lacks is taken from a later one.
    const std::string_view nameText = nameAttribute.From(current).value_or(std::string_view());
    const std::string_view referenceText =
        referenceAttribute.From(current).value_or(std::string_view());
    // Without a closing tag the variable ends with the text.
    const auto isInside = [position](std::size_t place) {
      return place != kNone && place <= position;
    };
    const bool isReal = isInside(real.From(current));
    const bool isInteger = !isReal && isInside(integer.From(current));
    if (isReal) NumberOfReals += 2;
    if (isInteger) NumberOfIntegers += 1;
    // Many variables can share one long value far away. A variable that exceeds the limit is
    // counted but not entered.
    const std::size_t taken = nameText.size() + referenceText.size();
    if (taken > room) continue;
    room -= taken;
    const std::string name(nameText);
    int reference = 0;
    reading::Extract(referenceText, reference);
    ParameterValueReferences.emplace(name, reference);
    const std::string_view causality =
        causalityAttribute.From(current).value_or(std::string_view());
    if (causality == "input") ParameterCausalities.emplace(name, CausalityInput);
    if (causality == "output") ParameterCausalities.emplace(name, CausalityOutput);
    if (isReal) ParameterTypes.emplace(name, ContinuousNotManufacturable);
    if (isInteger) ParameterTypes.emplace(name, DiscreteParameter);
  }
}

std::string CReaderFMUModelDescription::GetGUID() const { return GUID; }

int CReaderFMUModelDescription::GetNumberOfContinuousStates() const {
  return NumberOfContinuousStates;
}

int CReaderFMUModelDescription::GetNumberOfReals() const { return NumberOfReals; }

int CReaderFMUModelDescription::GetNumberOfIntegers() const { return NumberOfIntegers; }

int CReaderFMUModelDescription::GetNumberOfBooleans() const { return NumberOfBooleans; }

int CReaderFMUModelDescription::GetNumberOfStrings() const { return NumberOfStrings; }

int CReaderFMUModelDescription::GetNumberOfEventIndicators() const {
  return NumberOfEventIndicators;
}

std::map<std::string, int> CReaderFMUModelDescription::GetParameterValueReferences() const {
  return ParameterValueReferences;
}

std::vector<std::string> CReaderFMUModelDescription::ListParameterImmutableID() const {
  std::vector<std::string> names;
  for (const auto& entry : ParameterValueReferences) names.push_back(entry.first);
  return names;
}

std::vector<std::string> CReaderFMUModelDescription::ListParameterImmutableID(
    E_ParameterCausality causality) const {
  return NamesOf(ParameterCausalities, causality);
}

std::vector<std::string> CReaderFMUModelDescription::ListParameterImmutableID(
    E_ParameterType type) const {
  return NamesOf(ParameterTypes, type);
}

}  // namespace Tarvane::Plexura::PXROM
