#include "ensemble/families.h"

#include "pxrom/constant.h"
#include "pxrom/kriging.h"
#include "pxrom/linear_basis.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "pxrom/support_vector.h"

namespace Tarvane::Plexura::PXROM {

namespace {

template <class Record>
std::unique_ptr<CRSData> NewRecord() {
  return std::make_unique<Record>();
}

template <class Evaluator>
const CRSEvaluator& TheEvaluator() {
  static const Evaluator evaluator;
  return evaluator;
}

template <class Record, class Evaluator>
constexpr Family Row(E_DataType type, reading::ResumeOperation resume,
                     writing::WriteOperation write) {
  return {type, &NewRecord<Record>, &TheEvaluator<Evaluator>, resume, write};
}

// A new family is one folder and one row here.
constexpr Family kFamilies[] = {
    Row<CRSData, CRSEvaluator>(DT_RSData, &reading::ResumeRSData, &writing::WriteRSData),
    Row<CKrigingData, CKrigingEvaluator>(DT_KrigingData, &reading::ResumeKrigingData,
                                         &writing::WriteKrigingData),
    Row<CSVRData, CSVREvaluator>(DT_SVRData, &reading::ResumeSVRData, &writing::WriteSVRData),
    Row<CMLSData, CMLSEvaluator>(DT_MLSData, &reading::ResumeMLSData, &writing::WriteMLSData),
    Row<CLBFData, CLBFEvaluator>(DT_LBFData, &reading::ResumeLBFData, &writing::WriteLBFData),
    Row<CQRSData, CQRSEvaluator>(DT_QRSData, &reading::ResumeQRSData, &writing::WriteQRSData),
    Row<CConstantData, CConstantEvaluator>(DT_ConstantData, &reading::ResumeConstantData,
                                           &writing::WriteConstantData),
};

}  // namespace

const Family* FindFamily(E_DataType type) noexcept {
  for (const Family& family : kFamilies) {
    if (family.type == type) return &family;
  }
  return nullptr;
}

}  // namespace Tarvane::Plexura::PXROM
