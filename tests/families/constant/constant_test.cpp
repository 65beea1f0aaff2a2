#include "pxrom/constant.h"

#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {
namespace {

CConstantData Ready(int inputs) {
  CConstantData data;
  MakeReady(data, inputs);
  data.SetConstantValue(7.5);
  return data;
}

TEST(Constant, ConstantError) {
  const CConstantEvaluator evaluator;
  for (const int inputs : {0, 2}) {
    const CConstantData data = Ready(inputs);
    const std::vector<double> x(static_cast<std::size_t>(inputs));
    double y = 1.0;
    double error = 9.0;
    EXPECT_EQ(evaluator.EvaluateResponseSurface(&data, x, y, error), inputs == 0 ? 0 : -2);
    EXPECT_EQ(y, 7.5);
    EXPECT_EQ(error, inputs == 0 ? 0.0 : 9.0);
  }
}

TEST(Constant, RefusalsLeaveBothOutputsAlone) {
  const CConstantEvaluator evaluator;
  ExpectEachRefused<CConstantData>(evaluator, Ready(1), {0.0}, {}, true);
  Vector gradient = {4.0};
  const CConstantData other = Ready(2);
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&other, {0}, gradient), 1);
  EXPECT_EQ(gradient, Vector{4.0});
}

TEST(Constant, ErrorFormHonoursAnOverriddenValueForm) {
  class Louder : public CConstantEvaluator {
   public:
    using CConstantEvaluator::EvaluateResponseSurface;
    int EvaluateResponseSurface(const CRSData*, const std::vector<double>&,
                                double& y) const override {
      y = 11.0;
      return 0;
    }
  };
  const CConstantData data = Ready(0);
  double y = 0.0;
  double error = 1.0;
  EXPECT_EQ(Louder().CConstantEvaluator::EvaluateResponseSurface(&data, {}, y, error), 0);
  EXPECT_EQ(y, 11.0);
}

TEST(Constant, ResetsItsBaseToo) {
  CConstantData data = Ready(3);
  data.SetConstantDataVersion(static_cast<E_CConstantDataVersion>(1));
  EXPECT_EQ(data.ResetData(), 0);
  double value = 1.0;
  data.GetConstantValue(value);
  EXPECT_EQ(value, 0.0);
  EXPECT_EQ(data.ConstantDataVersion(), ConstantDataVersion170);
  EXPECT_EQ(data.NumberOfInputVariables, 0);
  EXPECT_EQ(data.DataType(), DT_ConstantData);
}

TEST(BaseEvaluator, WritesZerosAndRefusesValues) {
  const std::unique_ptr<const CRSEvaluator> clone(CRSEvaluator().Clone());
  const CRSEvaluator& evaluator = *clone;
  CRSData data;
  data.NumberOfInputVariables = 1;
  data.ReadyForEvaluation = true;
  double y = 1.0;
  double error = 1.0;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(nullptr, {}, y), 1);
  EXPECT_EQ(y, 0.0);
  y = 1.0;
  EXPECT_EQ(evaluator.EvaluateResponseSurface(nullptr, {}, y, error), 1);
  EXPECT_EQ(y, 0.0);
  EXPECT_EQ(error, 0.0);
  std::vector<double> gradient = {2.0};
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&data, {1}, gradient), 0);
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&data, {}, gradient), 1);
  data.NumberOfInputVariables = 0;
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&data, {}, gradient), 0);
  data.Stopped = true;
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&data, {}, gradient), 1);
  EXPECT_EQ(gradient, (std::vector<double>{2.0}));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
