#include "peers/error_peer.h"

#ifdef PXROM_WITH_OPENBLAS

#include <cblas.h>
#include <f77blas.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace peers {

namespace {

void Expect0(int info, const char* what) {
  if (info == 0) return;
  std::fprintf(stderr, "%s gives %d\n", what, info);
  std::exit(1);
}

}  // namespace

bool HasOpenBlas() { return true; }

FittedProcess Fit(const Process& process) {
  const std::size_t n = process.Samples();
  FittedProcess fitted;
  fitted.inverseFactor.assign(n * n, 0.0);
  for (std::size_t r = 0; r < n; ++r) {
    for (std::size_t c = 0; c <= r; ++c) {
      double squares = 0.0;
      for (std::size_t i = 0; i < process.inputs; ++i) {
        const double difference =
            process.samples[r * process.inputs + i] - process.samples[c * process.inputs + i];
        squares += difference * difference;
      }
      fitted.inverseFactor[r * n + c] = std::exp(-0.5 * squares / process.length / process.length);
    }
    fitted.inverseFactor[r * n + r] += process.noise;
  }
  // LAPACK has columns where we have rows, so a lower triangle is an upper one.
  char upper = 'U';
  char diagonal = 'N';
  auto order = static_cast<blasint>(n);
  blasint info = 0;
  double* const factor = fitted.inverseFactor.data();
  dpotrf_(&upper, &order, factor, &order, &info);
  Expect0(info, "dpotrf");
  fitted.weights = process.outputs;
  for (const CBLAS_TRANSPOSE side : {CblasNoTrans, CblasTrans}) {
    cblas_dtrsv(CblasRowMajor, CblasLower, side, CblasNonUnit, order, factor, order,
                fitted.weights.data(), 1);
  }
  dtrtri_(&upper, &diagonal, &order, factor, &order, &info);
  Expect0(info, "dtrtri");
  return fitted;
}

void MultiplyTriangle(const std::vector<double>& triangle, std::size_t rows,
                      std::vector<double>& product) {
  const auto n = static_cast<blasint>(rows);
  const auto columns = static_cast<blasint>(product.size() / rows);
  cblas_dtrmm(CblasRowMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, n, columns, 1.0,
              triangle.data(), n, product.data(), columns);
}

}  // namespace peers

#else

bool peers::HasOpenBlas() { return false; }

peers::FittedProcess peers::Fit(const Process&) { return {}; }

void peers::MultiplyTriangle(const std::vector<double>&, std::size_t, std::vector<double>&) {}

#endif
