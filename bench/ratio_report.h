#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// What a kind of benchmark is to reach, if anything: how many times as fast as the yardstick, or
/// how many nanoseconds at the most. It is for the case of that name, or else for the geometric
/// mean of all cases; a goal of nanoseconds is for each case.
struct Goal {
  double ratio = 0.0;
  double nanoseconds = 0.0;
  std::vector<std::string> cases = {};
  /// How many times as fast as peers, in every case.
  std::vector<std::pair<std::string, double>> peers = {};
};

/// The usual report, and after it a table: the time of the library and of its yardstick, mostly
/// the literal program, how many times faster the library is, and what a peer takes.
///
/// Benchmarks are named KIND/PROGRAM/CASE. KIND/library/CASE is the library; any other program than
/// the yardstick is a peer. With repetitions the best time of each counts. Times are per item where
/// a benchmark counts items, and per megabyte where it counts bytes.
class RatioReport : public benchmark::ConsoleReporter {
 public:
  RatioReport() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const double time = Nanoseconds(run);
      const std::string& name = run.run_name.function_name;
      const std::size_t first = name.find('/');
      const std::size_t second = name.find('/', first + 1);
      if (second == std::string::npos) continue;
      Programs& programs = best_[name.substr(0, first)][name.substr(second + 1)];
      const std::string program = name.substr(first + 1, second - first - 1);
      double& best = programs.try_emplace(program, time).first->second;
      if (time < best) best = time;
      for (const auto& [counter, value] : run.counters) counters_[name][counter] = value;
    }
  }

  /// A counter of the benchmark `name`; 0 when there is none.
  double Counter(const std::string& name, const std::string& counter) const {
    const auto counters = counters_.find(name);
    if (counters == counters_.end()) return 0.0;
    const auto value = counters->second.find(counter);
    return value == counters->second.end() ? 0.0 : value->second;
  }

  /// The best time of a benchmark in nanoseconds; 0 when there is none.
  double Best(const std::string& kind, const std::string& program, const std::string& name) const {
    const auto cases = best_.find(kind);
    if (cases == best_.end() || cases->second.count(name) == 0) return 0.0;
    const Programs& programs = cases->second.at(name);
    const auto time = programs.find(program);
    return time == programs.end() ? 0.0 : time->second;
  }

  /// The rows of `kind`, called `title` in the table.
  void Print(const std::string& kind, const std::string& title, const Goal& goal = {},
             const std::string& yardstick = "literal") const {
    double logs = 0.0;
    int pairs = 0;
    const auto cases = best_.find(kind);
    if (cases == best_.end()) return;
    for (const auto& [name, programs] : cases->second) {
      const auto own = programs.find("library");
      const auto other = programs.find(yardstick);
      if (own == programs.end() || other == programs.end()) continue;
      const double ratio = other->second / own->second;
      logs += std::log(ratio);
      ++pairs;
      std::string peers;
      for (const auto& [program, time] : programs) {
        if (program == "library" || program == yardstick) continue;
        peers += (peers.empty() ? "" : "; ") + program + " " + Time(time) + " (" +
                 Number(time / own->second) + ")";
      }
      std::string reached;
      if (goal.nanoseconds > 0.0) {
        reached = Reached("<= " + Time(goal.nanoseconds), own->second <= goal.nanoseconds);
      }
      for (const std::string& wanted : goal.cases) {
        if (wanted == name) reached = Reached(">= " + Number(goal.ratio), ratio >= goal.ratio);
      }
      for (const auto& [peer, wanted] : goal.peers) {
        const auto time = programs.find(peer);
        if (time == programs.end()) continue;
        reached += (reached.empty() ? "" : "; ") +
                   Reached(peer + " >= " + Number(wanted), time->second / own->second >= wanted);
      }
      Row(title + ", " + name, Time(own->second), Time(other->second), Number(ratio), peers,
          reached);
    }
    if (pairs == 0) return;
    const double mean = std::exp(logs / pairs);
    const bool counts = goal.ratio > 0.0 && goal.cases.empty();
    if (pairs > 1 || counts) {
      Row("**" + title + "**, geometric mean of " + std::to_string(pairs), "", "",
          "**" + Number(mean) + "**", "",
          counts ? Reached(">= " + Number(goal.ratio), mean >= goal.ratio) : "");
    }
  }

  /// One row of the table.
  static void Row(const std::string& name, const std::string& own, const std::string& yardstick,
                  const std::string& ratio, const std::string& peer, const std::string& goal) {
    std::printf("| %s | %s | %s | %s | %s | %s |\n", name.c_str(), own.c_str(), yardstick.c_str(),
                ratio.c_str(), peer.c_str(), goal.c_str());
  }

  static std::string Reached(const std::string& goal, bool isReached) {
    return goal + (isReached ? "" : ", **missed**");
  }

  static std::string Number(double value) { return Formatted(value < 10.0 ? 2 : 1, value, ""); }

 private:
  using Programs = std::map<std::string, double>;

  static double Nanoseconds(const Run& run) {
    const auto items = run.counters.find("items_per_second");
    if (items != run.counters.end()) return 1e9 / items->second.value;
    const auto bytes = run.counters.find("bytes_per_second");
    if (bytes != run.counters.end()) return 1e9 * (1 << 20) / bytes->second.value;
    return run.cpu_accumulated_time / static_cast<double>(run.iterations) * 1e9;
  }

  static std::string Time(double nanoseconds) {
    const struct {
      double size;
      const char* unit;
    } units[] = {{1e6, " ms"}, {1e3, " us"}, {1.0, " ns"}};
    for (const auto& unit : units) {
      const double value = nanoseconds / unit.size;
      if (value < 1.0 && unit.size > 1.0) continue;
      return Formatted(value < 10.0 ? 2 : value < 100.0 ? 1 : 0, value, unit.unit);
    }
    return "";
  }

  static std::string Formatted(int digits, double value, const char* unit) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f%s", digits, value, unit);
    return text;
  }

  std::map<std::string, std::map<std::string, Programs>> best_;
  std::map<std::string, std::map<std::string, double>> counters_;
};
