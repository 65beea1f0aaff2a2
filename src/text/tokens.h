#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Tarvane::Plexura::PXROM::reading {

/// Calls `visit(token)` for each token that std::getline would give: a delimiter at the very end
/// adds none, two in a row give an empty one.
template <class Visit>
void ForEachToken(std::string_view text, char delimiter, Visit visit) {
  while (!text.empty()) {
    const std::size_t end = text.find(delimiter);
    visit(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

/// The number of tokens of ForEachToken.
std::size_t CountTokens(std::string_view text, char delimiter);

// The tokenizers of CReader on views, with the rules in reader.h.
void Tokenize(std::string_view text, char delimiter, std::vector<double>& out);
/// With characters after the end that may be read, see ExtractTokens.
void Tokenize(std::string_view text, char delimiter, std::vector<double>& out,
              const char* readable);
void Tokenize(std::string_view text, char delimiter, std::vector<int>& out);
void Tokenize(std::string_view text, char delimiter, std::vector<std::string>& out);
void TokenizePairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                   std::vector<std::pair<std::string, double>>& out);
void TokenizePairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                   std::vector<std::pair<std::string, int>>& out);
void TokenizePairs(std::string_view text, char pairDelimiter, char innerDelimiter,
                   std::vector<std::pair<std::string, std::string>>& out);

}  // namespace Tarvane::Plexura::PXROM::reading
