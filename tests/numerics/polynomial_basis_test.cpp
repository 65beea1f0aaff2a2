#include "numerics/polynomial_basis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(PolynomialBasis, ComesInOrderAndAsCounted) {
  const std::vector<double> x = {2.0, 3.0, 5.0};
  const std::vector<std::vector<double>> want = {
      {}, {1}, {1, 2, 3, 5}, {1, 2, 3, 5, 4, 9, 25}, {1, 2, 3, 5, 4, 6, 10, 9, 15, 25}};
  for (std::size_t type = 0; type < want.size(); ++type) {
    std::vector<double> out(want[type].size());
    EvaluatePolynomialBasis(E_PolynomialType(type), x.data(), x.size(), out.data());
    EXPECT_EQ(out, want[type]) << type;
    EXPECT_EQ(PolynomialCount(E_PolynomialType(type), 3), std::int64_t(out.size()));
    for (std::size_t count = 0; count <= out.size() + 1; ++count) {
      std::vector<double> front(out.size() + 1, -1.0);
      EvaluateLeadingPolynomialBasis(E_PolynomialType(type), x.data(), x.size(), count,
                                     front.data());
      for (std::size_t i = 0; i < front.size(); ++i) {
        EXPECT_EQ(front[i], i < std::min(count, out.size()) ? out[i] : -1.0);
      }
    }
  }
  EXPECT_EQ(PolynomialCount(PolyFullQuadratic, 2147483647), 2305843010287435776);
  EXPECT_EQ(PolynomialCount(E_PolynomialType(5), 3), -1);
  EXPECT_EQ(PolynomialCount(E_PolynomialType(-1), 3), -1);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
