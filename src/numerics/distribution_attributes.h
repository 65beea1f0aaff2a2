#pragma once

#include <cstdint>
#include <limits>
#include <memory>

/// The state of an attribute after its last SetValue.
enum E_DistAttrStatus : std::int32_t {
  DistAttrNotSet = 0,
  DistAttrNotAboveLower = 5,
  DistAttrNotBelowUpper = 6,  ///< of a range that excludes its upper limit
  DistAttrAboveUpper = 7,
  DistAttrSet = 8,
};

/// One named quantity that describes a distribution, such as its mean. SetValue returns 0 when it
/// takes a value. A refused value changes nothing, and GetAttrStatus gives the reason.
class DistAttr {
 public:
  virtual ~DistAttr();
  /// A value with a probability. Only Prct has it; the others return 1 and do nothing.
  virtual int SetValue(const double& value, const double& prob);
  virtual int SetValue(const double& value) = 0;
  /// Only Prct has it, as above.
  virtual int GetValue(double& value, double& prob) const;
  virtual int GetValue(double& value) const;
  virtual int GetAttrType(int& type) const;
  virtual int GetAttrStatus() const;
  /// Copies all fields, the type too. 1 when `target` is null.
  virtual int CopyTo(DistAttr* target) const;

 protected:
  explicit DistAttr(std::int32_t type, double value = -99.0) : Value(value), AttrType(type) {}
  DistAttr(const DistAttr&) = default;
  DistAttr& operator=(const DistAttr&) = default;

  double Value;
  std::int32_t AttrType;
  std::int32_t AttrStatus = DistAttrNotSet;
};

/// An attribute that is a statistic of a distribution.
class DistStat : public DistAttr {
  using DistAttr::DistAttr;
};

/// An attribute that is a parameter of a distribution.
class DistParam : public DistAttr {
  using DistAttr::DistAttr;
};

/// Which values an attribute takes.
struct DistAttrRule {
  bool anyValue;                                           ///< else only those above 0
  int refusal = 1;                                         ///< status for a value not above 0
  double upper = std::numeric_limits<double>::infinity();  ///< a value above it gives status 1
  double initial = -99.0;
};

namespace dist_attr_rules {
inline constexpr DistAttrRule kAnyValue{true};
inline constexpr DistAttrRule kMode{true, 1, std::numeric_limits<double>::infinity(), -9e99};
inline constexpr DistAttrRule kUpTo70{true, 1, 70.0};
inline constexpr DistAttrRule kPositive{false};
inline constexpr DistAttrRule kPositiveUpTo50{false, 1, 50.0};
inline constexpr DistAttrRule kPositiveUpTo1000{false, 1, 1000.0};
// Two attributes return 2 where the others return 1: see distributions.h.
inline constexpr DistAttrRule kPositiveOr2{false, 2};
inline constexpr DistAttrRule kPositiveUpTo1000Or2{false, 2, 1000.0};
}  // namespace dist_attr_rules

/// An attribute of one number.
template <class Kind, std::int32_t type, const DistAttrRule& rule>
class NumberAttr : public Kind {
 public:
  NumberAttr() : Kind(type, rule.initial) {}

  using DistAttr::SetValue;
  int SetValue(const double& value) override {
    if (!rule.anyValue && !(value > 0.0)) {
      this->AttrStatus = DistAttrNotAboveLower;
      return rule.refusal;
    }
    if (value > rule.upper) {
      this->AttrStatus = DistAttrAboveUpper;
      return 1;
    }
    this->Value = value;
    this->AttrStatus = DistAttrSet;
    return 0;
  }
};

using LwrBnd = NumberAttr<DistStat, 1, dist_attr_rules::kAnyValue>;
using UprBnd = NumberAttr<DistStat, 2, dist_attr_rules::kAnyValue>;
using Range = NumberAttr<DistStat, 3, dist_attr_rules::kPositive>;
using Mean = NumberAttr<DistStat, 4, dist_attr_rules::kAnyValue>;
using StdDev = NumberAttr<DistStat, 5, dist_attr_rules::kPositive>;
using MaxLikeVal = NumberAttr<DistParam, 7, dist_attr_rules::kAnyValue>;
using LogMean = NumberAttr<DistParam, 8, dist_attr_rules::kUpTo70>;
using LogStdDev = NumberAttr<DistParam, 9, dist_attr_rules::kPositiveUpTo50>;
using ExpoDecay = NumberAttr<DistParam, 10, dist_attr_rules::kPositiveOr2>;
using BetaShapeR = NumberAttr<DistParam, 11, dist_attr_rules::kPositiveUpTo1000Or2>;
using BetaShapeT = NumberAttr<DistParam, 12, dist_attr_rules::kPositiveUpTo1000>;
using GammaDecay = NumberAttr<DistParam, 13, dist_attr_rules::kPositive>;
using GammaExpo = NumberAttr<DistParam, 14, dist_attr_rules::kPositive>;
using WeibExpo = NumberAttr<DistParam, 15, dist_attr_rules::kPositive>;
using WeibChar = NumberAttr<DistParam, 16, dist_attr_rules::kPositive>;
using StudTDOF = NumberAttr<DistParam, 17, dist_attr_rules::kPositive>;
using FishFNumer = NumberAttr<DistParam, 18, dist_attr_rules::kPositive>;
using FishFDenom = NumberAttr<DistParam, 19, dist_attr_rules::kPositive>;
using Mode = NumberAttr<DistStat, 20, dist_attr_rules::kMode>;

/// A quantile: `Value` is reached with probability `Prob`.
class Prct : public DistAttr {
 public:
  Prct();

  /// Takes a `prob` strictly between 0 and 1. **`value` is stored even when `prob` is refused.**
  int SetValue(const double& value, const double& prob) override;
  /// The value 1.0 with the probability `prob`.
  int SetValue(const double& prob) override;
  int GetValue(double& value, double& prob) const override;
  /// The probability, not the value.
  int GetValue(double& prob) const override;
  /// 1 also when `target` is not a Prct.
  int CopyTo(DistAttr* target) const override;

 private:
  double Prob = -99.0;
};

/// A new attribute of type 1 to 20, null for another type.
std::unique_ptr<DistAttr> NewDistAttr(int type);
