// Every entry of docs/behaviours.md has a marker in the code and a test of its name, and every
// marker has an entry. The entry `blank-int-repeats` has the marker `Deliberate
// (blank-int-repeats):` and the test `BlankIntRepeats`, in any suite.

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {
namespace {

/// From a name to the places where it was found.
using Places = std::map<std::string, std::vector<std::string>>;

/// What the first group of `pattern` matches in the sources of a folder, or in one file. Only lines
/// that hold `word` are looked at, since expressions are slow.
void Find(const std::string& path, const std::string& word, const char* pattern, Places& places) {
  namespace fs = std::filesystem;
  const fs::path start = SourcePath(path);
  std::vector<fs::path> files;
  if (fs::is_directory(start)) {
    for (const auto& entry : fs::recursive_directory_iterator(start)) files.push_back(entry.path());
  } else {
    files.push_back(start);
  }
  const std::set<std::string> kinds = {".h", ".cpp", ".inc", ".py", ".js", ".cmake", ".md"};
  const std::regex expression(pattern);
  for (const fs::path& file : files) {
    if (kinds.count(file.extension().string()) == 0) continue;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
      std::smatch match;
      if (line.find(word) == std::string::npos) continue;
      if (!std::regex_search(line, match, expression)) continue;
      places[match[1]].push_back(fs::relative(file, SourcePath("")).generic_string());
    }
  }
}

/// "BlankIntRepeats" for "blank-int-repeats".
std::string TestName(const std::string& entry) {
  std::string name;
  for (std::size_t i = 0; i < entry.size(); ++i) {
    if (entry[i] == '-') continue;
    const bool begins = i == 0 || entry[i - 1] == '-';
    name += begins ? static_cast<char>(std::toupper(entry[i])) : entry[i];
  }
  return name;
}

TEST(BehavioursDocument, AgreesWithTheMarkersAndTheTests) {
  Places entries;
  Find("docs/behaviours.md", "<a id", "<a id=\"([a-z0-9-]+)\">", entries);
  ASSERT_FALSE(entries.empty());
  Places markers;
  for (const char* const folder :
       {"include", "src", "tools", "python/pxrom", "python/src", "cmake"}) {
    Find(folder, "Deliberate", "Deliberate \\(([^)]*)\\):", markers);
  }
  Places tests;
  Find("tests", "TEST", "TEST(?:_[FP])?\\(\\w+, (\\w+)\\)", tests);

  for (const auto& [name, places] : entries) {
    EXPECT_EQ(places.size(), 1U) << "docs/behaviours.md has more than one entry " << name;
    EXPECT_EQ(markers[name].size(), 1U)
        << "the code needs one comment `Deliberate (" << name << "):`, but has it in "
        << testing::PrintToString(markers[name]);
    EXPECT_EQ(tests.count(TestName(name)), 1U)
        << "no test of " << name << " has the name " << TestName(name);
  }
  for (const auto& [name, places] : markers) {
    EXPECT_EQ(entries.count(name), 1U) << "docs/behaviours.md has no entry for the marker " << name
                                       << " in " << testing::PrintToString(places);
  }
}

// A behaviour without a name could not be looked up.
TEST(BehavioursDocument, NamesEachDeliberateBehaviour) {
  Places unnamed;
  for (const char* const folder : {"include", "src"}) {
    Find(folder, "eliberate", "([Dd]eliberate(?! \\([a-z0-9-]+\\):)\\w*)", unnamed);
  }
  for (const auto& [word, places] : unnamed) {
    ADD_FAILURE() << word << " without a name in " << testing::PrintToString(places);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
