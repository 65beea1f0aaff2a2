#include "pxrom/moving_least_squares.h"
#include "writing/write.h"

namespace Tarvane::Plexura::PXROM::writing {

void WriteMLSData(AttributeSink& out, const CRSData& data) {
  const auto& record = static_cast<const CMLSData&>(data);
  WriteRSData(out, record);
  // A reader sets option and percentage together, which leaves the percentage at 0 for some.
  CMLSData read;
  read.SetUsedPointOption(record.UsedPointOption, record.ExtraPointPercent);
  if (IsUnset(read.ExtraPointPercent) && !IsUnset(record.ExtraPointPercent)) {
    out.Refuse("an MLSExtraPointPercent other than 0 needs option 3 and must not be -1");
  }
  out.Put(Labels::attMLSVersion(), record.MLSDataVersion_);
  out.Put(Labels::attMLSWeightFunction(), record.WeightFunction);
  out.Put(Labels::attMLSPolynomialType(), record.PolynomialType);
  out.Put(Labels::attMLSUsedPointsOption(), record.UsedPointOption);
  out.Put(Labels::attMLSExtraPointPercent(), record.ExtraPointPercent);
  out.Put(Labels::attMLSNumberOfBasisFunctions(), record.NumberOfBasisFunctions);
  out.Put(Labels::attMLSNumberOfUsedPoints(), record.NumberOfUsedPoints);
}

}  // namespace Tarvane::Plexura::PXROM::writing
