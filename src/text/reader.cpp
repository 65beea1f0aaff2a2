#include "pxrom/reader.h"

#include "text/tokens.h"

namespace Tarvane::Plexura::PXROM {

CReader::CReader() = default;
CReader::CReader(const CReader&) {}
CReader& CReader::operator=(const CReader&) = default;
CReader::~CReader() = default;

E_ReaderType CReader::ReaderType() const { return ReaderTypeNone; }

CReader* CReader::Clone() const { return new CReader(*this); }

int CReader::ReadDataStream(std::string& text) {
  DataStream = text;
  return 0;
}

int CReader::ReadDataStream(std::stringstream& text) {
  DataStream = text.str();
  return 0;
}

std::vector<double> CReader::TokenizeDouble(const std::string& text, const char& delimiter) const {
  std::vector<double> values;
  reading::Tokenize(text, delimiter, values);
  return values;
}

std::vector<int> CReader::TokenizeInt(const std::string& text, const char& delimiter) const {
  std::vector<int> values;
  reading::Tokenize(text, delimiter, values);
  return values;
}

std::vector<std::string> CReader::TokenizeString(const std::string& text,
                                                 const char& delimiter) const {
  std::vector<std::string> values;
  reading::Tokenize(text, delimiter, values);
  return values;
}

std::vector<std::pair<std::string, double>> CReader::TokenizePairStringDouble(
    const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const {
  std::vector<std::pair<std::string, double>> pairs;
  reading::TokenizePairs(text, pairDelimiter, innerDelimiter, pairs);
  return pairs;
}

std::vector<std::pair<std::string, int>> CReader::TokenizePairStringInt(
    const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const {
  std::vector<std::pair<std::string, int>> pairs;
  reading::TokenizePairs(text, pairDelimiter, innerDelimiter, pairs);
  return pairs;
}

std::vector<std::pair<std::string, std::string>> CReader::TokenizePairStringString(
    const std::string& text, const char& pairDelimiter, const char& innerDelimiter) const {
  std::vector<std::pair<std::string, std::string>> pairs;
  reading::TokenizePairs(text, pairDelimiter, innerDelimiter, pairs);
  return pairs;
}

}  // namespace Tarvane::Plexura::PXROM
