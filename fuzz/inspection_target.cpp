#include <map>

#include "model_inputs.h"
#include "pxrom/database_reader.h"
#include "pxrom/inspection.h"
#include "targets.h"
#include "text/check_points.h"

namespace fuzz {

namespace {

using namespace Tarvane::Plexura::PXROM;

void CheckFindings(const CInspectionReport& report) {
  std::map<E_FindingCode, int> counts;
  const CFinding* before = nullptr;
  for (const CFinding& finding : report.findings) {
    Require(*FindingCodeName(finding.code) != '\0' && !finding.sentence.empty(),
            "a finding has a name and a sentence");
    Require(finding.line >= 1 && finding.column >= 1, "a finding has a place");
    Require(before == nullptr || before->line < finding.line ||
                (before->line == finding.line && before->column <= finding.column),
            "findings are in the order of their places");
    Require(++counts[finding.code] <= 100, "a code is listed a hundred times at most");
    before = &finding;
  }
  Require(report.errors + report.warnings + report.notes >= report.findings.size(),
          "the counts have all findings");
}

bool Has(const CInspectionReport& report, E_FindingCode code) {
  for (const CFinding& finding : report.findings) {
    if (finding.code == code) return true;
  }
  return false;
}

bool IsRead(std::string text, CDiscreteCombinations& model) {
  CReaderPXROMDatabase reader;
  reader.ReadDataStream(text);
  try {
    return reader.ResumeDiscreteCombinations(model) == 0;
  } catch (const std::out_of_range&) {
    return false;
  }
}

// Whether every combination evaluates in the middle of its bounds; `most` of them with errors, for
// which the whole model is copied.
bool Evaluates(const CDiscreteCombinations& model, bool errorsToo, std::size_t most) {
  NamedValues middle;
  for (const std::string& id : model.ListParameterImmutableID(CausalityInput, true)) {
    if (!model.IsContinuous(id)) continue;
    const auto lower = model.ListLowerBound({id});
    const auto upper = model.ListUpperBound({id});
    if (lower.empty() || upper.empty()) return false;
    middle.emplace_back(id, 0.5 * lower[0].second + 0.5 * upper[0].second);
  }
  const std::vector<std::string> ids = model.ListEnabledDiscreteParameterWrtRegistrationRank();
  std::size_t tried = 0;
  for (const auto& combination : *model.GetDiscreteCombinationsIndexingPtr()) {
    NamedInts discrete;
    for (std::size_t i = 0; i < ids.size() && i < combination.first.size(); ++i) {
      discrete.emplace_back(ids[i], combination.first[i]);
    }
    NamedValues outputs;
    NamedValues errors;
    if (model.Evaluate(discrete, middle, outputs) != 0) return false;
    if (errorsToo && tried++ < most &&
        CDiscreteCombinations(model).Evaluate(discrete, middle, outputs, errors) == 1) {
      return false;
    }
  }
  return true;
}

/// The text with the checksum that its check points need, so that these are evaluated.
std::string WithItsChecksum(std::string text) {
  const reading::CheckPointsGroup group = reading::FindCheckPoints(text);
  if (group.fault != nullptr || group.begin == text.size()) return text;
  static const std::string kWord = "Checksum ";
  std::string digits(16, '0');
  std::uint64_t checksum = reading::ChecksumOf(std::string_view(text).substr(0, group.covered));
  for (std::size_t i = digits.size(); i > 0; --i, checksum >>= 4U) {
    digits[i - 1] = "0123456789abcdef"[checksum & 0xfU];
  }
  return text.replace(group.covered + kWord.size(), digits.size(), digits);
}

}  // namespace

void RunInspection(std::string_view data) {
  const std::string text = WithItsChecksum(std::string(data));
  const CInspectionReport report = InspectPXROMDatabase(text);
  CheckFindings(report);
  CDiscreteCombinations model;
  const bool isRead = IsRead(text, model);
  Require(isRead || report.errors > 0, "a text without an error is read");
  if (!isRead || Has(report, FindingNotTried)) return;
  // Much that is wrong evaluates all the same.
  const bool evaluates =
      Evaluates(model, !Has(report, FindingErrorFormRefused), ModelInputs(data).MostCombinations());
  Require(evaluates || report.errors > 0, "a text without an error evaluates");
}

}  // namespace fuzz
