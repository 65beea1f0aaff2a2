#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

namespace Tarvane::Plexura::PXROM {

/// A square matrix in one array, by rows.
class FlatMatrix {
 public:
  FlatMatrix(double* values, std::size_t side) : values_(values), side_(side) {}
  double* operator[](std::size_t row) const { return values_ + row * side_; }

 private:
  double* values_;
  std::size_t side_;
};

/// Whether A[i][j] equals A[j][i] for all elements of an m by m matrix. A NaN equals nothing, so
/// one off the diagonal makes this false.
template <class Matrix>
bool IsExactlySymmetric(const Matrix& A, std::size_t m) {
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (A[i][j] != A[j][i]) return false;
    }
  }
  return true;
}

// Each sum below starts at zero and is subtracted as a whole.

/// Cholesky's factorisation A = L L' of a symmetric m by m matrix, row by row in place, zeros above
/// the diagonal. False when A is not positive definite.
template <class Matrix>
bool FactorCholesky(Matrix& A, std::size_t m) {
  for (std::size_t i = 0; i < m; ++i) {
    auto&& rowI = A[i];
    for (std::size_t j = 0; j <= i; ++j) {
      auto&& rowJ = A[j];
      const double element = rowI[j];
      rowJ[i] = 0.0;
      double sum = 0.0;
      for (std::size_t k = 0; k < j; ++k) sum += rowJ[k] * rowI[k];
      const double s = element - sum;
      if (j < i) {
        rowI[j] = s / rowJ[j];
        continue;
      }
      if (s < 0.0) return false;
      // The tolerance applies to the root, not to the radicand. A NaN passes both tests.
      const double root = std::sqrt(s);
      if (std::fabs(root) < std::numeric_limits<double>::epsilon()) return false;
      rowI[i] = root;
    }
  }
  return true;
}

/// Solves L L' x = b with the factor of FactorCholesky; `b` and `x` may be the same m values.
template <class Matrix>
void SolveCholesky(const Matrix& L, std::size_t m, const double* b, double* x) {
  for (std::size_t i = 0; i < m; ++i) {
    double sum = 0.0;
    for (std::size_t k = 0; k < i; ++k) sum += L[i][k] * x[k];
    x[i] = (b[i] - sum) / L[i][i];
  }
  for (std::size_t i = m; i-- > 0;) {
    double sum = 0.0;
    for (std::size_t k = i + 1; k < m; ++k) sum += L[k][i] * x[k];
    x[i] = (x[i] - sum) / L[i][i];
  }
}

}  // namespace Tarvane::Plexura::PXROM
