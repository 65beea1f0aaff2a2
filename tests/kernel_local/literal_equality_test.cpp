// The evaluators take shortcuts; the literal programs take none. Both have to agree to the last
// bit, for all types and for numbers of samples that leave every rest in groups of four.

#include <random>

#include "kernel_local/test_records.h"
#include "literal/kernel_local_literal.h"

namespace Tarvane::Plexura::PXROM {
namespace {

class RandomRecords {
 public:
  int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  Vector Doubles(int count, double low, double high) {
    Vector values(static_cast<std::size_t>(count));
    for (double& value : values) value = std::uniform_real_distribution<double>(low, high)(random_);
    return values;
  }

  template <class Record>
  Record Base(int n, int d) {
    Record record;
    record.NumberOfSamples = n;
    record.NumberOfInputVariables = d;
    for (int s = 0; s < n; ++s) record.InputSamples.push_back(Doubles(d, -2, 2));
    record.OutputSamples = Doubles(n, -5, 5);
    // Now and then a scaling that does not fit, or a sample that is not a number.
    record.InputScaleSlopes = Doubles(Int(0, 9) == 0 ? d + 1 : d, 0.2, 2);
    record.InputScaleIntercepts = Doubles(d, -1, 1);
    record.OutputScaleSlope = Doubles(1, -3, 3)[0];
    record.OutputScaleIntercept = Doubles(1, -3, 3)[0];
    record.ReadyForEvaluation = true;
    if (Int(0, 19) == 0) record.InputSamples.back().back() = std::nan("");
    return record;
  }

 private:
  std::mt19937 random_{99U};
};

template <class Evaluator, class Record>
void ExpectSame(const Record& record, const Vector& x,
                int (*literal)(const Record&, const Vector&, double&)) {
  double fast = kUntouched;
  double slow = kUntouched;
  EXPECT_EQ(Evaluator().EvaluateResponseSurface(&record, x, fast), literal(record, x, slow));
  EXPECT_TRUE(SameBits(fast, slow)) << fast << " " << slow;
}

constexpr int kRounds = 3000;

TEST(LiteralEquality, SupportVector) {
  RandomRecords random;
  for (int round = 0; round < kRounds; ++round) {
    const int n = random.Int(1, 20);
    const int d = random.Int(1, 5);
    auto record = random.Base<CSVRData>(n, d);
    record.SVRKernType = static_cast<E_SVRKernType>(random.Int(0, 10));
    record.SVRLossFuncType = static_cast<E_SVRLossFuncType>(random.Int(1, 5));
    record.Alphas = random.Doubles(n, 0, 3);
    record.AlphasStar = random.Doubles(random.Int(0, n), 0, 3);
    record.Betas = random.Doubles(random.Int(0, n), -3, 3);
    record.ConstantCoefficient = random.Doubles(1, -1, 1)[0];
    record.KernelArray = random.Doubles(d, 0.01, 1);
    ExpectSame<CSVREvaluator>(record, random.Doubles(d, -2, 2), &literal::EvaluateSupportVector);
  }
}

TEST(LiteralEquality, MovingLeastSquares) {
  RandomRecords random;
  for (int round = 0; round < kRounds; ++round) {
    const int d = random.Int(1, 4);
    const int basis = random.Int(0, 4);
    const int counts[] = {0, 1, d + 1, 2 * d + 1, (d + 1) * (d + 2) / 2};
    const int p = counts[basis];
    const int n = std::max(1, p + random.Int(-1, 12));
    auto record = random.Base<CMLSData>(n, d);
    record.MLSDataVersion_ = random.Int(0, 1) == 0 ? MLSDataVersion162 : MLSDataVersion170;
    record.WeightFunction = static_cast<E_WeightFunction>(random.Int(0, 5));
    record.PolynomialType = static_cast<E_PolynomialType>(basis);
    record.NumberOfBasisFunctions = p + (random.Int(0, 19) == 0 ? 1 : 0);
    record.NumberOfUsedPoints = random.Int(std::min(n, p - 1 > 0 ? p - 1 : 1), n);
    // On a sample now and then.
    const Vector x = random.Int(0, 4) == 0 ? record.InputSamples[0] : random.Doubles(d, -2, 2);
    ExpectSame<CMLSEvaluator>(record, x, &literal::EvaluateMovingLeastSquares);
  }
}

TEST(LiteralEquality, LinearBasis) {
  RandomRecords random;
  for (int round = 0; round < kRounds; ++round) {
    const int n = random.Int(1, 20);
    const int d = random.Int(1, 5);
    auto record = random.Base<CLBFData>(n, d);
    record.BasisFunctionType = static_cast<E_LinearBasisFunction>(random.Int(0, 6));
    record.PolynomialType = static_cast<E_PolynomialType>(random.Int(0, 5));
    record.KernelValues = random.Doubles(n, 0.1, 3);
    record.PolynomialCoefficients = random.Doubles(random.Int(0, 1), -3, 3);
    if (record.PolynomialType >= PolyLinear) {
      record.PolynomialCoefficients = random.Doubles(random.Int(0, d + 1), -3, 3);
    }
    record.KernelCoefficients = random.Doubles(random.Int(0, n), -3, 3);
    const Vector x = random.Int(0, 4) == 0 ? record.InputSamples[0] : random.Doubles(d, -2, 2);
    ExpectSame<CLBFEvaluator>(record, x, &literal::EvaluateLinearBasis);
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
