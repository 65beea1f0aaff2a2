#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// The usual report, and behind it how many times faster than a yardstick the library is, mostly
/// the literal program. Pairs are benchmarks named KIND/YARDSTICK/CASE and KIND/library/CASE; with
/// repetitions the best time of each counts.
class RatioReport : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const double time = run.GetAdjustedCPUTime();
      double& best = best_.try_emplace(run.run_name.function_name, time).first->second;
      if (time < best) best = time;
    }
  }

  /// The ratios of the pairs of `kind` and their geometric mean.
  void Print(const std::string& kind, const std::string& yardstick = "literal") const {
    double logs = 0.0;
    int pairs = 0;
    const std::string prefix = kind + "/library/";
    for (auto it = best_.lower_bound(prefix);
         it != best_.end() && it->first.compare(0, prefix.size(), prefix) == 0; ++it) {
      const std::string name = it->first.substr(prefix.size());
      const auto other = best_.find(kind + "/" + yardstick + "/" + name);
      if (other == best_.end()) continue;
      const double ratio = other->second / it->second;
      std::printf("%s %s: %.2f times as fast as %s\n", kind.c_str(), name.c_str(), ratio,
                  yardstick.c_str());
      logs += std::log(ratio);
      ++pairs;
    }
    if (pairs > 0) {
      std::printf("%s against %s, geometric mean of %d: %.2f\n", kind.c_str(), yardstick.c_str(),
                  pairs, std::exp(logs / pairs));
    }
  }

 private:
  std::map<std::string, double> best_;
};
