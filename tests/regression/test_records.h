#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pxrom/database_reader.h"
#include "pxrom/regression.h"

namespace Tarvane::Plexura::PXROM {

using Vector = std::vector<double>;
using Matrix = std::vector<std::vector<double>>;

/// What a term is made from.
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
inline CQRSData PlainRecord(int inputs, const std::vector<TermSpec>& specs) {
  CQRSData record;
  record.NumberOfInputVariables = inputs;
  record.InputScaleSlopes.assign(static_cast<std::size_t>(inputs), 1.0);
  record.InputScaleIntercepts.assign(static_cast<std::size_t>(inputs), 0.0);
  record.OutputScaleSlope = 1.0;
  record.ReadyForEvaluation = true;
  SetTerms(record, specs);
  return record;
}

inline void SetSamples(CQRSData& record, const Matrix& inputs, const Vector& outputs) {
  record.InputSamples = inputs;
  record.OutputSamples = outputs;
  record.NumberOfSamples = static_cast<int>(inputs.size());
}

/// Gives a test the protected operations, on the body of a group far enough from the text's start
/// for a missing group not to be found in it.
class QRSReader : public CReaderPXROMDatabase {
 public:
  int Read(const std::string& body, CRSData* record) { return Read(body, record, 0, body.size()); }
  /// On the part of `body` from `lower` to `upper`.
  int Read(const std::string& body, CRSData* record, std::size_t lower, std::size_t upper) {
    Put(body);
    return ResumeQRSData(record, kBefore.size() + lower, kBefore.size() + upper);
  }
  int ReadError(const std::string& body, CRSData* record) {
    Put(body);
    return ResumeQRSDataPredictorError(record, kBefore.size(), std::string::npos);
  }

 private:
  void Put(const std::string& body) {
    std::string text = kBefore + body;
    ReadDataStream(text);
  }

  const std::string kBefore = std::string(64, '\n');
};

}  // namespace Tarvane::Plexura::PXROM
