#include <climits>

#include "families/regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

struct Answers {
  std::vector<int> statuses;  ///< of the value, the gradient and the row
  double value, row;
  Vector gradient;
};

/// -7 means that nothing was written.
Answers Ask(const RegTerm& term, const Vector& x) {
  Answers a{{}, -7.0, -7.0, Vector(x.size(), -7.0)};
  const int n = static_cast<int>(x.size());
  a.statuses.push_back(term.EvaluateValue(n, x.data(), &a.value));
  a.statuses.push_back(term.EvaluateDerivativeWrtInputVariables(n, x.data(), a.gradient.data()));
  a.statuses.push_back(term.EvaluateDesignRow(n, x.data(), &a.row));
  return a;
}

void ExpectAnswers(const TermSpec& spec, double value, double row, const Vector& gradient) {
  const auto term = MakeTerm(spec);
  const Vector x = {3.0, 5.0, 0.1};
  Answers a = Ask(*term, x);
  EXPECT_EQ(a.statuses, (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(a.value, value) << spec.type;
  EXPECT_EQ(a.row, row) << spec.type;
  EXPECT_EQ(a.gradient, gradient) << spec.type;
  term->SetInactive();
  a = Ask(*term, x);
  EXPECT_EQ(a.statuses, (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(a.value, 0.0);
  EXPECT_EQ(a.row, 0.0);
  EXPECT_EQ(a.gradient, Vector(3, 0.0));
}

TEST(RegTerms, ValueGradientAndDesignRow) {
  ExpectAnswers({FuncTypeConst, {}, 4.0}, 4.0, 1.0, {0, 0, 0});
  ExpectAnswers({FuncTypeLinear, {1}, 0.1}, 5.0 * 0.1, 5.0, {0, 0.1, 0});
  ExpectAnswers({FuncTypePureQuad, {0, 1}, 3.0}, 45.0, 15.0, {18, 0, 0});  // i1 is not looked at
  // x[i0] * c * x[i1], in this order.
  ASSERT_NE(0.1 * 0.9 * 5.0, 0.1 * 5.0 * 0.9);
  ExpectAnswers({FuncTypeCrossQuad, {2, 1}, 0.9}, 0.1 * 0.9 * 5.0, 0.5, {0, 0.1 * 0.9, 4.5});
  ExpectAnswers({FuncTypeCrossPoly, {0, 0, 1}, 2.0}, 90.0, 45.0, {60, 18, 0});
  ExpectAnswers({FuncTypeCrossPoly, {1, 1, 1, 0, 0}, 1.0}, 1125.0, 1125.0, {750, 675, 0});
  ExpectAnswers({FuncTypeCrossPoly, {}, 4.0}, 4.0, 1.0, {0, 0, 0});
}

TEST(RegTerms, CrossTermHalfGradient) {
  ExpectAnswers({FuncTypeCrossQuad, {0, 0}, 2.0}, 18.0, 9.0, {6, 0, 0});  // half of the true 12
}

TEST(RegTerms, CarryATagForHosts) {
  int tag = 0;
  EXPECT_EQ(MakeTerm({FuncTypeLinear, {1}, 0.1})->GetTermTag(tag), 0);
  EXPECT_EQ(tag, 1);
}

TEST(RegTerms, RefuseWhatIsNotSetOrOutsideAndWriteNothing) {
  const Vector x = {3.0, 5.0};
  const Vector untouched(2, -7.0);
  const double c = 2.0;
  const std::vector<std::pair<E_FuncType, std::vector<int>>> outside = {
      {FuncTypeLinear, {2}},         {FuncTypeLinear, {-1}},
      {FuncTypePureQuad, {2, 2}},    {FuncTypeCrossQuad, {0, 2}},
      {FuncTypeCrossQuad, {-1, 0}},  {FuncTypeCrossQuad, {0, INT_MAX}},
      {FuncTypeCrossPoly, {0, 1, 2}}};
  for (const auto& [type, indices] : outside) {
    const auto term = MakeTerm({type, indices, c});
    const Answers a = Ask(*term, x);
    EXPECT_EQ(a.statuses, (std::vector<int>{1, 1, 1})) << type;
    EXPECT_EQ(a.value, -7.0) << type;
    EXPECT_EQ(a.row, -7.0) << type;
    EXPECT_EQ(a.gradient, untouched) << type;
    term->SetInactive();
    EXPECT_EQ(Ask(*term, x).statuses.front(), 0);
  }
  // A term without a coefficient has a design row.
  for (const auto type : {FuncTypeLinear, FuncTypePureQuad, FuncTypeCrossQuad, FuncTypeCrossPoly}) {
    const auto term = MakeTerm({type, std::vector<int>(type == FuncTypeLinear ? 1 : 2), c});
    term->SetInactive();
    EXPECT_EQ(term->ResetParamVal(), 0);
    double stored = 0.0;
    EXPECT_EQ(term->GetParamVal(&stored), 0);
    EXPECT_EQ(term->QryIsActive(), 1);
    EXPECT_EQ(stored, -99.0);
    const Answers a = Ask(*term, x);
    EXPECT_EQ(a.statuses, (std::vector<int>{1, 1, 0})) << type;
    EXPECT_EQ(a.gradient, untouched);
  }
  LinearTerm bare;
  EXPECT_EQ(bare.SetParamVal(2, x.data()), 1);
  EXPECT_EQ(bare.SetParamVal(1, nullptr), 1);
  EXPECT_EQ(bare.SetParamVal(1, &c), 0);
  // Without an index.
  const Answers a = Ask(bare, x);
  EXPECT_EQ(a.statuses, (std::vector<int>{1, 1, 1}));
  EXPECT_EQ(a.gradient, untouched);
}

TEST(RegTerms, IndicesByClass) {
  const int list[] = {4, 5, 6};
  int out[3] = {-1, -1, -1};
  ConstTerm constant;
  EXPECT_EQ(constant.SetUsedInpVarIdx(0, nullptr), 0);
  EXPECT_EQ(constant.SetUsedInpVarIdx(1, list), 1);
  EXPECT_EQ(constant.GetUsedInpVarIdx(out), 1);
  CrossQuadTerm cross;
  EXPECT_EQ(cross.SetUsedInpVarIdx(3, list), 1);
  EXPECT_EQ(cross.GetUsedInpVarIdx(out), 1);
  EXPECT_EQ(cross.SetUsedInpVarIdx(2, list), 0);
  EXPECT_EQ(cross.GetUsedInpVarIdx(out), 0);
  EXPECT_EQ(out[1], 5);
}

TEST(RegTerms, CrossPolyIndices) {
  const int list[] = {4, 5, 6};
  int out[3] = {-1, -1, -1};
  int count = 0;
  CrossPolyTerm any;
  EXPECT_EQ(any.GetNumUsedInpVar(count), 0);
  EXPECT_EQ(count, -99);
  EXPECT_EQ(any.SetUsedInpVarIdx(-1, list), 1);
  EXPECT_EQ(any.GetUsedInpVarIdx(out), 1);
  const std::pair<int, std::vector<int>> steps[] = {
      {2, {0, 0}}, {3, {4, 5, 0}}, {3, {4, 5, 6}}, {1, {4}}, {2, {4, 0}}};
  for (const auto& [length, expected] : steps) {
    EXPECT_EQ(any.SetUsedInpVarIdx(length, list), 0);
    std::vector<int> indices(static_cast<std::size_t>(length), -1);
    EXPECT_EQ(any.GetUsedInpVarIdx(indices.data()), 0);
    EXPECT_EQ(indices, expected);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
