#pragma once

#include <vector>

#include "families/family_of.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CSVRData> {
  static constexpr E_DataType kType = DT_SVRData;
  static constexpr const char* kName = "support vector";
  static constexpr const char* kRecordName = "CSVRData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record);
};

template <class Visitor, class Record>
int FamilyOf<CSVRData>::Fields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  if constexpr (Visitor::kWrites) {
    // A reader computes the kernel scales of an older record and changes its version.
    if (record.SVRDataVersion_ < SVRDataVersion171) {
      visit.Text().Refuse("an SVRVersion below 171 has no SVRKernelArray");
    }
  }
  visit(Key(&Labels::attSVRVersion).Version(170, SVRDataVersion171), "SVRDataVersion",
        record.SVRDataVersion_);
  visit(Key(&Labels::attSVRKernType), "SVRKernType", record.SVRKernType);
  visit(Key(&Labels::attSVRCompType).Optional(), "SVRKernCompType", record.SVRKernCompType);
  visit(Key(&Labels::attSVRLossFuncType), "SVRLossFuncType", record.SVRLossFuncType);
  // A value outside its range, and so a missing value too, silently leaves the default.
  visit.Property(
      Key(&Labels::attSVREpsilonValue).Optional(), "EpsilonValue", record, record.EpsilonValue,
      [](auto& to, double value) { return to.SetEpsVal(value); }, "is not between 0 and 1");
  visit.Property(
      Key(&Labels::attSVRNuValue).Optional(), "NuValue", record, record.NuValue,
      [](auto& to, double value) { return to.SetNuVal(value); }, "is not between 0 and 1");
  visit.Property(
      Key(&Labels::attSVRConstantValue).Optional(), "ConstantValue", record, record.ConstantValue,
      [](auto& to, double value) { return to.SetConstVal(value); }, "is not above 0");
  visit(Key(&Labels::attSVRAlpha).Optional(), "Alphas", record.Alphas);
  visit(Key(&Labels::attSVRAlphaStar).Optional(), "AlphasStar", record.AlphasStar);
  visit(Key(&Labels::attSVRBeta).Optional(), "Betas", record.Betas);
  visit(Key(&Labels::attSVRConstCoeff), "ConstantCoefficient", record.ConstantCoefficient);

  const bool hasWidths = Visitor::kWrites || record.SVRDataVersion_ >= SVRDataVersion171;
  if (visit.HasPart(hasWidths)) {
    visit(Key(&Labels::attSVRKernelArray), "KernelArray", record.KernelArray);
    return 0;
  }
  if constexpr (Visitor::kReads) {
    // Deliberate (svr-old-scales): older databases hold no kernel scales, which are then computed
    // from the scaled samples. Samples without any spread have none: the record is read all the
    // same, and its evaluator refuses it.
    std::vector<std::vector<double>> scaled = record.InputSamples;
    record.ScaleAndOverwriteInputSamples(scaled);
    record.EvaluateKernelArray(scaled, record.KernelArray);
    record.SVRDataVersion_ = SVRDataVersion171;
  }
  return 0;
}

}  // namespace Tarvane::Plexura::PXROM
