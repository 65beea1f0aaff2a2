#pragma once

#include <vector>

#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/support_vector.h"

// Support vector, moving least squares and linear basis surfaces, step by step and without any of
// the library's shortcuts. The fast paths are compared with them and must equal them to the last
// bit. The records have to be sound.
namespace literal {

using Tarvane::Plexura::PXROM::CLBFData;
using Tarvane::Plexura::PXROM::CMLSData;
using Tarvane::Plexura::PXROM::CSVRData;

int EvaluateSupportVector(const CSVRData& record, const std::vector<double>& x, double& y);
int EvaluateMovingLeastSquares(const CMLSData& record, const std::vector<double>& x, double& y);
int EvaluateLinearBasis(const CLBFData& record, const std::vector<double>& x, double& y);

}  // namespace literal
