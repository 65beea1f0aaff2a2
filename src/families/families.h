#pragma once

#include "families/constant/constant_fields.h"
#include "families/gaussian_process/gaussian_process_fields.h"
#include "families/kriging/kriging_fields.h"
#include "families/linear_basis/lbf_fields.h"
#include "families/moving_least_squares/mls_fields.h"
#include "families/plain/plain_fields.h"
#include "families/polynomial/polynomial_fields.h"
#include "families/regression/regression_fields.h"
#include "families/support_vector/svr_fields.h"

namespace Tarvane::Plexura::PXROM {

template <class... Records>
struct RecordList {};

/// The families of the library, by ascending number. This is the only list. A family without its
/// description does not compile, and one without its `family` does not link.
using AllRecords = RecordList<CRSData, CQRSData, CKrigingData, CSVRData, CMLSData, CLBFData,
                              CConstantData, CGaussianProcessData, CPolynomialData>;

template <class Records>
struct FamilyRows;
template <class... Records>
struct FamilyRows<RecordList<Records...>> {
  static constexpr const Family* kRows[] = {&FamilyOf<Records>::family...};
};

/// The families of a list of records, for kAllFamilies.
template <class First, class... Others>
constexpr FamilyList FamiliesOf(RecordList<First, Others...>) noexcept {
  using Rows = FamilyRows<RecordList<First, Others...>>;
  return {Rows::kRows, 1 + sizeof...(Others), FamilyOf<First>::kType};
}

}  // namespace Tarvane::Plexura::PXROM
