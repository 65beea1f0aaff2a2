// Reading of numbers and of whole database texts against a plain std::from_chars pass over the same
// numbers, in one run: the ratio, how it grows with the text, how many groups cost, and the memory.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <string>

#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/kriging.h"
#include "pxrom/writer.h"
#include "ratio_report.h"
#include "reference/reading_literal.h"
#include "text/tokens.h"

namespace {

/// What is allocated at the moment, and the most of it, while `isCounting`.
struct Heap {
  bool isCounting = false;
  long long live = 0;
  long long peak = 0;
};
Heap heap;

void Count(void* memory, long long sign) {
  if (!heap.isCounting || memory == nullptr) return;
  heap.live += sign * static_cast<long long>(malloc_usable_size(memory));
  heap.peak = std::max(heap.peak, heap.live);
}

}  // namespace

// Not inlined, so that the compiler doesn't take malloc and free for a mismatched pair.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  Count(memory, 1);
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  Count(memory, -1);
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  Count(memory, -1);
  std::free(memory);
}

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
  // A number of 17 digits with its separator takes 19.5 characters; samples are in the candidate
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

/// A database of one Kriging surface with predicted errors, whose triangular matrix of `samples`
/// rows is nearly all of the text.
std::string TriangularDatabase(int samples) {
  std::mt19937 random(1);
  std::normal_distribution<double> normal;
  const auto n = static_cast<std::size_t>(samples);
  const auto draw = [&](std::size_t count) {
    std::vector<double> values(count);
    for (double& value : values) value = normal(random);
    return values;
  };
  CKrigingData record;
  record.NumberOfInputVariables = kInputs;
  record.NumberOfSamples = samples;
  for (std::size_t i = 0; i < n; ++i) record.InputSamples.push_back(draw(kInputs));
  record.OutputSamples = draw(n);
  record.InputScaleSlopes.assign(kInputs, 1.0);
  record.InputScaleIntercepts.assign(kInputs, 0.0);
  record.OutputScaleSlope = 1.0;
  record.ReadyForEvaluation = true;
  record.PolynomialType = PolyConstant;
  record.PolynomialCoefficients = {1.5};
  record.CorrelationFunctionType = CorrGaussian;
  record.CorrelationCoefficients = draw(n);
  record.CorrelationKernels.assign(kInputs, 1.0);
  record.SavePredictorError = true;
  record.NumberOfPolyCoeff = 1;
  record.Sigma2 = 1.0;
  for (std::size_t i = 0; i < n; ++i) {
    record.InvC.push_back(draw(i + 1));
    record.InvC.back().resize(n);
  }
  record.InvG = {{1.0}};
  record.Ft = {draw(n)};

  CDiscreteCombinations model;
  for (int i = 0; i < kInputs; ++i) {
    model.RegisterParameter("x" + std::to_string(i), CausalityInput, ContinuousNotManufacturable,
                            true);
  }
  model.RegisterParameter("y", CausalityOutput, ContinuousNotManufacturable, true);
  auto list = std::make_unique<CFittingCandidates>();
  list->GenerateCandidateFromCRSData(&record);
  if (model.RegisterDiscreteCombination({}, {{"y", list.get()}}) == 0) {
    static_cast<void>(list.release());
  }
  std::string text;
  CWriterPXROMDatabase().WriteDiscreteCombinations(model, text);
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

/// The text handed over and read.
int Read(const std::string& text, CDiscreteCombinations& model) {
  CReaderPXROMDatabase reader;
  auto copy = std::make_unique<std::string>(text);
  reader.ReadDataStream(*copy);
  copy.reset();
  heap.peak = heap.live;  // what the caller held meanwhile is not the library's
  return reader.ResumeDiscreteCombinations(model);
}

/// A text that was handed over is read into objects. Their end is not timed.
void Library(benchmark::State& state, const std::string& text) {
  CReaderPXROMDatabase reader;
  {
    std::string copy = text;
    reader.ReadDataStream(copy);
  }
  for (auto _ : state) {
    auto model = std::make_unique<CDiscreteCombinations>();
    if (reader.ResumeDiscreteCombinations(*model) != 0) state.SkipWithError("refused");
    state.PauseTiming();
    model.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

/// What handing it over costs besides: the reader keeps a copy.
void HandOver(benchmark::State& state, const std::string& text) {
  std::string copy = text;
  for (auto _ : state) {
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(copy);
    benchmark::DoNotOptimize(&reader);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void LibraryNumbers(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    std::vector<double> values;
    reading::Tokenize(text, ',', values);
    benchmark::DoNotOptimize(values.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void Streams(benchmark::State& state, const std::string& text) {
  for (auto _ : state) benchmark::DoNotOptimize(literal::TokenizeDouble(text, ',').data());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

struct Size {
  std::size_t megabytes;
  int combinations;
  int outputs;
  /// Of the one surface of a text that is nearly all a triangular matrix; 0 for other texts.
  int samplesOfMatrix = 0;
};

constexpr Size kFewGroups = {20, 10, 10};
constexpr Size kManyGroups = {20, 1000, 10};
constexpr Size kMatrix = {0, 1, 1, 4000};

/// The two large files of users have a goal of their own: a study, and one model with its matrix.
std::string KindOf(const Size& size) {
  const bool isFile = size.samplesOfMatrix != 0 || size.combinations == kManyGroups.combinations;
  return isFile ? "files" : "reading";
}

/// The most memory that reading takes at a time, the reader's copy of the text among it, and what
/// the objects keep of it, per byte of the text.
void PrintMemory(const std::string& name, const std::string& text) {
  const double size = static_cast<double>(text.size());
  CDiscreteCombinations model;
  heap = {true, 0, 0};
  const int status = Read(text, model);
  const double objects = static_cast<double>(heap.live) / size;
  const double peak = static_cast<double>(heap.peak) / size;
  heap.isCounting = false;
  const double allowed = 1.5 + objects;
  RatioReport::Row("Memory while reading, " + name + ", bytes per byte of text",
                   status == 0 ? RatioReport::Number(peak) : "refused", "", "",
                   "objects " + RatioReport::Number(objects),
                   RatioReport::Reached("<= " + RatioReport::Number(allowed), peak <= allowed));
}

std::string NameOf(const Size& size) {
  if (size.samplesOfMatrix != 0) {
    return "the matrix of " + std::to_string(size.samplesOfMatrix) + " samples";
  }
  return std::to_string(size.megabytes) + " MB, " + std::to_string(size.combinations) +
         (size.combinations == 1 ? " combination of " : " combinations of ") +
         std::to_string(size.outputs);
}

/// Texts that are made when they are first needed.
class Texts {
 public:
  const std::string& Of(const Size& size) {
    std::string& text = texts_[NameOf(size)];
    if (text.empty()) {
      text = size.samplesOfMatrix != 0
                 ? TriangularDatabase(size.samplesOfMatrix)
                 : Database(size.megabytes << 20, size.combinations, size.outputs);
    }
    return text;
  }

 private:
  std::map<std::string, std::string> texts_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  // How the time grows with the text, and with the number of groups in it.
  const Size sizes[] = {{1, 1, 1}, {10, 1, 1}, {100, 1, 1}, kFewGroups, kManyGroups, kMatrix};
  Texts texts;
  std::mt19937 random(1);
  const std::string list = RandomList(random, 100000);
  const std::pair<const char*, void (*)(benchmark::State&, const std::string&)> readers[] = {
      {"numbers/from_chars/", &FromChars},
      {"numbers/library/", &LibraryNumbers},
      {"numbers/streams/", &Streams}};
  for (const auto& [name, read] : readers) {
    benchmark::RegisterBenchmark(
        (std::string(name) + "a list of 100,000").c_str(),
        [&list, read = read](benchmark::State& state) { read(state, list); });
  }
  for (const Size& size : sizes) {
    const std::string name = NameOf(size);
    benchmark::RegisterBenchmark(
        (KindOf(size) + "/from_chars/" + name).c_str(),
        [&texts, size](benchmark::State& state) { FromChars(state, texts.Of(size)); })
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(
        (KindOf(size) + "/library/" + name).c_str(),
        [&texts, size](benchmark::State& state) { Library(state, texts.Of(size)); })
        ->Unit(benchmark::kMillisecond);
  }
  const Size usual = sizes[1];
  benchmark::RegisterBenchmark(
      ("reading/handing over/" + NameOf(usual)).c_str(),
      [&texts, usual](benchmark::State& state) { HandOver(state, texts.Of(usual)); });
  RatioReport report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.Print("numbers", "Reading numbers, per MB", {0.8}, "from_chars");
  report.Print("reading", "Reading databases, per MB", {0.8}, "from_chars");
  report.Print("files", "Reading files as users have them, per MB",
               {1.0, 0.0, {NameOf(kManyGroups), NameOf(kMatrix)}}, "from_chars");
  // The same length in a hundred and in ten thousand groups.
  const double many = report.Best(KindOf(kManyGroups), "library", NameOf(kManyGroups));
  const double few = report.Best(KindOf(kFewGroups), "library", NameOf(kFewGroups));
  if (many > 0.0 && few > 0.0) {
    RatioReport::Row("Reading databases, many groups against few", "", "",
                     RatioReport::Number(few / many), "",
                     RatioReport::Reached(">= 0.50", few / many >= 0.5));
  }
  for (const Size& size : sizes) PrintMemory(NameOf(size), texts.Of(size));
  return 0;
}
