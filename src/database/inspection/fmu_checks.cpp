// The optional description of an FMU.

#include <set>

#include "database/inspection/context.h"
#include "database/inspection/key_tables.h"
#include "pxrom/database_labels.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

}  // namespace

void CheckFmu(Context& context) {
  const Group* const group = context.outline.FindPlain(Word::FMU);
  if (group == nullptr || !group->isSound) return;
  GroupText in(context.text, context.outline, *group, {&FmuKeys()}, FormatVocabulary(),
               context.findings);
  in.Require(FmuKeys());
  in.Finish();
  const std::string& label = Labels::attFMUIDToValRef();
  std::set<std::string> seen;
  for (const Pair& pair : in.Pairs(label)) {
    if (seen.insert(pair.key).second) continue;
    in.ReportAt(pair.offset, SeverityWarning, FindingParameterTwice, label, Shortened(pair.key), "",
                Quoted(pair.key) + " has two value references");
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
