#include "families/regression/transformers.h"

#include <cmath>
#include <cstring>
#include <iterator>

#include "families/regression/test_records.h"

namespace Tarvane::Plexura::PXROM {
namespace {

E_QRSTransformationType Type(int number) { return static_cast<E_QRSTransformationType>(number); }

std::pair<double, int> Step(int type, bool forward, double x, double value, double lambda) {
  const CTransformer& transformer = *FindTransformer(Type(type));
  const int status = forward ? transformer.TransformAndOverwrite(x, value, lambda)
                             : transformer.BacktransformAndOverwrite(x, value, lambda);
  return {x, status};
}

TEST(Transformers, AgreeWithScipyBothWays) {
  const auto reference = ReferenceData("regression/reference.json");
  for (const auto& row : reference["transforms"]) {
    const Vector r = row.get<Vector>();
    const int type = static_cast<int>(r[0]);
    const auto [z, forward] = Step(type, true, r[2], r[1], r[1]);
    EXPECT_EQ(forward, 0);
    EXPECT_NEAR(z, r[3], 1e-12 * std::max(1.0, std::fabs(r[3]))) << row;
    const auto [back, backward] = Step(type, false, r[3], r[1], r[1]);
    EXPECT_EQ(backward, 0) << row;
    EXPECT_NEAR(back, r[4], 1e-12 * std::max(1.0, std::fabs(r[4]))) << row;
  }
}

TEST(Transformers, GuardsLeaveTheArgumentAndYeoItsFailureValue) {
  const double limit = std::log(1e99);
  const double above = std::nextafter(limit, 1e9);
  const struct {
    int type;
    bool forward;
    double x, lambda;
    int status;
  } cases[] = {
      {1, false, 1e-99, 0, 1},        {1, false, std::nextafter(1e-99, 1.0), 0, 0},
      {1, false, std::nan(""), 0, 1}, {2, false, above, 0, 1},
      {3, false, limit, 0, 0},        {3, false, above, 0, 1},
      {3, true, -1.0, 0, 0},          {4, false, limit, 0, 0},
      {4, false, above, 0, 1},        {5, true, -1.0, 0, 0},
      {6, true, -1.0, 0, 0},          {7, true, -1e-9, 2, 1},
      {7, true, 0.0, 2, 0},           {7, true, 0.0, -1, 1},
      {7, true, 0.0, 0, 1},           {7, true, 1e-9, 9.9e-7, 0},
      {7, true, -0.5, 1e-6, 1},       {7, false, -2.1, 0.5, 1},
      {7, false, 1e50, 0.5, 1},       {7, false, 1e50, 2, 0},
      {7, false, 1e150, 2, 0},        {7, false, limit, 0, 0},
      {7, false, above, 0, 1},        {9, true, -1e9, -3, 0},
      {9, false, 1e50, 0.5, 1},       {9, false, -1e50, 1.5, 1},
      {9, false, above, 0, 1},        {9, false, -above, 2, 1},
      {9, false, 2.0, -0.6, 1},       {9, false, -2.0, 2.6, 1},
      {9, false, -9e99, 1, 0},        {6, false, -1.0, 0, 1},
      {6, false, 0.0, 0, 0},          {8, true, 5.5, 0, 1},
      {8, true, -1.0, 2, 1},          {8, true, 1000.0, 0.5, 1},
      {8, false, 1000.0, 2, 0},       {8, false, 5.5, 9e-7, 1},
      {7, true, 0.0, 0.5, 0},
  };
  for (const auto& each : cases) {
    const auto [x, status] = Step(each.type, each.forward, each.x, 2.0, each.lambda);
    EXPECT_EQ(status, each.status) << each.type << " at " << each.x << ", lambda " << each.lambda;
    if (status == 0 || std::isnan(each.x)) continue;
    EXPECT_EQ(x, each.type == 9 ? -9e99 : each.x) << each.type;
  }
  EXPECT_EQ(Step(7, true, 0.0, 0, 2).first, -0.5);
  EXPECT_TRUE(std::isnan(Step(3, true, -1.0, 0, 0).first));
  EXPECT_EQ(Step(7, true, 3.0, 0, 1e-6).first, (std::pow(3.0, 1e-6) - 1.0) / 1e-6);
}

TEST(Transformers, TransformationsWithoutInverse) {
  EXPECT_EQ(Step(TransformLogA, false, 1.5, 3.0, 0), std::pair(std::log(3.0) * std::exp(1.5), 0));
  const std::pair<double, int> forward = Step(TransformLogBox, true, 1.5, 0, 2.0);
  EXPECT_EQ(forward, std::pair(std::exp(std::pow(2.0 * 1.5 + 1.0, 0.5)), 0));
  EXPECT_EQ(Step(TransformLogBox, false, 1.5, 0, 2.0), forward);
  // Ordinary values are refused for exponents below 1.
  EXPECT_EQ(Step(TransformPower, false, 9.0, 0.5, 0), std::pair(9.0, 1));
  EXPECT_EQ(Step(TransformPower, false, 1e50, 0.5, 0), std::pair(std::pow(1e50, 2.0), 0));
}

#ifndef _MSC_VER  // which writes pointers to virtual operations in another way

// The place of an operation in the table of its class, relative to a common one.
template <class Operation>
std::ptrdiff_t PlaceOf(Operation operation) {
  std::ptrdiff_t place = 0;
  std::memcpy(&place, &operation, sizeof place);
  return place / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(Transformers, OperationsKeepTheOrderOfTheirSlots) {
  using Base = CTransformer;
  using Yeo = CTransformerYeo;
  const std::ptrdiff_t places[] = {
      PlaceOf(&Base::TransformationType),
      PlaceOf(&Base::Clone),
      PlaceOf<int (Base::*)(const double&, double&) const>(&Base::Transform),
      PlaceOf<int (Base::*)(const double&, double&) const>(&Base::Backtransform),
      PlaceOf<int (Base::*)(Vector&, const Vector&, const Vector&) const>(
          &Base::TransformAndOverwrite),
      PlaceOf<int (Base::*)(double&, double, double) const>(&Base::TransformAndOverwrite),
      PlaceOf<int (Base::*)(Vector&, const Vector&, const Vector&) const>(
          &Base::BacktransformAndOverwrite),
      PlaceOf<int (Base::*)(double&, double, double) const>(&Base::BacktransformAndOverwrite),
      PlaceOf<int (Yeo::*)(double, double&, double, double) const>(&Yeo::Transform),
      PlaceOf<int (Yeo::*)(double, double&, double, double) const>(&Yeo::Backtransform),
  };
  for (std::size_t i = 1; i < std::size(places); ++i) {
    EXPECT_EQ(places[i], places[i - 1] + 1) << "operation " << i;
  }
}

#endif

TEST(Transformers, EachClassKeepsItsNumberAndItsForms) {
  for (int number = 0; number <= 9; ++number) {
    const CTransformer& transformer = *FindTransformer(Type(number));
    const std::unique_ptr<CTransformer> clone(transformer.Clone());
    EXPECT_EQ(clone->TransformationType(), number);
    double out = 0.0;
    EXPECT_EQ(clone->Transform(2.5, out), 0);
    EXPECT_EQ(clone->Backtransform(2.5, out), 0);
    EXPECT_EQ(out, 2.5);  // the forms without parameters are the identity
    // The vector forms drop the statuses of their elements.
    const Vector start = {0.5, -1.0, 4.0};
    const Vector values = {2.0, 3.0, 1.0};
    const Vector lambdas = {2.0, 0.5, 0.0};
    Vector x = start;
    Vector back = start;
    EXPECT_EQ(clone->TransformAndOverwrite(x, values, lambdas), 0);
    EXPECT_EQ(clone->BacktransformAndOverwrite(back, values, lambdas), 0);
    for (std::size_t i = 0; i < x.size(); ++i) {
      EXPECT_TRUE(SameBits(x[i], Step(number, true, start[i], values[i], lambdas[i]).first));
      EXPECT_TRUE(SameBits(back[i], Step(number, false, start[i], values[i], lambdas[i]).first));
    }
  }
  const CTransformerYeo yeo;
  double out = 0.0;
  EXPECT_EQ(yeo.Transform(-1.0, out, 0.0, 2.0), 0);
  EXPECT_EQ(out, -std::log(2.0));
  EXPECT_EQ(yeo.Backtransform(-1e300, out, 0.0, 2.0), 1);
  EXPECT_EQ(out, -9e99);
  EXPECT_EQ(FindTransformer(Type(10)), nullptr);
  EXPECT_EQ(FindTransformer(Type(-1)), nullptr);
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
