#include "pxrom/support_vector.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM::writing {

void WriteSVRData(AttributeSink& out, const CRSData& data) {
  const auto& record = static_cast<const CSVRData&>(data);
  WriteRSData(out, record);
  // A reader computes the widths of an older record and raises its version.
  if (record.SVRDataVersion_ < SVRDataVersion171) {
    out.Refuse("an SVRVersion below 171 has no SVRKernelArray");
  }
  out.Put(Labels::attSVRVersion(), record.SVRDataVersion_);
  out.Put(Labels::attSVRKernType(), record.SVRKernType);
  out.Put(Labels::attSVRCompType(), record.SVRKernCompType);
  out.Put(Labels::attSVRLossFuncType(), record.SVRLossFuncType);

  // A reader keeps its defaults in the place of values that the Set operations refuse.
  CSVRData read;
  if (read.SetEpsVal(record.EpsilonValue) != 0) {
    out.Refuse("SVREpsilonValue is not between 0 and 1");
  }
  if (read.SetNuVal(record.NuValue) != 0) out.Refuse("SVRNuValue is not between 0 and 1");
  if (read.SetConstVal(record.ConstantValue) != 0) out.Refuse("SVRConstantValue is not above 0");
  out.Put(Labels::attSVREpsilonValue(), record.EpsilonValue);
  out.Put(Labels::attSVRNuValue(), record.NuValue);
  out.Put(Labels::attSVRConstantValue(), record.ConstantValue);

  out.Put(Labels::attSVRAlpha(), record.Alphas);
  out.Put(Labels::attSVRAlphaStar(), record.AlphasStar);
  out.Put(Labels::attSVRBeta(), record.Betas);
  out.Put(Labels::attSVRConstCoeff(), record.ConstantCoefficient);
  out.Put(Labels::attSVRKernelArray(), record.KernelArray);
}

}  // namespace Tarvane::Plexura::PXROM::writing
