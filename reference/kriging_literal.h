#pragma once

#include <random>
#include <vector>

#include "pxrom/kriging.h"

// Kriging, step by step and without any of the library's shortcuts. The fast paths are compared
// with it and must equal it to the last bit.
namespace literal {

using Tarvane::Plexura::PXROM::CKrigingData;

int EvaluateCorrelationFunction(const CKrigingData& record, const std::vector<double>& x,
                                const std::vector<double>& y, double& r);

int EvaluateKriging(const CKrigingData& record, const std::vector<double>& x, double& y);

/// Leaves InputSamples as CKrigingEvaluator does.
int EvaluateKriging(CKrigingData& record, const std::vector<double>& x, double& y,
                    double& predictorError);

int EvalErrorPredictions(const CKrigingData& record, const std::vector<std::vector<double>>& rows,
                         std::vector<double>& out);

/// A ready record with random content: correlation function `type`, trend of type `trend`, `n`
/// samples that reach beyond every cut-off, `d` inputs, one kernel or one per input, error data.
CKrigingData RandomKriging(std::mt19937& random, int type, int trend, int n, int d, bool oneKernel);

}  // namespace literal
