#pragma once

#include <algorithm>
#include <limits>
#include <vector>

#include "families/family_of.h"
#include "kernels/table.h"
#include "pxrom/gaussian_process.h"

namespace Tarvane::Plexura::PXROM {

template <>
struct FamilyOf<CGaussianProcessData> {
  static constexpr E_DataType kType = DT_GaussianProcessData;
  static constexpr const char* kName = "Gaussian process";
  static constexpr const char* kRecordName = "CGaussianProcessData";
  static const Family family;
  static costing::SurfaceCost CostOf(const CRSData& record, double reach);

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record);
  template <class Visitor, class Record>
  static void LengthFields(Visitor& visit, Record& record);
  template <class Visitor, class Record>
  static int ErrorFields(Visitor& visit, Record& record);
};

namespace gaussian_process {

/// Why a text can't hold the record, as the end of a sentence that begins with it; or null.
const char* ReasonAgainst(const CGaussianProcessData& record);

}  // namespace gaussian_process

template <class Visitor, class Record>
int FamilyOf<CGaussianProcessData>::Fields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  if constexpr (Visitor::kWrites) {
    if (const char* const reason = gaussian_process::ReasonAgainst(record)) {
      visit.Text().Refuse(reason);
    }
  }
  visit(Key(&Labels::attGPVersion).Version(GaussianProcessDataVersion1).RefusesOthers(),
        "GaussianProcessDataVersion", record.GaussianProcessDataVersion_);
  if constexpr (Visitor::kReads) {
    // What another version means is not known.
    if (record.GaussianProcessDataVersion_ != GaussianProcessDataVersion1) return 1;
  }
  visit(Key(&Labels::attGPPolynomialType).Between(PolyNone, PolyFullQuadratic), "PolynomialType",
        record.PolynomialType);
  visit(Key(&Labels::attGPMonomials).Optional(), "Monomials", record.Monomials);
  visit(Key(&Labels::attGPPolynomialCoefficients), "PolynomialCoefficients",
        record.PolynomialCoefficients);
  visit(Key(&Labels::attGPTermAmplitudes), "TermAmplitudes", record.TermAmplitudes);
  visit(Key(&Labels::attGPFactorTerms), "FactorTerms", record.FactorTerms);
  visit(Key(&Labels::attGPFactorFunctions), "FactorFunctions", record.FactorFunctions);
  visit(Key(&Labels::attGPFactorParameters), "FactorParameters", record.FactorParameters);
  LengthFields(visit, record);
  visit(Key(&Labels::attGPWeights), "Weights", record.Weights);
  visit(Key(&Labels::attGPNoiseVariance).Optional(), "NoiseVariance", record.NoiseVariance);
  visit(Key(&Labels::attGPSavePredictorError).Optional(), "SavePredictorError",
        record.SavePredictorError);
  if (!visit.HasPart(record.SavePredictorError)) return 0;
  return ErrorFields(visit, record);
}

template <class Visitor, class Record>
void FamilyOf<CGaussianProcessData>::LengthFields(Visitor& visit, Record& record) {
  const fields::Key key(&fields::Labels::attGPFactorLengths);
  // A number can't be infinite in a text: 0 says so there, which no length is.
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if constexpr (Visitor::kWrites) {
    std::vector<double> written = record.FactorLengths;
    std::replace(written.begin(), written.end(), kInfinity, 0.0);
    visit(key, "FactorLengths", written);
  } else {
    visit(key, "FactorLengths", record.FactorLengths);
  }
  if constexpr (Visitor::kReads) {
    std::replace(record.FactorLengths.begin(), record.FactorLengths.end(), 0.0, kInfinity);
  }
}

template <class Visitor, class Record>
int FamilyOf<CGaussianProcessData>::ErrorFields(Visitor& visit, Record& record) {
  using fields::Key;
  using fields::Labels;
  visit(Key(&Labels::attGPErrorIncludesNoise).Optional(), "ErrorIncludesNoise",
        record.ErrorIncludesNoise);
  visit(Key(&Labels::attGPInverseFactor), "InverseFactor", record.InverseFactor);
  visit(Key(&Labels::attGPTrendInverseFactor).Optional(), "TrendInverseFactor",
        record.TrendInverseFactor);
  // As many rows as the trend has coefficients, and none where it is known.
  const std::size_t p =
      record.TrendInverseFactor.empty() ? 0 : record.PolynomialCoefficients.size();
  constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<int>::max());
  return visit.Matrix(Key(&Labels::attGPTrendAtSamples).Optional(), "TrendAtSamples",
                      record.TrendAtSamples, static_cast<int>(std::min(p, kMost)),
                      p == 0 ? 0 : record.NumberOfSamples);
}

}  // namespace Tarvane::Plexura::PXROM
