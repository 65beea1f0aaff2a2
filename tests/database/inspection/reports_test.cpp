// The findings of an inspection, to the letter, for sound models, for each damage of a table and
// for texts that are damaged at random. All of them are in tests/data/damaged/reports.txt.

#include <gtest/gtest.h>

#include <fstream>
#include <locale>
#include <random>
#include <regex>
#include <set>
#include <sstream>

#include "database/inspection/test_texts.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM {
namespace {

class Reports {
 public:
  explicit Reports(std::string& all) : all_(all) {}

  /// All findings of a sound model.
  void AddSound(const std::string& name, const std::string& text) {
    const CInspectionReport report = InspectPXROMDatabase(text);
    Begin(name, report);
    all_ += OverviewOf(report.overview);
    for (const std::string& line : FindingsOf(report)) all_ += line;
  }

  /// The findings that a damage adds to those of its sound model.
  void AddDamaged(const std::string& name, const std::string& sound, const std::string& text) {
    if (sound != sound_) {
      sound_ = sound;
      const auto lines = FindingsOf(InspectPXROMDatabase(sound));
      known_ = {lines.begin(), lines.end()};
    }
    const CInspectionReport report = InspectPXROMDatabase(text);
    Begin(name, report);
    for (const std::string& line : FindingsOf(report)) {
      if (known_.count(line) == 0) all_ += line;
    }
  }

 private:
  void Begin(const std::string& name, const CInspectionReport& report) {
    all_ += "\n# " + name + ": " + std::to_string(report.errors) + " errors, " +
            std::to_string(report.warnings) + " warnings, " + std::to_string(report.notes) +
            " notes\n";
  }

  std::string& all_;
  std::string sound_;
  std::set<std::string> known_;
};

TEST(Reports, SayTheSameToTheLetter) {
  std::string all;
  Reports reports(all);
  for (const std::string& path : GoodModels()) {
    reports.AddSound(path.substr(SourcePath("").size()), ContentOf(path));
  }
  const std::string constant = ContentOf(SourcePath("examples/constant.pxdb"));
  std::string windows = std::regex_replace(constant, std::regex("\n"), "\r\n");
  reports.AddSound("line ends of Windows", windows);
  reports.AddSound("line ends of Windows but one", windows.erase(windows.find('\r'), 1));
  using Change = std::pair<std::string, std::string>;
  const auto addChanged = [&](const std::string& name, const std::vector<Change>& changes) {
    std::string text = constant;
    for (const auto& [from, to] : changes) text.replace(text.find(from), from.size(), to);
    reports.AddDamaged(name, constant, text);
  };
  const Change causality = {"Causalities=0,1", "Causalities=0,2"};
  addChanged("no such causality, and a rank of no parameter", {causality, {"Rank={x", "Rank={z"}});
  addChanged("no such causality, and no number of inputs",
             {causality, {"InputVariables=1", "InputVariables="}});
  addChanged("an input, and an output of its rank", {{"{y;1}", "{y;0}"}});
  for (const Damage& damage : Damages()) {
    reports.AddDamaged(damage.name, ContentOf(SourcePath(damage.model)), damage.text);
  }

  std::mt19937 random(15);
  const std::pair<const char*, int> models[] = {
      {"examples/constant.pxdb", 120},
      {"tests/data/models/constant_sk_dummy/model.pxdb", 40},
      {"tests/data/models/qrs_sm_stackloss/model.pxdb", 40},
      {"tests/data/models/mls_np_franke_linear_gauss/model.pxdb", 20},
      {"tests/data/models/svr_sk_version170/model.pxdb", 20},
  };
  for (const auto& [path, count] : models) {
    const std::string sound = ContentOf(SourcePath(path));
    for (int round = 0; round < count; ++round) {
      std::string text = sound;
      for (int damages = 1 + round % 2; damages > 0; --damages) DamageAtRandom(text, random);
      reports.AddDamaged(std::string(path) + ' ' + std::to_string(round), sound, text);
    }
  }

  const std::string file = "tests/data/damaged/reports.txt";
  const std::string kept = ContentOf(SourcePath(file));
  if (all == kept) return;
  const std::string now = testing::TempDir() + "reports.txt";
  std::ofstream(now, std::ios::binary) << all;
  ADD_FAILURE() << "diff " << SourcePath(file) << ' ' << now
                << "\nshows what changed; copy the new "
                << "one over the old one where that is meant.";
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
