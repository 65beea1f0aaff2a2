// What the inspection says of sound models, and of each damage of a table.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "inspection/test_texts.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(Damages, TheFirstErrorNamesTheDamageAndItsLine) {
  for (const Damage& damage : Damages()) {
    if (damage.severity != SeverityError) continue;
    const CInspectionReport report = InspectPXROMDatabase(damage.text);
    const CFinding* const error = FirstError(report);
    ASSERT_NE(error, nullptr) << damage.name << '\n' << Shown(report);
    EXPECT_EQ(FindingCodeName(error->code), damage.code) << damage.name << '\n' << Shown(report);
    EXPECT_EQ(error->line, damage.line) << damage.name << '\n' << Shown(report);
  }
}

TEST(Damages, WarningsAndNotesNameWhatIsOddAndItsLine) {
  for (const Damage& damage : Damages()) {
    if (damage.severity == SeverityError) continue;
    const CInspectionReport report = InspectPXROMDatabase(damage.text);
    EXPECT_TRUE(std::any_of(report.findings.begin(), report.findings.end(),
                            [&damage](const CFinding& f) {
                              return f.severity == damage.severity && f.line == damage.line &&
                                     FindingCodeName(f.code) == damage.code;
                            }))
        << damage.name << '\n'
        << Shown(report);
  }
}

// Nothing is wrong with any group, but forty thousand lines read one of them again and again.
TEST(Damages, ATextThatAsksForTooMuchIsToldSo) {
  std::string text = ContentOf(PXROM_EXAMPLES "/constant.pxdb");
  const std::vector<std::pair<std::string, std::string>> changes = {
      {"IDs=x,y", "IDs=x,y,m"},     {"Causalities=0,1", "Causalities=0,1,0"},
      {"Types=0,0", "Types=0,0,2"}, {"Availability=1,1", "Availability=1,1,1"},
      {"{y;1}", "{y;1},{m;2}"},
  };
  for (const auto& [from, to] : changes) text.replace(text.find(from), from.size(), to);
  std::string lines;
  for (int i = 0; i < 40000; ++i) lines += "DiscreteSet={m;" + std::to_string(i) + "},{y;0}\n";
  text.replace(text.find("DiscreteSet={y;0}\n"), std::string("DiscreteSet={y;0}\n").size(), lines);
  const CInspectionReport report = InspectPXROMDatabase(text);
  ASSERT_EQ(report.errors, 1u) << Shown(report);
  EXPECT_EQ(FirstError(report)->code, FindingReadingRefused);
  EXPECT_EQ(FirstError(report)->line, 14u);
  EXPECT_NE(FirstError(report)->sentence.find("more work than"), std::string::npos)
      << Shown(report);
}

/// A row of the document's tables of codes.
struct DocumentedCode {
  std::string name;
  std::string severity;
  std::string meaning;
};

std::vector<DocumentedCode> DocumentedCodes() {
  std::istringstream document(ContentOf(PXROM_DOCS "/database-format.md"));
  std::vector<DocumentedCode> codes;
  bool isInTable = false;
  for (std::string line; std::getline(document, line);) {
    if (line == "| Code | Severity | Means |") isInTable = true;
    if (line.empty()) isInTable = false;
    if (!isInTable || line.rfind("| `", 0) != 0) continue;
    const std::size_t severity = line.find("` | ");
    const std::size_t meaning = line.find(" | ", severity + 4);
    codes.push_back({line.substr(3, severity - 3),
                     line.substr(severity + 4, meaning - severity - 4),
                     line.substr(meaning + 3, line.size() - 2 - meaning - 3)});
  }
  return codes;
}

TEST(Damages, ShowEveryCodeOfTheDocumentWithItsSeverities) {
  std::map<std::string, std::set<E_FindingSeverity>> shown;
  shown[FindingCodeName(FindingReadingRefused)] = {SeverityError};
  for (const Damage& damage : Damages()) shown[damage.code].insert(damage.severity);

  const std::vector<DocumentedCode> documented = DocumentedCodes();
  const std::vector<E_FindingCode> codes = ListFindingCodes();
  EXPECT_TRUE(std::is_sorted(codes.begin(), codes.end()));
  ASSERT_EQ(documented.size(), codes.size());
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const DocumentedCode& row = documented[i];
    EXPECT_EQ(row.name, FindingCodeName(codes[i]));
    EXPECT_EQ(row.meaning, FindingCodeExplanation(codes[i])) << row.name;
    for (const char* severity : {"error", "warning", "note"}) {
      const bool isShown = shown[row.name].count(SeverityOf(severity)) > 0;
      const bool isDocumented = row.severity.find(severity) != std::string::npos;
      // The first word is the common one; of the others not all are shown.
      EXPECT_TRUE(isShown || row.severity.rfind(severity, 0) != 0) << row.name;
      EXPECT_TRUE(isDocumented || !isShown) << row.name << ' ' << severity;
    }
  }
}

TEST(Damages, SoundModelsHaveNeitherErrorsNorWarnings) {
  const std::vector<std::string> models = GoodModels();
  EXPECT_GE(models.size(), 13u);
  for (const std::string& path : models) {
    const CInspectionReport report = InspectPXROMDatabase(ContentOf(path));
    EXPECT_EQ(report.errors, 0u) << path << '\n' << Shown(report);
    EXPECT_EQ(report.warnings, 0u) << path << '\n' << Shown(report);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
