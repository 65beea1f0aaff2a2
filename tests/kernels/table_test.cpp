// For each row of the table of kernels, and for a kernel outside the library's table: compares the
// derivative in closed form with dual numbers, the loops on vectors with plain ones, and the fast
// form with its bound.

#define PXROM_SIMD PXROM_SIMD_PORTABLE

#include "kernels/table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <locale>
#include <map>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "kernels/kernels.h"
#include "kernels/loops/all_loops.h"
#include "kernels/loops/plain.h"
#include "kernels/loops/rows_of_table.h"
#include "support/model_files.h"
#include "support/source_path.h"

namespace Tarvane::Plexura::PXROM::kernels {
namespace {

/// A number and its derivative by one variable.
struct Dual {
  Dual(double number, double bySlope = 0.0) : value(number), slope(bySlope) {}
  double value;
  double slope;
};

Dual operator+(Dual a, Dual b) { return {a.value + b.value, a.slope + b.slope}; }
Dual operator-(Dual a, Dual b) { return {a.value - b.value, a.slope - b.slope}; }
Dual operator*(Dual a, Dual b) {
  return {a.value * b.value, a.slope * b.value + a.value * b.slope};
}
Dual operator/(Dual a, Dual b) {
  return {a.value / b.value, (a.slope - a.value / b.value * b.slope) / b.value};
}
bool operator<(Dual a, Dual b) { return a.value < b.value; }
bool operator<=(Dual a, Dual b) { return a.value <= b.value; }
Dual Select(bool condition, Dual yes, Dual no) { return condition ? yes : no; }
Dual Abs(Dual a) { return a.value < 0.0 ? 0.0 - a : a; }
Dual Third(Dual a) { return a / 3.0; }
Dual Chain(Dual a, double value, double slope) { return {value, slope * a.slope}; }
Dual Sqrt(Dual a) { return Chain(a, std::sqrt(a.value), 0.5 / std::sqrt(a.value)); }
Dual ExpOfMinus(Dual a) { return Chain(a, std::exp(-a.value), -std::exp(-a.value)); }
Dual Log1p(Dual a, simd::HostForm) { return Chain(a, std::log1p(a.value), 1.0 / (1.0 + a.value)); }
Dual Power(Dual a, double b) {
  return Chain(a, std::pow(a.value, b), b * std::pow(a.value, b - 1.0));
}
Dual Log(Dual a) { return Chain(a, std::log(a.value), 1.0 / a.value); }
Dual Power4(Dual a) { return a * a * a * a; }
Dual Sin(Dual a) { return Chain(a, std::sin(a.value), std::cos(a.value)); }
Dual Tanh(Dual a, simd::HostForm) {
  return Chain(a, std::tanh(a.value), 1.0 - std::tanh(a.value) * std::tanh(a.value));
}
Dual J0(Dual a) { return Chain(a, BesselJ0(a.value), -BesselJ1(a.value)); }

/// Outside the table: the product of (1 - z^2)^3, with all parts that a kernel can have.
struct Triweight : ProductWithin1 {
  static constexpr const char* kName = "triweight";
  static constexpr Operations kOperations = {5.0, 0.0};
  template <class N>
  PXROM_INLINE static N Factor(N distance, N scale) {
    const N rest = 1.0 - scale * distance * (scale * distance);
    return rest * rest * rest;
  }
  static double Slope(double distance, double scale) {
    const double rest = 1.0 - scale * distance * (scale * distance);
    return -6.0 * scale * scale * distance * rest * rest;
  }

  struct Fast : FastProduct {
    static double InputFactor(double scale) { return scale; }
    template <class N>
    PXROM_INLINE static N Step(N product, N x, N y) {
      const N a = x - y;
      const N rest = 1.0 - Smaller(a * a, N(1.0));
      return product * (rest * rest * rest);
    }
    static double Deviation(double d, double norm1, double) { return 12.0 * norm1 + 20.0 * d; }
  };
};

/// Three inputs, some centres near 0, and points in all branches of the kernels.
class AllKernels : public testing::Test {
 protected:
  static constexpr std::size_t kInputs = 3;
  static constexpr std::size_t kCentres = 5;
  static constexpr std::size_t kPoints = kBlock;

  AllKernels() : random_(7), centres_(Draw(kInputs * kCentres, -0.5, 0.5)) {
    scales_ = Draw(kInputs, 0.3, 2.0);
    centreScales_ = Draw(kCentres, 0.4, 1.5);
    weights_ = Draw(kCentres, -2.0, 2.0);
  }

  std::vector<double> Draw(std::size_t count, double low, double high) {
    std::uniform_real_distribution<double> uniform(low, high);
    std::vector<double> values(count);
    for (double& value : values) value = uniform(random_);
    return values;
  }

  WeightedKernels Weighted(const Kernel& kernel) const {
    WeightedKernels call;
    call.kernel = &kernel;
    call.inputs = kInputs;
    call.constants = kernel.constants(kInputs);
    call.constants.parameter = 1.3;
    call.centreCount = kCentres;
    call.centres = centres_.data();
    call.scales = scales_.data();
    if (kernel.shape == Shape::Radial) call.centreScales = centreScales_.data();
    call.weights = weights_.data();
    return call;
  }

  /// The weighted sum at `u`, by the steps of the kernel's class.
  template <class K, class N>
  N SumAt(const WeightedKernels& call, const std::vector<N>& u) const {
    N sum = 0.0;
    for (std::size_t j = 0; j < kCentres; ++j) {
      N state = K::kStart;
      for (std::size_t i = 0; i < kInputs; ++i) {
        const N y = call.centres[j * kInputs + i];
        state = Step<K>(call.constants, state, u[i], y, N(call.scales[i]));
      }
      const N scale = call.centreScales != nullptr ? call.centreScales[j] : 1.0;
      sum = sum + K::Value(call.constants, state, scale) * call.weights[j];
    }
    return sum;
  }

  template <class K>
  void ExpectGradientIsThatOfDualNumbers() {
    const Kernel kernel = KernelOf<K>(0);
    const WeightedKernels call = Weighted(kernel);
    for (int round = 0; round < 50; ++round) {
      const std::vector<double> u = Draw(kInputs, -2.0, 2.0);
      std::vector<double> work(3 * kInputs);
      std::vector<double> gradient(kInputs, 0.0);
      kernel.addGradients(call, u.data(), work.data(), gradient.data());
      for (std::size_t i = 0; i < kInputs; ++i) {
        std::vector<Dual> x(u.begin(), u.end());
        x[i].slope = 1.0;
        const double expected = SumAt<K>(call, x).slope;
        EXPECT_NEAR(gradient[i], expected, 1e-12 * (1.0 + std::fabs(expected))) << K::kName;
      }
    }
  }

  template <class K>
  void ExpectLoopsAreThoseOfPlainNumbers() {
    const Kernel kernel = KernelOf<K>(0);
    const std::vector<double> points = Draw(kInputs * kBlock, -2.0, 2.0);
    const std::vector<double> sums = SumsOf<K>(Weighted(kernel), points, &Sum<K>);
    for (std::size_t point = 0; point < kPoints; ++point) {
      std::vector<double> u;
      for (std::size_t i = 0; i < kInputs; ++i) u.push_back(points[i * kBlock + point]);
      EXPECT_EQ(sums[point], SumAt<K>(Weighted(kernel), u)) << K::kName;
    }
    if constexpr (kHasFast<K>) ExpectFastWithinBound<K>(kernel, points, sums);
  }

  template <class K>
  void ExpectFastWithinBound(const Kernel& kernel, std::vector<double> points,
                             const std::vector<double>& expected) {
    WeightedKernels call = Weighted(kernel);
    std::vector<double> centres = centres_;
    std::vector<double> centreScales = centreScales_;
    double norm1 = 0.0;
    double norm2 = 0.0;
    for (std::size_t j = 0; j < kCentres; ++j) {
      double sum = 0.0;
      double squares = 0.0;
      for (std::size_t i = 0; i < kInputs; ++i) {
        double& value = centres[j * kInputs + i];
        value *= kernel.fast->inputFactor(scales_[i]);
        sum += std::fabs(value);
        squares += value * value;
      }
      norm1 = std::max(norm1, sum);
      norm2 = std::max(norm2, std::sqrt(squares));
      centreScales[j] = kernel.fast->centreFactor(call.constants, centreScales_[j]);
    }
    for (std::size_t at = 0; at < points.size(); ++at) {
      points[at] *= kernel.fast->inputFactor(scales_[at / kBlock]);
    }
    call.centres = centres.data();
    if (call.centreScales != nullptr) call.centreScales = centreScales.data();
    const std::vector<double> sums = SumsOf<K>(call, points, &FastSum<K>);
    double weight = 0.0;
    for (const double w : weights_) weight += std::fabs(w);
    const double bound = (kernel.fast->deviation(kInputs, norm1, norm2) + 2.0 * kCentres) * weight;
    for (std::size_t point = 0; point < kPoints; ++point) {
      EXPECT_NEAR(sums[point], expected[point], bound * 0x1p-53) << K::kName;
    }
  }

  template <class K>
  std::vector<double> SumsOf(const WeightedKernels& weighted, const std::vector<double>& points,
                             void (*loop)(const KernelSum&)) const {
    std::vector<double> sums(kBlock);
    std::vector<double> values(kChunk * kBlock);
    std::vector<double> steps(2 * kInputs * kBlock);
    std::vector<Question> questions((kChunk + kInputs) * kBlock);
    KernelSum call;
    static_cast<WeightedKernels&>(call) = weighted;
    call.x = points.data();
    call.points = kPoints;
    call.sums = sums.data();
    call.values = values.data();
    call.steps = steps.data();
    call.questions = questions.data();
    loop(call);
    return sums;
  }

  template <class... Rows>
  void ExpectAllOf(Table<Rows...>) {
    (ExpectGradientIsThatOfDualNumbers<typename Rows::Type>(), ...);
    (ExpectLoopsAreThoseOfPlainNumbers<typename Rows::Type>(), ...);
  }

 private:
  std::mt19937 random_;
  std::vector<double> centres_;
  std::vector<double> scales_;
  std::vector<double> centreScales_;
  std::vector<double> weights_;
};

TEST_F(AllKernels, FormulaDerivativeLoopsAndFastFormAgree) {
  ExpectAllOf(Kernels());
  ExpectAllOf(Table<Row<Triweight>>());
}

/// What the tests above only bound: the estimated operations, the slopes at a centre, at the end of
/// a kernel of a scale of 0.5 and after it, and what is promised of a fast form for three inputs.
template <class K>
std::string LineOf() {
  const Kernel kernel = KernelOf<K>(0);
  const double centre = 0.25;
  const double scale = 0.5;
  const double weight = 1.0;
  WeightedKernels call;
  call.kernel = &kernel;
  call.inputs = 1;
  call.constants = kernel.constants(1);
  call.centreCount = 1;
  call.centres = &centre;
  call.scales = &scale;
  if (kernel.shape == Shape::Radial) call.centreScales = &scale;
  call.weights = &weight;
  std::ostringstream line;
  line.imbue(std::locale::classic());
  line << kernel.name << ": " << kernel.operations.perInput << ' ' << kernel.operations.once << ',';
  for (const double u : {0.25, 0.75, 2.25, 3.25}) {
    double work[3] = {};
    double slope = 0.0;
    kernel.addGradients(call, &u, work, &slope);
    line << ' ' << slope;
  }
  if (kernel.fast != nullptr) {
    line << ", " << std::min<std::size_t>(kernel.fast->mostInputs, 9999) << ' '
         << kernel.fast->deviation(3.0, 0.7, 1.3);
  }
  return line.str() + '\n';
}

template <class... Rows>
std::string LinesOf(Table<Rows...>) {
  return (LineOf<typename Rows::Type>() + ...);
}

TEST(KernelTable, SlopesAtEndsAndBoundsAreThoseOfTheFile) {
  EXPECT_EQ(LinesOf(Kernels()), ContentOf(SourcePath("tests/data/numerics/kernels.txt")));
}

/// The numbers of the enum values in a public header whose names begin with `prefix`.
std::map<std::string, int> PublicNumbers(const std::string& header, const std::string& prefix) {
  std::ifstream file(SourcePath("include/pxrom/" + header));
  const std::regex value("^  (" + prefix + "\\w+) = (\\d+),.*");
  std::map<std::string, int> numbers;
  std::smatch match;
  for (std::string line; std::getline(file, line);) {
    if (std::regex_match(line, match, value)) numbers[match[1]] = std::stoi(match[2]);
  }
  return numbers;
}

template <class Number, class Table>
void ExpectOneRowEach(const std::map<std::string, int>& numbers, Table) {
  EXPECT_FALSE(numbers.empty());
  std::map<std::size_t, std::string> names;
  for (const auto& [name, number] : numbers) {
    const std::size_t row = Table::Find(static_cast<Number>(number));
    EXPECT_LT(row, Table::kCount) << name << " has no row in src/kernels/table.h";
    EXPECT_EQ(names.count(row), 0) << name << " has the row of " << names[row];
    names[row] = name;
  }
}

TEST(KernelTable, EachPublicNumberHasARowOfItsOwn) {
  std::map<std::string, int> correlations = PublicNumbers("kriging.h", "Corr");
  EXPECT_EQ(correlations.erase("CorrNone"), 1);
  ExpectOneRowEach<E_KringingCorrelationFunctionType>(correlations, Kernels());
  ExpectOneRowEach<E_SVRKernType>(PublicNumbers("support_vector.h", "SVRKern(?!CompType)"),
                                  Kernels());
  ExpectOneRowEach<E_LinearBasisFunction>(PublicNumbers("linear_basis.h", "LBF(?!Data)"),
                                          Kernels());
  ExpectOneRowEach<E_CovarianceFunctionType>(PublicNumbers("gaussian_process.h", "Cov"), Kernels());
  ExpectOneRowEach<E_WeightFunction>(PublicNumbers("moving_least_squares.h", "Weight"), Weights());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::kernels
