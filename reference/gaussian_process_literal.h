#pragma once

#include <vector>

#include "pxrom/gaussian_process.h"

// Gaussian processes as their formulas are written, one after the other and without any of the
// library's shortcuts: what the fast paths must equal to the last bit.
namespace literal {

using Tarvane::Plexura::PXROM::CGaussianProcessData;

int EvaluateGaussianProcess(const CGaussianProcessData& record, const std::vector<double>& x,
                            double& y);

/// -2 without samples or without the flag; the data of the error must be there.
int EvaluateGaussianProcess(const CGaussianProcessData& record, const std::vector<double>& x,
                            double& y, double& predictorError);

}  // namespace literal
