// Operations that hosts may call and evaluations don't: sample access, scaling of tables, clones,
// the values that a derived reader catches, distributions of odd arguments.

#include <stdexcept>

#include "numerics/distributions.h"
#include "pxrom/constant.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/fitting_candidates.h"
#include "pxrom/fmu_description_reader.h"
#include "support/model_files.h"
#include "support/source_path.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(Corners, ACandidatesSamplesAndScaling) {
  CFittingCandidate candidate;
  candidate.SetInputSamples({{1, 2}, {3, 4}, {5, 6}});
  candidate.SetOutputSamples({7, 8, 9});
  // The field counts, not the rows.
  candidate.SetNumberOfSamples(2);
  candidate.SetNumberOfInputVariables(2);
  Vector out = {-1};
  EXPECT_EQ(candidate.GetInputSampleWrtSampleIndex(1, out), 0);
  EXPECT_EQ(out, (Vector{3, 4}));
  EXPECT_EQ(candidate.GetInputSampleWrtInputIndex(1, out), 0);
  EXPECT_EQ(out, (Vector{2, 4}));
  double y = 0.0;
  EXPECT_EQ(candidate.GetOutputSampleWrtSampleIndex(2, y), 0);
  EXPECT_EQ(y, 9.0);

  candidate.SetInputScaleSlopes({2, 4});
  candidate.SetInputScaleIntercepts({1, -1});
  candidate.SetOutputScaleSlope(0.5);
  candidate.SetOutputScaleIntercept(3);
  // Rows before one that does not fit are scaled, the rest is not.
  Matrix rows = {{1, 1}, {1}, {1, 1}};
  EXPECT_EQ(candidate.ScaleAndOverwriteInputSamples(rows), 1);
  EXPECT_EQ(rows, (Matrix{{3, 3}, {1}, {1, 1}}));
  rows = {{2, 0}};
  EXPECT_EQ(candidate.ScaleAndOverwriteInputSamples(rows), 0);
  EXPECT_EQ(rows, (Matrix{{5, -1}}));
  Vector outputs = {2, -6};
  EXPECT_EQ(candidate.ScaleAndOverwriteOutputSamples(outputs), 0);
  EXPECT_EQ(outputs, (Vector{4, 0}));
}

TEST(Corners, AStoppedListRefusesUntilItIsNoMore) {
  CConstantData surface;
  MakeReady(surface, 1);
  surface.SetConstantValue(4.0);
  CFittingCandidates list;
  ASSERT_EQ(list.GenerateCandidateFromCRSData(&surface), 0);
  EXPECT_EQ(list.DataType(), DT_FittingCandidates);
  EXPECT_EQ(list.DataVersion(), FittingCandidatesVersion170);
  const std::unique_ptr<CFittingCandidate> before(list.GetCandidatePtr(0)->Clone());
  EXPECT_EQ(before->DataType(), DT_FittingCandidate);
  EXPECT_EQ(list.SetStatusStopped(), 0);
  const std::unique_ptr<CFittingCandidatesEvaluator> evaluator(
      CFittingCandidatesEvaluator().Clone());
  CFittingCandidatesEvaluator assigned;
  assigned = *evaluator;
  double y = -1.0;
  EXPECT_EQ(assigned.EvaluateResponseSurfaceCandidate(list, {0.5}, y), 1);
  CFittingCandidates other;
  other.AddFittingCandidate(*before);
  EXPECT_EQ(evaluator->EvaluateResponseSurfaceCandidate(other, {0.5}, y), 0);
  EXPECT_EQ(y, 4.0);
}

TEST(Corners, ADerivedReaderCatchesListsAndPairs) {
  const std::string text = "n=1,2\np={a;1},{b;2}\nq={a;0.5}\ns={a;x},{b;}\n";
  const OpenReader reader(text);
  const auto expectCaught = [&](const char* key, auto expected) {
    decltype(expected) list;
    reader.CatchKeyValue(text, key, list, 0, text.size());
    EXPECT_EQ(list, expected);
  };
  expectCaught("n=", std::vector<int>{1, 2});
  expectCaught("p=", std::vector<std::pair<std::string, int>>{{"a", 1}, {"b", 2}});
  expectCaught("q=", std::vector<std::pair<std::string, double>>{{"a", 0.5}});
  expectCaught("s=", std::vector<std::pair<std::string, std::string>>{{"a", "x"}, {"b", ""}});
}

TEST(Corners, AssignedReadersKeepTheTextAndClonesDoNot) {
  std::string text = ContentOf(SourcePath("examples/constant.pxdb"));
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CReaderPXROMDatabase assigned;
  assigned = reader;
  CDiscreteCombinations model;
  EXPECT_EQ(assigned.ResumeDiscreteCombinations(model), 0);
  const std::unique_ptr<CReaderPXROMDatabase> clone(reader.Clone());
  EXPECT_THROW(clone->ResumeDiscreteCombinations(model), std::out_of_range);
  clone->ReadDataStream(text);
  EXPECT_EQ(clone->ResumeDiscreteCombinations(model), 0);
}

TEST(Corners, OneReaderType) {
  EXPECT_EQ(CReaderPXROMDatabase().ReaderType(), ReaderTypeText);
  EXPECT_EQ(CReaderFMUModelDescription().ReaderType(), ReaderTypeText);
  const std::unique_ptr<CReader> base(CReader().Clone());
  EXPECT_EQ(base->ReaderType(), ReaderTypeNone);
}

// Iterations that don't converge end by their count.
TEST(Corners, DistributionsEndForAnyArguments) {
  const double arguments[] = {std::nan(""), HUGE_VAL, -HUGE_VAL,   1.7e308, -1.7e308,
                              5e-324,       0.0,      -1.0,        1.0,     0.25,
                              0.5,          1e-300,   1.0 - 1e-16, 1e8};
  testing::internal::CaptureStdout();
  int good = 0;
  const auto count = [&good](int status) { good += status == 0 ? 1 : 0; };
  for (const double a : arguments) {
    double out = 0.0;
    count(GammaLn(a, out));
    count(StdGaussCdf(a, out));
    count(StdGaussInvCdf(a, out));
    for (const double b : arguments) {
      count(IncompleteGammaP(a, b, out));
      const StudTDist student(a);
      count(student.EvalCdf(b, out));
      count(student.EvalPdf(b, out));
      const int status = student.EvalInvCdf(b, out);
      count(status);
      // NaN for degrees of freedom is not above 0.
      if (std::isnan(a) || a <= 0.0) {
        EXPECT_NE(status, 0) << a << ' ' << b;
      }
      for (const double x : arguments) {
        count(IncompleteBetaRatio(a, b, x, out));
        count(BetaDist::EvalInvCdf(a, b, 0.0, 1.0, x, out));
      }
    }
  }
  testing::internal::GetCapturedStdout();
  EXPECT_GT(good, 100);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
