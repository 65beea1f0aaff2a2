#include <memory>
#include <utility>

#include "numerics/distributions.h"

namespace {

/// Sorts ascending. A NaN stays where it is and separates the values before and after it.
void BubbleSort(double* values, int n) {
  for (int end = n - 1; end > 0; --end) {
    for (int i = 0; i < end; ++i) {
      if (values[i] > values[i + 1]) std::swap(values[i], values[i + 1]);
    }
  }
}

enum class BoundFrom { kLimit, kFiniteLimitElseQuantile, kQuantile };

struct PlotRule {
  unsigned flags;
  BoundFrom from;
  double lowerLevel;
  double upperLevel;
};

// The first row with a flag in common decides.
constexpr PlotRule kPlotRules[] = {
    {1, BoundFrom::kLimit, 0.0, 1.0},
    {2, BoundFrom::kFiniteLimitElseQuantile, 1e-06, 0.999999},
    {4 | 8, BoundFrom::kQuantile, 0.001, 0.999},
    {16, BoundFrom::kFiniteLimitElseQuantile, 0.002, 0.998},
    {32, BoundFrom::kLimit, 0.0, 1.0},
};
constexpr unsigned kLowerOnly = 0x40;
constexpr unsigned kUpperOnly = 0x80;

}  // namespace

DistType::~DistType() = default;

int DistType::TabulatePdf(const int& n, const double& lo, const double& hi, double* xs,
                          double* pdfs) const {
  if (DistStatus == 0 || lo < LowerLimit || hi > UpperLimit || n < 3) return 1;
  double lowest = 0.0;
  double highest = 0.0;
  int status = EvalCdf(lo, lowest);
  if (status == 0) status = EvalCdf(hi, highest);
  if (status != 0) return status;

  const int m = n / 2;
  xs[0] = lo;
  for (int i = 1; i <= m; ++i) xs[i] = lo + i * (hi - lo) / (m + 1);
  xs[m + 1] = hi;
  double level = lowest;
  for (int i = m + 2; i < n; ++i) {
    level = level + (highest - lowest) / (n - m - 1);
    status = EvalInvCdf(level, xs[i]);
    if (status != 0) return status;
  }

  BubbleSort(xs, n);
  for (int i = 0; i < n; ++i) {
    status = EvalPdf(xs[i], pdfs[i]);
    if (status != 0) return status;
  }
  return 0;
}

int DistType::TabulateCdf(const int& n, const double& lo, const double& hi, double* xs,
                          double* cdfs) const {
  if (DistStatus == 0 || lo < LowerLimit || hi > UpperLimit || n < 1) return 1;
  const double step = (hi - lo) / (n - 1);
  double x = lo;
  for (int i = 0; i < n; ++i) {
    xs[i] = x;
    const int status = EvalCdf(x, cdfs[i]);
    if (status != 0) return status;
    x = x + step;
  }
  xs[n - 1] = hi;  // its value stays that of the accumulated point: see distributions.h
  return 0;
}

int DistType::GetAttributes(std::vector<DistAttr*>& attributes) const {
  attributes = Attributes;
  return 0;
}

int DistType::GetPlotBounds(const unsigned char& flags, double& lo, double& hi) const {
  if (DistStatus < 3) return DistStatus;
  const PlotRule* rule = nullptr;
  for (const PlotRule& candidate : kPlotRules) {
    if ((flags & candidate.flags) != 0) {
      rule = &candidate;
      break;
    }
  }
  if (rule == nullptr) return 1;

  const auto fromLimit = [&](bool isFinite) {
    return rule->from == BoundFrom::kLimit ||
           (rule->from == BoundFrom::kFiniteLimitElseQuantile && isFinite);
  };
  double lower = LowerLimit;
  double upper = UpperLimit;
  const bool wantsLower = (flags & kUpperOnly) == 0;
  const bool wantsUpper = (flags & kLowerOnly) == 0;
  int status = 0;
  if (wantsLower && !fromLimit(LowerLimit >= -1e99)) status = EvalInvCdf(rule->lowerLevel, lower);
  if (status != 0) return status;
  if (wantsUpper && !fromLimit(UpperLimit <= 1e99)) status = EvalInvCdf(rule->upperLevel, upper);
  if (status != 0) return status;
  if (wantsLower) lo = lower;
  if (wantsUpper) hi = upper;
  return 0;
}

int DistType::GetDistStatus(int& status) const {
  status = DistStatus;
  return 0;
}

int DistType::CopyTo(DistType* target) const {
  if (target == nullptr) return 1;
  std::vector<std::unique_ptr<DistAttr>> copies;
  for (const DistAttr* attribute : Attributes) {
    int type = 0;
    attribute->GetAttrType(type);
    if (type == 0) continue;
    std::unique_ptr<DistAttr> copy = NewDistAttr(type);
    if (copy == nullptr || attribute->CopyTo(copy.get()) != 0) return 1;
    copies.push_back(std::move(copy));
  }
  std::vector<DistAttr*> attributes;
  attributes.reserve(copies.size());

  // Nothing below can fail, so that the copies reach the caller through the target.
  for (std::unique_ptr<DistAttr>& copy : copies) attributes.push_back(copy.release());
  target->NumKind = NumKind;
  target->NumParam = NumParam;
  target->LowerLimit = LowerLimit;
  target->UpperLimit = UpperLimit;
  target->DistKind = DistKind;
  target->DistStatus = DistStatus;
  target->AcceptAnyDof = AcceptAnyDof;
  target->Attributes.swap(attributes);
  return 0;
}

int DistType::ClearAttributes() {
  Attributes.clear();
  return 0;
}
