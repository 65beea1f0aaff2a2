// Lines that use one group hold its candidate together, and nobody sees it.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "pxrom/batch.h"
#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "support/shared_group.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

/// A Kriging surface without error data at k = 0, 1 and 2.
class SharedGroup : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string text = TextOfSharedGroup(3);
    const std::string flag = "KrigingSavePredictorError=";
    text.replace(text.find(flag) + flag.size(), 1, "0");
    const std::string slopes = "\nInputScaleSlopes=1,1";
    text.replace(text.find(slopes), slopes.size(), "\nInputScaleSlopes=2,2");
    CReaderPXROMDatabase reader;
    reader.ReadDataStream(text);
    ASSERT_EQ(reader.ResumeDiscreteCombinations(model_), 0);
    // Near the first sample, where samples that are scaled twice give another value.
    std::vector<std::vector<double>> samples;
    ListAt(model_, 0).GetEvaluationCandidatePtr()->GetInputSamples(samples);
    for (const std::string& id : model_.ListParameterImmutableID(CausalityInput, true)) {
      if (!model_.IsContinuous(id)) continue;
      point_.emplace_back(id, samples.at(0).at(point_.size()) + 0.25);
    }
    value_ = ValueAt(model_, 0);
  }

  static CFittingCandidates& ListAt(const CDiscreteCombinations& model, int k) {
    const auto position = model.GetDiscreteCombinationsIndexingPtr()->at({k});
    return *model.GetOutputsWrtDiscCombPtr()
                ->at(static_cast<std::size_t>(position))
                .begin()
                ->second;
  }
  static const CRSData* SurfaceAt(const CDiscreteCombinations& model, int k) {
    return ListAt(model, k).GetEvaluationCandidatePtr()->GetRSPtr(0);
  }
  /// Changes the record through the pointer that a host gets from the candidate.
  static void Shift(const CDiscreteCombinations& model, int k) {
    const_cast<CRSData*>(SurfaceAt(model, k))->OutputScaleIntercept += 1.0;
  }
  double ValueAt(const CDiscreteCombinations& model, int k) const {
    NamedValues outputs;
    EXPECT_EQ(model.Evaluate({{"k", k}}, point_, outputs), 0) << k;
    return outputs.empty() ? 0.0 : outputs.front().second;
  }

  CDiscreteCombinations model_;
  NamedValues point_;
  double value_ = 0.0;
};

TEST_F(SharedGroup, AStoppedListStopsAlone) {
  ListAt(model_, 1).SetStatusStopped();
  NamedValues outputs;
  EXPECT_EQ(model_.Evaluate({{"k", 1}}, point_, outputs), 1);
  EXPECT_EQ(ValueAt(model_, 0), value_);
  EXPECT_EQ(ValueAt(model_, 2), value_);
  ListAt(model_, 0).ResetData();
  EXPECT_EQ(ListAt(model_, 2).GetCandidateCount(), 1u);
  EXPECT_EQ(ValueAt(model_, 2), value_);
}

TEST_F(SharedGroup, ARecordIsChangedAloneInAnyOrder) {
  for (const int k : {2, 0, 1}) {
    const double before = ValueAt(model_, k);
    EXPECT_EQ(before, value_) << k;
    Shift(model_, k);
    EXPECT_NE(ValueAt(model_, k), before) << k;
  }
  EXPECT_NE(SurfaceAt(model_, 0), SurfaceAt(model_, 1));
  EXPECT_EQ(SurfaceAt(model_, 0), SurfaceAt(model_, 0));
}

TEST_F(SharedGroup, CopiesChangeAlone) {
  const CDiscreteCombinations early(model_);
  Shift(model_, 0);
  const double shifted = ValueAt(model_, 0);
  const CDiscreteCombinations late(model_);
  EXPECT_EQ(ValueAt(early, 0), value_);
  EXPECT_EQ(ValueAt(late, 0), shifted);
  Shift(early, 1);
  Shift(late, 0);
  EXPECT_EQ(ValueAt(model_, 0), shifted);
  EXPECT_EQ(ValueAt(model_, 1), value_);
  EXPECT_EQ(ValueAt(late, 1), value_);

  const std::unique_ptr<CFittingCandidate> clone(
      ListAt(model_, 2).GetEvaluationCandidatePtr()->Clone());
  clone->SetStatusStopped();
  EXPECT_EQ(ValueAt(model_, 2), value_);
  model_.ResetData();
  EXPECT_TRUE(clone->GetRSPtr(0)->Stopped);
  EXPECT_EQ(ValueAt(early, 2), value_);
}

// Assignment to an existing candidate shares its surfaces, and those alone.
TEST_F(SharedGroup, AnAssignedCandidateSharesWithItsSourceOnly) {
  ListAt(model_, 0) = ListAt(model_, 1);
  Shift(model_, 1);
  EXPECT_NE(ValueAt(model_, 1), value_);
  EXPECT_EQ(ValueAt(model_, 0), ValueAt(model_, 1));
  EXPECT_EQ(ValueAt(model_, 2), value_);
}

TEST_F(SharedGroup, AnErrorThatWritesARecordWritesItsOwn) {
  NamedValues outputs;
  NamedValues errors;
  EXPECT_EQ(model_.Evaluate({{"k", 1}}, point_, outputs, errors), -2);
  EXPECT_NE(ValueAt(model_, 1), value_);
  EXPECT_EQ(ValueAt(model_, 0), value_);
  EXPECT_EQ(ValueAt(model_, 2), value_);
}

TEST_F(SharedGroup, APreparedOneIsNotThatOfAChangedOne) {
  std::vector<double> x;
  for (const auto& [id, value] : point_) x.push_back(value);
  const auto preparedValueAt = [&](int k) {
    CPreparedModel prepared;
    EXPECT_EQ(CPreparedModel::Prepare(model_, {{"k", k}}, prepared), 0);
    double value = 0.0;
    EXPECT_EQ(prepared.Evaluate(x.data(), 1, PrecisionExact, &value, nullptr, nullptr), 0);
    return value;
  };
  EXPECT_EQ(preparedValueAt(0), value_);
  EXPECT_EQ(preparedValueAt(1), value_);
  Shift(model_, 1);
  EXPECT_EQ(preparedValueAt(1), ValueAt(model_, 1));
  EXPECT_NE(preparedValueAt(1), value_);
  EXPECT_EQ(preparedValueAt(0), value_);
}

TEST_F(SharedGroup, ThreadsThatReadGetTheSame) {
  const CFittingCandidate& candidate = *ListAt(model_, 0).GetEvaluationCandidatePtr();
  std::vector<const CRSData*> surfaces(8);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (const CRSData*& surface : surfaces) {
    threads.emplace_back([&] {
      NamedValues outputs;
      for (int round = 0; round < 20; ++round) {
        for (int k = 0; k < 3; ++k) {
          if (model_.Evaluate({{"k", k}}, point_, outputs) != 0) ++wrong;
          if (outputs.front().second != value_) ++wrong;
        }
        if (round == 10) surface = candidate.GetRSPtr(0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(surfaces, std::vector<const CRSData*>(8, candidate.GetRSPtr(0)));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
