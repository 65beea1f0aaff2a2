#pragma once

#include <vector>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

// Ranking and comparison of numbers, for hosts. The functions keep no state and may run at the same
// time with different outputs.

/// Ranks `n` values ascending: ranks[i] is the place of values[i], a whole number from 1 to `n`.
/// Equal values get different, consecutive ranks, whatever `checkTies` is; there are no average
/// ranks. The ranks of NaN values are unspecified. `values` and `ranks` must hold `n`
/// values. 0; 1 for a negative `n` or when memory runs out, with `ranks` untouched.
PXROM_API int QuickRank(const int& n, const double* values, const int& checkTies, double* ranks);
/// The same for vectors; `ranks` is replaced. Always 0.
PXROM_API int QuickRank(const std::vector<double>& values, const int& checkTies,
                        std::vector<double>& ranks);
/// Sorts `n` values ascending into `sorted`, which must be another array. Statuses are those of
/// QuickRank.
PXROM_API int QuickSort(const int& n, const double* values, double* sorted);

/// Whether |a - b| is below the machine epsilon or at most `epsilon` times the larger of |a| and
/// |b|.
///
/// Deliberate (absolute-epsilon): the first test does not depend on `epsilon` or on the size of the
/// numbers. Use this for numbers around 1.
PXROM_API bool approximatelyEqual(double a, double b, double epsilon);

}  // namespace Tarvane::Plexura::PXROM
