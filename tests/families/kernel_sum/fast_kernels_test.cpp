#include <gtest/gtest.h>

#include "families/kernel_sum/kernel_surface.h"
#include "pxrom/kriging.h"

namespace Tarvane::Plexura::PXROM::batch {
namespace {

KernelModel TwoCentres(double first, double second) {
  KernelModel model;
  model.inputs = 1;
  model.kernel = kernels::FindKernel(CorrGaussian);
  model.constants = model.kernel->constants(1);
  model.centreCount = 2;
  model.centres = {first, second};
  model.scales = {1.0};
  model.weights = {1.0, -2.0};
  return model;
}

// The rounding of the multiplied centres grows with them, so that the farthest one decides.
TEST(FastKernels, DeviationIsThatOfTheFarthestCentreInAnyOrder) {
  const double near = FindFastKernels(TwoCentres(0.5, 0.5)).deviation;
  const double far = FindFastKernels(TwoCentres(1e4, 1e4)).deviation;
  EXPECT_GT(near, 0.0);
  EXPECT_GT(far, 100.0 * near);
  EXPECT_EQ(FindFastKernels(TwoCentres(0.5, 1e4)).deviation, far);
  EXPECT_EQ(FindFastKernels(TwoCentres(1e4, 0.5)).deviation, far);
}

TEST(FastKernels, AreLeftOutForCentresWhoseSquaresOverflow) {
  EXPECT_FALSE(FindFastKernels(TwoCentres(0.5, 0.5)).centres.empty());
  EXPECT_TRUE(FindFastKernels(TwoCentres(0.5, 1e200)).centres.empty());
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM::batch
