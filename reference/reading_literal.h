#pragma once

// The reading engine, step by step and slow: it copies every range and reads every number through a
// stream of its own. The library's engine is compared with it to the bit.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace literal {

/// Extraction from a new stream in the classic locale. After a failure the target is what the
/// stream leaves.
void Extract(const std::string& text, int& target);
void Extract(const std::string& text, double& target);
void Extract(const std::string& text, bool& target);

std::vector<double> TokenizeDouble(const std::string& text, char delimiter);
std::vector<int> TokenizeInt(const std::string& text, char delimiter);
std::vector<std::string> TokenizeString(const std::string& text, char delimiter);
std::vector<std::pair<std::string, double>> TokenizePairStringDouble(const std::string& text,
                                                                     char pairDelimiter,
                                                                     char innerDelimiter);
std::vector<std::pair<std::string, int>> TokenizePairStringInt(const std::string& text,
                                                               char pairDelimiter,
                                                               char innerDelimiter);
std::vector<std::pair<std::string, std::string>> TokenizePairStringString(const std::string& text,
                                                                          char pairDelimiter,
                                                                          char innerDelimiter);

/// The bounds of a group from `from` on, without and with the test against `upper`.
int SearchBounds(const std::string& text, const std::string& opening, const std::string& closing,
                 std::size_t from, std::size_t& start, std::size_t& end);
int SearchBounds(const std::string& text, const std::string& opening, const std::string& closing,
                 std::size_t from, std::size_t upper, std::size_t& start, std::size_t& end);

/// True when `key` was found; `value` is then the text after it.
bool CatchKeyValue(const std::string& text, const std::string& key, std::string& value,
                   std::size_t lower, std::size_t upper);
std::size_t CountAttribute(const std::string& text, const std::string& key, std::size_t lower,
                           std::size_t upper);

}  // namespace literal
