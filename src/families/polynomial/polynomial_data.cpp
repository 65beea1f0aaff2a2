#include "pxrom/polynomial.h"

namespace Tarvane::Plexura::PXROM {

CPolynomialData::CPolynomialData() = default;
CPolynomialData::CPolynomialData(const CPolynomialData&) = default;
CPolynomialData& CPolynomialData::operator=(const CPolynomialData&) = default;
CPolynomialData* CPolynomialData::Clone() const { return new CPolynomialData(*this); }
CPolynomialData::~CPolynomialData() = default;

int CPolynomialData::ResetData() {
  *this = CPolynomialData();
  return 0;
}

E_DataType CPolynomialData::DataType() const { return DT_PolynomialData; }

}  // namespace Tarvane::Plexura::PXROM
