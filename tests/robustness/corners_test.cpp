// Operations that hosts use and evaluation does not: sample access, scaling of tables, counts,
// statistics, clones, and what a derived reader may ask for.

#include <stdexcept>

#include "pxrom/constant.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/fitting_candidates.h"
#include "pxrom/fmu_description_reader.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"
#include "support/model_files.h"
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
  surface.NumberOfInputVariables = 1;
  surface.ReadyForEvaluation = true;
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
  double y = -1.0;
  CFittingCandidatesEvaluator assigned;
  assigned = *evaluator;
  EXPECT_EQ(assigned.EvaluateResponseSurfaceCandidate(list, {0.5}, y), 1);
  CFittingCandidates other;
  other.AddFittingCandidate(*before);
  EXPECT_EQ(evaluator->EvaluateResponseSurfaceCandidate(other, {0.5}, y), 0);
  EXPECT_EQ(y, 4.0);
}

TEST(Corners, RecordsKeepWhatIsSet) {
  CMLSData mls;
  EXPECT_EQ(mls.SetUsedPointOption(UsedPointsExtraPercent, 35.0), 0);
  E_UsedPointsOption option{};
  double value = 0.0;
  EXPECT_EQ(mls.GetUsedPointOption(option) + mls.GetExtraPointPercent(value), 0);
  EXPECT_EQ(option, UsedPointsExtraPercent);
  EXPECT_EQ(value, 35.0);
}

TEST(Corners, ADerivedReaderCatchesListsAndPairs) {
  const std::string text = "n=1,2\np={a;1},{b;2}\nq={a;0.5}\ns={a;x},{b;}\n";
  const OpenReader reader(text);
  std::vector<int> list;
  reader.CatchKeyValue(text, "n=", list, 0, text.size());
  EXPECT_EQ(list, (std::vector<int>{1, 2}));
  std::vector<std::pair<std::string, int>> ints;
  reader.CatchKeyValue(text, "p=", ints, 0, text.size());
  EXPECT_EQ(ints, (std::vector<std::pair<std::string, int>>{{"a", 1}, {"b", 2}}));
  std::vector<std::pair<std::string, double>> doubles;
  reader.CatchKeyValue(text, "q=", doubles, 0, text.size());
  EXPECT_EQ(doubles, (std::vector<std::pair<std::string, double>>{{"a", 0.5}}));
  std::vector<std::pair<std::string, std::string>> strings;
  reader.CatchKeyValue(text, "s=", strings, 0, text.size());
  EXPECT_EQ(strings, (std::vector<std::pair<std::string, std::string>>{{"a", "x"}, {"b", ""}}));
}

TEST(Corners, AssignedReadersKeepTheTextAndClonesDoNot) {
  std::string text = ContentOf(PXROM_EXAMPLES "/constant.pxdb");
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  CReaderPXROMDatabase assigned;
  assigned = reader;
  CDiscreteCombinations model;
  EXPECT_EQ(assigned.ResumeDiscreteCombinations(model), 0);
  EXPECT_GT(model.ParameterCount(), 0U);
  const std::unique_ptr<CReaderPXROMDatabase> clone(reader.Clone());
  EXPECT_THROW(clone->ResumeDiscreteCombinations(model), std::out_of_range);
  clone->ReadDataStream(text);
  EXPECT_EQ(clone->ResumeDiscreteCombinations(model), 0);
  EXPECT_EQ(clone->ReaderType(), ReaderTypeText);
  EXPECT_EQ(CReaderFMUModelDescription().ReaderType(), ReaderTypeText);
  const std::unique_ptr<CReader> base(CReader().Clone());
  EXPECT_EQ(base->ReaderType(), ReaderTypeNone);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
