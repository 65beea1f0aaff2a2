#pragma once

#include <string>
#include <vector>

#include "validation.h"

namespace pxrom_command {

/// A validation as a page shows it.
struct ReportedValidation {
  /// The file of the table, without its folder.
  std::string table;
  Validation validation;
  /// Of each output.
  std::vector<std::string> units;
};

/// A section of a page: for each output a picture of predicted over measured values, and the
/// scores. Its pictures need no script.
std::string ValidationSection(const ReportedValidation& reported);

}  // namespace pxrom_command
