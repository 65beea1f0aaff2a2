#pragma once

#include <cstddef>
#include <vector>

#include "families/moving_least_squares/cholesky.h"
#include "pxrom/moving_least_squares.h"

namespace Tarvane::Plexura::PXROM {

// What the value of a moving least squares surface and its derivative have in common.

/// The distances of the first `count` samples, which must exist, to `x`, as
/// ComputeEuclideanDistance gives them: 0.0 for a sample of another length.
std::vector<double> DistancesTo(const CMLSData& data, const std::vector<double>& x,
                                std::size_t count);

/// The distance that the weights refer to: element `functions` in ascending order, NaN last, or the
/// largest one.
double ReferenceDistance(const std::vector<double>& distances, std::size_t functions);

/// The normal equations A c = b of the weighted problem: A = B'WB, b = B'Wy, with the basis
/// functions of sample j in row j of B, and a ridge on the diagonal of A.
struct NormalEquations {
  explicit NormalEquations(std::size_t p) : side(p), matrix(p * p), b(p) {}

  FlatMatrix A() { return {matrix.data(), side}; }

  std::size_t side;
  std::vector<double> matrix;
  std::vector<double> b;
};

/// The equations of the first weights.size() samples, which must have what a basis of `p` functions
/// reads.
NormalEquations NormalEquationsOf(const CMLSData& data, const std::vector<double>& weights,
                                  std::size_t p);

}  // namespace Tarvane::Plexura::PXROM
