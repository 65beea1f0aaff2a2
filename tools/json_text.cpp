#include "json_text.h"

#include <cmath>
#include <iostream>

#include "pxrom/inspection.h"

namespace pxrom_command {

nlohmann::ordered_json FiniteOrNull(double number) {
  return std::isfinite(number) ? nlohmann::ordered_json(number) : nlohmann::ordered_json();
}

void PrintDocument(const nlohmann::ordered_json& document) {
  constexpr int kIndent = 2;
  // A text that is not UTF-8 must not prevent the output. The escapes are those of JSON, so a
  // program reads the original characters.
  std::cout << Tarvane::Plexura::PXROM::VisibleText(
                   document.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace))
            << '\n';
}

}  // namespace pxrom_command
