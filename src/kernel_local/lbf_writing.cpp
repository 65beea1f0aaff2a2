#include "pxrom/linear_basis.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM::writing {

void WriteLBFData(AttributeSink& out, const CRSData& data) {
  const auto& record = static_cast<const CLBFData&>(data);
  WriteRSData(out, record);
  out.Put(Labels::attLBFVersion(), record.LBFDataVersion_);
  out.Put(Labels::attLBFFunction(), record.BasisFunctionType);
  out.Put(Labels::attLBFPolynomialType(), record.PolynomialType);
  out.Put(Labels::attLBFKernelValues(), record.KernelValues);
  out.Put(Labels::attLBFPolynomialCoefficients(), record.PolynomialCoefficients);
  out.Put(Labels::attLBFKernelCoefficients(), record.KernelCoefficients);
}

}  // namespace Tarvane::Plexura::PXROM::writing
