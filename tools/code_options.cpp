#include "code_options.h"

#include <cctype>
#include <optional>

#include "file_names.h"
#include "numbers.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

std::string CodeNameOf(const std::string& path) {
  constexpr std::size_t kLongest = 40;
  std::string name;
  for (const char c : TextOfPath(PathOf(path).stem())) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPart = byte < 0x80 && (std::isalnum(byte) != 0 || c == '_');
    if (name.empty() && !(isPart && std::isalpha(byte) != 0)) continue;
    name += isPart ? c : '_';
  }
  return name.empty() ? "model" : name.substr(0, kLongest);
}

std::vector<std::pair<std::string, int>> CombinationOf(const std::vector<std::string>& texts) {
  std::vector<std::pair<std::string, int>> combination;
  for (const std::string& text : texts) {
    const std::size_t at = text.rfind('=');
    const std::optional<int> value =
        at == std::string::npos ? std::nullopt : ParseInteger(text.substr(at + 1));
    if (!value.has_value()) {
      throw Refusal(Quoted(text) + " is not a discrete value such as Holes=2");
    }
    combination.emplace_back(text.substr(0, at), *value);
  }
  return combination;
}

}  // namespace pxrom_command
