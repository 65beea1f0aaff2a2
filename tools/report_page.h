#pragma once

#include <string>

#include "pxrom/inspection.h"

namespace pxrom_command {

struct ReportedStudy {
  /// Without its folder.
  std::string file;
  std::string text;
  Tarvane::Plexura::PXROM::CInspectionReport inspection;
};

/// Whether this build can write pages that evaluate.
bool CanReportLive();

/// A page on a study, complete in itself: what the database holds, what is wrong with it, and, for
/// one without errors, the library with the database to evaluate it in the browser.
std::string ReportPage(const ReportedStudy& study);

}  // namespace pxrom_command
