#include "codegen/text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <limits>
#include <locale>
#include <sstream>

namespace pxrom_codegen {

namespace {

bool IsPartOfName(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

/// Whether one of the pieces that an #if names is used.
bool Holds(const std::string& line, const Pieces& pieces) {
  const std::string word = "USES(";
  for (std::size_t at = line.find(word); at != std::string::npos; at = line.find(word, at)) {
    at += word.size();
    if (pieces.count(line.substr(at, line.find(')', at) - at)) != 0) return true;
  }
  return false;
}

/// The text of the parentheses that open at `at`, which moves to after them.
std::string Inner(const std::string& line, std::size_t& at) {
  const std::size_t end = line.find(')', at);
  std::string inner = line.substr(at, end - at);
  at = end + 1;
  return inner;
}

/// R(0.5) becomes 0.5 or 0.5f, M(exp) exp or expf, and real double or float.
std::string Translated(const std::string& line, bool isFloat) {
  const std::string suffix = isFloat ? "f" : "";
  std::string out;
  for (std::size_t at = 0; at < line.size();) {
    const bool isStart = at == 0 || !IsPartOfName(line[at - 1]);
    if (isStart && (StartsWith(line.substr(at, 2), "R(") || StartsWith(line.substr(at, 2), "M("))) {
      at += 2;
      out += Inner(line, at) + suffix;
    } else if (isStart && line.compare(at, 4, "real") == 0 &&
               (at + 4 == line.size() || !IsPartOfName(line[at + 4]))) {
      out += isFloat ? "float" : "double";
      at += 4;
    } else {
      out += line[at++];
    }
  }
  return out;
}

template <class Real>
std::string ShortestLiteral(Real value) {
  const std::string type = sizeof(Real) == sizeof(float) ? "float" : "double";
  if (std::isnan(value)) return "(" + type + ")NAN";
  if (std::isinf(value)) return std::string(value < 0 ? "-" : "") + "(" + type + ")INFINITY";
  std::string text;
  for (int digits = std::numeric_limits<Real>::digits10; digits <= 17; ++digits) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(digits);
    out << value;
    text = out.str();
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    double back = 0.0;
    in >> back;
    if (static_cast<Real>(back) == value) break;
  }
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return sizeof(Real) == sizeof(float) ? text + "f" : text;
}

}  // namespace

std::string SelectPieces(const std::string& text, const Pieces& pieces, bool isFloat) {
  std::istringstream lines(text);
  std::vector<bool> open;
  std::string selected;
  std::string line;
  while (std::getline(lines, line)) {
    if (StartsWith(line, "#if ")) {
      open.push_back(Holds(line, pieces));
    } else if (StartsWith(line, "#endif")) {
      open.pop_back();
    } else if (std::find(open.begin(), open.end(), false) == open.end()) {
      selected += Translated(line, isFloat) + "\n";
      // Functions are separated by a line.
      if (line == "}" && open.size() > 0) selected += "\n";
    }
  }
  // At most one empty line in a row.
  std::string spaced;
  for (const char c : selected) {
    const std::size_t size = spaced.size();
    const bool isThird =
        c == '\n' && size >= 2 && spaced[size - 1] == '\n' && spaced[size - 2] == '\n';
    if (!isThird && !(c == '\n' && size == 0)) spaced += c;
  }
  return spaced;
}

std::string Literal(double value) { return ShortestLiteral(value); }
std::string Literal(float value) { return ShortestLiteral(value); }

std::string InComment(const std::string& text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto c = static_cast<unsigned char>(text[at]);
    const unsigned next = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0U;
    if (c >= 0x20 && c < 0x7F) {
      const char last = out.empty() ? ' ' : out.back();
      const bool isClose = (last == '*' && c == '/') || (last == '/' && c == '*');
      const bool isTrigraph = last == '?' && c == '?';
      if (isClose || isTrigraph) out += ' ';
      out += c == '\\' ? '|' : static_cast<char>(c);
    } else if (c >= 0xC2 && c <= 0xD5 && (next & 0xC0U) == 0x80U && !(c == 0xC2 && next < 0xA1)) {
      // Letters and signs of two bytes, all without an effect on the direction of text.
      out += static_cast<char>(c);
      out += text[++at];
    } else if ((c & 0xC0U) != 0x80U) {
      out += '.';
    }
  }
  return out;
}

std::string UpperName(const std::string& text) {
  std::string name;
  for (const char c : text) {
    const bool isAscii = static_cast<unsigned char>(c) < 0x80;
    if (isAscii && IsPartOfName(c)) {
      name += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    } else if (isAscii || name.empty() || name.back() != '_') {
      name += '_';
    }
  }
  return name;
}

std::vector<std::string> UpperNames(const std::vector<std::string>& ids) {
  std::vector<std::string> names;
  // The enumerator after the last one.
  std::set<std::string> used = {"COUNT"};
  for (const std::string& id : ids) {
    std::string name = UpperName(id);
    if (name.find_first_not_of('_') == std::string::npos)
      name = "NUMBER_" + std::to_string(names.size() + 1);
    std::string unique = name;
    for (int number = 2; !used.insert(unique).second; ++number) {
      unique = name + "_" + std::to_string(number);
    }
    names.push_back(unique);
  }
  return names;
}

bool IsName(const std::string& text) {
  return !text.empty() && text.size() <= 40 &&
         std::isdigit(static_cast<unsigned char>(text[0])) == 0 && text[0] != '_' &&
         std::all_of(text.begin(), text.end(), [](char c) {
           return static_cast<unsigned char>(c) < 0x80 && IsPartOfName(c);
         });
}

}  // namespace pxrom_codegen
