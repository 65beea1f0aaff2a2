#include <string>

#include "c_interface/border.h"
#include "pxrom/inspection.h"

namespace pxrom = Tarvane::Plexura::PXROM;
using namespace Tarvane::Plexura::PXROM::c_interface;

namespace {

pxrom_finding Shown(const pxrom::CFinding& finding) {
  pxrom_finding shown = {};
  shown.severity = finding.severity;
  shown.code = finding.code;
  shown.code_name = pxrom::FindingCodeName(finding.code);
  shown.line = finding.line;
  shown.column = finding.column;
  shown.group = finding.group.c_str();
  shown.key = finding.key.c_str();
  shown.found = finding.found.c_str();
  shown.expected = finding.expected.c_str();
  shown.sentence = finding.sentence.c_str();
  return shown;
}

}  // namespace

pxrom_status pxrom_check(const char* text, size_t length, pxrom_finding_callback callback,
                         void* user, pxrom_finding_counts* counts, char* message,
                         size_t message_size) {
  return AtTheBorder(message, message_size, [&] {
    const pxrom::CInspectionReport report = pxrom::InspectPXROMDatabase(RequireText(text, length));
    if (counts != nullptr) *counts = {report.notes, report.warnings, report.errors};
    if (callback == nullptr) return;
    for (const pxrom::CFinding& finding : report.findings) {
      const pxrom_finding shown = Shown(finding);
      if (callback(&shown, user) != 0) return;
    }
  });
}
