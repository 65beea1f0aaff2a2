#include <cstring>
#include <optional>

#include "pxrom/database_reader.h"
#include "reference/reading_literal.h"
#include "targets.h"
#include "text/number_text.h"

namespace fuzz {

namespace {

using namespace Tarvane::Plexura::PXROM;

// By their bits, so that -0.0 counts.
bool Same(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }
bool Same(int a, int b) { return a == b; }
bool Same(bool a, bool b) { return a == b; }
bool Same(const std::string& a, const std::string& b) { return a == b; }
template <class First, class Second>
bool Same(const std::pair<First, Second>& a, const std::pair<First, Second>& b) {
  return Same(a.first, b.first) && Same(a.second, b.second);
}
template <class Value>
bool Same(const std::vector<Value>& a, const std::vector<Value>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!Same(a[i], b[i])) return false;
  }
  return true;
}

// What `make` returns, or nothing when it throws std::out_of_range.
template <class Make>
auto ResultOf(Make make) -> std::optional<decltype(make())> {
  try {
    return make();
  } catch (const std::out_of_range&) {
    return std::nullopt;
  }
}

template <class Fast, class Slow>
void RequireSame(Fast fast, Slow slow, const char* promise) {
  const auto a = ResultOf(fast);
  const auto b = ResultOf(slow);
  Require(a.has_value() == b.has_value() && (!a.has_value() || Same(*a, *b)), promise);
}

template <class Value>
void CompareNumber(const std::string& text, Value start) {
  Value fast = start;
  Value slow = start;
  reading::Extract(text, fast);
  literal::Extract(text, slow);
  Require(Same(fast, slow), "a number reads as a stream reads it");
}

// The searches, which only derived readers see.
class Searches : public CReaderPXROMDatabase {
 public:
  static void Compare(const std::string& text, const std::string& tag, std::size_t lower,
                      std::size_t upper) {
    const Searches reader;
    const std::string opening = "<" + tag + ">";
    const std::string closing = "</" + tag + ">";
    std::size_t start[2] = {};
    std::size_t end[2] = {};
    int status[2] = {reader.SearchBoundsOfTaggedGroup(text, tag, start[0], end[0]),
                     literal::SearchBounds(text, opening, closing, 0, start[1], end[1])};
    Require(status[0] == status[1] && start[0] == start[1] && end[0] == end[1],
            "a group's bounds are those of a plain search");
    status[0] = reader.SearchBoundsOfTaggedGroup(text, tag, lower, upper, start[0], end[0]);
    status[1] = literal::SearchBounds(text, opening, closing, lower, upper, start[1], end[1]);
    Require(status[0] == status[1] && start[0] == start[1] && end[0] == end[1],
            "bounds in a range are those of a plain search");

    const std::string key = tag + "=";
    RequireSame(
        [&] {
          std::string value = "untouched";
          reader.CatchKeyValue(text, key, value, lower, upper);
          return value;
        },
        [&] {
          std::string value;
          return literal::CatchKeyValue(text, key, value, lower, upper) ? value : "untouched";
        },
        "a value is what comes after its key");
    RequireSame([&] { return static_cast<int>(reader.CountAttribute(text, key, lower, upper)); },
                [&] { return static_cast<int>(literal::CountAttribute(text, key, lower, upper)); },
                "lines with a key are counted as they are");
  }
};

}  // namespace

// The first four bytes: two delimiters and the places of a range; then the text.
void RunTokens(std::string_view data) {
  if (data.size() < 4) return;
  const char outer = data[0];
  const char inner = data[1];
  const std::size_t lower = static_cast<unsigned char>(data[2]);
  const std::size_t upper = static_cast<unsigned char>(data[3]);
  const std::string text(data.substr(4));

  CompareNumber(text, 8.25);
  CompareNumber(text, 77);
  CompareNumber(text, true);
  CompareNumber(text, false);
  std::string_view rest = text;
  double token = 8.25;
  reading::ExtractTokens(rest, outer, &token, 1, rest.data() + rest.size());
  double first = 0.0;
  literal::Extract(text.substr(0, text.find(outer)), first);
  const std::size_t delimiter = text.find(outer);
  Require(Same(token, first) &&
              rest == (delimiter < text.size() ? text.substr(delimiter + 1) : std::string()),
          "a token is read and dropped with its delimiter");

  const CReader reader;
  const char* const promise = "a list splits as std::getline splits it";
  RequireSame([&] { return reader.TokenizeDouble(text, outer); },
              [&] { return literal::TokenizeDouble(text, outer); }, promise);
  RequireSame([&] { return reader.TokenizeInt(text, outer); },
              [&] { return literal::TokenizeInt(text, outer); }, promise);
  RequireSame([&] { return reader.TokenizeString(text, outer); },
              [&] { return literal::TokenizeString(text, outer); }, promise);
  RequireSame([&] { return reader.TokenizePairStringDouble(text, outer, inner); },
              [&] { return literal::TokenizePairStringDouble(text, outer, inner); }, promise);
  RequireSame([&] { return reader.TokenizePairStringInt(text, outer, inner); },
              [&] { return literal::TokenizePairStringInt(text, outer, inner); }, promise);
  RequireSame([&] { return reader.TokenizePairStringString(text, outer, inner); },
              [&] { return literal::TokenizePairStringString(text, outer, inner); }, promise);

  for (const char* tag : {"A", "FMU"}) {
    Searches::Compare(text, tag, lower, upper);
    Searches::Compare(text, tag, lower, std::string::npos);
  }
}

}  // namespace fuzz
