#pragma once

#include "pxrom/regression.h"
#include "support/surfaces.h"

namespace Tarvane::Plexura::PXROM {

inline const CQRSEvaluator kEvaluator;

struct TermSpec {
  E_FuncType type;
  std::vector<int> indices;
  double coefficient;
  bool isActive = true;
};

inline std::unique_ptr<RegTerm> MakeTerm(const TermSpec& spec) {
  std::unique_ptr<RegTerm> term;
  if (spec.type == FuncTypeConst) term = std::make_unique<ConstTerm>();
  if (spec.type == FuncTypeLinear) term = std::make_unique<LinearTerm>();
  if (spec.type == FuncTypePureQuad) term = std::make_unique<PureQuadTerm>();
  if (spec.type == FuncTypeCrossQuad) term = std::make_unique<CrossQuadTerm>();
  if (spec.type == FuncTypeCrossPoly) term = std::make_unique<CrossPolyTerm>();
  if (!spec.isActive) term->SetInactive();
  const int count = static_cast<int>(spec.indices.size());
  // Twice: a product of any list takes its indices the second time.
  term->SetUsedInpVarIdx(count, spec.indices.data());
  term->SetUsedInpVarIdx(count, spec.indices.data());
  term->SetParamVal(1, &spec.coefficient);
  return term;
}

inline void SetTerms(CQRSData& record, const std::vector<TermSpec>& specs) {
  std::vector<std::unique_ptr<RegTerm>> terms;
  std::vector<RegTerm*> pointers;
  for (const TermSpec& spec : specs) {
    terms.push_back(MakeTerm(spec));
    pointers.push_back(terms.back().get());
  }
  record.SetRegTerm(pointers.data(), static_cast<int>(pointers.size()));
}

/// A ready record of `inputs` inputs without scaling or transformation.
inline CQRSData PlainRecord(int inputs, const std::vector<TermSpec>& specs,
                            const Matrix& samples = {}, const Vector& outputs = {}) {
  CQRSData record;
  MakeReady(record, inputs, samples, outputs);
  SetTerms(record, specs);
  return record;
}

/// One active constant, 11 samples: the error is sqrt(1.25 * 4) times the quantile.
inline CQRSData ConstantRecord(double constant) {
  CQRSData record =
      PlainRecord(1, {{FuncTypeLinear, {0}, 1.0, false}, {FuncTypeConst, {}, constant}});
  record.NumberOfSamples = 11;
  record.InvXtX = {{0.25}};
  record.Sigma2 = 4.0;
  return record;
}
constexpr double kConstantsError = 4.0528;  // to 1e-4

}  // namespace Tarvane::Plexura::PXROM
