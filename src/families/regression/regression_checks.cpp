#include "families/regression/regression_checks.h"

#include "families/regression/regression_fields.h"
#include "pxrom/regression_terms.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

/// How many indices a term of a type has.
std::optional<std::size_t> IndicesOf(std::optional<int> type) {
  switch (type.value_or(0)) {
    case FuncTypeConst:
      return 0;
    case FuncTypeLinear:
      return 1;
    case FuncTypePureQuad:
    case FuncTypeCrossQuad:
      return 2;
    default:
      return std::nullopt;
  }
}

void ReportIndices(const GroupText& in, E_FindingSeverity severity, std::string expected,
                   std::string sentence) {
  const std::string& label = Labels::attQRSRegTermInputVarIdx();
  in.Report(severity, FindingTermWrong, label, Shortened(WithoutBlanks(in.TextOf(label))),
            std::move(expected), std::move(sentence));
}

void CheckIndices(const GroupText& in, std::optional<int> inputs) {
  const std::optional<int> type = in.Int(Labels::attQRSRegTermFuncType());
  const std::optional<std::size_t> needed = IndicesOf(type);
  const std::vector<int> indices = in.Ints(Labels::attQRSRegTermInputVarIdx());
  // The constant term ignores indices.
  if (!needed || (*needed == 0 && indices.empty())) return;
  if (indices.size() != *needed) {
    ReportIndices(in, *needed == 0 ? SeverityWarning : SeverityError, std::to_string(*needed),
                  "a term of type " + std::to_string(*type) + " has " +
                      (*needed == 1 ? "1 index" : std::to_string(*needed) + " indices") +
                      ", this one " + std::to_string(indices.size()));
    return;
  }
  for (const int index : indices) {
    if (index >= 0 && (!inputs || index < *inputs)) continue;
    ReportIndices(in, SeverityError, "0 to " + std::to_string(inputs.value_or(1) - 1),
                  "the index " + std::to_string(index) + " is not one of the surface's inputs");
    return;
  }
  const bool isSame = indices.size() == 2 && indices[0] == indices[1];
  if (type == FuncTypePureQuad && !isSame) {
    ReportIndices(in, SeverityError, "one index twice",
                  "a square has one index twice, this one is a product of two inputs");
  }
  if (type == FuncTypeCrossQuad && isSame) {
    ReportIndices(in, SeverityWarning, "two indices",
                  "a product of an input with itself has half the derivative that it should have; "
                  "a square is a term of type 3");
  }
}

// Whether the term is active.
bool CheckTerm(const SurfaceText& surface, const Group& group) {
  const KeyTable& keys = FamilyOf<CQRSData>::family.innerKeys();
  GroupText in = surface.in.Inner(group, {&keys});
  in.Require(keys);
  in.Finish();
  CheckIndices(in, surface.shape.inputs);
  const std::string& coefficient = Labels::attQRSRegTermParameter();
  if (in.Length(coefficient).value_or(1) != 1) {
    in.Report(SeverityError, FindingTermWrong, coefficient,
              Counted(*in.Length(coefficient), "value"), "1",
              "a term has 1 coefficient, this one " + std::to_string(*in.Length(coefficient)));
  }
  return in.Int(Labels::attQRSRegTermIsActive()) == 1;
}

// The number of active terms; empty when a term is missing or damaged.
std::optional<std::size_t> CheckTerms(const SurfaceText& surface) {
  const GroupText& in = surface.in;
  const Outline& outline = in.Groups();
  const std::string& label = Labels::attQRSMaxRegTerm();
  const std::optional<int> count = in.Int(label);
  if (!count || *count < 0 || outline.IsDamaged(in.Self())) return std::nullopt;

  std::size_t there = 0;
  int contiguous = 0;
  std::size_t active = 0;
  const Group* extra = nullptr;
  const std::size_t parent = outline.IndexOf(in.Self());
  for (const std::size_t index : in.Self().children) {
    const Group& term = outline.At(index);
    if (term.word != Word::RegTerm) continue;
    ++there;
    if (term.id < 0 || term.id >= *count) {
      if (extra == nullptr) extra = &term;
    } else if (CheckTerm(surface, term)) {
      ++active;
    }
  }
  while (outline.Find(Word::RegTerm, contiguous, parent) != nullptr) ++contiguous;
  if (static_cast<std::size_t>(contiguous) == there && contiguous != *count) {
    in.Report(SeverityError, FindingCardinalityMismatch, label, std::to_string(*count),
              std::to_string(there),
              Quoted(label) + " is " + std::to_string(*count) + ", there are " +
                  Counted(there, "RegTerm group"));
    return std::nullopt;
  }
  if (contiguous >= *count && extra == nullptr) return active;
  const std::string number = std::to_string(contiguous);
  if (extra != nullptr && contiguous < *count) {
    in.Reports().Add(SeverityError, FindingGroupMissing,
                     {extra->tag, outline.PathOf(*extra), "", std::to_string(extra->id), number},
                     "the group RegTerm " + number + " of " + in.Path() +
                         " is missing; this one has the number " + std::to_string(extra->id));
  } else if (extra != nullptr) {
    in.Reports().Add(SeverityWarning, FindingGroupUnused,
                     {extra->tag, outline.PathOf(*extra), "", "", ""},
                     outline.PathOf(*extra) + " is beyond the number of terms");
  } else {
    in.Report(SeverityError, FindingGroupMissing, label, "", "<RegTerm ID=" + number + ">",
              "the group RegTerm " + number + " of " + in.Path() + " is missing");
  }
  return std::nullopt;
}

void CheckInputTransformation(const SurfaceText& surface) {
  const GroupText& in = surface.in;
  const std::optional<int> type = in.Int(Labels::attQRSInputTransformType());
  if (!type || *type == TransformNone || !surface.shape.inputs) return;
  for (const std::string* label :
       {&Labels::attQRSInputTransformValues(), &Labels::attQRSInputLambdas()}) {
    surface.in.Require(*label);
    in.ExpectLength(*label, *surface.shape.inputs,
                    Counted(static_cast<std::size_t>(*surface.shape.inputs), "input"));
  }
}

// Checks the count of selected terms, which with error data is the order of their matrix.
void CheckSelected(const SurfaceText& surface, std::optional<std::size_t> active, bool hasData) {
  const GroupText& in = surface.in;
  const std::string& label = Labels::attQRSNumSelRegTerm();
  const std::string& matrix = Labels::attQRSInverseOfXtX();
  std::optional<std::int64_t> order = in.Int(label);
  if (active && order && *order != static_cast<std::int64_t>(*active)) {
    in.Report(hasData ? SeverityError : SeverityWarning, FindingCardinalityMismatch, label,
              std::to_string(*order), std::to_string(*active),
              Quoted(label) + " is " + std::to_string(*order) + ", " + Counted(*active, "term") +
                  (*active == 1 ? " is active" : " are active"));
    order = static_cast<std::int64_t>(*active);
  }
  if (hasData && order && *order >= 0) {
    in.ExpectLength(matrix, *order * *order,
                    Counted(static_cast<std::size_t>(*order), "selected term"));
  }
}

}  // namespace

void CheckRegression(SurfaceText& surface) {
  GroupText& in = surface.in;
  CheckInputTransformation(surface);
  const std::optional<std::size_t> active = CheckTerms(surface);
  const std::string& save = Labels::attQRSSavePredictorError();
  const std::optional<int> version = in.Int(Labels::attQRSVersion());
  const bool isOld = version && *version < QRSDataVersion192;
  const bool hasData = in.Bool(save) && !isOld;
  CheckSelected(surface, active, hasData);
  if (hasData) in.Require(FamilyOf<CQRSData>::family.keys().keysOfPart);
  if (in.Bool(save) && isOld) {
    in.Report(SeverityWarning, FindingErrorDataIgnored, save, "", "",
              "the data of the predictor error is not read, since the version is below 192");
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
