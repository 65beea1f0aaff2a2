// Many threads use one object, and each gets what one thread gets. ThreadSanitizer checks this too.

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

#include "pxrom/batch.h"
#include "support/model_files.h"
#include "support/source_path.h"
#include "support/surfaces.h"
#include "testing/random_models.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

/// All results of a call, bit by bit; missing results are 0.
using Answers = std::vector<double>;

void ExpectTheSameFromEightThreads(const std::function<Answers()>& ask) {
  const Answers expected = ask();
  ASSERT_FALSE(expected.empty());
  std::vector<int> equal(8);
  std::vector<std::thread> threads;
  for (int& result : equal) {
    threads.emplace_back([&] {
      result = 1;
      for (int round = 0; round < 5; ++round) {
        if (!SameBits(ask(), expected)) result = 0;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(equal, std::vector<int>(8, 1));
}

TEST(Threads, EvaluateOneObjectOfAnyFamily) {
  // Errors only where they come from cross-validation: the others would write Kriging records.
  RandomModelOptions validated;
  validated.crossValidation = 100;
  for (std::uint32_t seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations plain;
    FillRandomModel(seed, {}, plain);
    ExpectTheSameFromEightThreads([&] { return AnswersOf(plain, false); });
    CDiscreteCombinations crossed;
    FillRandomModel(seed, validated, crossed);
    ExpectTheSameFromEightThreads([&] { return AnswersOf(crossed, true); });
  }
  CDiscreteCombinations beam;
  ReadModel(SourcePath("examples/beam.pxdb"), beam);
  ExpectTheSameFromEightThreads([&] { return AnswersOf(beam, false); });
}

TEST(Threads, EvaluateOnePreparedModel) {
  for (std::uint32_t seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CDiscreteCombinations model;
    FillRandomModel(seed, {}, model);
    CPreparedModel prepared;
    ASSERT_EQ(CPreparedModel::Prepare(model, QuestionsFor(model, 0.5)[0].discrete, prepared), 0);
    const std::size_t rows = 40;
    const std::size_t inputs = prepared.InputIDs().size();
    const std::size_t results = rows * prepared.OutputIDs().size();
    const std::vector<double> points = Draw(seed).Reals(static_cast<int>(rows * inputs), -1, 2);
    for (const E_PrecisionMode mode : {PrecisionExact, PrecisionFast}) {
      ExpectTheSameFromEightThreads([&] {
        Answers answers((2 + inputs) * results);
        prepared.Evaluate(points.data(), rows, mode, answers.data(), answers.data() + results,
                          nullptr);
        prepared.EvaluateGradients(points.data(), rows, answers.data() + 2 * results, nullptr);
        return answers;
      });
    }
  }
}

TEST(Threads, ReadOneReaderIntoObjectsOfTheirOwn) {
  std::string text = ContentOf(SourcePath("examples/beam.pxdb"));
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  ExpectTheSameFromEightThreads([&] {
    CDiscreteCombinations model;
    EXPECT_EQ(reader.ResumeDiscreteCombinations(model), 0);
    return AnswersOf(model, false);
  });
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
