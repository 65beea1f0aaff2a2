// The seeds of the fuzz targets, and the cases that they found: each holds what its target
// promises.

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "support/model_files.h"
#include "targets.h"

namespace Tarvane::Plexura::PXROM {
namespace {

namespace fs = std::filesystem;

TEST(FuzzSeeds, HoldThePromisesOfTheirTargets) {
  for (const fuzz::Target& target : fuzz::Targets()) {
    int files = 0;
    for (const char* folder : target.seeds) {
      for (const auto& entry : fs::directory_iterator(fs::path(PXROM_TEST_DATA "/fuzz") / folder)) {
        SCOPED_TRACE(std::string(target.name) + " on " + entry.path().string());
        ++files;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content(std::istreambuf_iterator<char>(file), {});
        const std::clock_t start = std::clock();
        EXPECT_NO_THROW(target.run(content));
        // Processor time and a wide margin for sanitizers: this is about what hangs.
        EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
      }
    }
    EXPECT_GT(files, 0) << target.name;
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
