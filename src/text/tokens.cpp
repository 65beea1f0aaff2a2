#include "text/tokens.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "pxrom/database_labels.h"
#include "text/number_text.h"

namespace Tarvane::Plexura::PXROM::reading {

namespace {

using Labels = CPXROMDatabaseLabels;

struct KeyAndValue {
  std::string_view key;
  std::string_view value;
};

KeyAndValue SplitPair(std::string_view pair, char innerDelimiter) {
  const std::size_t at = pair.find(innerDelimiter);
  if (at == std::string_view::npos) return {pair, pair};
  return {pair.substr(0, at), pair.substr(at + 1)};
}

// Drops the first and the last character, whatever they are.
std::string_view WithoutBrackets(std::string_view token) {
  if (token.empty()) throw std::out_of_range("PXROM: an empty pair in a list of pairs");
  return token.size() < 2 ? std::string_view() : token.substr(1, token.size() - 2);
}

template <class Number>
void TokenizeNumberPairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                         std::vector<std::pair<std::string, Number>>& out) {
  out.clear();
  ForEachToken(text, pairDelimiter, [&](std::string_view token) {
    const KeyAndValue pair = SplitPair(WithoutBrackets(token), innerDelimiter);
    Number value{};
    Extract(pair.value, value);
    out.emplace_back(pair.key, value);
  });
}

}  // namespace

std::size_t CountTokens(std::string_view text, char delimiter) {
  if (text.empty()) return 0;
  // Counted in single bytes over pieces of a fixed size, too short for a byte to overflow.
  // Compilers vectorise this, so the pass over a long list costs next to nothing.
  constexpr std::size_t kPiece = 192;
  std::size_t delimiters = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (; static_cast<std::size_t>(end - at) >= kPiece; at += kPiece) {
    std::uint8_t count = 0;
    for (std::size_t i = 0; i < kPiece; ++i) {
      count = static_cast<std::uint8_t>(count + (at[i] == delimiter ? 1 : 0));
    }
    delimiters += count;
  }
  delimiters += static_cast<std::size_t>(std::count(at, end, delimiter));
  return text.back() == delimiter ? delimiters : delimiters + 1;
}

void Tokenize(std::string_view text, char delimiter, std::vector<double>& out) {
  Tokenize(text, delimiter, out, text.data() + text.size());
}

void Tokenize(std::string_view text, char delimiter, std::vector<double>& out,
              const char* readable) {
  out.resize(CountTokens(text, delimiter));
  ExtractTokens(text, delimiter, out.data(), out.size(), readable);
}

void Tokenize(std::string_view text, char delimiter, std::vector<int>& out) {
  out.clear();
  out.reserve(CountTokens(text, delimiter));
  // Deliberate (blank-int-repeats): one variable serves all tokens. A blank token does not change
  // it, and so repeats the value before.
  int value = 0;
  ForEachToken(text, delimiter, [&](std::string_view token) {
    Extract(token, value);
    out.push_back(value);
  });
}

void Tokenize(std::string_view text, char delimiter, std::vector<std::string>& out) {
  out.clear();
  out.reserve(CountTokens(text, delimiter));
  ForEachToken(text, delimiter, [&](std::string_view token) { out.emplace_back(token); });
  if (out.empty()) return;
  for (const char lineEnd : {'\n', '\r'}) {
    const std::size_t at = out.back().find(lineEnd);
    if (at != std::string::npos) out.back().erase(at, 1);
  }
}

void TokenizePairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                   std::vector<std::pair<std::string, double>>& out) {
  TokenizeNumberPairs(text, pairDelimiter, innerDelimiter, out);
}

void TokenizePairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                   std::vector<std::pair<std::string, int>>& out) {
  TokenizeNumberPairs(text, pairDelimiter, innerDelimiter, out);
}

void TokenizePairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                   std::vector<std::pair<std::string, std::string>>& out) {
  out.clear();
  ForEachToken(text, pairDelimiter, [&](std::string_view token) {
    const std::size_t open = token.find(Labels::strGrpStart());
    const std::size_t close = token.find(Labels::strGrpEnd());
    const std::size_t first = open == std::string_view::npos ? 0 : open + 1;
    const std::size_t length = close < first ? std::string_view::npos : close - first;
    const KeyAndValue pair = SplitPair(token.substr(first, length), innerDelimiter);
    out.emplace_back(pair.key, pair.value);
  });
}

}  // namespace Tarvane::Plexura::PXROM::reading
