// Inputs that are not finite, or as large or small as doubles get, through every family: each has
// its status and its kind of value, and everything ends.

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include "numerics/distributions.h"
#include "support/model_files.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
const double kOddValues[] = {kNan, kInfinity, -kInfinity, kMax, -kMax, 1e200, kTiny, 0.0, -0.0};

// One letter per odd value: a finite value, an infinite one, none at all (NaN), or status 1. The
// first input alone takes the value, or all of them do.
struct Row {
  const char* model;
  const char* ofFirst;
  const char* ofAll;
};

const Row kRows[] = {
    // Looks at no input.
    {"constant_sk_dummy", "fffffffff", "fffffffff"},
    // Far away nothing correlates, and the trend is constant.
    {"kriging_ot_branin_const", "nffffffff", "nffffffff"},
    {"kriging_sk_linnerud", "nffffffff", "nffffffff"},
    // A quadratic trend: its negative square wins, or infinities of both signs meet.
    {"kriging_ot_ishigami_purequad", "nniiiifff", "nnnnnnfff"},
    // Kernels fade away as well; what is left is the bias.
    {"svr_sk_eps_rbf", "nffffffff", "nffffffff"},
    {"svr_sk_version170", "nffffffff", "nffffffff"},
    // The linear part goes on to infinity.
    {"lbf_scipy_gauss_linear", "niiffffff", "nnnffffff"},
    // No sample has any weight, so that there is nothing to solve.
    {"mls_np_franke_linear_gauss", "xxxxxxfff", "xxxxxxfff"},
    {"qrs_sm_stackloss", "nnniiifff", "nnnnnnfff"},
    // Logarithms of what is not positive.
    {"qrs_sm_piston_loglog", "nnnxnffff", "nnnnnfnnn"},
};

char KindOf(int status, const NamedValues& outputs) {
  if (status != 0) return status == 1 ? 'x' : '?';
  const double value = outputs.front().second;
  return std::isnan(value) ? 'n' : std::isinf(value) ? 'i' : 'f';
}

TEST(Numbers, OddInputsHaveTheirStatusInEveryFamily) {
  for (const Row& row : kRows) {
    CDiscreteCombinations model;
    ReadModel(std::string(PXROM_TEST_DATA "/models/") + row.model + "/model.pxdb", model);
    NamedValues middle;
    for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
      middle.emplace_back(id, 0.5 * model.ListLowerBound({id})[0].second +
                                  0.5 * model.ListUpperBound({id})[0].second);
    }
    std::string ofFirst;
    std::string ofAll;
    for (const double value : kOddValues) {
      NamedValues point = middle;
      point.front().second = value;
      NamedValues outputs;
      NamedValues errors;
      int status = model.Evaluate({}, point, outputs);
      ofFirst += KindOf(status, outputs);
      for (auto& input : point) input.second = value;
      outputs.clear();
      status = model.Evaluate({}, point, outputs);
      ofAll += KindOf(status, outputs);
      // A family without errors refuses that form; none has an error without a value.
      const int statusWithErrors =
          CDiscreteCombinations(model).Evaluate({}, point, outputs, errors);
      EXPECT_TRUE(statusWithErrors == 1 || status == 0) << row.model << ' ' << value;
    }
    EXPECT_EQ(ofFirst, row.ofFirst) << row.model;
    EXPECT_EQ(ofAll, row.ofAll) << row.model;
  }
}

// A sign and a size of zero make no difference to a surface that is smooth there.
TEST(Numbers, ZeroAndTheSmallestNumbersMeanTheSame) {
  CDiscreteCombinations model;
  ReadModel(PXROM_TEST_DATA "/models/kriging_sk_linnerud/model.pxdb", model);
  NamedValues outputs[3];
  const double zeros[] = {0.0, -0.0, kTiny};
  for (int i = 0; i < 3; ++i) {
    const NamedValues point = {{"Chins", zeros[i]}, {"Situps", zeros[i]}, {"Jumps", zeros[i]}};
    ASSERT_EQ(model.Evaluate({}, point, outputs[i]), 0);
  }
  EXPECT_EQ(outputs[0], outputs[1]);
  EXPECT_EQ(outputs[0], outputs[2]);
}

// Iterations end by their count where they don't converge.
TEST(Numbers, DistributionsEndWhateverTheyAreAsked) {
  const double arguments[] = {kNan, kInfinity, -kInfinity, kMax, -kMax,  kTiny,       0.0,
                              -1.0, 1.0,       0.25,       0.5,  1e-300, 1.0 - 1e-16, 1e8};
  const std::clock_t start = std::clock();
  testing::internal::CaptureStdout();
  int good = 0;
  const auto count = [&good](int status) { good += status == 0 ? 1 : 0; };
  for (const double a : arguments) {
    double out = 0.0;
    count(GammaLn(a, out));
    count(StdGaussCdf(a, out));
    count(StdGaussInvCdf(a, out));
    for (const double b : arguments) {
      count(IncompleteGammaP(a, b, out));
      const StudTDist student(a);
      count(student.EvalCdf(b, out));
      count(student.EvalPdf(b, out));
      const int status = student.EvalInvCdf(b, out);
      count(status);
      // NaN for degrees of freedom is not above 0, and for a level it is no level.
      if (std::isnan(a) || std::isnan(b) || a <= 0.0) {
        EXPECT_NE(status, 0) << a << ' ' << b;
      }
      for (const double x : arguments) {
        count(IncompleteBetaRatio(a, b, x, out));
        count(BetaDist::EvalInvCdf(a, b, 0.0, 1.0, x, out));
      }
    }
  }
  testing::internal::GetCapturedStdout();
  EXPECT_GT(good, 100);
  EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
