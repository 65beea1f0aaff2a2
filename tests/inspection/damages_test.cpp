// What the inspection says of sound models, and of each damage of a table.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "inspection/test_texts.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(Damages, TheFirstErrorNamesTheDamageAndItsLine) {
  const std::vector<Damage> damages = Damages();
  EXPECT_GE(damages.size(), 100u);
  for (const Damage& damage : damages) {
    const CInspectionReport report = InspectPXROMDatabase(damage.text);
    const CFinding* const error = FirstError(report);
    ASSERT_NE(error, nullptr) << damage.name << '\n' << Shown(report);
    EXPECT_EQ(FindingCodeName(error->code), damage.code) << damage.name << '\n' << Shown(report);
    EXPECT_EQ(error->line, damage.line) << damage.name << '\n' << Shown(report);
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
