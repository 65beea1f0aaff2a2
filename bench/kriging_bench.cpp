// One prediction of a Gaussian Kriging surface, and one with its error, against the literal program
// in the same run. Ends with the ratios literal / library and their geometric means.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "peak.h"
#include "peers/peer.h"
#include "pxrom/kriging.h"
#include "ratio_report.h"
#include "reference/kriging_literal.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

void LiteralValue(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  double y = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateKriging(record, x, y));
    benchmark::DoNotOptimize(y);
  }
}

void LibraryValue(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  const CKrigingEvaluator evaluator;
  double y = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y));
    benchmark::DoNotOptimize(y);
  }
}

void LiteralError(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  double y = 0.0;
  double error = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(literal::EvaluateKriging(record, x, y, error));
    benchmark::DoNotOptimize(error);
  }
}

void LibraryError(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  const CKrigingEvaluator evaluator;
  double y = 0.0;
  double error = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(evaluator.EvaluateResponseSurface(&record, x, y, error));
    benchmark::DoNotOptimize(error);
  }
}

/// The matrix of the error alone.
void Reading(benchmark::State& state, CKrigingData& record, const std::vector<double>&) {
  for (auto _ : state) {
    for (const std::vector<double>& row : record.InvC) {
      benchmark::DoNotOptimize(peak::Read(row.data(), row.size()));
    }
  }
}

/// At its points of one scaling, as a host of it keeps them.
void PeerValue(benchmark::State& state, CKrigingData& record, const std::vector<double>& x) {
  double y = 0.0;
  CKrigingEvaluator().EvaluateResponseSurface(&record, x, y);
  const auto peer = peers::OpenTurnsKriging(record);
  peers::Check(*peer, record, {x}, {y});
  for (auto _ : state) benchmark::DoNotOptimize(peer->EvaluateAt(0));
}

using Body = void (*)(benchmark::State&, CKrigingData&, const std::vector<double>&);

void Register(const std::string& name, Body body, int n, int d) {
  benchmark::RegisterBenchmark(name.c_str(), [body, n, d](benchmark::State& state) {
    std::mt19937 random(7U);
    CKrigingData record = literal::RandomKriging(random, CorrGaussian, PolyLinear, n, d, false);
    body(state, record, std::vector<double>(static_cast<std::size_t>(d), 0.3));
  });
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const int n : {50, 200, 1000}) {
    for (const int d : {2, 6, 10}) {
      const std::string size = "/n" + std::to_string(n) + " d" + std::to_string(d);
      Register("value/literal" + size, &LiteralValue, n, d);
      Register("value/library" + size, &LibraryValue, n, d);
      if (peers::HasOpenTurns()) Register("value/OpenTURNS" + size, &PeerValue, n, d);
      Register("error/literal" + size, &LiteralError, n, d);
      Register("error/library" + size, &LibraryError, n, d);
      if (peak::IsKnown()) Register("error/reading alone" + size, &Reading, n, d);
    }
  }
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("value", "Kriging value", {2.5});
  report.Print("error", "Kriging value and error",
               {8.0, 0.0, {"n200 d2", "n200 d6", "n200 d10", "n1000 d2", "n1000 d6", "n1000 d10"}});
  return 0;
}
