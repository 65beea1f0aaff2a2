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
    Print("prepared", values);
    PrintStatuses(statuses);
    prepared.Evaluate(points.data(), rows, mode, values.data(), errors.data(), statuses.data());
    Print("with errors", values);
    Print("errors", errors);
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
