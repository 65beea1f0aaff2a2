#pragma once

#include <cstdint>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

/// Format version of the constant record.
enum E_CConstantDataVersion : std::int32_t { ConstantDataVersion170 = 170 };

/// A surface that has one value everywhere. The value is held in physical units of the output, so
/// neither scaling of the base record is ever applied to it.
class PXROM_API CConstantData : public CRSData {
 public:
  CConstantData();
  CConstantData(const CConstantData&);
  CConstantData& operator=(const CConstantData&);

  CConstantData* Clone() const override;
  ~CConstantData() override;
  int ResetData() override;
  E_DataType DataType() const override;

  int GetConstantValue(double& value) const;
  int SetConstantValue(double value);
  E_CConstantDataVersion ConstantDataVersion() const;
  int SetConstantDataVersion(E_CConstantDataVersion version);

 private:
  double ConstantValue = 0.0;
  E_CConstantDataVersion ConstantDataVersion_ = ConstantDataVersion170;
};

/// Evaluates a CConstantData. Only the length of `x` matters; it must match.
class PXROM_API CConstantEvaluator : public CRSEvaluator {
 public:
  CConstantEvaluator() = default;
  CConstantEvaluator(const CConstantEvaluator&) = default;
  CConstantEvaluator& operator=(const CConstantEvaluator&) = default;

  CConstantEvaluator* Clone() const override;
  ~CConstantEvaluator() override;
  /// -2 unless the record has no input variables at all: only then does a constant report an error,
  /// which is 0.0.
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x, double& y,
                              double& predictorError) const override;
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  /// Not offered: 1 with `gradient` untouched.
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;
};

}  // namespace Tarvane::Plexura::PXROM
