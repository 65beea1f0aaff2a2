#include "pxrom/ranking.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>

namespace Tarvane::Plexura::PXROM {

namespace {

// Shorter partitions are sorted by insertion; more pending partitions than this are refused.
constexpr int kInsertionLength = 7;
constexpr int kStackLimit = 500;
constexpr double kTieEpsilon = 1e-10;

// Sorts index[1..n] by value[index], both 1-based, by median-of-three quicksort with an explicit
// stack: Sedgewick, Implementing quicksort programs, Communications of the ACM 21 (1978). False
// when the stack is full. The scans stop at the ends of the partition, where the median of three
// leaves sentinels. NaN values can defeat the sentinels, so the ends are tested too.
bool SortIndices(int n, const std::vector<double>& value, std::vector<int>& index) {
  std::vector<int> stack(kStackLimit + 1);
  int pending = 0;
  int l = 1;
  int r = n;
  const auto at = [](int i) { return static_cast<std::size_t>(i); };
  const auto valueAt = [&](int i) { return value[at(index[at(i)])]; };
  const auto swapAt = [&](int i, int j) { std::swap(index[at(i)], index[at(j)]); };
  const auto order = [&](int i, int j) {
    if (valueAt(i) > valueAt(j)) swapAt(i, j);
  };
  for (;;) {
    if (r - l < kInsertionLength) {
      for (int j = l + 1; j <= r; ++j) {
        const int moved = index[at(j)];
        int i = j - 1;
        while (i >= l && value[at(index[at(i)])] > value[at(moved)]) {
          index[at(i + 1)] = index[at(i)];
          --i;
        }
        index[at(i + 1)] = moved;
      }
      if (pending == 0) return true;
      r = stack[at(pending--)];
      l = stack[at(pending--)];
      continue;
    }
    swapAt(l + (r - l) / 2, l + 1);
    order(l, r);
    order(l + 1, r);
    order(l, l + 1);
    const int pivotIndex = index[at(l + 1)];
    const double pivot = value[at(pivotIndex)];
    int i = l + 1;
    int j = r;
    for (;;) {
      do ++i;
      while (i < r && valueAt(i) < pivot);
      do --j;
      while (j > l && valueAt(j) > pivot);
      if (j < i) break;
      swapAt(i, j);
    }
    index[at(l + 1)] = index[at(j)];
    index[at(j)] = pivotIndex;
    pending += 2;
    if (pending > kStackLimit) return false;
    // The larger part is pushed, so that the stack stays short.
    if (r - i + 1 < j - l) {
      stack[at(pending)] = j - 1;
      stack[at(pending - 1)] = l;
      l = i;
    } else {
      stack[at(pending)] = r;
      stack[at(pending - 1)] = i;
      r = j - 1;
    }
  }
}

}  // namespace

int QuickRank(const int& n, const double* values, const int& checkTies, double* ranks) try {
  if (n < 0) return 1;
  const auto count = static_cast<std::size_t>(n);
  std::vector<double> value(count + 1);
  std::vector<int> index(count + 1);
  for (std::size_t k = 1; k <= count; ++k) {
    value[k] = values[k - 1];
    index[k] = static_cast<int>(k);
  }
  if (!SortIndices(n, value, index)) return 1;
  const auto sorted = [&](std::size_t place) {
    return value[static_cast<std::size_t>(index[place])];
  };
  const auto rank = [&](std::size_t place) {
    ranks[index[place] - 1] = static_cast<double>(place);
  };
  for (std::size_t place = 1; place <= count; ++place) {
    const std::size_t first = place;
    rank(place);
    // Deliberate (rank-ties-differ): equal values get consecutive ranks, not a shared one, so
    // `checkTies` never changes a rank.
    while (checkTies != 0 && place < count &&
           approximatelyEqual(sorted(place + 1), sorted(first), kTieEpsilon)) {
      rank(++place);
    }
  }
  return 0;
} catch (const std::bad_alloc&) {
  return 1;
}

int QuickRank(const std::vector<double>& values, const int& checkTies, std::vector<double>& ranks) {
  std::vector<double> result(values.size());
  QuickRank(static_cast<int>(values.size()), values.data(), checkTies, result.data());
  ranks = std::move(result);
  return 0;
}

int QuickSort(const int& n, const double* values, double* sorted) try {
  std::vector<double> ranks(n > 0 ? static_cast<std::size_t>(n) : 0);
  if (QuickRank(n, values, 0, ranks.data()) != 0) return 1;
  for (std::size_t i = 0; i < ranks.size(); ++i) {
    sorted[static_cast<std::size_t>(ranks[i]) - 1] = values[i];
  }
  return 0;
} catch (const std::bad_alloc&) {
  return 1;
}

bool approximatelyEqual(double a, double b, double epsilon) {
  const double distance = std::fabs(a - b);
  if (distance < std::numeric_limits<double>::epsilon()) return true;
  return distance <= epsilon * std::max(std::fabs(a), std::fabs(b));
}

}  // namespace Tarvane::Plexura::PXROM
