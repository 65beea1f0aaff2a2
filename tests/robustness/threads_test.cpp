// Many threads on one object: each gets what one thread gets. ThreadSanitizer watches.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/model_files.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedInts = std::vector<std::pair<std::string, int>>;
using NamedValues = std::vector<std::pair<std::string, double>>;

struct Answer {
  int status = 0;
  NamedValues outputs;
  NamedValues errors;
  bool operator==(const Answer& other) const {
    return status == other.status && outputs == other.outputs && errors == other.errors;
  }
};

// Every combination of the beam at a few points. Errors only where they come from cross-validation:
// the others would write Kriging records.
std::vector<Answer> Answers(const CDiscreteCombinations& beam, bool withErrors) {
  std::vector<Answer> answers;
  for (const int material : {1, 2}) {
    for (const int holes : {0, 2, 4}) {
      for (const double length : {1.1, 1.5, 1.9}) {
        const NamedInts discrete = {{"Material", material}, {"Holes", holes}};
        const NamedValues point = {{"L", length}, {"b", 45}, {"h", 90}, {"F", 3000}};
        Answer answer;
        answer.status = withErrors ? beam.Evaluate(discrete, point, answer.outputs, answer.errors)
                                   : beam.Evaluate(discrete, point, answer.outputs);
        answers.push_back(answer);
      }
    }
  }
  return answers;
}

void ExpectTheSameFromEightThreads(const CDiscreteCombinations& beam, bool withErrors) {
  const std::vector<Answer> expected = Answers(beam, withErrors);
  std::vector<int> equal(8);
  std::vector<std::thread> threads;
  for (int& result : equal) {
    threads.emplace_back([&] {
      result = 1;
      for (int round = 0; round < 5; ++round) {
        if (!(Answers(beam, withErrors) == expected)) result = 0;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(equal, std::vector<int>(8, 1));
}

TEST(Threads, EvaluateOneStudyWithoutErrors) {
  CDiscreteCombinations beam;
  ReadModel(PXROM_EXAMPLES "/beam.pxdb", beam);
  ExpectTheSameFromEightThreads(beam, false);
}

TEST(Threads, EvaluateCrossValidatedErrors) {
  CDiscreteCombinations beam;
  ReadModel(PXROM_EXAMPLES "/beam.pxdb", beam);
  // A list without cross-validation data gives way to one that has it.
  CFittingCandidates* validated = nullptr;
  for (const auto& outputs : *beam.GetOutputsWrtDiscCombPtr()) {
    for (const auto& output : outputs) {
      if (output.second->GetCandidatePtr(0)->GetIsErrPredRequired()) validated = output.second;
    }
  }
  ASSERT_NE(validated, nullptr);
  for (const int material : {1, 2}) {
    for (const int holes : {0, 2, 4}) {
      std::vector<std::pair<std::string, CFittingCandidates*>> lists;
      for (const char* id : {"stress", "deflection", "mass"}) {
        lists.emplace_back(id, validated->Clone());
      }
      ASSERT_EQ(beam.RegisterDiscreteCombination({{"Material", material}, {"Holes", holes}}, lists),
                0);
    }
  }
  ExpectTheSameFromEightThreads(beam, true);
}

TEST(Threads, ReadOneReaderIntoObjectsOfTheirOwn) {
  std::string text = ContentOf(PXROM_EXAMPLES "/beam.pxdb");
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  std::vector<CDiscreteCombinations> models(4);
  std::vector<int> statuses(4, -1);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < models.size(); ++i) {
    threads.emplace_back([&, i] { statuses[i] = reader.ResumeDiscreteCombinations(models[i]); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(statuses, std::vector<int>(4, 0));
  EXPECT_EQ(Answers(models[0], false), Answers(models[3], false));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
