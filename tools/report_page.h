#pragma once

#include <optional>
#include <string>

#include "pxrom/inspection.h"
#include "validation_section.h"

namespace pxrom_command {

struct ReportedStudy {
  /// Without its folder.
  std::string file;
  std::string text;
  Tarvane::Plexura::PXROM::CInspectionReport inspection;
  std::optional<ReportedValidation> validation;
};

/// Whether this build can write pages that evaluate.
bool CanReportLive();

/// A complete page about a study: what the database holds, what is wrong with it, and, if it has no
/// errors, the library and the database, so that the browser can evaluate it.
std::string ReportPage(const ReportedStudy& study);

}  // namespace pxrom_command
