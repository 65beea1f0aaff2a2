#include "pxrom/constant.h"

#include <gtest/gtest.h>

#include <memory>

namespace Tarvane::Plexura::PXROM {
namespace {

CConstantData Ready(int inputs) {
  CConstantData data;
  data.NumberOfInputVariables = inputs;
  data.ReadyForEvaluation = true;
  data.SetConstantValue(7.5);
  return data;
}

TEST(Constant, ClaimsAnErrorOnlyWithoutInputs) {
  const CConstantEvaluator evaluator;
  for (const int inputs : {0, 2}) {
    const CConstantData data = Ready(inputs);
    const std::vector<double> x(static_cast<std::size_t>(inputs));
    double y = 1.0;
    EXPECT_EQ(evaluator.EvaluateResponseSurface(&data, x, y), 0);
    EXPECT_EQ(y, 7.5);
    y = 1.0;
    double error = 9.0;
    EXPECT_EQ(evaluator.EvaluateResponseSurface(&data, x, y, error), inputs == 0 ? 0 : -2);
    EXPECT_EQ(y, 7.5);
    EXPECT_EQ(error, inputs == 0 ? 0.0 : 9.0);
  }
}

TEST(Constant, RefusalsLeaveBothOutputsAlone) {
  const CConstantEvaluator evaluator;
  CConstantData stopped = Ready(1);
  stopped.Stopped = true;
  CConstantData unready = Ready(1);
  unready.ReadyForEvaluation = false;
  CConstantData negative = Ready(-1);
  CRSData other;
  other.NumberOfInputVariables = 1;
  other.ReadyForEvaluation = true;
  const CConstantData longer = Ready(2);
  const std::vector<double> x = {0.0};
  std::vector<double> gradient = {4.0};
  for (const CRSData* data :
       {static_cast<const CRSData*>(nullptr), static_cast<const CRSData*>(&other),
        static_cast<const CRSData*>(&unready), static_cast<const CRSData*>(&stopped),
        static_cast<const CRSData*>(&longer), static_cast<const CRSData*>(&negative)}) {
    double y = 1.0;
    double error = 9.0;
    EXPECT_EQ(evaluator.EvaluateResponseSurface(data, x, y), 1);
    EXPECT_EQ(evaluator.EvaluateResponseSurface(data, x, y, error), 1);
    EXPECT_EQ(y, 1.0);
    EXPECT_EQ(error, 9.0);
    EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(data, x, gradient), 1);
  }
  EXPECT_EQ(gradient, (std::vector<double>{4.0}));
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
  const std::unique_ptr<CRSData> clone(data.Clone());
  EXPECT_EQ(data.ResetData(), 0);
  double value = 1.0;
  data.GetConstantValue(value);
  EXPECT_EQ(value, 0.0);
  EXPECT_EQ(data.ConstantDataVersion(), ConstantDataVersion170);
  EXPECT_EQ(data.NumberOfInputVariables, 0);
  EXPECT_EQ(clone->DataType(), DT_ConstantData);
  EXPECT_EQ(static_cast<const CConstantData&>(*clone).ConstantDataVersion(), 1);
}

TEST(BaseEvaluator, WritesZerosAndRefusesValues) {
  const CRSEvaluator evaluator;
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
  data.Stopped = true;
  EXPECT_EQ(evaluator.EvaluateResponseSurfaceDerivativeWrtInputVariables(&data, {1}, gradient), 1);
  EXPECT_EQ(gradient, (std::vector<double>{2.0}));
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
