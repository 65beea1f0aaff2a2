#pragma once

#include <vector>

#include "pxrom/polynomial.h"

// A polynomial surface as its formula says it: each product computes its polynomials anew, from the
// recurrence of its basis, and nothing is kept for the next one.
namespace literal {

using Tarvane::Plexura::PXROM::CPolynomialData;

int EvaluatePolynomial(const CPolynomialData& record, const std::vector<double>& x, double& y);
int EvaluatePolynomial(const CPolynomialData& record, const std::vector<double>& x, double& y,
                       double& predictorError);

}  // namespace literal
