#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace peers {

/// A Gaussian process without a trend, of amplitude 1 and with one length, to be fitted to samples,
/// and the points where its values and standard deviations are asked for. Matrices are row by row.
struct Process {
  std::size_t inputs = 0;
  double length = 1.0;
  double noise = 0.0;  ///< the variance of a measurement
  std::vector<double> samples;
  std::vector<double> outputs;
  std::vector<double> points;

  std::size_t Samples() const { return outputs.size(); }
  std::size_t Points() const { return points.size() / inputs; }
};

/// The process in another program, on one thread.
class ErrorPeer {
 public:
  ErrorPeer() = default;
  ErrorPeer(const ErrorPeer&) = delete;
  ErrorPeer& operator=(const ErrorPeer&) = delete;
  virtual ~ErrorPeer() = default;

  virtual const char* Name() const = 0;
  /// At all points, in one call.
  virtual void Predict(std::vector<double>& values, std::vector<double>& errors) = 0;
};

// Each is null when the program is not installed.
std::unique_ptr<ErrorPeer> OpenTurnsErrors(const Process& process);
/// In a process of its own; numbers go through a pipe, which takes some microseconds.
std::unique_ptr<ErrorPeer> ScikitLearn(const Process& process);

/// What LAPACK makes of a process: the weights of its value, and the inverse of the Cholesky factor
/// of the samples' covariances, a lower triangle with zeros above, row by row.
struct FittedProcess {
  std::vector<double> weights;
  std::vector<double> inverseFactor;
};

bool HasOpenBlas();
FittedProcess Fit(const Process& process);
/// The product of a lower triangle of so many rows with as many columns as `product` has (dtrmm);
/// `product` is the right side before and the result after.
void MultiplyTriangle(const std::vector<double>& triangle, std::size_t rows,
                      std::vector<double>& product);

}  // namespace peers
