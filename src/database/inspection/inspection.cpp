// The steps of an inspection: lines, groups, contents, and then a trial of the library itself.

#include "pxrom/inspection.h"

#include <algorithm>

#include "database/inspection/context.h"
#include "database/inspection/key_tables.h"
#include "text/inspection/values.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using namespace inspection;

constexpr std::size_t kNowhere = std::string_view::npos;
// The limit of floating-point operations for the evaluations of any text, and the addition for each
// of its characters.
constexpr double kWorkForAnyText = 1e9;
constexpr double kWorkPerCharacter = 256.0;

// A line end is "\n". A carriage return before it is harmless if all lines have one.
void CheckLineEnds(Context& context) {
  const std::string_view text = context.text;
  std::size_t plain = 0;
  std::size_t windows = 0;
  std::size_t firstPlain = kNowhere;
  std::size_t firstWindows = kNowhere;
  for (std::size_t at = text.find('\n'); at != kNowhere; at = text.find('\n', at + 1)) {
    const bool isWindows = at > 0 && text[at - 1] == '\r';
    if (++(isWindows ? windows : plain) == 1) (isWindows ? firstWindows : firstPlain) = at;
  }
  for (std::size_t at = text.find('\r'); at != kNowhere; at = text.find('\r', at + 1)) {
    if (at + 1 < text.size() && text[at + 1] == '\n') continue;
    context.findings.Add(SeverityWarning, FindingLineEndsMixed, {at, "", "", "\\r", "\\n"},
                         "a carriage return alone ends no line");
    break;
  }
  if (plain == 0 || windows == 0) return;
  const bool isPlainRare = plain <= windows;
  context.findings.Add(SeverityWarning, FindingLineEndsMixed,
                       {isPlainRare ? firstPlain : firstWindows, "", "", "", ""},
                       std::to_string(std::min(plain, windows)) + " of " +
                           std::to_string(plain + windows) + " lines end " +
                           (isPlainRare ? "without" : "with") +
                           " a carriage return, unlike the others; this is the first");
}

// Nothing between the groups is read. A key there has lost its group.
void CheckBetweenGroups(Context& context) {
  std::size_t at = 0;
  auto next = context.outline.Top().begin();
  while (at < context.text.size()) {
    const bool isLast = next == context.outline.Top().end();
    const std::size_t limit = isLast ? context.text.size() : context.outline.At(*next).tag;
    while (at < limit) {
      const std::size_t end = std::min(context.text.find('\n', at), limit);
      const std::string_view line = WithoutBlanks(context.text.substr(at, end - at));
      const std::size_t equals = line.substr(0, 64).find('=');
      const char* const place =
          equals == kNowhere ? nullptr : FormatVocabulary().placeOf(line.substr(0, equals + 1));
      if (place != nullptr) {
        const std::string label(line.substr(0, equals + 1));
        context.findings.Add(SeverityWarning, FindingKeyMisplaced, {at, "", label, label, ""},
                             Quoted(label) + " is in no group; it belongs to " + place);
      }
      at = end + 1;
    }
    if (isLast) return;
    at = context.outline.At(*next).end;
    ++next;
  }
}

}  // namespace

CInspectionReport InspectPXROMDatabase(const std::string& text) {
  CInspectionReport report;
  const LineTable lines(text);
  Findings findings(lines);
  // The reader finds nothing in the check points, so all that it reads is before them.
  const reading::CheckPointsGroup points = reading::FindCheckPoints(text);
  const std::string_view before = std::string_view(text).substr(0, points.begin);
  const Outline outline(before, findings);
  report.overview.characters = text.size();
  report.overview.lines = text.empty() ? 0 : lines.Count();
  Context context{before,
                  lines,
                  findings,
                  outline,
                  report.overview,
                  {},
                  {},
                  kWorkForAnyText + kWorkPerCharacter * static_cast<double>(text.size())};
  CheckLineEnds(context);
  CheckBetweenGroups(context);
  CheckRegistry(context);
  CheckDiscreteSets(context);
  CheckEnsembles(context);
  CheckFmu(context);
  if (points.begin == text.size()) {
    TryText(context, text);
  } else {
    const std::string held(before);
    TryText(context, held);
    CheckCheckPoints(context, text, held, points);
  }
  report.findings = findings.Deliver();
  report.errors = findings.NumberOf(SeverityError);
  report.warnings = findings.NumberOf(SeverityWarning);
  report.notes = findings.NumberOf(SeverityNote);
  return report;
}

}  // namespace Tarvane::Plexura::PXROM
