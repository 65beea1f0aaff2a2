#pragma once

#include <string>
#include <utility>
#include <vector>

namespace pxrom_command {

/// The name of a model's file as a name for code.
std::string CodeNameOf(const std::string& path);

/// "Holes=2" and the like as the values of discrete inputs. Refusal for another text.
std::vector<std::pair<std::string, int>> CombinationOf(const std::vector<std::string>& texts);

}  // namespace pxrom_command
