#pragma once

// Compares the exact functions on vectors with the host's, for one instruction set.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "numerics/bessel.h"
#include "simd/bessel.h"
#include "simd/fdlibm.h"
#include "simd/host.h"
#include "vector_functions/check_sets.h"

namespace Tarvane::Plexura::PXROM::simd {
namespace {

using Random = std::mt19937_64;

double Between(Random& random, double low, double high) {
  return low + (high - low) * static_cast<double>(random() >> 11) * 0x1p-53;
}

/// One whose logarithm is uniform.
double Scaled(Random& random, int low, int high) {
  const auto range = static_cast<std::uint64_t>(high - low);
  return std::ldexp(Between(random, 1.0, 2.0), low + static_cast<int>(random() % range));
}

bool HasSameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// Why a function is exact: a rounding test, whose open values are beside the midpoint of two
/// doubles, so that the host's is one of the two; or because it repeats the host's operations.
enum class By { RoundingTest, Repetition };

/// `function` at arguments from `next`, and around the points of `hard`. At most `mostOpen` of the
/// first may be left open: a function that leaves all open is exact too.
struct Case {
  By by;
  const char* name;
  std::function<Exact(Vector)> function;
  std::function<double(double)> host;
  double mostOpen;
  std::function<double(Random&)> next;
  std::vector<double> hard;
};

class Comparison {
 public:
  /// With `comparesOpen` open values count as wrong unless they are the host's or beside it.
  Comparison(const Case& tested, bool comparesOpen)
      : tested_(tested), comparesOpen_(comparesOpen) {}

  void Add(double x) {
    arguments_[count_++] = x;
    if (count_ == kLanes) Compare();
  }
  /// The last arguments, with copies of them.
  void Finish() {
    while (count_ != 0) Add(arguments_[0]);
  }

  long open = 0;
  long compared = 0;
  long wrong = 0;
  double firstWrong = 0.0;

 private:
  void Compare() {
    const Exact exact = tested_.function(Load(arguments_));
    double values[kLanes];
    Store(values, exact.value);
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const bool isOpen = (exact.open >> lane & 1U) != 0;
      ++(isOpen ? open : compared);
      if (isOpen && !comparesOpen_) continue;
      const double x = arguments_[lane];
      const double expected = tested_.host(x);
      if (HasSameBits(values[lane], expected)) continue;
      if (isOpen && std::nextafter(values[lane], expected) == expected) continue;
      if (wrong++ == 0) firstWrong = x;
    }
    count_ = 0;
  }

  const Case& tested_;
  bool comparesOpen_;
  std::size_t count_ = 0;
  double arguments_[kLanes];
};

bool IsExact(const Case& tested, long count) {
  Random random(1);
  Comparison usual(tested, tested.by == By::RoundingTest);
  for (long i = 0; i < count; ++i) usual.Add(tested.next(random));
  usual.Finish();
  Comparison hard(tested, false);
  for (const double point : tested.hard) {
    double below = point;
    double above = point;
    for (int step = 0; step < 500; ++step) {
      hard.Add(below);
      hard.Add(above);
      below = std::nextafter(below, -std::numeric_limits<double>::infinity());
      above = std::nextafter(above, std::numeric_limits<double>::infinity());
    }
  }
  hard.Finish();
  const long all = usual.compared + usual.open;
  const double share = static_cast<double>(usual.open) / static_cast<double>(all);
  const bool isExact = usual.wrong == 0 && hard.wrong == 0 && share <= tested.mostOpen;
  std::printf("%-22s %12ld arguments, %.3f%% open; %ld hard ones, %ld open%s\n", tested.name, all,
              100.0 * share, hard.compared + hard.open, hard.open, isExact ? "" : "  <-- FAILED");
  if (usual.wrong + hard.wrong > 0) {
    std::printf("  %ld differ, the first at %a\n", usual.wrong + hard.wrong,
                usual.wrong > 0 ? usual.firstWrong : hard.firstWrong);
  }
  return isExact;
}

/// Multiples of pi / 2, and powers of 2, where results or parts of them change their exponent.
std::vector<double> TurnsAndPowers() {
  std::vector<double> points;
  for (int k = 0; k <= 20; ++k) points.push_back(k * 1.5707963267948966);
  for (int k = -40; k <= 4; ++k) points.push_back(std::ldexp(1.0, k));
  // Where the host changes its formula.
  for (const double x : {0.126, 0.855469, 2.426265}) points.push_back(x);
  return points;
}

std::vector<Case> Cases() {
  constexpr double kTiniest = std::numeric_limits<double>::denorm_min();
  const auto exp = [](Vector x) { return ExpOfMinus(x); };
  const auto hostExp = [](double x) { return std::exp(-x); };
  const auto log = [](Vector x) { return Log(x); };
  const auto hostLog = [](double x) { return std::log(x); };
  const auto sine = [](Vector x) {
    Exact answer = Sin(x);
    answer.open |= ~Bits(Abs(x) <= 32.0) & kAllLanes;
    return answer;
  };
  const auto hostSine = [](double x) { return std::sin(x); };
  const auto cosine = [](Vector x) {
    Exact answer = Cos(x);
    answer.open |= ~Bits(1.0 <= Abs(x) && Abs(x) <= 32.0) & kAllLanes;
    return answer;
  };
  const auto hostCosine = [](double x) { return std::cos(x); };
  const auto tanh = [](Vector x) { return Tanh(x, FormOfTanh()); };
  const auto hostTanh = [](double x) { return std::tanh(x); };
  const auto log1p = [](Vector x) { return Log1p(x, FormOfLog1p()); };
  const auto hostLog1p = [](double x) { return std::log1p(x); };
  const auto j0 = [](Vector x) { return J0(x); };
  // Without a known form all lanes are open.
  const double mostOfTanh = FormOfTanh() == HostForm::Other ? 1.0 : 0.0;
  const double mostOfLog1p = FormOfLog1p() == HostForm::Other ? 1.0 : 0.02;
  // The host computes it there, with fused operations.
  constexpr bool kComputesJ0 = PXROM_SIMD != PXROM_SIMD_NEON;
  std::vector<Case> cases = {
      {By::RoundingTest,
       "exp(-x)",
       exp,
       hostExp,
       0.06,
       [](Random& r) { return Between(r, -2.0, 40.0); },
       {0.0, 0.34657359, 1.0, 708.0, 709.78, 744.44, 745.13, 746.0, -709.78, 1e300}},
      {By::RoundingTest,
       "exp(-x), x small",
       exp,
       hostExp,
       0.1,
       [](Random& r) { return Scaled(r, -40, 0); },
       {kTiniest, 0x1p-54, 0x1p-53}},
      {By::RoundingTest,
       "log(x), x >= 1",
       log,
       hostLog,
       0.01,
       [](Random& r) { return Between(r, 1.0, 30.0); },
       {1.0, 0.9375, 1.0647, 1.4142135623730951, 2.0, 4.0, 0x1p1000}},
      {By::RoundingTest,
       "log(x), x around 1",
       log,
       hostLog,
       0.05,
       [](Random& r) { return Between(r, 0.9, 1.1); },
       {0.70710678118654757, 1.0}},
      {By::RoundingTest,
       "log(x), all x",
       log,
       hostLog,
       0.01,
       [](Random& r) { return Scaled(r, -990, 990); },
       {0.0, kTiniest, 0x1p-1022, 0x1p-1000, 0x1p1000, 1e308}},
      {By::RoundingTest, "sin(x)", sine, hostSine, 0.03,
       [](Random& r) { return Between(r, -4.8, 4.8); }, TurnsAndPowers()},
      {By::RoundingTest,
       "sin(x), x small",
       sine,
       hostSine,
       0.03,
       [](Random& r) { return Scaled(r, -19, 0); },
       {}},
      {By::RoundingTest,
       "sin(x), |x| up to 32",
       sine,
       hostSine,
       0.03,
       [](Random& r) { return Between(r, -32.0, 32.0); },
       {}},
      {By::RoundingTest, "cos(x)", cosine, hostCosine, 0.03,
       [](Random& r) { return Between(r, 1.0, 32.0); }, TurnsAndPowers()},
      {By::Repetition,
       "J0(x), x up to 2",
       j0,
       BesselJ0,
       kComputesJ0 ? 0.0 : 1.0,
       [](Random& r) { return Between(r, 0.0, 2.0); },
       {0.0, kTiniest, 0x1p-27, 0x1p-13, 1.0, 2.0}},
      {By::Repetition,
       "J0(x), x beyond 2",
       j0,
       BesselJ0,
       kComputesJ0 ? 0.08 : 1.0,
       [](Random& r) { return Between(r, 2.0, 4.5); },
       {2.404825557695773, 0.75 * 3.141592653589793, 1.25 * 3.141592653589793, 2.857142857142857,
        3.141592653589793, 3.8317059702075123, 3.8317, 4.5454}},
      {By::Repetition,
       "tanh(x)",
       tanh,
       hostTanh,
       mostOfTanh,
       [](Random& r) { return Between(r, -25.0, 25.0); },
       {0.0, kTiniest, 0x1p-55, 0x1p-54, 0.17328679513998633, 0.51986038541995894, 1.0, 22.0,
        6.93147, 19.4, 1e308}},
      {By::Repetition,
       "tanh(x), |x| up to 1",
       tanh,
       hostTanh,
       mostOfTanh,
       [](Random& r) { return Between(r, -1.0, 1.0); },
       {}},
      {By::Repetition,
       "tanh(x), x small",
       tanh,
       hostTanh,
       mostOfTanh,
       [](Random& r) { return Scaled(r, -1000, 1); },
       {}},
      {By::Repetition,
       "log(1 + x)",
       log1p,
       hostLog1p,
       mostOfLog1p,
       [](Random& r) { return Between(r, 0.0, 30.0); },
       {0.0, kTiniest, 0x1p-54, 0x1p-29, 0.41421356237309503, 1.0, 0x1p52, 0x1p53}},
      {By::Repetition,
       "log(1 + x), all x",
       log1p,
       hostLog1p,
       mostOfLog1p,
       [](Random& r) { return Scaled(r, -60, 52); },
       {}},
      {By::RoundingTest,
       "x^4",
       [](Vector x) { return Power4(x); },
       [](double x) { return std::pow(x, 4.0); },
       0.04,
       [](Random& r) { return Between(r, 0.0, 1.0); },
       {0.0, 1e-4, 1e4}},
  };
  for (const double exponent : {0.05, 0.35, 0.75, 1.0}) {
    cases.push_back({By::RoundingTest,
                     "x^a",
                     [=](Vector x) { return Power(x, exponent); },
                     [=](double x) { return std::pow(x, exponent); },
                     0.08,
                     [](Random& r) { return Between(r, 0.0, 30.0); },
                     {0.0, kTiniest, 1.0, 1e-9, 8.886e6}});
  }
  return cases;
}

bool AreAllExact(long count) {
  bool areExact = true;
  for (const Case& tested : Cases()) areExact = IsExact(tested, count) && areExact;
  return areExact;
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::simd
