#pragma once

#include "families/family_of.h"
#include "kernels/table.h"
#include "pxrom/linear_basis.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CLBFData> {
  static constexpr E_DataType kType = DT_LBFData;
  static constexpr const char* kName = "linear basis";
  static constexpr const char* kRecordName = "CLBFData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record) {
    using fields::Key;
    using fields::Labels;
    visit(Key(&Labels::attLBFVersion).Version(LBFDataVersion170), "LBFDataVersion",
          record.LBFDataVersion_);
    visit(Key(&Labels::attLBFFunction)
              .Between(LBFGaussian, kernels::Kernels::Largest<E_LinearBasisFunction>()),
          "BasisFunctionType", record.BasisFunctionType);
    visit(Key(&Labels::attLBFPolynomialType).Between(PolyConstant, PolyFullQuadratic),
          "PolynomialType", record.PolynomialType);
    visit(Key(&Labels::attLBFKernelValues), "KernelValues", record.KernelValues);
    visit(Key(&Labels::attLBFPolynomialCoefficients), "PolynomialCoefficients",
          record.PolynomialCoefficients);
    visit(Key(&Labels::attLBFKernelCoefficients), "KernelCoefficients", record.KernelCoefficients);
    return 0;
  }
};

}  // namespace Tarvane::Plexura::PXROM
