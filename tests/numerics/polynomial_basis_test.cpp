#include "numerics/polynomial_basis.h"

#include <gtest/gtest.h>

#include <vector>

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(PolynomialBasis, ComesInOrderAndAsCounted) {
  const std::vector<double> x = {2.0, 3.0, 5.0};
  const std::vector<std::vector<double>> want = {
      {}, {1}, {1, 2, 3, 5}, {1, 2, 3, 5, 4, 9, 25}, {1, 2, 3, 5, 4, 6, 10, 9, 15, 25}};
  for (int type = PolyNone; type <= PolyFullQuadratic; ++type) {
    const std::vector<double>& functions = want[static_cast<std::size_t>(type)];
    std::vector<double> out(functions.size() + 1, -7.0);
    EvaluatePolynomialBasis(static_cast<E_PolynomialType>(type), x.data(), x.size(), out.data());
    EXPECT_EQ(PolynomialCount(static_cast<E_PolynomialType>(type), 3),
              static_cast<std::int64_t>(functions.size()));
    EXPECT_EQ(out.back(), -7.0) << "wrote behind its end, type " << type;
    out.pop_back();
    EXPECT_EQ(out, functions) << type;
  }
}

TEST(PolynomialBasis, CountsBeyond32BitsAndRefusesTheUnknown) {
  EXPECT_EQ(PolynomialCount(PolyFullQuadratic, 2147483647), 2305843010287435776);
  EXPECT_EQ(PolynomialCount(PolyFullQuadratic, 0), 1);
  for (const int type : {-1, 5}) {
    EXPECT_EQ(PolynomialCount(static_cast<E_PolynomialType>(type), 3), -1);
  }
  EXPECT_EQ(PolynomialCount(PolyLinear, -1), -1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
