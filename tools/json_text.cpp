#include "json_text.h"

#include <iostream>

#include "pxrom/inspection.h"

namespace pxrom_command {

void PrintDocument(const nlohmann::ordered_json& document) {
  constexpr int kIndent = 2;
  // A text that is not UTF-8 must not prevent the output. The escapes are those of JSON, so a
  // program reads the original characters.
  std::cout << Tarvane::Plexura::PXROM::VisibleText(
                   document.dump(kIndent, ' ', false, nlohmann::json::error_handler_t::replace))
            << '\n';
}

}  // namespace pxrom_command
