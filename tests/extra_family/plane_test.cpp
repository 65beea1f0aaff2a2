// The library handles a new family as soon as it is in the list.

#include "extra_family/plane.h"

#include <gtest/gtest.h>

#include "pxrom/batch.h"
#include "pxrom/inspection.h"
#include "support/test_models.h"

namespace Tarvane::Plexura::PXROM {
namespace {

using NamedValues = std::vector<std::pair<std::string, double>>;

// y = 2 + 4 u over u = x / 2, and so 2 + 2 x.
CDiscreteCombinations PlaneModel() {
  CPlaneData plane;
  plane.NumberOfInputVariables = 1;
  plane.InputScaleSlopes = {1.0};
  plane.InputScaleIntercepts = {0.0};
  plane.OutputScaleSlope = 1.0;
  plane.ReadyForEvaluation = true;
  plane.Start = 2.0;
  plane.Slopes = {4.0};
  CFittingCandidate candidate = CandidateOf(plane);
  candidate.SetInputScaleSlopes({0.5});
  CDiscreteCombinations model;
  FillWith(candidate, model);
  return model;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  text.replace(text.find(what), what.size(), by);
  return text;
}

/// The codes of errors and warnings.
std::vector<std::string> CodesOf(const std::string& text) {
  std::vector<std::string> codes;
  for (const CFinding& finding : InspectPXROMDatabase(text).findings) {
    if (finding.severity != SeverityNote) codes.emplace_back(FindingCodeName(finding.code));
  }
  return codes;
}

TEST(ExtraFamily, IsWrittenReadAndEvaluated) {
  const CDiscreteCombinations model = Again(PlaneModel());
  EXPECT_EQ(SurfaceOf<CPlaneData>(model).Slopes, std::vector<double>{4.0});
  NamedValues outputs;
  EXPECT_EQ(model.Evaluate({{"k", 4}}, {{"x", 1.5}}, outputs), 0);
  EXPECT_EQ(outputs, (NamedValues{{"y", 5.0}}));
}

TEST(ExtraFamily, IsEvaluatedInBatchesWithItsGradient) {
  CPreparedModel prepared;
  ASSERT_EQ(CPreparedModel::Prepare(PlaneModel(), {{"k", 4}}, prepared), 0);
  const std::vector<double> points = {0.0, 0.5, 1.5};
  std::vector<double> values(3);
  std::vector<int> statuses(3, -7);
  EXPECT_EQ(
      prepared.Evaluate(points.data(), 3, PrecisionExact, values.data(), nullptr, statuses.data()),
      0);
  EXPECT_EQ(values, (std::vector<double>{2.0, 3.0, 5.0}));
  EXPECT_EQ(prepared.EvaluateGradients(points.data(), 3, values.data(), statuses.data()), 0);
  EXPECT_EQ(values, (std::vector<double>{2.0, 2.0, 2.0}));
  EXPECT_EQ(statuses, (std::vector<int>{0, 0, 0}));
}

TEST(ExtraFamily, IsInspected) {
  using Codes = std::vector<std::string>;
  const std::string text = Written(PlaneModel());
  const CInspectionReport report = InspectPXROMDatabase(text);
  EXPECT_EQ(CodesOf(text), Codes{});
  ASSERT_EQ(report.notes, 1U);
  EXPECT_EQ(report.findings[0].sentence,
            "the form with errors is refused for PlexuraData 0: a plane surface has no predictor "
            "error of its own");
  EXPECT_EQ(report.overview.ensembles.at(0).surfaces.at(0).family, "plane");
  EXPECT_EQ(CodesOf(Replaced(text, "PlaneStart=2\n", "")), Codes{"key-missing"});
  EXPECT_EQ(CodesOf(Replaced(text, "PlaneSlopes=4", "PlaneSlopes=4,5")), Codes{"count-mismatch"});
  EXPECT_EQ(CodesOf(Replaced(text, "PlaneVersion=200", "PlaneVersion=7")),
            Codes{"version-unknown"});
  EXPECT_EQ(CodesOf(Replaced(text, "DataType=200", "DataType=8")), Codes{"family-mismatch"});
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
