#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pxrom_command {

/// An object of many members; of two with the same name, the later one. This is faster than adding
/// members one by one, each of which takes a search.
template <class Value>
nlohmann::ordered_json ObjectOf(const std::vector<std::pair<std::string, Value>>& named) {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  std::vector<std::pair<const std::string, nlohmann::ordered_json>>& members =
      object.get_ref<nlohmann::ordered_json::object_t&>();
  std::unordered_map<std::string_view, std::size_t> places;
  for (const auto& [name, value] : named) {
    const auto [place, is_new] = places.emplace(name, members.size());
    if (is_new) {
      members.emplace_back(name, value);
    } else {
      members[place->second].second = value;
    }
  }
  return object;
}

/// Null for a number that is not finite, which JSON can't hold.
nlohmann::ordered_json FiniteOrNull(double number);

/// Prints a document for programs that is also safe to look at: bytes that are not UTF-8 are
/// replaced, and characters that change the direction of others become escapes.
void PrintDocument(const nlohmann::ordered_json& document);

}  // namespace pxrom_command
