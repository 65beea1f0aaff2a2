// Outputs that have samples, kernels and errors in common, and outputs that differ in one of them.

#include <gtest/gtest.h>

#include <algorithm>

#include "batch/batch_cases.h"
#include "pxrom/gaussian_process.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM::tests {
namespace {

constexpr int kInputs = 3;
// More than the blocks of points that errors are computed for at a time.
constexpr std::size_t kRows = 300;

template <class Record>
Record Random(Draw& draw, E_DataType family) {
  return static_cast<const Record&>(*RandomSurface(draw, family, kInputs, 40, true));
}

/// A model with an output for each candidate.
CDiscreteCombinations ModelOfAll(const std::vector<CFittingCandidate>& candidates) {
  CDiscreteCombinations model;
  for (int i = 0; i < kInputs; ++i) {
    model.RegisterParameter("x" + std::to_string(i), CausalityInput, ContinuousNotManufacturable,
                            true);
  }
  std::vector<std::pair<std::string, CFittingCandidates*>> outputs;
  for (const CFittingCandidate& candidate : candidates) {
    const std::string id = "y" + std::to_string(outputs.size());
    model.RegisterParameter(id, CausalityOutput, ContinuousNotManufacturable, true);
    outputs.emplace_back(id, ListOf(candidate));
  }
  EXPECT_EQ(model.RegisterDiscreteCombination({}, outputs), 0);
  return model;
}

template <class Record, class Change>
CFittingCandidate Changed(Record record, const Change& change) {
  change(record);
  return CandidateOf(record);
}

template <class Record>
void ScaleSamples(Record& record) {
  record.InputScaleSlopes[1] *= 1.25;
}

TEST(Sharing, OfKrigingKeepsEachOutput) {
  for (std::uint32_t seed = 1; seed <= 24; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Draw draw(seed);
    const auto record = Random<CKrigingData>(draw, DT_KrigingData);
    const auto with = [&](auto change) { return Changed(record, change); };
    using R = CKrigingData;
    std::vector<CFittingCandidate> candidates = {
        with([](R&) {}),
        with([](R& r) {
          std::reverse(r.CorrelationCoefficients.begin(), r.CorrelationCoefficients.end());
        }),
        with([](R& r) { r.Sigma2 *= 2.0; }),
        with([](R& r) { r.CorrelationKernels[0] *= 1.5; }),
        with([](R& r) { r.InputSamples[3][1] += 0.125; }),
        with([](R& r) { r.PolynomialType = PolyNone; }),
        with([](R& r) {
          if (!r.InvC.empty()) r.InvC[5][2] += 0.25;
        }),
        with([](R& r) { r.SavePredictorError = false; }),
        with(&ScaleSamples<R>),
        with([](R& r) { r.OutputScaleSlope *= -3.0; }),
    };
    candidates.push_back(candidates[0]);
    candidates.back().SetInputScaleSlopes({1.0, 1.0, 0.75});
    candidates.push_back(candidates[0]);
    const auto other = Random<CSVRData>(draw, DT_SVRData);
    candidates.back().AddRSAndWeight(&other, 0.5);
    candidates.back().AddRSAndWeight(&record, 0.25);
    const std::vector<double> points = draw.Reals(static_cast<int>(kRows) * kInputs, 0, 1);
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOfAll(candidates), points, kRows));
  }
}

TEST(Sharing, OfGaussianProcessesKeepsEachOutput) {
  for (std::uint32_t seed = 1; seed <= 24; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Draw draw(seed);
    const auto record = Random<CGaussianProcessData>(draw, DT_GaussianProcessData);
    const auto with = [&](auto change) { return Changed(record, change); };
    using R = CGaussianProcessData;
    const std::vector<CFittingCandidate> candidates = {
        with([](R&) {}),
        with([](R& r) { std::reverse(r.Weights.begin(), r.Weights.end()); }),
        with([](R& r) {
          for (double& c : r.PolynomialCoefficients) c *= 2.0;
        }),
        with([](R& r) {
          for (int& exponent : r.Monomials) exponent = exponent == 1 ? 2 : 1;
        }),
        with([](R& r) {
          if (!r.TermAmplitudes.empty()) r.TermAmplitudes[0] *= 2.0;
        }),
        with([](R& r) {
          if (!r.FactorLengths.empty()) r.FactorLengths[0] *= 1.5;
        }),
        with([](R& r) {
          for (double& parameter : r.FactorParameters) parameter *= 1.5;
        }),
        with([](R& r) { r.InputSamples[3][1] += 0.125; }),
        with([](R& r) {
          if (!r.InverseFactor.empty()) r.InverseFactor[4] += 0.25;
        }),
        with([](R& r) { r.SavePredictorError = false; }),
        with(&ScaleSamples<R>),
    };
    const std::vector<double> points = draw.Reals(static_cast<int>(kRows) * kInputs, 0, 1);
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOfAll(candidates), points, kRows));
  }
}

TEST(Sharing, OfOtherKernelSumsKeepsEachOutput) {
  for (std::uint32_t seed = 1; seed <= 24; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Draw draw(seed);
    const auto vectors = Random<CSVRData>(draw, DT_SVRData);
    const auto basis = Random<CLBFData>(draw, DT_LBFData);
    using S = CSVRData;
    using L = CLBFData;
    const std::vector<CFittingCandidate> candidates = {
        Changed(vectors, [](S&) {}),
        Changed(vectors, [](S& r) { std::swap(r.Alphas, r.AlphasStar); }),
        Changed(vectors, [](S& r) { r.ConstantCoefficient += 1.0; }),
        Changed(vectors, [](S& r) { r.KernelArray[2] *= 1.5; }),
        Changed(vectors, &ScaleSamples<S>),
        Changed(basis, [](L&) {}),
        Changed(
            basis,
            [](L& r) { std::reverse(r.KernelCoefficients.begin(), r.KernelCoefficients.end()); }),
        Changed(basis, [](L& r) { r.KernelValues[7] *= 1.5; }),
        Changed(basis, [](L& r) { r.InputSamples[0][0] = -r.InputSamples[0][0]; }),
    };
    const std::vector<double> points = draw.Reals(static_cast<int>(kRows) * kInputs, 0, 1);
    ASSERT_NO_FATAL_FAILURE(ExpectAsEvaluated(ModelOfAll(candidates), points, kRows));
  }
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::tests
