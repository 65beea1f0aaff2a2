#include "report_page.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "file_names.h"
#include "html.h"
#include "html_table.h"
#include "overview.h"
#include "pxrom/version.h"
#include "report/assets.h"
#include "validation_section.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

using Row = HtmlTable::Row;

std::string KindOf(const pxrom::CParameterOverview& parameter) {
  return TypeOf(parameter.type) + (parameter.enabled ? "" : ", disabled");
}

void AppendParameters(const ParametersByRank& parameters, pxrom::E_ParameterCausality causality,
                      std::string& html) {
  const bool inputs = causality == pxrom::CausalityInput;
  const std::string title = inputs ? "Inputs" : "Outputs";
  Row heads = {{"ID", ""}, {"Caption", ""}, {"Kind", ""}};
  if (inputs) heads.push_back({"Range", ""});
  heads.push_back({"Unit", ""});
  HtmlTable table(title, heads);
  for (const auto& parameter : parameters) {
    if (parameter.causality != causality) continue;
    Row row = {{parameter.id, "id"}, {parameter.caption, ""}, {KindOf(parameter), ""}};
    if (inputs) row.push_back({RangeOf(parameter), ""});
    row.push_back({parameter.unit, ""});
    table.Add(row);
  }
  html += SectionStart(inputs ? "input-list" : "output-list", title);
  table.AppendTo(html);
  html += kSectionEnd;
}

void AppendEnsembles(const pxrom::CDatabaseOverview& overview, const ParametersByRank& parameters,
                     std::string& html) {
  const RanksById ranks = RanksOf(parameters);
  const EnsemblesById ensembles = ById(overview);
  HtmlTable table("Surfaces", {{"Combination", ""},
                               {"Output", ""},
                               {"Weights and surfaces", ""},
                               {"Samples", "number"},
                               {"Folds", "number"},
                               {"Error from", ""}});
  for (const auto& combination : overview.combinations) {
    std::string text = TextOf(combination, ranks);
    for (const auto& [output, id] : combination.outputs) {
      Row row = {{text, ""}, {output, "id"}};
      const auto found = ensembles.find(id);
      if (found == ensembles.end()) {
        row.insert(row.end(), {{"damaged or missing", ""}, {}, {}, {}});
      } else {
        const pxrom::CEnsembleOverview& ensemble = *found->second;
        row.insert(row.end(),
                   {{SurfacesOf(ensemble), ""},
                    {std::to_string(ensemble.samples), "number"},
                    {ensemble.folds == 0 ? "" : std::to_string(ensemble.folds), "number"},
                    {ErrorKindOf(ensemble), ""}});
      }
      table.Add(row);
      text.clear();
    }
  }
  html += SectionStart("surface-list", "Surfaces");
  html +=
      "<p class=\"note\">Each output of a combination is a weighted sum of surfaces. Its error "
      "comes from cross-validation or from what the surfaces report, and is shown in the unit of "
      "the output.</p>\n";
  table.AppendTo(html);
  html += kSectionEnd;
}

std::string SeverityCell(pxrom::E_FindingSeverity severity) {
  static const std::map<pxrom::E_FindingSeverity, std::string> kClasses = {
      {pxrom::SeverityError, "bad"},
      {pxrom::SeverityWarning, "warn"},
      {pxrom::SeverityNote, "note"}};
  return "<span class=\"severity " + kClasses.at(severity) + "\">" + WordOf(severity) + "</span>";
}

std::string FindingHtml(const pxrom::CFinding& finding) {
  std::string html = "<tr><td>" + SeverityCell(finding.severity) + "</td><td class=\"number\">" +
                     std::to_string(finding.line) + "</td><td>" + Escaped(finding.group) +
                     "</td><td>" + Escaped(finding.sentence) + "</td><td>" +
                     Escaped(finding.expected) + "</td><td><code>" +
                     pxrom::FindingCodeName(finding.code) + "</code></td></tr>\n";
  return html;
}

std::string FindingsTable(const std::vector<pxrom::CFinding>& findings, bool notes) {
  std::string rows;
  for (const pxrom::CFinding& finding : findings) {
    if ((finding.severity == pxrom::SeverityNote) == notes) rows += FindingHtml(finding);
  }
  if (rows.empty()) return "";
  return "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"Findings\"><table "
         "class=\"findings\">\n<thead><tr><th scope=\"col\">Severity</th><th scope=\"col\" "
         "class=\"number\">Line</th><th scope=\"col\">Where</th><th scope=\"col\">What</th><th "
         "scope=\"col\">Expected</th><th scope=\"col\">Code</th></tr></thead>\n<tbody>\n" +
         rows + "</tbody></table></div>\n";
}

/// Notes report nothing wrong, so they are folded away.
std::string FindingsSection(const pxrom::CInspectionReport& inspection) {
  std::string content;
  if (inspection.errors + inspection.warnings == 0) {
    content += "<p>Nothing is wrong with the database.</p>\n";
  }
  content += FindingsTable(inspection.findings, false);
  if (inspection.notes > 0) {
    content += "<details><summary>" + Counted(inspection.notes, "note") + "</summary>\n" +
               FindingsTable(inspection.findings, true) + "</details>\n";
  }
  return Section("findings", "Findings", content);
}

std::string CountsOf(const pxrom::CInspectionReport& inspection) {
  return Listed({Counted(inspection.errors, "error"), Counted(inspection.warnings, "warning"),
                 Counted(inspection.notes, "note")});
}

const char* VerdictKind(const pxrom::CInspectionReport& inspection) {
  if (inspection.errors > 0) return "bad";
  return inspection.warnings > 0 ? "warn" : "good";
}

std::string SummaryOf(const pxrom::CDatabaseOverview& overview) {
  const auto count = [&overview](pxrom::E_ParameterCausality causality, bool discrete) {
    return static_cast<std::size_t>(
        std::count_if(overview.parameters.begin(), overview.parameters.end(), [&](const auto& p) {
          const bool kind = discrete ? p.type == pxrom::DiscreteParameter
                                     : p.type <= pxrom::ContinuousManufacturable;
          return p.enabled && p.causality == causality && kind;
        }));
  };
  return Counted(count(pxrom::CausalityInput, false), "continuous input") + ", " +
         Counted(count(pxrom::CausalityInput, true), "discrete input") + ", " +
         Counted(overview.combinations.size(), "combination") + ", " +
         Counted(count(pxrom::CausalityOutput, false), "output");
}

std::string LiveSection(const ReportedStudy& study) {
  if (study.inspection.errors > 0) {
    return Section("live", "Try it",
                   "<p>The database is damaged, so this page does not evaluate it. The "
                   "findings say where.</p>\n");
  }
  if (!CanReportLive()) {
    return Section("live", "Try it",
                   "<p>This page does not evaluate: the <code>pxrom</code> that wrote it was built "
                   "without the live part. Run <code>script/bootstrap --report</code> and build "
                   "again to add it.</p>\n");
  }
  return std::string(report_assets::kLive);
}

std::string Element(const std::string& attributes, std::string_view content) {
  return "<script " + attributes + '>' + std::string(content) + "</script>\n";
}

std::string DataOf(const ReportedStudy& study) {
  return Element(R"(type="application/json" id="file")", JsonOfBytes(study.file)) +
         Element(R"(type="application/json" id="database")", JsonOfBytes(study.text)) +
         Element(R"(type="text/plain" id="module")", Base64(report_assets::kModule)) +
         Element(R"(type="module")", report_assets::kScript);
}

/// Replaces each "@NAME@" with a known name, once: the inserted text is not searched again.
std::string Filled(std::string_view text, const std::map<std::string_view, std::string>& parts) {
  std::size_t size = text.size();
  for (const auto& part : parts) size += part.second.size();
  std::string filled;
  filled.reserve(size);
  while (true) {
    const std::size_t begin = text.find('@');
    if (begin == std::string_view::npos) break;
    const std::size_t end = text.find('@', begin + 1);
    const auto part = end == std::string_view::npos
                          ? parts.end()
                          : parts.find(text.substr(begin + 1, end - begin - 1));
    const bool known = part != parts.end();
    filled += text.substr(0, known ? begin : begin + 1);
    if (known) filled += part->second;
    text.remove_prefix(known ? end + 1 : begin + 1);
  }
  return filled.append(text);
}

}  // namespace

bool CanReportLive() { return !report_assets::kModule.empty(); }

std::string ReportPage(const ReportedStudy& study) {
  const pxrom::CInspectionReport& inspection = study.inspection;
  const pxrom::CDatabaseOverview& overview = inspection.overview;
  const ParametersByRank parameters = ByRank(overview);
  const bool live = inspection.errors == 0 && CanReportLive();
  std::string tables;
  AppendParameters(parameters, pxrom::CausalityInput, tables);
  AppendParameters(parameters, pxrom::CausalityOutput, tables);
  AppendEnsembles(overview, parameters, tables);
  return Filled(
      report_assets::kPage,
      {{"SCRIPT_HASH", "sha256-" + Base64(report_assets::kScriptHash)},
       {"VERSION", PXROM_VERSION_STRING},
       {"TITLE", Escaped(TextOfPath(PathOf(study.file).stem()))},
       {"STYLE", std::string(report_assets::kStyle)},
       {"SUMMARY", SummaryOf(overview)},
       {"VERDICT_KIND", VerdictKind(inspection)},
       {"VERDICT", "Checked: " + CountsOf(inspection)},
       {"LIVE", LiveSection(study) +
                    (study.validation.has_value() ? ValidationSection(*study.validation) : "")},
       {"FINDINGS", FindingsSection(inspection)},
       {"STUDY", std::move(tables)},
       {"FOOTER", "<p>" + Escaped(study.file) + ": " + Counted(overview.characters, "character") +
                      " in " + Counted(overview.lines, "line") +
                      ". Written by pxrom " PXROM_VERSION_STRING ".</p>"},
       {"DATA", live ? DataOf(study) : ""}});
}

}  // namespace pxrom_command
