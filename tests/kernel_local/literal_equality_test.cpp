// The evaluators take shortcuts; the literal programs take none. Both have to agree to the last
// bit, for all types and for numbers of samples that leave every rest in groups of four.

#include <algorithm>
#include <random>

#include "kernel_local/test_records.h"
#include "literal/kernel_local_literal.h"

namespace Tarvane::Plexura::PXROM {
namespace {

constexpr int kRounds = 3000;

class LiteralEquality : public testing::Test {
 protected:
  int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  Vector Doubles(int count, double low, double high) {
    Vector values(static_cast<std::size_t>(count));
    for (double& value : values) value = std::uniform_real_distribution<double>(low, high)(random_);
    return values;
  }

  // Now and then with a scaling that does not fit, or a sample that is not a number.
  void Fill(CRSData& record, int n, int d) {
    record.NumberOfSamples = n;
    record.NumberOfInputVariables = d;
    for (int s = 0; s < n; ++s) record.InputSamples.push_back(Doubles(d, -2, 2));
    record.OutputSamples = Doubles(n, -5, 5);
    record.InputScaleSlopes = Doubles(Int(0, 9) == 0 ? d + 1 : d, 0.2, 2);
    record.InputScaleIntercepts = Doubles(d, -1, 1);
    record.OutputScaleSlope = Doubles(1, -3, 3)[0];
    record.OutputScaleIntercept = Doubles(1, -3, 3)[0];
    record.ReadyForEvaluation = true;
    if (Int(0, 19) == 0) record.InputSamples.back().back() = std::nan("");
  }

  // At a point that lies on a sample now and then.
  template <class Record>
  void ExpectSame(const CRSEvaluator& evaluator, const Record& record,
                  int (*literal)(const Record&, const Vector&, double&)) {
    const Vector x =
        Int(0, 4) == 0 ? record.InputSamples[0] : Doubles(record.NumberOfInputVariables, -2, 2);
    double fast = kUntouched;
    double slow = kUntouched;
    EXPECT_EQ(evaluator.EvaluateResponseSurface(&record, x, fast), literal(record, x, slow));
    EXPECT_TRUE(SameBits(fast, slow)) << fast << " " << slow;
  }

 private:
  std::mt19937 random_{99U};
};

TEST_F(LiteralEquality, SupportVector) {
  for (int round = 0; round < kRounds; ++round) {
    const int n = Int(1, 20);
    CSVRData record;
    Fill(record, n, Int(1, 5));
    Take(Int(0, 10), record.SVRKernType);
    Take(Int(1, 5), record.SVRLossFuncType);
    record.Alphas = Doubles(n, 0, 3);
    record.AlphasStar = Doubles(Int(0, n), 0, 3);
    record.Betas = Doubles(Int(0, n), -3, 3);
    record.ConstantCoefficient = Doubles(1, -1, 1)[0];
    record.KernelArray = Doubles(record.NumberOfInputVariables, 0.01, 1);
    ExpectSame(CSVREvaluator(), record, &literal::EvaluateSupportVector);
  }
}

TEST_F(LiteralEquality, MovingLeastSquares) {
  for (int round = 0; round < kRounds; ++round) {
    const int d = Int(1, 4);
    const int type = Int(0, 4);
    const int counts[] = {0, 1, d + 1, 2 * d + 1, (d + 1) * (d + 2) / 2};
    const int p = counts[type];
    const int n = std::max(1, p + Int(-1, 12));
    CMLSData record;
    Fill(record, n, d);
    Take(Int(0, 1) == 0 ? 162 : 170, record.MLSDataVersion_);
    Take(Int(0, 5), record.WeightFunction);
    Take(type, record.PolynomialType);
    record.NumberOfBasisFunctions = p + (Int(0, 19) == 0 ? 1 : 0);
    record.NumberOfUsedPoints = Int(std::min(n, std::max(1, p - 1)), n);
    ExpectSame(CMLSEvaluator(), record, &literal::EvaluateMovingLeastSquares);
  }
}

TEST_F(LiteralEquality, LinearBasis) {
  for (int round = 0; round < kRounds; ++round) {
    const int n = Int(1, 20);
    CLBFData record;
    Fill(record, n, Int(1, 5));
    Take(Int(0, 6), record.BasisFunctionType);
    Take(Int(0, 5), record.PolynomialType);
    record.KernelValues = Doubles(n, 0.1, 3);
    const int most = record.PolynomialType < PolyLinear ? 1 : record.NumberOfInputVariables + 1;
    record.PolynomialCoefficients = Doubles(Int(0, most), -3, 3);
    record.KernelCoefficients = Doubles(Int(0, n), -3, 3);
    ExpectSame(CLBFEvaluator(), record, &literal::EvaluateLinearBasis);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
