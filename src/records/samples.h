#pragma once

#include <cstddef>
#include <vector>

#include "pxrom/rs_data.h"

namespace Tarvane::Plexura::PXROM {

/// Samples as a record holds them: one row per sample.
using SampleRows = std::vector<std::vector<double>>;

/// Whether `data` is stopped at this moment. Another thread may stop it during an evaluation, so
/// the flag is read again each time. The host has to synchronise the threads.
inline bool IsStoppedNow(const CRSData& data) {
  return const_cast<const volatile bool&>(data.Stopped);
}

/// Whether the count field of a record is neither negative nor above `size`.
inline bool IsCovered(int count, std::size_t size) {
  return count >= 0 && static_cast<std::size_t>(count) <= size;
}

/// Whether each of the first `count` rows, which must exist, has `d` values.
inline bool HaveWidth(const SampleRows& rows, std::size_t count, std::size_t d) {
  for (std::size_t j = 0; j < count; ++j) {
    if (rows[j].size() != d) return false;
  }
  return true;
}

/// The squared Euclidean distance between the first `d` values of `a` and `b`.
inline double SquaredDistance(const std::vector<double>& a, const std::vector<double>& b,
                              std::size_t d) {
  double sum = 0.0;
  for (std::size_t v = 0; v < d; ++v) {
    const double difference = a[v] - b[v];
    sum += difference * difference;
  }
  return sum;
}

/// sums[j] = the sum of term(v, rows[j][v]) over v ascending below `d`, for the first `count` rows.
/// Four rows are summed together: the additions of one sum have to wait for each other, those of
/// different sums do not. Each sum keeps its own order and so its bits.
template <class Term>
void SumOverEachRow(const SampleRows& rows, std::size_t count, std::size_t d, const Term& term,
                    double* sums) {
  std::size_t j = 0;
  for (; j + 4 <= count; j += 4) {
    const double* const row0 = rows[j].data();
    const double* const row1 = rows[j + 1].data();
    const double* const row2 = rows[j + 2].data();
    const double* const row3 = rows[j + 3].data();
    double sum0 = 0.0;
    double sum1 = 0.0;
    double sum2 = 0.0;
    double sum3 = 0.0;
    for (std::size_t v = 0; v < d; ++v) {
      sum0 += term(v, row0[v]);
      sum1 += term(v, row1[v]);
      sum2 += term(v, row2[v]);
      sum3 += term(v, row3[v]);
    }
    sums[j] = sum0;
    sums[j + 1] = sum1;
    sums[j + 2] = sum2;
    sums[j + 3] = sum3;
  }
  for (; j < count; ++j) {
    double sum = 0.0;
    for (std::size_t v = 0; v < d; ++v) sum += term(v, rows[j][v]);
    sums[j] = sum;
  }
}

/// SquaredDistance between `x` and each of the first `count` rows, which must have `d` values.
inline void SquaredDistances(const SampleRows& rows, std::size_t count, std::size_t d,
                             const std::vector<double>& x, double* squares) {
  const double* const point = x.data();
  SumOverEachRow(
      rows, count, d,
      [point](std::size_t v, double value) {
        const double difference = point[v] - value;
        return difference * difference;
      },
      squares);
}

}  // namespace Tarvane::Plexura::PXROM
