#pragma once

// What is fuzzed: each target takes any bytes and throws Broken when a promise of the library does
// not hold for them. Crashes, leaks and undefined behaviour are the sanitizers' to find.

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// A promise that did not hold.
class Broken : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, const char* promise) {
  if (!holds) throw Broken(promise);
}

/// Tokenizers, numbers, and the searches of derived readers, against their literal versions.
void RunTokens(std::string_view data);
/// The reader of databases and what the object that it filled answers about itself.
void RunDatabase(std::string_view data);
/// Reading, then every combination in both forms and the derivative of every surface. The inputs
/// are doubles after the last "\0" of the data; without it, a few that are odd.
void RunEvaluate(std::string_view data);
/// The reader of FMI descriptions.
void RunFmu(std::string_view data);
/// An inspection says whether a text can be read and evaluated.
void RunInspection(std::string_view data);
/// Reading, writing, reading: nothing changes.
void RunWriter(std::string_view data);
/// Prepared models against plain evaluation; data as for RunEvaluate.
void RunBatch(std::string_view data);
/// The C interface: what it lists, prepares, evaluates and checks. Data as for RunEvaluate.
void RunCInterface(std::string_view data);
/// What the command adds: assignments, tables of points, what it shows, its page. Only in builds
/// with the command.
void RunCommand(std::string_view data);

struct Target {
  const char* name;
  /// The folders of tests/data/fuzz whose files are its seeds.
  std::vector<const char*> seeds;
  void (*run)(std::string_view);
};

const std::vector<Target>& Targets();
/// Throws Broken for an unknown name.
const Target& TargetNamed(std::string_view name);

}  // namespace fuzz
