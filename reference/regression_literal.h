#pragma once

#include <memory>
#include <vector>

#include "pxrom/regression.h"

// A regression surface, step by step and without any of the library's shortcuts. The fast paths are
// compared with it and must equal it to the last bit. It has its own terms and transformers.
namespace literal {

/// One term, evaluated through the virtual table.
class Term {
 public:
  Term() = default;
  Term(const Term&) = delete;
  Term& operator=(const Term&) = delete;
  virtual ~Term() = default;
  virtual int EvaluateValue(const int& numInputVars, const double* x, double* value) = 0;
  virtual int EvaluateDesignRow(const int& numInputVars, const double* x, double* row) = 0;
  virtual int EvaluateDerivativeWrtInputVariables(const int& numInputVars, const double* x,
                                                  double* gradient) = 0;

  int* inputVariablesIndex = nullptr;
  double* coefficientValue = nullptr;
  int isActive = 1;
  int isCoefficientSet = 0;
  int isInputVariablesIndexSet = 0;
};

/// The copy of a record that the literal steps work on.
struct Surface {
  explicit Surface(const Tarvane::Plexura::PXROM::CQRSData& source);
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;
  ~Surface();

  Tarvane::Plexura::PXROM::CQRSData record;
  int termCount = 0;
  Term** terms = nullptr;
};

int EvaluateRegression(const Surface& surface, const std::vector<double>& x, double& y);
int EvaluateRegression(const Surface& surface, const std::vector<double>& x, double& y,
                       double& predictorError);
int EvaluateRegressionDerivative(const Surface& surface, const std::vector<double>& x,
                                 std::vector<double>& gradient);

/// A transformation and its way back, for a type from 0 to 9. 1 where it refuses `x`.
int TransformForward(int type, double value, double lambda, double& x);
int TransformBack(int type, double value, double lambda, double& x);

}  // namespace literal
