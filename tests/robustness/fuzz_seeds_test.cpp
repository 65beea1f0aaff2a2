// The seeds of the fuzz targets and the cases that they found: each fulfils the promise of its
// target.

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "support/model_files.h"
#include "support/source_path.h"
#include "targets.h"

namespace Tarvane::Plexura::PXROM {
namespace {

namespace fs = std::filesystem;

TEST(FuzzSeeds, HoldThePromisesOfTheirTargets) {
  for (const fuzz::Target& target : fuzz::Targets()) {
    int files = 0;
    for (const char* folder : target.seeds) {
      for (const auto& entry :
           fs::directory_iterator(fs::path(SourcePath("tests/data/fuzz")) / folder)) {
        SCOPED_TRACE(std::string(target.name) + " on " + entry.path().string());
        ++files;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content(std::istreambuf_iterator<char>(file), {});
        const std::clock_t start = std::clock();
        EXPECT_NO_THROW(target.run(content));
        // Processor time with a wide margin for sanitizers, to find hangs.
        EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
      }
    }
    EXPECT_GT(files, 0) << target.name;
  }
}

// Each parameter needs its values, and each combination the number of parameters. Together they
// must not take the product. script/growth tests long texts of many more shapes.
TEST(FuzzSeeds, ManyParametersTakeNoLongerThanTheirText) {
  constexpr int kCount = 8000;
  std::string ids = "y", causalities = "1", types = "0", ones = "1", ranks = "{y;0}", values, sets;
  for (int i = 0; i < kCount; ++i) {
    const std::string id = "d" + std::to_string(i);
    ids += ',' + id;
    causalities += ",0";
    types += ",2";
    ones += ",1";
    ranks += ",{" + id + ';' + std::to_string(i + 1) + '}';
    values += '{' + id + ";1},";
  }
  const std::string text =
      "<ParameterRegistry>\nIDs=" + ids + "\nCausalities=" + causalities + "\nTypes=" + types +
      "\nAvailability=" + ones + "\nRegistrationRank=" + ranks +
      "\n</ParameterRegistry>\n<DiscreteSets>\nDiscreteSet=" + values + "{y;0}\n</DiscreteSets>\n" +
      ContentOf(SourcePath("examples/constant.pxdb"));
  for (const char* name : {"database", "c_interface"}) {
    SCOPED_TRACE(name);
    const std::clock_t start = std::clock();
    EXPECT_NO_THROW(fuzz::TargetNamed(name).run(text));
    EXPECT_LT(std::clock() - start, 2 * CLOCKS_PER_SEC);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
