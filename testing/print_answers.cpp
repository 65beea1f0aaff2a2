// Prints results of random models of all families and of fitted models, to the last bit, to compare
// builds and machines (script/same-bits).
//
//   print_answers FOLDER...              each folder holds a fitted model, model.pxdb
//   print_answers --functions            what the host's elementary functions give instead

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "numerics/bessel.h"
#include "pxrom/batch.h"
#include "pxrom/database_reader.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

void Print(const char* what, const std::vector<double>& numbers) {
  std::printf("%s", what);
  // A NaN's sign is the compiler's.
  for (const double number : numbers) std::printf(number == number ? " %a" : " nan", number);
  std::printf("\n");
}

void PrintStatuses(const std::vector<int>& statuses) {
  Print("statuses", {statuses.begin(), statuses.end()});
}

/// Everything that a prepared model gives at `points`.
void PrintPrepared(const CPreparedModel& prepared, const std::vector<double>& points,
                   std::size_t rows) {
  const std::size_t results = rows * prepared.OutputIDs().size();
  std::vector<double> values(results);
  std::vector<double> errors(results);
  std::vector<int> statuses(results);
  for (const E_PrecisionMode mode : {PrecisionExact, PrecisionFast}) {
    prepared.Evaluate(points.data(), rows, mode, values.data(), nullptr, statuses.data());
    const bool isFast = mode == PrecisionFast;
    Print(isFast ? "fast" : "prepared", values);
    PrintStatuses(statuses);
    prepared.Evaluate(points.data(), rows, mode, values.data(), errors.data(), statuses.data());
    Print(isFast ? "fast with errors" : "with errors", values);
    Print(isFast ? "fast errors" : "errors", errors);
    PrintStatuses(statuses);
  }
  std::vector<double> gradients(results * prepared.InputIDs().size());
  prepared.EvaluateGradients(points.data(), rows, gradients.data(), statuses.data());
  Print("gradients", gradients);
  PrintStatuses(statuses);
}

void PrintAnswers(const CDiscreteCombinations& model) {
  Print("evaluated", AnswersOf(CDiscreteCombinations(model), true));
  const std::vector<Question> last = QuestionsFor(model, 0.9);
  std::size_t combination = 0;
  for (const Question& first : QuestionsFor(model, 0.3)) {
    const Question& second = last[combination++];
    CPreparedModel prepared;
    if (CPreparedModel::Prepare(model, first.discrete, prepared) != 0) continue;
    std::vector<double> points;
    for (const Question* const question : {&first, &second}) {
      for (const std::string& id : prepared.InputIDs()) {
        for (const auto& input : question->continuous) {
          if (input.first == id) points.push_back(input.second);
        }
      }
    }
    PrintPrepared(prepared, points, 2);
  }
}

void PrintRandomModels() {
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    std::printf("seed %u\n", static_cast<unsigned>(seed));
    CDiscreteCombinations model;
    FillRandomModel(seed, {}, model);
    PrintAnswers(model);
  }
}

bool PrintFittedModel(const std::string& folder) {
  std::printf("%s\n", folder.substr(folder.find_last_of('/') + 1).c_str());
  std::ifstream file(folder + "/model.pxdb", std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CDiscreteCombinations model;
  if (reader.ResumeDiscreteCombinations(model) != 0) return false;
  PrintAnswers(model);
  return true;
}

/// A function of the host at 20,000 arguments, which are the same on any machine.
void PrintFunction(const char* name, double low, double high, double (*function)(double)) {
  constexpr int kArguments = 20000;
  Draw draw(1);
  std::vector<double> values;
  for (const double x : draw.Reals(kArguments, low, high)) values.push_back(function(x));
  Print(name, values);
}

void PrintFunctions() {
  PrintFunction("exp", -30.0, 30.0, [](double x) { return std::exp(x); });
  PrintFunction("log", 0.001, 100.0, [](double x) { return std::log(x); });
  PrintFunction("log1p", 0.0, 100.0, [](double x) { return std::log1p(x); });
  PrintFunction("log10", 0.001, 100.0, [](double x) { return std::log10(x); });
  PrintFunction("pow", 0.001, 100.0, [](double x) { return std::pow(x, 1.7); });
  PrintFunction("sin", -30.0, 30.0, [](double x) { return std::sin(x); });
  PrintFunction("cos", -30.0, 30.0, [](double x) { return std::cos(x); });
  PrintFunction("tanh", -10.0, 10.0, [](double x) { return std::tanh(x); });
  PrintFunction("cosh", -10.0, 10.0, [](double x) { return std::cosh(x); });
  PrintFunction("j0", 0.0, 30.0, [](double x) { return BesselJ0(x); });
  PrintFunction("j1", 0.0, 30.0, [](double x) { return BesselJ1(x); });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests

int main(int argc, char** argv) {
  using namespace Tarvane::Plexura::PXROM::tests;
  if (argc > 1 && std::strcmp(argv[1], "--functions") == 0) {
    PrintFunctions();
    return 0;
  }
  PrintRandomModels();
  bool areSound = true;
  for (int i = 1; i < argc; ++i) areSound = PrintFittedModel(argv[i]) && areSound;
  return areSound ? 0 : 1;
}
