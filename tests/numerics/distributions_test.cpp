#include "numerics/distributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "support/source_path.h"

namespace {

using Row = std::vector<double>;  // arguments and the value to expect
using Rows = std::vector<Row>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Rows Reference(const char* table) {
  std::ifstream file(SourcePath("tests/data/numerics/distributions.json"));
  return nlohmann::json::parse(file).at(table).get<Rows>();
}

/// A status and what was written with it.
using Outcome = std::pair<int, double>;
Outcome Both(int status, const double& written) { return {status, written}; }

/// Functions and operations of any number of arguments, called with a row.
using Function = std::function<int(const Row& a, double& out)>;
Function By(int (*f)(const double&, double&)) {
  return [f](const Row& a, double& out) { return f(a[0], out); };
}
Function By(int (*f)(const double&, const double&, double&)) {
  return [f](const Row& a, double& out) { return f(a[0], a[1], out); };
}
Function By(int (*f)(const double&, const double&, const double&, double&)) {
  return [f](const Row& a, double& out) { return f(a[0], a[1], a[2], out); };
}
Function By(int (StudTDist::*f)(const double&, double&) const) {
  return [f](const Row& a, double& out) { return (StudTDist(a[0]).*f)(a[1], out); };
}

/// The result of `function`, which must return 0.
template <class F>
double Of(F function, const Row& arguments) {
  double out = kNan;
  EXPECT_EQ(By(function)(arguments, out), 0) << testing::PrintToString(arguments);
  return out;
}
double Quantile(double dof, double p) { return Of(&StudTDist::EvalInvCdf, {dof, p}); }

/// Within `relative` of `expected`, or within `absolute`.
bool IsNear(double value, double expected, double relative, double absolute) {
  return std::fabs(value - expected) <= std::max(std::fabs(expected) * relative, absolute);
}

/// What `call` writes to the standard output.
std::string Output(const std::function<void()>& call) {
  testing::internal::CaptureStdout();
  call();
  return testing::internal::GetCapturedStdout();
}

TEST(Distributions, FunctionsAgreeWithReference) {
  const struct {
    const char* table;
    double relative, absolute;
    Function evaluate;
  } kCases[] = {
      {"gamma_ln", 1e-9, 2e-10, By(&GammaLn)},
      {"gamma_p", 3e-7, 0.0, By(&IncompleteGammaP)},
      {"beta_function", 1e-10, 0.0, By(&BetaFunction)},
      {"beta_cdf", 1e-7, 0.0, By(&IncompleteBetaRatio)},
      {"gauss_cdf", 3e-7, 3e-17, By(&StdGaussCdf)},
      {"gauss_quantile", 3e-8, 1e-9, By(&StdGaussInvCdf)},
      {"student_pdf", 1e-11, 0.0, By(&StudTDist::EvalPdf)},
      {"student_cdf", 0.0, 4e-7, By(&StudTDist::EvalCdf)},
      // Where the iteration ends early, the result depends on its path: starts, steps out of the
      // interval, and the tolerance. It is far from the quantile there.
      {"student_iteration", 1e-7, 0.0, By(&StudTDist::EvalInvCdf)},
      {"beta_quantile", 0.0, 1.25e-8,
       [](const Row& a, double& out) {
         const int status = BetaDist::EvalInvCdf(a[0], a[1], 2.0, 6.0, a[2], out);
         out = (out - 2.0) / 4.0;
         return status;
       }},
  };
  for (const auto& c : kCases) {
    for (const Row& row : Reference(c.table)) {
      if (row == Row{0.5, 0.5, 0.5, 0.5}) continue;  // see LimitCycle
      double value = kNan;
      EXPECT_EQ(c.evaluate(row, value), 0) << c.table << testing::PrintToString(row);
      EXPECT_TRUE(IsNear(value, row.back(), c.relative, c.absolute))
          << c.table << testing::PrintToString(row) << ' ' << value;
    }
  }
}

TEST(StudTDist, QuantilesAgreeWithReference) {
  for (const Row& row : Reference("student_quantile")) {
    const double dof = row[0];
    const double p = row[1];
    if (dof == 1.0 && p == 0.25) continue;  // see LimitCycle
    // Near the middle, with many degrees of freedom, the iteration ends too early.
    const bool middle = std::fabs(p - 0.5) < 0.05;
    const double absolute = dof >= 500.0 ? 6e-5 : middle ? 4e-5 : 1e-7;
    const double relative = dof < 500.0 && !middle ? 1e-7 : 0.0;
    EXPECT_TRUE(IsNear(Quantile(dof, p), row[2], relative, absolute))
        << testing::PrintToString(row) << ' ' << Quantile(dof, p);
    EXPECT_EQ(Quantile(dof, 0.5), 0.0);
  }
}

// Beyond each cut-off the error is that of the other formula.
TEST(StudTDist, FormulasChangeAtTheirCutOffs) {
  EXPECT_NEAR(Quantile(499.9, 0.999), 3.1066149167171, 1e-6);
  EXPECT_GT(std::fabs(Quantile(500.0, 0.999) - 3.1066116243216), 1e-5);

  EXPECT_NEAR(Of(&StudTDist::EvalPdf, {342.0, 3.0}), 0.0046333949, 1e-9);
  EXPECT_EQ(Of(&StudTDist::EvalPdf, {std::nextafter(342.0, 343.0), 3.0}), Of(&StdGaussPdf, {3.0}));

  const auto gaussCdf = [](double x) { return Of(&StdGaussCdf, {x}); };
  EXPECT_TRUE(IsNear(gaussCdf(-7.0), 1.279812543885835e-12, 1e-10, 0.0));
  EXPECT_FALSE(IsNear(gaussCdf(-6.9999), 1.2807263357149736e-12, 1e-6, 0.0));
  EXPECT_EQ(gaussCdf(-0.001), -0.001 / 2.5066282746310007 + 0.5);
  EXPECT_NE(gaussCdf(-0.0011), -0.0011 / 2.5066282746310007 + 0.5);
  EXPECT_EQ(gaussCdf(8.0), 1.0 - gaussCdf(-8.0));

  EXPECT_NEAR(Of(&StudTDist::EvalCdf, {499.9, -2.0}), 0.023020395487785, 1e-8);
  EXPECT_GT(std::fabs(Of(&StudTDist::EvalCdf, {500.0, -2.0}) - 0.02302034138451572), 1e-7);
  for (const double dof : {0.3, 10.0, 499.9, 500.0}) {
    EXPECT_EQ(Of(&StudTDist::EvalCdf, {dof, 0.0}), 0.5);
  }

  EXPECT_EQ(Of(&IncompleteGammaP, {0.5, 1.5}),
            1.0 - Of(&IncompleteGammaContinuedFraction, {0.5, 1.5}));
  // By the mirrored fraction; the other one errs below.
  EXPECT_GT(Of(&IncompleteBetaRatio, {0.5, 0.5, 0.5}), 0.5);
}

TEST(StudTDist, RefusesWithoutTouchingTheResult) {
  const struct {
    double dof, p;
    int status;
  } kCases[] = {{10, 0.0, 2},  {10, -1.0, 2},   {10, 1.0, 3}, {10, 2.0, 3}, {0, 0.95, 1},
                {-3, 0.95, 1}, {kNan, 0.95, 1}, {0, 0.5, 1},  {0, 0.0, 2},  {600, 1.0, 3},
                {600, 0.0, 2}, {-3, 1e-300, 1}, {0, kNan, 1}};
  for (const auto& c : kCases) {
    double x = 7.0;
    EXPECT_EQ(Output([&] { EXPECT_EQ(StudTDist(c.dof).EvalInvCdf(c.p, x), c.status); }), "");
    EXPECT_EQ(x, 7.0) << c.dof << ' ' << c.p;
  }
  double out = 7.0;
  EXPECT_EQ(StudTDist(2.0).EvalStdDev(out), 1);
  EXPECT_EQ(StudTDist(4.0).EvalKurtosis(out), 1);
  EXPECT_EQ(out, 7.0);
  EXPECT_EQ(Both(StudTDist(4.0).EvalStdDev(out), out), Outcome(0, std::sqrt(2.0)));
  EXPECT_EQ(Both(StudTDist(10.0).EvalKurtosis(out), out), Outcome(0, 1.0));
  EXPECT_EQ(Both(StudTDist(10.0).EvalMean(out), out), Outcome(0, 0.0));
  out = 7.0;
  EXPECT_EQ(Both(StudTDist(10.0).EvalSkewness(out), out), Outcome(0, 0.0));
}

// A NaN passes every comparison, and a NaN step ends each iteration after one round.
TEST(Distributions, NanConfidenceLevel) {
  double out = 7.0;
  EXPECT_EQ(BetaDist::EvalInvCdf(5.0, 0.5, 0.0, 1.0, kNan, out), 0);
  EXPECT_EQ(out, 5.0 / 5.5);
  EXPECT_EQ(StudTDist(10.0).EvalInvCdf(kNan, out), 0);
  EXPECT_EQ(out, std::sqrt(10.0 / (5.0 / 5.5) - 10.0));
  for (const auto& call :
       {std::function<int()>([&] { return StdGaussInvCdf(kNan, out); }),
        std::function<int()>([&] { return StudTDist(500.0).EvalInvCdf(kNan, out); })}) {
    out = 7.0;
    EXPECT_EQ(call(), 0);
    EXPECT_TRUE(std::isnan(out));
  }
}

TEST(StudTDist, RefusesEverythingOnceReset) {
  StudTDist dist(10.0);
  const auto facts = [&dist] {
    std::vector<int> all(5, -1);
    dist.GetNumParam(all[0]);
    dist.GetNumKind(all[1]);
    dist.GetDistKind(all[2]);
    dist.GetDistStatus(all[3]);
    dist.GetParamStatus(0, all[4]);
    return all;
  };
  EXPECT_EQ(facts(), (std::vector<int>{1, 1, 10, 3, 1}));
  EXPECT_EQ(dist.ResetParams(), 0);
  EXPECT_EQ(facts(), (std::vector<int>{1, 1, 10, 0, 0}));
  double out = 7.0;
  double xs[3];
  EXPECT_EQ(dist.EvalMean(out), 1);
  EXPECT_EQ(dist.EvalStdDev(out), 1);
  EXPECT_EQ(dist.EvalSkewness(out), 1);
  EXPECT_EQ(dist.EvalKurtosis(out), 1);
  EXPECT_EQ(dist.EvalPdf(0.0, out), 1);
  EXPECT_EQ(dist.EvalCdf(0.0, out), 1);
  EXPECT_EQ(dist.EvalInvCdf(0.5, out), 1);
  EXPECT_EQ(dist.TabulatePdf(3, -1, 1, xs, xs), 1);
  EXPECT_EQ(dist.TabulateCdf(3, -1, 1, xs, xs), 1);
  EXPECT_EQ(dist.GetPlotBounds(1, out, out), 0);  // the 0 of its DistStatus
  EXPECT_EQ(out, 7.0);
  EXPECT_EQ(dist.SetParam(1, 5.0), 1);
  EXPECT_EQ(dist.SetParam(0, 0.0), 2);
  EXPECT_EQ(dist.SetParam(0, kNan), 2);
  EXPECT_EQ(facts(), (std::vector<int>{1, 1, 10, 0, 0}));
  EXPECT_EQ(dist.SetParam(0, 5.0), 0);
  EXPECT_EQ(facts(), (std::vector<int>{1, 1, 10, 3, 1}));
}

// The two fractions of the incomplete Beta function differ by 4e-8 where they meet, and this root
// is there, so the iteration jumps from one to the other and back.
TEST(Distributions, LimitCycle) {
  const std::string beta =
      " \n *** ERROR in EvalInvCdf *** \n NO convergence of Newton-Raphson algorithm \n"
      " dProb     = 0.500000 (given) \n dShapeR = 0.500000 (given) \n"
      " dShapeT = 0.500000 (given) \n xstd      = 0.500000 (given) \n";
  double x = 7.0;
  EXPECT_EQ(Output([&] { EXPECT_EQ(BetaDist::EvalInvCdf(0.5, 0.5, 0, 1, 0.5, x), 1); }), beta);
  for (const double p : {0.25, 0.75}) {
    EXPECT_EQ(Output([&] { EXPECT_EQ(StudTDist(1.0).EvalInvCdf(p, x), 1); }),
              beta + " *** ERROR 1 in StudTDist::EvalInvCdf *** \n");
  }
  EXPECT_EQ(x, 7.0);
}

TEST(Distributions, DistributionsPrint) {
  double x = 7.0;
  // The last step and point of 200 exact Newton steps are -0.036486095240 and -27.407749644169.
  EXPECT_EQ(Output([&] { EXPECT_EQ(StdGaussInvCdf(1e-300, x), 1); }),
            " *** ERROR in StdGaussInvCdf *** \n NO convergence of Newton-Raphson algorithm \n"
            " prob = 0.000000000 (given) \n pro2 = 0.000000000 (help ) \n cdf  = 0.000000000 \n"
            " pdf  = 0.000000000 \n step = -0.036486095 \n xstd = -27.407749644 \n");
  EXPECT_EQ(Output([&] { EXPECT_EQ(BetaDist::EvalCdf(1e6, 1e6, 0, 1, 0.5, x), 1); }),
            " *** ERROR in BetaDist::EvalCdf *** \n");
  EXPECT_EQ(Output([&] { EXPECT_EQ(BetaDist::EvalInvCdf(1e6, 1e6, 0, 1, 0.5, x), 1); }),
            " *** ERROR in BetaDist::EvalCdf *** \n");
  EXPECT_EQ(Output([&] { EXPECT_EQ(StudTDist(1000.0).EvalInvCdf(1e-300, x), 3); }),
            " *** ERROR 2 in StudTDist::EvalInvCdf *** \n");
  EXPECT_EQ(x, 7.0);
}

TEST(Distributions, DistributionEdges) {
  double out = 7.0;
  EXPECT_EQ(IncompleteGammaP(0.5, -1.0, out), 1);
  EXPECT_EQ(IncompleteGammaP(0.0, 1.0, out), 1);
  EXPECT_EQ(IncompleteGammaP(0.5, 0.0, out), 1);
  EXPECT_EQ(IncompleteGammaP(1000.0, 1000.0, out), 1);
  // All three give up after 100 rounds.
  EXPECT_EQ(BetaContinuedFraction(31000, 31000, 0.5, out), 1);
  EXPECT_EQ(IncompleteGammaSeries(397, 397, out), 1);
  EXPECT_EQ(IncompleteGammaContinuedFraction(7032, 7033, out), 1);
  EXPECT_EQ(out, 7.0);
  EXPECT_EQ(BetaContinuedFraction(30000, 30000, 0.5, out), 0);
  EXPECT_EQ(IncompleteGammaSeries(396, 396, out), 0);
  EXPECT_EQ(IncompleteGammaContinuedFraction(7031, 7032, out), 0);
  EXPECT_EQ(IncompleteGammaSeries(0.5, 0.0, out), 1);  // a right value with a refusing status
  EXPECT_EQ(out, 0.0);
  EXPECT_EQ(Both(StdGaussInvCdf(0.0, out), out), Outcome(2, -9e99));
  EXPECT_EQ(Both(StdGaussInvCdf(1.0, out), out), Outcome(3, 9e99));
  EXPECT_EQ(Both(StdGaussInvCdf(0.5, out), out), Outcome(0, 0.0));

  const struct {
    decltype(&BetaDist::EvalPdf) evaluate;
    double argument, value;
  } kCases[] = {{BetaDist::EvalPdf, 1.9, 0.0},        {BetaDist::EvalPdf, 6.1, 0.0},
                {BetaDist::EvalPdf, 4.0, 0.375},      {BetaDist::EvalCdf, 3.0, 0.15625},
                {BetaDist::EvalInvCdf, 0.15625, 3.0}, {BetaDist::EvalCdf, 2.0, 0.0},
                {BetaDist::EvalCdf, 6.0, 1.0},        {BetaDist::EvalInvCdf, 0.0, 2.0},
                {BetaDist::EvalInvCdf, 1.0, 6.0}};
  for (const auto& c : kCases) {
    EXPECT_EQ(c.evaluate(2, 2, 2, 6, c.argument, out), 0);
    EXPECT_NEAR(out, c.value, 1e-9);
  }
}

TEST(StudTDist, Tabulates) {
  constexpr double kDof = 7.0;
  const StudTDist dist(kDof);
  const auto cdf = [](double x) { return Of(&StudTDist::EvalCdf, {kDof, x}); };
  Row xs(4);
  Row ys(4);
  EXPECT_EQ(dist.TabulateCdf(4, -0.1, 0.2, xs.data(), ys.data()), 0);
  // The last point is the given one, but its value is that of the accumulated point.
  const double step = (0.2 - -0.1) / 3;
  EXPECT_EQ(xs, (Row{-0.1, -0.1 + step, -0.1 + step + step, 0.2}));
  EXPECT_NE(-0.1 + step + step + step, 0.2);
  EXPECT_EQ(ys[3], cdf(-0.1 + step + step + step));
  EXPECT_EQ(dist.TabulateCdf(1, -1.0, 2.0, xs.data(), ys.data()), 0);
  EXPECT_EQ(xs[0], 2.0);
  EXPECT_EQ(ys[0], cdf(-1.0));

  // Four steps of x, and two of probability for the rest, sorted.
  xs.resize(7);
  ys.resize(7);
  EXPECT_EQ(dist.TabulatePdf(7, -4.0, 4.0, xs.data(), ys.data()), 0);
  const double third = (cdf(4.0) - cdf(-4.0)) / 3;
  const double level = cdf(-4.0) + third;
  EXPECT_EQ(xs, (Row{-4, -2, Quantile(kDof, level), 0, Quantile(kDof, level + third), 2, 4}));
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(ys[i], Of(&StudTDist::EvalPdf, {kDof, xs[i]}));
  }
  EXPECT_EQ(dist.TabulatePdf(3, -9e99, 9e99, xs.data(), ys.data()), 0);
  EXPECT_EQ(Row(xs.begin(), xs.begin() + 3), (Row{-9e99, 0, 9e99}));

  EXPECT_EQ(dist.TabulatePdf(2, -1.0, 1.0, xs.data(), ys.data()), 1);
  EXPECT_EQ(dist.TabulateCdf(0, -1.0, 1.0, xs.data(), ys.data()), 1);
  EXPECT_EQ(dist.TabulateCdf(3, -1e100, 1.0, xs.data(), ys.data()), 1);
  EXPECT_EQ(dist.TabulatePdf(3, -1.0, 1e100, xs.data(), ys.data()), 1);
}

TEST(StudTDist, PlotBounds) {
  const StudTDist dist(5.0);
  const double q = Quantile(5.0, 0.999);
  const double wide = Quantile(5.0, 0.999999);
  const double narrow = Quantile(5.0, 0.998);
  const struct {
    unsigned char flags;
    int status;
    double lo, hi;
  } kCases[] = {
      {1, 0, -9e99, 9e99}, {3, 0, -9e99, 9e99},      {2, 0, -wide, wide},     {4, 0, -q, q},
      {8 | 16, 0, -q, q},  {16, 0, -narrow, narrow}, {32, 0, -9e99, 9e99},    {0, 1, 7, 7},
      {4 | 64, 0, -q, 7},  {4 | 128, 0, 7, q},       {4 | 64 | 128, 0, 7, 7}, {64, 1, 7, 7},
  };
  for (const auto& c : kCases) {
    double lo = 7.0;
    double hi = 7.0;
    EXPECT_EQ(dist.GetPlotBounds(c.flags, lo, hi), c.status);
    EXPECT_NEAR(lo, c.lo, std::fabs(c.lo) * 1e-7) << int{c.flags};
    EXPECT_EQ(hi, c.hi) << int{c.flags};
  }
}

TEST(StudTDist, AttributesSetTheDegreesOfFreedom) {
  StudTDist dist(3.0);
  StudTDOF ten;
  StudTDOF unset;
  Mean mean;
  ten.SetValue(10.0);
  for (const std::vector<DistAttr*>& refused :
       std::vector<std::vector<DistAttr*>>{{&ten, &ten}, {&mean}, {nullptr}, {&unset}, {}}) {
    EXPECT_EQ(dist.SetAttributes(refused), 1);
  }
  double dof = 0.0;
  dist.GetParam(0, dof);
  EXPECT_EQ(dof, 3.0);
  EXPECT_EQ(dist.SetAttributes({&ten}), 0);

  // A copy has its own attributes, which the caller deletes.
  StudTDist copy(1.0);
  EXPECT_EQ(dist.CopyTo(&copy), 0);
  EXPECT_EQ(dist.CopyTo(nullptr), 1);
  std::vector<DistAttr*> attributes;
  copy.GetAttributes(attributes);
  ASSERT_EQ(attributes.size(), 1U);
  const std::unique_ptr<DistAttr> own(attributes[0]);
  EXPECT_NE(own.get(), &ten);
  EXPECT_EQ(Both(copy.GetParam(0, dof), dof), Outcome(0, 10.0));
  dof = 3.0;
  EXPECT_EQ(Both(own->GetValue(dof), dof), Outcome(0, 10.0));
  copy.ClearAttributes();
  long long count = -1;
  copy.GetNumAttributes(count);
  EXPECT_EQ(count, 0);

  std::vector<int> ids = {4};
  EXPECT_EQ(dist.GetAllowedAttributes(1, ids), 1);
  EXPECT_TRUE(ids.empty());
  EXPECT_EQ(dist.GetAllowedAttributes(0, ids), 0);
  EXPECT_EQ(ids, (std::vector<int>{17, 0}));
}

TEST(StudTDist, MomentsAreRefusedWhereTheyWouldDo) {
  const StudTDist dist(1.0);
  Mean mean;
  StdDev stdDev;
  double out = 7.0;
  stdDev.SetValue(2.0);
  EXPECT_EQ(Both(dist.EvalDofFromMoments(mean, stdDev, out), out), Outcome(1, 0.0));
  const struct {
    int param, type;
    double center;
    int status;
    double value;
  } kCases[] = {{0, 17, 0.0, 0, 5.0},
                {0, 17, -40.0, 0, 5.0},
                {0, 17, 10.0, 0, 0.5 / -0.75},
                {1, 17, 10.0, 1, 7.0},
                {0, 4, 10.0, 1, 7.0}};
  for (const auto& c : kCases) {
    out = 7.0;
    EXPECT_EQ(dist.GetDefaultParam(c.param, c.type, c.center, out), c.status);
    EXPECT_EQ(out, c.value) << c.center;
  }
}

TEST(DistAttr, TakesItsRangeOfValues) {
  struct Case {
    int type;
    double value;
    int result, status;
  };
  std::vector<Case> cases = {
      {8, 70.0, 0, 8},    {8, 70.1, 1, 7}, {8, -1.0, 0, 8},    {9, 50.0, 0, 8},
      {9, 50.1, 1, 7},    {9, 0.0, 1, 5},  {10, 0.0, 2, 5},    {11, 0.0, 2, 5},
      {11, 1000.1, 1, 7}, {12, 0.0, 1, 5}, {12, 1000.1, 1, 7}, {12, 1000.0, 0, 8},
      {17, kNan, 1, 5},   {6, 0.5, 0, 8},  {6, 0.0, 1, 5},     {6, 1.0, 1, 6}};
  for (const int type : {1, 2, 4, 7, 20}) cases.push_back({type, -1e300, 0, 8});
  for (const int type : {3, 5, 13, 14, 15, 16, 17, 18, 19}) cases.push_back({type, 0.0, 1, 5});
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.type << ' ' << c.value);
    const std::unique_ptr<DistAttr> attribute = NewDistAttr(c.type);
    int type = 0;
    double value = 0.0;
    EXPECT_EQ(attribute->GetAttrType(type), 0);
    EXPECT_EQ(attribute->GetAttrStatus(), 0);
    EXPECT_EQ(type, c.type);
    attribute->GetValue(value);
    const double unset = value;
    EXPECT_EQ(unset, c.type == 20 ? -9e99 : -99.0);
    EXPECT_EQ(attribute->SetValue(c.value), c.result);
    EXPECT_EQ(attribute->GetAttrStatus(), c.status);
    attribute->GetValue(value);
    EXPECT_EQ(value, c.result == 0 ? c.value : unset);
    const int pair = attribute->SetValue(1.0, 0.5) + attribute->GetValue(value, value);
    EXPECT_EQ(pair, c.type == 6 ? 0 : 2);
  }
  EXPECT_EQ(NewDistAttr(0), nullptr);
  EXPECT_EQ(NewDistAttr(21), nullptr);
}

TEST(DistAttr, PrctStoresItsValueEvenWhenItRefuses) {
  const auto content = [](const Prct& prct) {
    double value = 0.0;
    double prob = 0.0;
    EXPECT_EQ(prct.GetValue(value, prob), 0);
    return std::make_pair(value, prob);
  };
  Prct prct;
  EXPECT_EQ(prct.SetValue(3.0, 0.25), 0);
  EXPECT_EQ(prct.SetValue(4.0, 1.0), 1);
  EXPECT_EQ(content(prct), std::make_pair(4.0, 0.25));
  EXPECT_EQ(prct.SetValue(0.75), 0);
  Prct copy;
  Mean mean;
  EXPECT_EQ(prct.CopyTo(&copy), 0);
  EXPECT_EQ(prct.CopyTo(&mean), 1);
  EXPECT_EQ(prct.CopyTo(nullptr), 1);
  EXPECT_EQ(mean.CopyTo(nullptr), 1);
  EXPECT_EQ(content(copy), std::make_pair(1.0, 0.75));
}

}  // namespace
