// Prints the results of random models of all families and of the fitted models, to the last bit, to
// compare builds (script/same-bits).

#include <cstdio>
#include <filesystem>
#include <set>

#include "pxrom/batch.h"
#include "support/model_files.h"
#include "support/source_path.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

namespace fs = std::filesystem;

void Print(const char* what, const std::vector<double>& numbers) {
  std::printf("%s", what);
  // A NaN's sign is the compiler's.
  for (const double number : numbers) std::printf(number == number ? " %a" : " nan", number);
  std::printf("\n");
}

void PrintAnswers(const CDiscreteCombinations& model) {
  Print("evaluated", AnswersOf(CDiscreteCombinations(model), true));
  for (const Question& question : QuestionsFor(model, 0.3)) {
    CPreparedModel prepared;
    if (CPreparedModel::Prepare(model, question.discrete, prepared) != 0) continue;
    std::vector<double> point;
    for (const std::string& id : prepared.InputIDs()) {
      for (const auto& input : question.continuous) {
        if (input.first == id) point.push_back(input.second);
      }
    }
    std::vector<double> values(prepared.OutputIDs().size());
    prepared.Evaluate(point.data(), 1, PrecisionExact, values.data(), nullptr, nullptr);
    Print("prepared", values);
  }
}

void PrintAll() {
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    std::printf("seed %u\n", static_cast<unsigned>(seed));
    CDiscreteCombinations model;
    FillRandomModel(seed, {}, model);
    PrintAnswers(model);
  }
  std::set<fs::path> folders;
  for (const auto& entry : fs::directory_iterator(SourcePath("tests/data/models"))) {
    if (entry.is_directory()) folders.insert(entry.path());
  }
  for (const fs::path& folder : folders) {
    std::printf("%s\n", folder.filename().c_str());
    CDiscreteCombinations model;
    ReadModel((folder / "model.pxdb").string(), model);
    PrintAnswers(model);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests

int main() { Tarvane::Plexura::PXROM::tests::PrintAll(); }
