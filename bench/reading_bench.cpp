// Reading of a database text against a plain std::from_chars pass over the same numbers, in one
// run: the ratio, how it grows with the text, how many groups cost, and the memory it takes.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <charconv>
#include <random>
#include <string>

#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "ratio_report.h"

namespace {

using namespace Tarvane::Plexura::PXROM;

constexpr int kInputs = 6;

std::string RandomList(std::mt19937& random, std::size_t count) {
  std::uniform_real_distribution<double> uniform(-10.0, 10.0);
  std::string list;
  char buffer[32];
  for (std::size_t i = 0; i < count; ++i) {
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, uniform(random)).ptr;
    list.append(buffer, end);
    list += ',';
  }
  list.back() = '\n';
  return list;
}

std::string Repeated(int count, const char* value) {
  std::string list = value;
  for (int i = 1; i < count; ++i) list += std::string(",") + value;
  return list + "\n";
}

/// A database of constant surfaces: `combinations` by `outputs` groups whose samples fill about
/// `bytes` characters.
std::string Database(std::size_t bytes, int combinations, int outputs) {
  std::mt19937 random(1);
  const std::size_t groups =
      static_cast<std::size_t>(combinations) * static_cast<std::size_t>(outputs);
  // A number of 17 digits with its separator takes 19.5 characters; samples stand in the candidate
  // and in its surface.
  const std::size_t samples = std::max<std::size_t>(bytes / groups / 39 / (kInputs + 1), 1);
  std::string ids = "k";
  std::string causalities = "0";
  std::string types = "2";
  std::string ranks = "{k;0}";
  const auto add = [&](const std::string& id, const char* causality, int rank) {
    ids += "," + id;
    causalities += std::string(",") + causality;
    types += ",0";
    ranks += ",{" + id + ";" + std::to_string(rank) + "}";
  };
  for (int i = 0; i < kInputs; ++i) add("x" + std::to_string(i), "0", 1 + i);
  for (int o = 0; o < outputs; ++o) add("y" + std::to_string(o), "1", 1 + kInputs + o);
  std::string text = "<ParameterRegistry>\nIDs=" + ids + "\nCausalities=" + causalities +
                     "\nTypes=" + types + "\nAvailability=" + Repeated(1 + kInputs + outputs, "1") +
                     "RegistrationRank=" + ranks + "\n</ParameterRegistry>\n<DiscreteSets>\n";
  for (int c = 0; c < combinations; ++c) {
    text += "DiscreteSet={k;" + std::to_string(c) + "}";
    for (int o = 0; o < outputs; ++o) {
      text += ",{y" + std::to_string(o) + ";" + std::to_string(c * outputs + o) + "}";
    }
    text += "\n";
  }
  text += "</DiscreteSets>\n";
  const std::string counts = "NumberOfInputVariables=" + std::to_string(kInputs) + "\n";
  const std::string sampleCount = "NumberOfSamples=" + std::to_string(samples) + "\n";
  for (std::size_t g = 0; g < groups; ++g) {
    const std::string inputs = "InputSamples=" + RandomList(random, samples * kInputs);
    const std::string results = "OutputSamples=" + RandomList(random, samples);
    const std::string slopes = "InputScaleSlopes=" + Repeated(kInputs, "1");
    const std::string intercepts = "InputScaleIntercepts=" + Repeated(kInputs, "0");
    text += "<PlexuraData ID=" + std::to_string(g) + ">\nCandidateVersion=170\nCandidate" + counts +
            "Candidate" + sampleCount + "Candidate" + inputs + "Candidate" + results + "Candidate" +
            slopes + "Candidate" + intercepts +
            "CandidateOutputScaleSlope=1\nCandidateOutputScaleIntercept=0\n"
            "CandidateRSCardinality=1\n<Genome ID=0>\nDataType=8\nGenomeWeight=1\n" +
            counts + sampleCount + inputs + results + slopes + intercepts +
            "OutputScaleSlope=1\nOutputScaleIntercept=0\nIsReadyForSolve=1\n"
            "IsReadyForEvaluation=1\nIsStopped=0\nConstantVersion=170\nConstantValue=7.5\n"
            "</Genome>\n</PlexuraData>\n";
  }
  return text;
}

/// What a text costs at the least: every number of it, one after the other, kept in one vector.
void FromChars(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    std::vector<double> values;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at < end) {
      double value = 0.0;
      const auto result = std::from_chars(at, end, value);
      if (result.ec == std::errc()) values.push_back(value);
      at = result.ptr + 1;
    }
    benchmark::DoNotOptimize(values.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

/// The text handed over and read into objects, which are destroyed again.
void Library(benchmark::State& state, std::string text) {
  std::size_t objects = 0;
  for (auto _ : state) {
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    CDiscreteCombinations model;
    const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    if (reader.ResumeDiscreteCombinations(model) != 0) state.SkipWithError("refused");
    objects = mallinfo2().uordblks + mallinfo2().hblkhd - before;
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  state.counters["objects/text"] = static_cast<double>(objects) / static_cast<double>(text.size());
}

struct Size {
  std::size_t megabytes;
  int combinations;
  int outputs;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  // How the time grows with the text, and with the number of groups in it.
  const Size sizes[] = {{1, 1, 1},   {10, 1, 1},   {25, 1, 1},    {50, 1, 1},
                        {100, 1, 1}, {20, 10, 10}, {20, 1000, 10}};
  for (const Size& size : sizes) {
    const std::string name = std::to_string(size.megabytes) + "MB_" +
                             std::to_string(size.combinations) + "x" + std::to_string(size.outputs);
    const auto text = [size] {
      return Database(size.megabytes << 20, size.combinations, size.outputs);
    };
    benchmark::RegisterBenchmark(("reading/from_chars/" + name).c_str(),
                                 [text](benchmark::State& state) { FromChars(state, text()); })
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("reading/library/" + name).c_str(), [text](
                                                                          benchmark::State& state) {
      Library(state, text());
    })->Unit(benchmark::kMillisecond);
  }
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("reading", "from_chars");
}
