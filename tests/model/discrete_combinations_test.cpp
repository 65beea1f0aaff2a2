#include "pxrom/discrete_combinations.h"

#include "model/test_candidates.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedInts = std::vector<std::pair<std::string, int>>;
using NamedValues = std::vector<std::pair<std::string, double>>;
using Outputs = std::vector<std::pair<std::string, CFittingCandidates*>>;
using Ids = std::vector<std::string>;

class OpenCombinations : public CDiscreteCombinations {
 public:
  using CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank;
};

// Two discrete inputs P and Q (ranks 3 and 1), continuous x and a (ranks 2 and 0), a disabled and a
// derived one, and outputs u and v.
OpenCombinations Study() {
  OpenCombinations study;
  study.RegisterParameter("a", CausalityInput, ContinuousManufacturable, true);
  study.RegisterParameter("Q", CausalityInput, DiscreteParameter, true);
  study.RegisterParameter("x", CausalityInput, ContinuousNotManufacturable, true);
  study.RegisterParameter("P", CausalityInput, DiscreteParameter, true);
  study.RegisterParameter("off", CausalityInput, DiscreteParameter, false);
  study.RegisterParameter("ratio", CausalityInput, DerivedParameter, true);
  study.RegisterParameter("u", CausalityOutput, ContinuousNotManufacturable, true);
  study.RegisterParameter("v", CausalityOutput, ContinuousNotManufacturable, true);
  study.RegisterParameter("w", CausalityOutput, ContinuousManufacturable, true);
  return study;
}

CFittingCandidates* New(double value, int inputs = 2) {
  return new CFittingCandidates(OneConstant(value, inputs));
}

int Add(CDiscreteCombinations& study, int p, int q, const Outputs& outputs) {
  return study.RegisterDiscreteCombination({{"P", p}, {"Q", q}}, outputs);
}

void Register(CDiscreteCombinations& study, int p, int q, double u, double v) {
  ASSERT_EQ(Add(study, p, q, {{"u", New(u)}, {"v", New(v)}}), 0);
}

TEST(Registry, CountsAndListsFollowRoleKindAndState) {
  const OpenCombinations study = Study();
  using Counts = std::vector<std::size_t>;
  EXPECT_EQ((Counts{study.ParameterCount(), study.EnabledParameterCount(),
                    study.InputParameterCount(), study.InputParameterCount(false),
                    study.OutputParameterCount(), study.OutputParameterCount(true)}),
            (Counts{9, 8, 6, 1, 3, 3}));
  EXPECT_EQ(
      (Counts{study.ContinuousCount(), study.ContinuousCount(true), study.ContinuousCount(false),
              study.ContinuousManufacturableCount(), study.ContinuousNotManufacturableCount()}),
      (Counts{5, 5, 0, 2, 3}));
  EXPECT_EQ((Counts{study.DiscreteCount(), study.DiscreteCount(true), study.DiscreteCount(false),
                    study.DerivedCount()}),
            (Counts{3, 2, 1, 1}));
  EXPECT_EQ(study.Count(CausalityOutput, ContinuousManufacturable), 1u);
  EXPECT_EQ(study.Count(CausalityInput, DiscreteParameter, false), 1u);
  EXPECT_EQ(study.ListParameterImmutableID(DiscreteParameter, true), (Ids{"P", "Q"}));
  EXPECT_EQ(study.ListParameterImmutableID(CausalityOutput, true), (Ids{"u", "v", "w"}));
  EXPECT_EQ(study.ListParameterImmutableID(false), (Ids{"off"}));
  EXPECT_EQ(study.ListEnabledDiscreteParameterWrtRegistrationRank(), (Ids{"Q", "P"}));
  EXPECT_EQ(study.DataVersion(), DiscreteCombinationVersion192);
  OpenCombinations odd;
  odd.RegisterParameter("n", CausalityInput, static_cast<E_ParameterType>(-1), true);
  EXPECT_FALSE(odd.IsContinuous("n"));
}

TEST(Registry, UnknownIdsSkipped) {
  const OpenCombinations study = Study();
  EXPECT_EQ(study.ListParameterAvailability({"a", "off", "nobody", "u"}),
            (std::vector<bool>{true, false, true}));
  EXPECT_EQ(study.ListParameterCausality({"u", "?", "a"}),
            (std::vector<E_ParameterCausality>{CausalityOutput, CausalityInput}));
  EXPECT_EQ(study.ListParameterType({"?", "P"}), (std::vector<E_ParameterType>{DiscreteParameter}));
  EXPECT_FALSE(study.IsRegistered("?"));
  EXPECT_FALSE(study.IsInput("?"));
  EXPECT_FALSE(study.IsOutput("?"));
  EXPECT_FALSE(study.IsContinuous("?"));
  EXPECT_FALSE(study.IsDiscrete("?"));
  EXPECT_FALSE(study.IsDerived("?"));
  EXPECT_FALSE(study.IsEnabled("?"));
}

TEST(Registry, RepeatedRank) {
  OpenCombinations study;
  study.RegisterParameter("a", CausalityInput, DerivedParameter, true);
  study.RegisterParameter("b", CausalityInput, DerivedParameter, true);
  const auto rank = [&](const char* id) { return study.GetRegistrationRank()->at(id); };
  EXPECT_EQ(study.SetRegistrationRank({{"a", 7}}), 1);
  EXPECT_EQ(rank("a"), 0);
  EXPECT_EQ(study.SetRegistrationRank({{"a", 1}, {"c", 0}}), 1);
  EXPECT_EQ(rank("a"), 1);
  EXPECT_EQ(study.SetRegistrationRank({{"a", 5}, {"b", -5}}), 0);
  EXPECT_EQ(rank("b"), -5);
  EXPECT_EQ(study.RegisterParameter("a", CausalityOutput, DiscreteParameter, false), 0);
  EXPECT_EQ(rank("a"), 2);
  EXPECT_FALSE(study.IsEnabled("a"));
}

TEST(Registry, UpperBoundFirst) {
  OpenCombinations study;
  EXPECT_EQ(study.RegisterParameterExtraInfos("", "n", "m", "c", 2, 1), 1);
  EXPECT_EQ(study.RegisterParameterExtraInfos("a", "", "m", "c", 2, 1), 0);
  EXPECT_EQ(study.ListUpperBound({"a", "b"}), (NamedValues{{"a", 2}}));
  EXPECT_EQ(study.ListLowerBound({"a"}), (NamedValues{{"a", 1}}));
  EXPECT_EQ(study.ListParameterUnit({"a"})[0].second, "m");
  EXPECT_FALSE(study.IsRegistered("a"));
}

TEST(Combinations, ValuesAreSortedByRankThenValue) {
  OpenCombinations study;
  for (const char* id : {"a", "x", "P", "Q"}) {
    study.RegisterParameter(id, CausalityInput, DerivedParameter, true);
  }
  study.SetRegistrationRank({{"a", 1}, {"x", 1}, {"P", 0}, {"Q", 2}});
  std::vector<double> sorted = {9};
  const double nan = std::nan("");
  EXPECT_EQ(study.PickAndSortValuesWrtParameterRegistrationRank(
                NamedValues{{"Q", 3}, {"x", nan}, {"a", 8}, {"x", 1}, {"P", 5}}, sorted),
            0);
  EXPECT_TRUE(SameBits(sorted, {5, 1, 8, nan, 3})) << testing::PrintToString(sorted);
  // So many that a sort with an order that is not strict would run over an end.
  NamedValues many(40, {"x", nan});
  many.emplace_back("a", 8);
  EXPECT_EQ(study.PickAndSortValuesWrtParameterRegistrationRank(many, sorted), 0);
  EXPECT_EQ(sorted.front(), 8);
  std::vector<int> ints = {9};
  EXPECT_EQ(
      study.PickAndSortValuesWrtParameterRegistrationRank(NamedInts{{"P", 1}, {"?", 2}}, ints), 1);
  EXPECT_TRUE(ints.empty());
}

TEST(Combinations, EvaluateAppendsErrors) {
  OpenCombinations study = Study();
  Register(study, 1, 5, 10, 20);
  Register(study, 2, 5, 30, 40);
  NamedValues outputs = {{"old", 0}};
  NamedValues errors = {{"old", 0}};
  EXPECT_EQ(study.Evaluate({{"Q", 5}, {"P", 2}}, {{"x", 0}, {"a", 0}}, outputs, errors), -2);
  EXPECT_EQ(outputs, (NamedValues{{"u", 30}, {"v", 40}}));
  EXPECT_EQ(errors, (NamedValues{{"old", 0}}));
  // Registering the same values again replaces the outputs.
  Register(study, 2, 5, 31, 41);
  EXPECT_EQ(study.Evaluate({{"P", 2}, {"Q", 5}}, {{"a", 0}, {"x", 0}}, outputs), 0);
  EXPECT_EQ(outputs, (NamedValues{{"u", 31}, {"v", 41}}));
  EXPECT_EQ(study.GetDiscreteCombinationsIndexingPtr()->at({5, 2}), 2);
  // An ensemble without surfaces has the error 0.
  CFittingCandidate empty;
  empty.SetInputScaleSlopes({1, 1});
  empty.SetInputScaleIntercepts({0, 0});
  auto* const list = new CFittingCandidates;
  list->AddFittingCandidate(empty);
  EXPECT_EQ(Add(study, 3, 5, {{"u", list}, {"v", New(1)}}), 0);
  EXPECT_EQ(study.Evaluate({{"P", 3}, {"Q", 5}}, {{"x", 0}, {"a", 0}}, outputs, errors), -2);
  EXPECT_EQ(errors, (NamedValues{{"old", 0}, {"u", 0}}));
}

const NamedInts kValues = {{"P", 1}, {"Q", 5}};
const NamedValues kPoint = {{"x", 0}, {"a", 0}};

// Expects that a study with the combination kValues refuses both forms before any output.
void ExpectRefused(const NamedInts& discrete, const NamedValues& continuous) {
  OpenCombinations study = Study();
  Register(study, 1, 5, 10, 20);
  NamedValues outputs = {{"old", 1}};
  NamedValues errors = {{"old", 2}};
  EXPECT_EQ(study.Evaluate(discrete, continuous, outputs, errors), 1);
  EXPECT_EQ(study.Evaluate(discrete, continuous, outputs), 1);
  EXPECT_EQ(outputs, (NamedValues{{"old", 1}}));
  EXPECT_EQ(errors, (NamedValues{{"old", 2}}));
}

TEST(Combinations, RefusalsBeforeTheOutputsTouchNothing) {
  ExpectRefused({{"P", 1}}, kPoint);
  ExpectRefused(kValues, {{"x", 0}});
  ExpectRefused({{"P", 1}, {"?", 5}}, kPoint);
  ExpectRefused(kValues, {{"x", 0}, {"?", 0}});
}

TEST(Combinations, DisabledLeftOut) {
  ExpectRefused({{"P", 1}, {"Q", 5}, {"off", 0}}, kPoint);
  ExpectRefused(kValues, {{"x", 0}, {"a", 0}, {"ratio", 0}});
}

TEST(Combinations, NoNeighbourCombination) {
  ExpectRefused({{"P", 1}, {"Q", 6}}, kPoint);
  ExpectRefused({{"P", 5}, {"Q", 1}}, kPoint);
}

TEST(Combinations, ValuesByRank) {
  OpenCombinations study = Study();
  Register(study, 1, 5, 10, 20);
  NamedValues outputs;
  EXPECT_EQ(study.Evaluate({{"Q", 5}, {"P", 1}}, {{"a", 0}, {"x", 0}}, outputs), 0);
  // A name of the wrong kind takes its place by rank: 5 for "u" goes after 1 for "P".
  EXPECT_EQ(study.Evaluate({{"P", 1}, {"u", 5}}, kPoint, outputs), 1);
  EXPECT_EQ(study.Evaluate({{"P", 5}, {"u", 1}}, kPoint, outputs), 0);
  EXPECT_EQ(study.Evaluate(kValues, {{"x", 0}, {"u", 0}}, outputs), 0);
  EXPECT_EQ(study.Evaluate(kValues, {{"x", 0}, {"x", 0}}, outputs), 0);
}

TEST(Combinations, FailedOutputEndsEvaluation) {
  OpenCombinations study = Study();
  ASSERT_EQ(Add(study, 1, 5, {{"v", New(2, 3)}, {"u", New(1)}}), 0);
  NamedValues outputs = {{"old", 1}};
  NamedValues errors;
  EXPECT_EQ(study.Evaluate({{"P", 1}, {"Q", 5}}, {{"x", 0}, {"a", 0}}, outputs, errors), 1);
  EXPECT_EQ(outputs, (NamedValues{{"u", 1}}));
  EXPECT_EQ(study.Evaluate({{"P", 1}, {"Q", 5}}, {{"x", 0}, {"a", 0}}, outputs), 1);
  EXPECT_EQ(outputs, (NamedValues{{"u", 1}}));
}

TEST(Combinations, RegisterTakesPointers) {
  OpenCombinations study = Study();
  const std::unique_ptr<CFittingCandidates> u(New(1));
  const std::unique_ptr<CFittingCandidates> v(New(2));
  const Outputs both = {{"u", u.get()}, {"v", v.get()}};
  EXPECT_EQ(study.RegisterDiscreteCombination({{"P", 1}}, both), 1);
  EXPECT_EQ(study.RegisterDiscreteCombination({{"P", 1}, {"?", 1}}, both), 1);
  EXPECT_EQ(Add(study, 1, 1, {{"u", u.get()}}), 1);
  EXPECT_EQ(Add(study, 1, 1, {{"u", u.get()}, {"v", nullptr}}), 1);
  EXPECT_TRUE(study.GetOutputsWrtDiscCombPtr()->empty());
  EXPECT_TRUE(study.GetDiscreteCombinationsIndexingPtr()->empty());
}

TEST(Combinations, ARepeatedNameKeepsTheFirstAndOwnsBoth) {
  OpenCombinations study = Study();
  CFittingCandidates* const first = New(1);
  EXPECT_EQ(Add(study, 1, 1, {{"u", first}, {"u", New(2)}}), 0);
  EXPECT_EQ(study.GetOutputsWrtDiscCombPtr()->back().at("u"), first);
  // One list under two names, and again for another combination, is still released once.
  CFittingCandidates* const shared = New(3);
  EXPECT_EQ(Add(study, 2, 1, {{"u", shared}, {"v", shared}}), 0);
  EXPECT_EQ(Add(study, 3, 1, {{"u", shared}, {"v", New(4)}}), 0);
}

TEST(Combinations, AResetReleasesTheListsAtOnce) {
  struct Counted : CFittingCandidates {
    explicit Counted(int* count) : CFittingCandidates(OneConstant(1, 2)), released(count) {}
    ~Counted() override { ++*released; }
    int* released;
  };
  int released = 0;
  OpenCombinations study = Study();
  EXPECT_EQ(Add(study, 1, 1, {{"u", new Counted(&released)}, {"v", New(1)}}), 0);
  EXPECT_EQ(study.ResetData(), 0);
  EXPECT_EQ(released, 1);
}

TEST(Combinations, CopiesCloneAndAssignmentsShare) {
  auto study = std::make_unique<OpenCombinations>(Study());
  Register(*study, 1, 5, 10, 20);
  const CDiscreteCombinations copy(*study);
  CDiscreteCombinations assigned;
  Register(*study, 2, 5, 11, 21);
  assigned = *study;
  const auto list = [](const CDiscreteCombinations& c) {
    return c.GetOutputsWrtDiscCombPtr()->at(0).at("u");
  };
  EXPECT_NE(list(copy), list(*study));
  EXPECT_EQ(list(assigned), list(*study));
  study->ResetData();
  study.reset();
  const CDiscreteCombinations& self = assigned;
  assigned = self;
  for (const CDiscreteCombinations* c :
       {&copy, static_cast<const CDiscreteCombinations*>(&assigned)}) {
    NamedValues outputs;
    EXPECT_EQ(c->Evaluate({{"P", 1}, {"Q", 5}}, {{"x", 0}, {"a", 0}}, outputs), 0);
    EXPECT_EQ(outputs, (NamedValues{{"u", 10}, {"v", 20}}));
  }
}

TEST(Combinations, ResetKeepsEmptyMaps) {
  OpenCombinations study = Study();
  Register(study, 1, 5, 10, 20);
  Register(study, 2, 5, 11, 21);
  study.RegisterParameterExtraInfos("x", "", "m", "c", 2, 1);
  EXPECT_EQ(study.ResetData(), 0);
  EXPECT_EQ(study.ParameterCount(), 0u);
  EXPECT_TRUE(study.GetRegistrationRank()->empty());
  EXPECT_TRUE(study.ListUpperBound({"x"}).empty());
  EXPECT_TRUE(study.GetDiscreteCombinationsIndexingPtr()->empty());
  ASSERT_EQ(study.GetOutputsWrtDiscCombPtr()->size(), 2u);
  EXPECT_TRUE(study.GetOutputsWrtDiscCombPtr()->at(0).empty());
  EXPECT_EQ(study.RegisterDiscreteCombination({}, {}), 0);
  EXPECT_EQ(study.GetDiscreteCombinationsIndexingPtr()->at({}), 2);
}

TEST(Combinations, UnknownIdMeansFirst) {
  OpenCombinations study = Study();
  for (const auto& [p, q] : {std::pair(5, 2), std::pair(5, 1), std::pair(7, 1)}) {
    Register(study, p, q, 0, 0);
  }
  EXPECT_EQ(study.ListRegisteredValuesForDiscreteParameter("P"), (std::vector<int>{5, 7}));
  EXPECT_EQ(study.ListRegisteredValuesForDiscreteParameter("Q"), (std::vector<int>{1, 2}));
  EXPECT_EQ(study.ListRegisteredValuesForDiscreteParameter("?"), (std::vector<int>{1, 2}));
  // A parameter that came after the combinations has no place in their keys.
  study.RegisterParameter("R", CausalityInput, DiscreteParameter, true);
  EXPECT_TRUE(study.ListRegisteredValuesForDiscreteParameter("R").empty());
  EXPECT_TRUE(OpenCombinations().ListRegisteredValuesForDiscreteParameter("P").empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
