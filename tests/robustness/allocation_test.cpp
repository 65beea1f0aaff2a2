// Every allocation fails once in turn, while reading and while evaluating. The result is
// std::bad_alloc or a status, nothing leaks (the address sanitizer checks), and the objects still
// work.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "pxrom/batch.h"
#include "support/model_files.h"
#include "support/shared_group.h"
#include "support/source_path.h"

namespace {

// Counts down to the allocation that fails; if negative, no allocation fails.
thread_local long long countdown = -1;
thread_local std::size_t bytes = 0;  // of all allocations so far

void* AllocateOrFail(std::size_t size) {
  bytes += size;
  if (countdown == 0) {
    countdown = -1;
    throw std::bad_alloc();
  }
  if (countdown > 0) --countdown;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return AllocateOrFail(size); }
void* operator new[](std::size_t size) { return AllocateOrFail(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
  return AllocateOrFail(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept try {
  return AllocateOrFail(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedInts = std::vector<std::pair<std::string, int>>;
using NamedValues = std::vector<std::pair<std::string, double>>;

const NamedInts kCombination = {{"Material", 1}, {"Holes", 2}};
const auto kNothing = [] {};
const NamedValues kPoint = {{"L", 1.5}, {"b", 45}, {"h", 90}, {"F", 3000}};

NamedValues Answer(const CDiscreteCombinations& model) {
  NamedValues outputs;
  EXPECT_EQ(model.Evaluate(kCombination, kPoint, outputs), 0);
  return outputs;
}

// Lets the allocations of `action` fail, one in `stride`, until it succeeds without a failure, and
// calls `after` after each failure. Returns how often it failed.
template <class After, class Action>
int FailEachAllocation(long long stride, After after, Action action) {
  int failures = 0;
  for (long long at = 0;; at += stride) {
    countdown = at;
    try {
      const int status = action();
      const bool undisturbed = countdown >= 0;
      countdown = -1;
      if (undisturbed) {
        EXPECT_NE(status, 1);
        return failures;
      }
    } catch (const std::bad_alloc&) {
      countdown = -1;
    }
    ++failures;
    after();
  }
}

// Opens one combination of the beam: every family, with and without cross-validation, but short
// enough to let each of its allocations fail.
void OpenSmallBeam(CReaderPXROMDatabase& reader) {
  std::string text = ContentOf(SourcePath("examples/beam.pxdb"));
  const std::string key = "DiscreteSet={Material;1},{Holes;2}";
  const std::size_t line = text.find(key);
  EXPECT_NE(line, std::string::npos);
  const std::size_t sets = text.find("<DiscreteSets>");
  const std::size_t end = text.find("</DiscreteSets>");
  const std::string kept = text.substr(line, text.find('\n', line) + 1 - line);
  text.replace(sets, end - sets, "<DiscreteSets>\n" + kept);
  reader.ReadDataStream(text);
}

TEST(Allocation, AnyMayFailWhileReading) {
  CReaderPXROMDatabase reader;
  OpenSmallBeam(reader);
  CDiscreteCombinations model;
  const int failures = FailEachAllocation(7, kNothing, [&] {
    model.ResetData();
    return reader.ResumeDiscreteCombinations(model);
  });
  EXPECT_GT(failures, 100);
  CDiscreteCombinations undisturbed;
  EXPECT_EQ(reader.ResumeDiscreteCombinations(undisturbed), 0);
  EXPECT_EQ(Answer(model), Answer(undisturbed));
}

// A further line of a group takes a list with its entries, and nothing of what the group holds.
TEST(Allocation, LinesOfOneGroupTakeFewEach) {
  const auto failuresOf = [](int lines) {
    std::string text = TextOfSharedGroup(lines);
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    return FailEachAllocation(1, kNothing, [&] {
      CDiscreteCombinations model;
      return reader.ResumeDiscreteCombinations(model);
    });
  };
  const int one = failuresOf(1);
  EXPECT_GT(one, 100);
  EXPECT_LT(failuresOf(21) - one, 20 * 25);
}

// A text of a few characters for each output can give all of them one large group.
TEST(Allocation, OutputsOfOneGroupShareWhatIsPrepared) {
  const auto bytesOf = [](int outputs) {
    std::string text = TextOfSharedGroup(1);
    const auto insert = [&text](const std::string& key, const std::string& more) {
      text.insert(text.find('\n', text.find(key) + 1), more);
    };
    for (int i = 0; i < outputs; ++i) {
      const std::string id = "more" + std::to_string(i);
      insert("\nIDs=", ',' + id);
      insert("\nCausalities=", ",1");
      insert("\nTypes=", ",0");
      insert("\nAvailability=", ",1");
      insert("\nRegistrationRank=", ",{" + id + ';' + std::to_string(100 + i) + '}');
      insert("\nDiscreteSet=", ",{" + id + ";0}");
    }
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    CDiscreteCombinations model;
    EXPECT_EQ(reader.ResumeDiscreteCombinations(model), 0);
    bytes = 0;
    CPreparedModel prepared;
    EXPECT_EQ(CPreparedModel::Prepare(model, {{"k", 0}}, prepared), 0);
    EXPECT_EQ(prepared.OutputIDs().size(), static_cast<std::size_t>(outputs) + 1);
    return bytes;
  };
  const std::size_t one = bytesOf(0);
  EXPECT_GT(one, std::size_t{4000});
  EXPECT_LT(bytesOf(100) - one, 100 * std::size_t{600});
}

TEST(Allocation, AnyMayFailWhileASharedContentIsCopied) {
  std::string text = TextOfSharedGroup(2);
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CDiscreteCombinations model;
  ASSERT_EQ(reader.ResumeDiscreteCombinations(model), 0);
  const CFittingCandidates& list = *model.GetOutputsWrtDiscCombPtr()->at(1).begin()->second;
  const CFittingCandidate& candidate = *list.GetEvaluationCandidatePtr();
  EXPECT_GT(
      FailEachAllocation(1, kNothing, [&] { return candidate.GetRSPtr(0) == nullptr ? 1 : 0; }),
      10);
}

TEST(Allocation, AnyMayFailWhileEvaluating) {
  CDiscreteCombinations model;
  ReadModel(SourcePath("examples/beam.pxdb"), model);
  const NamedValues expected = Answer(model);
  NamedValues outputs;
  const auto answersStill = [&] { EXPECT_EQ(Answer(model), expected); };
  const int failures = FailEachAllocation(1, answersStill, [&] {
    outputs = NamedValues();
    return model.Evaluate(kCombination, kPoint, outputs);
  });
  EXPECT_GT(failures, 5);
  EXPECT_EQ(outputs, expected);
}

TEST(Allocation, AnyMayFailWhileCopyingAndAssigning) {
  CDiscreteCombinations source;
  CReaderPXROMDatabase reader;
  OpenSmallBeam(reader);
  ASSERT_EQ(reader.ResumeDiscreteCombinations(source), 0);
  FailEachAllocation(101, kNothing, [&] {
    const CDiscreteCombinations copy(source);
    return 0;
  });
  CDiscreteCombinations target;
  const auto reset = [&] { EXPECT_EQ(target.ResetData(), 0); };
  FailEachAllocation(1, reset, [&] {
    target = source;
    return 0;
  });
  EXPECT_EQ(Answer(target), Answer(source));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
