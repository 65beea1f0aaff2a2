#include "families/polynomial/polynomial_checks.h"

#include <algorithm>
#include <initializer_list>

#include "families/polynomial/polynomial_fields.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

std::string VariablesOf(std::size_t count) { return Counted(count, "variable"); }

/// Reports the first element of a list that is not `first` to `last`.
void CheckElements(const GroupText& in, const std::string& label, const std::string& what,
                   int first, int last) {
  const std::vector<int> values = in.Ints(label);
  const auto wrong = std::find_if(values.begin(), values.end(),
                                  [&](int value) { return value < first || value > last; });
  if (wrong == values.end()) return;
  const auto index = static_cast<std::size_t>(wrong - values.begin());
  const std::string expected = std::to_string(first) + " to " + std::to_string(last);
  in.ReportAt(in.OffsetOfElement(label, index), SeverityError, FindingValueOutOfRange, label,
              std::to_string(*wrong), expected,
              what + " " + std::to_string(index + 1) + " of " + Quoted(label) + " is " +
                  std::to_string(*wrong) + ", it has to be " + expected);
}

/// Reports the first parameter that a basis reads and that is -1 or below.
void CheckParameters(const GroupText& in, const std::string& label,
                     std::initializer_list<int> readers) {
  const std::vector<int> bases = in.Ints(Labels::attPolyVariableBases());
  const std::vector<double> values = in.Doubles(label);
  for (std::size_t v = 0; v < std::min(bases.size(), values.size()); ++v) {
    const bool isRead = std::count(readers.begin(), readers.end(), bases[v]) > 0;
    if (!isRead || values[v] > -1.0) continue;
    in.ReportAt(in.OffsetOfElement(label, v), SeverityError, FindingValueOutOfRange, label,
                NumberText(values[v]), "above -1",
                "value " + std::to_string(v + 1) + " of " + Quoted(label) + " is " +
                    NumberText(values[v]) +
                    ", for which its basis has no density: it has to be above -1");
    return;
  }
}

void CheckVariables(const SurfaceText& surface, std::size_t variables) {
  const GroupText& in = surface.in;
  if (surface.shape.inputs) {
    CheckElements(in, Labels::attPolyVariableInputs(), "input", 0, *surface.shape.inputs - 1);
  }
  for (const std::string* label :
       {&Labels::attPolyVariableTransformTypes(), &Labels::attPolyVariableTransformValues(),
        &Labels::attPolyVariableLambdas(), &Labels::attPolyVariableSlopes(),
        &Labels::attPolyVariableIntercepts(), &Labels::attPolyVariableBases(),
        &Labels::attPolyVariableAlphas(), &Labels::attPolyVariableBetas()}) {
    if (in.Length(*label).value_or(0) == 0) continue;
    in.ExpectLength(*label, static_cast<std::int64_t>(variables), VariablesOf(variables));
  }
  CheckElements(in, Labels::attPolyVariableTransformTypes(), "transformation", TransformNone,
                TransformYeo);
  CheckElements(in, Labels::attPolyVariableBases(), "basis", PolyBasisMonomial,
                PolyBasisRecurrence);
  CheckParameters(in, Labels::attPolyVariableAlphas(), {PolyBasisLaguerre, PolyBasisJacobi});
  CheckParameters(in, Labels::attPolyVariableBetas(), {PolyBasisJacobi});
}

void CheckDegrees(const GroupText& in, std::size_t variables, std::size_t terms) {
  const std::string& label = Labels::attPolyDegrees();
  constexpr int kMost = CPolynomialData::kLargestDegree;
  CheckElements(in, label, "degree", 0, kMost);
  if (!in.ExpectLength(label, static_cast<std::int64_t>(terms * variables),
                       Counted(terms, "term") + " of " + VariablesOf(variables))) {
    return;
  }
  std::vector<int> highest(variables, 0);
  const std::vector<int> degrees = in.Ints(label);
  for (std::size_t at = 0; at < degrees.size(); ++at) {
    int& most = highest[at % variables];
    most = std::max(most, std::clamp(degrees[at], 0, kMost));
  }
  const std::vector<int> bases = in.Ints(Labels::attPolyVariableBases());
  std::int64_t sum = 0;
  std::int64_t steps = 0;
  for (std::size_t v = 0; v < variables; ++v) {
    sum += highest[v];
    if (v < bases.size() && bases[v] == PolyBasisRecurrence) steps += highest[v];
  }
  in.ExpectLength(Labels::attPolyRecurrences(), 3 * steps,
                  Counted(static_cast<std::size_t>(steps), "step") + " of recurrences");
  if (sum <= CPolynomialData::kLargestDegreeSum) return;
  const std::string limit = std::to_string(CPolynomialData::kLargestDegreeSum);
  in.Report(SeverityError, FindingValueOutOfRange, label, std::to_string(sum), limit + " or less",
            "the largest degrees of the variables add up to " + std::to_string(sum) +
                ", and an evaluation takes " + limit + " at most");
}

}  // namespace

void CheckPolynomial(SurfaceText& surface) {
  GroupText& in = surface.in;
  const std::size_t variables = in.Length(Labels::attPolyVariableInputs()).value_or(0);
  CheckVariables(surface, variables);
  const std::string& coefficients = Labels::attPolyCoefficients();
  const std::optional<std::size_t> terms = in.Length(coefficients);
  if (!terms) return;
  if (*terms == 0) {
    in.Report(SeverityError, FindingCountMismatch, coefficients, "0 values", "1 or more",
              "a polynomial has one term or more, this one has none");
  }
  CheckDegrees(in, variables, *terms);
  const std::string& covariance = Labels::attPolyCovariance();
  if (in.Bool(Labels::attPolySavePredictorError())) {
    in.Require(FamilyOf<CPolynomialData>::family.keys().keysOfPart);
    in.ExpectLength(covariance, static_cast<std::int64_t>(*terms * *terms),
                    Counted(*terms, "term"));
  } else if (in.Has(covariance)) {
    in.Report(SeverityWarning, FindingErrorDataIgnored, covariance, "", "",
              Quoted(covariance) + " is not read, since " +
                  Quoted(Labels::attPolySavePredictorError()) + " is not 1");
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
