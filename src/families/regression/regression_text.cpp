// The text of a regression record beyond its fields: the groups of its terms, and the order of the
// matrix of its error.

#include <memory>
#include <vector>

#include "families/regression/record_parts.h"
#include "families/regression/regression_fields.h"
#include "families/regression/terms.h"

namespace Tarvane::Plexura::PXROM {

namespace regression {

namespace {

using writing::Labels;

/// A term from its group, or null for a type that no database holds. Indices or coefficients whose
/// number does not fit the term are ignored, and its evaluation then refuses.
std::unique_ptr<RegTerm> ReadTerm(reading::AttributeRange& in) {
  TermText text;
  fields::FieldReader reader(in);
  TermFields(reader, text);

  // A product of any number of variables has no fixed number of indices to compare with.
  if (text.type == FuncTypeCrossPoly) return nullptr;
  std::unique_ptr<RegTerm> term = TermSum::NewTerm(text.type);
  if (!term) return nullptr;
  if (text.isActive == 1) {
    term->SetActive();
  } else {
    term->SetInactive();
  }
  int count = 0;
  term->GetNumUsedInpVar(count);
  if (count != 0 && text.indices.size() == static_cast<std::size_t>(count)) {
    term->SetUsedInpVarIdx(count, text.indices.data());
  }
  term->GetNumParam(count);
  if (text.coefficients.size() == static_cast<std::size_t>(count)) {
    term->SetParamVal(count, text.coefficients.data());
  }
  return term;
}

void WriteTerm(writing::AttributeSink& out, const RegTerm& term) {
  TermText text;
  text.type = FuncTypeCrossPoly;
  term.GetFuncType(text.type);
  const std::unique_ptr<RegTerm> plain =
      text.type == FuncTypeCrossPoly ? nullptr : TermSum::NewTerm(text.type);
  int indexCount = 0;
  int plainIndexCount = 0;
  int coefficientCount = 0;
  int plainCoefficientCount = 0;
  term.GetNumUsedInpVar(indexCount);
  term.GetNumParam(coefficientCount);
  if (plain != nullptr) {
    plain->GetNumUsedInpVar(plainIndexCount);
    plain->GetNumParam(plainCoefficientCount);
  }
  // A host's own term may have lists of unknown lengths, so it is not asked for them.
  if (plain == nullptr || indexCount != plainIndexCount ||
      coefficientCount != plainCoefficientCount) {
    return out.Refuse("no database holds a term of this kind");
  }
  text.isActive = term.QryIsActive();
  if (text.isActive != 0 && text.isActive != 1) out.Refuse("its activity is neither 0 nor 1");

  // If the term has no indices or no coefficient, the list stays empty and is read as missing.
  text.indices.resize(static_cast<std::size_t>(indexCount));
  if (term.GetUsedInpVarIdx(text.indices.data()) != 0) text.indices.clear();
  text.coefficients.resize(static_cast<std::size_t>(coefficientCount));
  if (!TermSum::HasCoefficient(term) || term.GetParamVal(text.coefficients.data()) != 0) {
    text.coefficients.clear();
  }
  fields::FieldWriter writer(out);
  TermFields(writer, text);
}

}  // namespace

int ReadTerms(reading::AttributeRange& in, int count, CQRSData& record) {
  if (count < 0) return 1;
  // Grows with the groups that exist, since the count may be wrong.
  std::vector<std::unique_ptr<RegTerm>> terms;
  for (int k = 0; k < count; ++k) {
    reading::Bounds bounds;
    const bool isThere =
        in.Text().FindGroupInside(Labels::tagQRSRegTerm(), k, in.Range(), bounds) &&
        bounds.upper > bounds.lower && bounds.upper <= in.Range().upper;
    if (!isThere || in.Text().IsExhausted()) return 1;
    reading::AttributeRange group(in.Text(), bounds);
    terms.push_back(ReadTerm(group));
    if (!terms.back()) return 1;
  }
  std::vector<RegTerm*> pointers;
  pointers.reserve(terms.size());
  for (const std::unique_ptr<RegTerm>& term : terms) pointers.push_back(term.get());
  return record.SetRegTerm(pointers.data(), count);
}

void WriteTerms(writing::AttributeSink& out, const CQRSData& record) {
  if (record.NumberOfRegTerms < 0 || !HasTermArray(record)) {
    out.Refuse("it counts terms that are not there");
  }
  for (int k = 0; k < record.NumberOfRegTerms && !out.IsRefused(); ++k) {
    out.PutGroup(Labels::tagQRSRegTerm(), k, [&] {
      const RegTerm* const term = TermOf(record, k);
      if (term == nullptr) return out.Refuse("the term is missing");
      WriteTerm(out, *term);
    });
  }
}

}  // namespace regression

int reading::ResumeQRSDataPredictorError(AttributeRange& in, CRSData* data) {
  auto* const record = RecordOf<CQRSData>(data, DT_QRSData);
  if (record == nullptr) return 1;
  int order = 0;
  in.Catch(Labels::attQRSNumSelRegTerm(), order);
  fields::FieldReader reader(in);
  return FamilyOf<CQRSData>::ErrorFields(reader, *record, order);
}

}  // namespace Tarvane::Plexura::PXROM
