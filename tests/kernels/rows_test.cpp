// The loops for one point and rows on vectors give the bits of the plain loops, with every
// instruction set of this machine.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "families/kriging/correlation.h"
#include "kernels/loops/loop_table.h"
#include "reference/kriging_literal.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

std::vector<const kernels::LoopTable*> LoopsWithRows() {
  std::vector<const kernels::LoopTable*> all;
  for (const simd::InstructionSet set : simd::kInstructionSets) {
    if (set == simd::InstructionSet::Portable) continue;
    if (kernels::ExactLoops(set) != nullptr) all.push_back(kernels::ExactLoops(set));
  }
  return all;
}

TEST(Rows, CorrelationsAreThoseOfPlainLoops) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::vector<int> correlations = kernels::NumbersOfCorrelations();
  std::mt19937 random(5);
  for (int round = 0; round < 400; ++round) {
    const int type = correlations[static_cast<std::size_t>(round) % correlations.size()];
    const int n = std::uniform_int_distribution<int>(1, 70)(random);
    const int d = std::uniform_int_distribution<int>(1, 7)(random);
    CKrigingData record = literal::RandomKriging(random, type, PolyConstant, n, d, round % 3 == 0);
    std::vector<double> x(static_cast<std::size_t>(d), 0.3);
    const double odd[] = {kInfinity, -kInfinity, std::nan(""), -0.0, 1e300, 1e-300};
    if (round % 4 == 1) x[0] = odd[static_cast<std::size_t>(round) / 4 % std::size(odd)];
    if (round % 4 == 2) record.InputSamples[0][0] = odd[static_cast<std::size_t>(round) / 4 % 6];
    if (round % 5 == 4) record.CorrelationKernels[0] = -0.7;

    const kriging::Correlation correlation(record);
    ASSERT_TRUE(correlation);
    const kriging::ScaledRows rows = {record.InputSamples.data(), static_cast<std::size_t>(n),
                                      record.InputScaleSlopes.data(),
                                      record.InputScaleIntercepts.data()};
    std::vector<double> expected(static_cast<std::size_t>(n));
    const double sum = correlation.OfRows(x.data(), rows, record.CorrelationCoefficients.data(),
                                          expected.data(), nullptr);
    for (const kernels::LoopTable* const loops : LoopsWithRows()) {
      std::vector<double> r(expected.size());
      const double own = correlation.OfRows(x.data(), rows, record.CorrelationCoefficients.data(),
                                            r.data(), loops);
      EXPECT_TRUE(SameBits(own, sum)) << "type " << type << ", round " << round;
      EXPECT_TRUE(SameBits(r, expected)) << "type " << type << ", round " << round;
    }
  }
}

TEST(Rows, ProductsKeepTheOrderOfColumns) {
  std::mt19937 random(6);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (const kernels::LoopTable* const loops : LoopsWithRows()) {
    for (std::size_t columns = 0; columns < 12; ++columns) {
      std::vector<std::vector<double>> matrix(16, std::vector<double>(columns));
      const double* rows[16];
      double sums[16];
      double expected[16];
      std::vector<double> x(columns);
      for (double& value : x) value = uniform(random);
      for (std::size_t k = 0; k < 16; ++k) {
        rows[k] = matrix[k].data();
        sums[k] = expected[k] = uniform(random);
        for (std::size_t j = 0; j < columns; ++j) {
          matrix[k][j] = uniform(random);
          expected[k] += matrix[k][j] * x[j];
        }
      }
      loops->rowProducts(rows, x.data(), columns, sums);
      for (std::size_t k = 0; k < 16; ++k) EXPECT_EQ(sums[k], expected[k]) << columns;
    }
  }
}

TEST(Rows, ZerosAreOnlyWhatAllRowsEndWith) {
  constexpr std::size_t kColumns = 29;
  for (const kernels::LoopTable* const loops : LoopsWithRows()) {
    for (std::size_t last = 0; last < kColumns; ++last) {
      std::vector<std::vector<double>> matrix(16, std::vector<double>(kColumns, -0.0));
      const double* rows[16];
      for (std::size_t k = 0; k < 16; ++k) rows[k] = matrix[k].data();
      EXPECT_LT(loops->lengthBeforeZeros(rows, kColumns), 8);
      matrix[last % 16][last] = last % 2 == 0 ? 1e-320 : std::nan("");
      const std::size_t length = loops->lengthBeforeZeros(rows, kColumns);
      EXPECT_GT(length, last);
      EXPECT_LE(length, last + 8);
    }
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
