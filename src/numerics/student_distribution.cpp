#include <algorithm>
#include <cmath>
#include <cstddef>

#include "numerics/console.h"
#include "numerics/distributions.h"

namespace {

constexpr int kDofType = 17;          // of the attribute StudTDOF
constexpr double kGaussFrom = 500.0;  // degrees of freedom from which quantiles follow Gauss
constexpr double kGaussPdfAbove = 342.0;

}  // namespace

StudTDist::StudTDist(const double& dof) : DOF(dof) {
  NumKind = 1;
  NumParam = 1;
  DistKind = 10;
  DistStatus = 3;
}

int StudTDist::SetAttributes(const std::vector<DistAttr*>& attributes) {
  std::vector<int> types;
  for (const DistAttr* attribute : attributes) {
    int type = 0;
    if (attribute == nullptr || attribute->GetAttrType(type) != 0) return 1;
    if (std::find(types.begin(), types.end(), type) != types.end()) return 1;
    types.push_back(type);
  }
  double dof = 0.0;
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    if (types[i] != kDofType || attributes[i]->GetValue(dof) != 0) return 1;
  }
  const int status = CheckDof(dof);
  if (status != 0) return status;

  ClearAttributes();
  Attributes.insert(Attributes.end(), attributes.begin(), attributes.end());
  ResetParams();
  return attributes.size() == 1 ? SetParam(0, dof) : 0;
}

int StudTDist::EvalMean(double& out) const {
  if (DistStatus == 0) return 1;
  out = 0.0;
  return 0;
}

int StudTDist::EvalStdDev(double& out) const {
  if (DistStatus == 0 || !(DOF > 2.0)) return 1;
  out = std::sqrt(DOF / (DOF - 2.0));
  return 0;
}

int StudTDist::EvalSkewness(double& out) const {
  if (DistStatus == 0) return 1;
  out = 0.0;
  return 0;
}

int StudTDist::EvalKurtosis(double& out) const {
  if (DistStatus == 0 || !(DOF > 4.0)) return 1;
  out = (DOF - 2.0) * 3.0 / (DOF - 4.0) - 3.0;
  return 0;
}

int StudTDist::EvalPdf(const double& x, double& p) const {
  if (DistStatus == 0) return 1;
  int status = 0;
  double density = 0.0;
  if (DOF <= kGaussPdfAbove) {
    double lnHalfDof = 0.0;
    double lnHalf = 0.0;
    double lnSum = 0.0;
    status =
        GammaLn(DOF * 0.5, lnHalfDof) + GammaLn(0.5, lnHalf) + GammaLn((DOF + 1.0) * 0.5, lnSum);
    density = std::pow(x * x / DOF + 1.0, -(DOF + 1.0) * 0.5) * std::pow(DOF, -0.5) *
              std::exp(-lnHalfDof) * std::exp(-lnHalf) * std::exp(lnSum);
  } else {
    status = StdGaussPdf(x, density);
  }
  if (status != 0) {
    console::Print(" *** ERROR in StudTDist::EvalPdf *** \n");
    return status;
  }
  p = density;
  return 0;
}

int StudTDist::EvalCdf(const double& x, double& p) const {
  if (DistStatus == 0) return 1;
  const double a = std::fabs(x);
  // The probability of -a to a: Abramowitz and Stegun 26.7.1; 26.7.8 for many degrees of freedom.
  double q = 0.0;
  if (DOF < kGaussFrom) {
    double b = 0.0;
    const int status = BetaDist::EvalCdf(DOF * 0.5, 0.5, 0.0, 1.0, DOF / (a * a + DOF), b);
    if (status != 0) {
      console::Print(" *** ERROR 1 in StudTDist::EvalCdf *** \n");
      return status;
    }
    q = 1.0 - b;
  } else {
    const double v = ((1.0 - (1.0 / DOF) * 0.25) * a) / std::sqrt(a * 0.5 * a * (1.0 / DOF) + 1.0);
    double g = 0.0;
    const int status = StdGaussCdf(v, g);
    if (status != 0) {
      console::Print(" *** ERROR 2 in StudTDist::EvalCdf *** \n");
      return status;
    }
    q = g * 2.0 - 1.0;
  }
  p = x < 0.0 ? (1.0 - q) * 0.5 : (q + 1.0) * 0.5;
  return 0;
}

int StudTDist::EvalInvCdf(const double& p, double& x) const {
  if (DistStatus == 0) return 1;
  if (p <= 0.0) return 2;
  if (p >= 1.0) return 3;
  if (!(DOF > 0.0)) return 1;
  if (p == 0.5) {
    x = 0.0;
    return 0;
  }

  const double q = p > 0.5 ? 2.0 * p - 1.0 : 1.0 - 2.0 * p;  // the probability of -|x| to |x|
  double quantile = 0.0;
  if (DOF >= kGaussFrom) {
    double z = 0.0;
    const int status = StdGaussInvCdf((q + 1.0) * 0.5, z);
    if (status != 0) {
      console::Print(" *** ERROR 2 in StudTDist::EvalInvCdf *** \n");
      return status;
    }
    const double c = 1.0 - (1.0 / DOF) * 0.25;
    quantile = z / std::sqrt(c * c - z * 0.5 * z * (1.0 / DOF));
  } else {
    double w = 0.0;
    const int status = BetaDist::EvalInvCdf(DOF * 0.5, 0.5, 0.0, 1.0, 1.0 - q, w);
    if (status != 0) {
      console::Print(" *** ERROR 1 in StudTDist::EvalInvCdf *** \n");
      return status;
    }
    quantile = std::sqrt(DOF / w - DOF);
  }
  x = p < 0.5 ? -quantile : quantile;
  return 0;
}

int StudTDist::GetNumParam(int& count) const {
  count = NumParam;
  return 0;
}

int StudTDist::GetAllowedAttributes(const int& paramIdx, std::vector<int>& ids) const {
  ids.clear();
  if (paramIdx < 0 || paramIdx >= NumParam) return 1;
  if (paramIdx == 0) ids = {kDofType, 0};
  return 0;
}

int StudTDist::GetNumAttributes(long long& count) const {
  count = static_cast<long long>(Attributes.size());
  return 0;
}

int StudTDist::GetDefaultParam(const int& paramIdx, const int& attrType, const double& center,
                               double& out) const {
  if (paramIdx != 0 || attrType != kDofType) return 1;
  Mean mean;
  StdDev stdDev;
  double dof = 0.0;
  const bool given = mean.SetValue(center) == 0 && stdDev.SetValue(std::fabs(center * 0.05)) == 0 &&
                     EvalDofFromMoments(mean, stdDev, dof) == 0;
  out = given ? dof : 5.0;
  return 0;
}

int StudTDist::GetNumKind(int& kind) const {
  kind = NumKind;
  return 0;
}

int StudTDist::GetDistKind(int& kind) const {
  kind = DistKind;
  return 0;
}

int StudTDist::CopyTo(DistType* target) const {
  auto* const student = dynamic_cast<StudTDist*>(target);
  if (student == nullptr || DistType::CopyTo(student) != 0) return 1;
  student->DOF = DOF;
  student->DOFStatus = DOFStatus;
  return 0;
}

int StudTDist::ResetParams() {
  DOFStatus = 0;
  DistStatus = 0;
  DOF = -9e99;
  return 0;
}

int StudTDist::SetParam(const int& paramIdx, const double& value) {
  if (paramIdx != 0) return 1;
  if (!(value > 0.0)) return 2;
  DOF = value;
  DOFStatus = 1;
  DistStatus = 3;
  return 0;
}

int StudTDist::GetParam(const int& paramIdx, double& value) const {
  if (paramIdx != 0) return 1;
  value = DOF;
  return 0;
}

int StudTDist::GetParamStatus(const int& paramIdx, int& status) const {
  if (paramIdx != 0) return 1;
  status = DOFStatus;
  return 0;
}

int StudTDist::EvalDofFromMoments(const DistAttr& mean, const DistAttr& stdDev, double& out) const {
  out = 0.0;
  double m = 0.0;
  double s = 0.0;
  int status = mean.GetValue(m);
  if (status == 0) status = stdDev.GetValue(s);
  if (status != 0) return status;
  if (s > 1.0) return 1;  // where the formula holds: see distributions.h
  out = s * 2.0 * s / (s * s - 1.0);
  return 0;
}

int StudTDist::CheckDof(const double& value) const {
  return !AcceptAnyDof && !(value > 0.0) ? 1 : 0;
}
