#include "targets.h"

namespace fuzz {

const std::vector<Target>& Targets() {
  static const std::vector<Target> targets = {
      {"tokens", {"tokens"}, &RunTokens},
      {"database", {"database"}, &RunDatabase},
      {"evaluate", {"database", "evaluate"}, &RunEvaluate},
      {"fmu", {"fmu"}, &RunFmu},
      {"inspection", {"database"}, &RunInspection},
      {"writer", {"database", "evaluate"}, &RunWriter},
      {"batch", {"database", "evaluate"}, &RunBatch},
      {"c_interface", {"database", "evaluate"}, &RunCInterface},
#ifdef PXROM_FUZZ_COMMAND
      {"command", {"database", "command"}, &RunCommand},
#endif
  };
  return targets;
}

const Target& TargetNamed(std::string_view name) {
  for (const Target& target : Targets()) {
    if (name == target.name) return target;
  }
  throw Broken("no target of that name");
}

}  // namespace fuzz
