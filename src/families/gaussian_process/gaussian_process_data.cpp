#include <algorithm>
#include <cstddef>

#include "families/gaussian_process/gaussian_process_fields.h"
#include "families/gaussian_process/process.h"

namespace Tarvane::Plexura::PXROM {

CGaussianProcessData::CGaussianProcessData() = default;
CGaussianProcessData::CGaussianProcessData(const CGaussianProcessData&) = default;
CGaussianProcessData& CGaussianProcessData::operator=(const CGaussianProcessData&) = default;
CGaussianProcessData* CGaussianProcessData::Clone() const {
  return new CGaussianProcessData(*this);
}
CGaussianProcessData::~CGaussianProcessData() = default;

int CGaussianProcessData::ResetData() {
  *this = CGaussianProcessData();
  return 0;
}

bool CGaussianProcessData::IsAllRight() {
  return IsScalingCorrect() && gaussian_process::Process(*this).Fits();
}

E_DataType CGaussianProcessData::DataType() const { return DT_GaussianProcessData; }

const char* gaussian_process::ReasonAgainst(const CGaussianProcessData& record) {
  if (record.GaussianProcessDataVersion_ != GaussianProcessDataVersion1) {
    return "its GaussianProcessDataVersion is not known";
  }
  const std::vector<double>& lengths = record.FactorLengths;
  if (std::find(lengths.begin(), lengths.end(), 0.0) != lengths.end()) {
    return "a length in FactorLengths is 0, which would read as an infinite one";
  }
  const bool hasErrorData = record.ErrorIncludesNoise || !record.InverseFactor.empty() ||
                            !record.TrendInverseFactor.empty() || !record.TrendAtSamples.empty();
  if (hasErrorData && !record.SavePredictorError) {
    return "it holds predictor error data, but SavePredictorError is not set";
  }
  return nullptr;
}

}  // namespace Tarvane::Plexura::PXROM
