// What the command adds to the library: its readers of assignments and tables, its tables, its
// documents and its page.

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "assignments.h"
#include "cost.h"
#include "csv_reader.h"
#include "html.h"
#include "model_file.h"
#include "model_inputs.h"
#include "overview.h"
#include "parameters.h"
#include "point_columns.h"
#include "point_evaluator.h"
#include "pxrom/database_reader.h"
#include "pxrom/inspection.h"
#include "refusal.h"
#include "report_page.h"
#include "table.h"
#include "targets.h"
#include "validation.h"
#include "validation_section.h"
#include "wording.h"

namespace fuzz {

namespace {

namespace pxrom = Tarvane::Plexura::PXROM;
using namespace pxrom_command;

// Runs `work`; a refusal is an answer.
template <class Work>
void Try(Work work) {
  try {
    work();
  } catch (const Refusal& refusal) {
    const std::string shown = Printed(refusal.what());
    Require(!shown.empty(), "a refusal has a sentence");
    Require(shown == pxrom::VisibleText(shown), "nothing that is shown changes its direction");
  }
}

// Each row is kept as it stood; only blank lines are left out.
void ReadTable(const std::string& text) {
  std::istringstream stream(text);
  CsvReader reader(stream, "table");
  CsvRow row;
  std::size_t at = 0;
  std::size_t line = 0;
  while (reader.Next(row)) {
    Require(row.line > line, "rows come line by line");
    line = row.line;
    const std::size_t found = text.find(row.text + row.line_end, at);
    Require(found != std::string::npos, "a row is kept as it stood");
    Require(text.find_first_not_of(" \t\r\n", at) >= found, "no row is left out");
    at = found + row.text.size() + row.line_end.size();
  }
}

void EvaluateTable(const Model& model, const std::vector<std::string>& assignments,
                   const std::string& text) {
  std::istringstream stream(text);
  CsvReader reader(stream, "table");
  CsvRow header;
  if (!reader.Next(header)) return;
  const PointColumns columns(model, header, assignments, Quoted("table"));
  PointEvaluator evaluator(model, columns, pxrom::PrecisionExact, LimitOf(""));
  std::vector<CsvRow> rows;
  CsvRow row;
  // Every row costs an evaluation of the whole model: a few of them keep the work of a text in
  // proportion to its length.
  constexpr std::size_t kMostRows = 256;
  std::size_t left = kMostRows;
  for (bool more = true; more;) {
    more = left > 0 && reader.Next(row);
    if (more) {
      rows.push_back(row);
      --left;
    }
    if (rows.empty() || (more && rows.size() < evaluator.RowsPerBlock())) continue;
    const EvaluatedRows done = evaluator.Evaluate(rows);
    Require(done.rows == rows.size() && done.bad <= done.rows, "every row is good or bad");
    Require(done.faults.size() == std::min(done.bad, PointEvaluator::kMostFaults),
            "what is wrong with a bad row is said");
    rows.clear();
  }
}

/// The table of `text`, cut as above, beside a model.
void ValidateTable(const Model& model, const std::vector<std::string>& assignments,
                   const std::string& text) {
  constexpr std::size_t kMostBytes = 4096;
  std::istringstream stream(text.substr(0, kMostBytes));
  ValidationOptions options;
  options.assignments = assignments;
  options.limit = LimitOf("");
  options.worst = 2;
  options.pairs = 3;
  const Validation done = Validate(model, stream, "table", options);
  for (const ValidatedOutput& output : done.outputs) {
    const pxrom::CPredictionScores& scores = output.scores;
    Require(scores.count + scores.missing + scores.failed == done.rows, "every row is counted");
    Require(output.worst.size() == std::min(scores.count, options.worst), "the worst are kept");
  }
  const std::vector<std::string> units(done.outputs.size(), "unit");
  const std::string section = ValidationSection({"table", done, units});
  Require(section == pxrom::VisibleText(section), "a section changes no direction");
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  // As many as a command line has room for.
  constexpr std::size_t kMost = std::size_t{1} << 17U;
  for (std::string line; lines.size() < kMost && std::getline(stream, line);) lines.push_back(line);
  return lines;
}

void ShowDatabase(const std::string& text) {
  const pxrom::CInspectionReport report = pxrom::InspectPXROMDatabase(text);
  const ParametersByRank parameters = ByRank(report.overview);
  const RanksById ranks = RanksOf(parameters);
  Table table({{"Parameter"}, {"Range"}});
  for (const auto& parameter : parameters) table.Add({parameter.id, RangeOf(parameter)});
  for (const auto& combination : report.overview.combinations) {
    table.Add({TextOf(combination, ranks), ""});
  }
  std::ostringstream out;
  table.Print(out);
  const std::string shown = out.str();
  Require(shown == pxrom::VisibleText(shown), "a table changes no direction");
  for (const pxrom::CFinding& finding : report.findings) {
    Require(finding.sentence == Printed(finding.sentence), "a finding is fit to be shown");
  }
  const std::string page = ReportPage({"file", text, report, {}});
  Require(page == pxrom::VisibleText(page), "a page changes no direction");
  // A document of any other encoding could not be dumped.
  Require(!nlohmann::json(page).dump().empty(), "a page is UTF-8");
}

const char* const kModel = R"(<ParameterRegistry>
IDs=d,x,y
Causalities=0,0,1
Types=2,0,0
Availability=1,1,1
RegistrationRank={d;0},{x;1},{y;2}
Units={x;m}
LowerBounds={x;0}
UpperBounds={x;1}
</ParameterRegistry>
<DiscreteSets>
DiscreteSet={d;1},{y;0}
DiscreteSet={d;2},{y;0}
</DiscreteSets>
<PlexuraData ID=0>
CandidateNumberOfInputVariables=1
CandidateInputScaleSlopes=1
CandidateInputScaleIntercepts=0
CandidateOutputScaleSlope=1
CandidateOutputScaleIntercept=0
CandidateRSCardinality=1
<Genome ID=0>
DataType=8
GenomeWeight=1
NumberOfInputVariables=1
IsReadyForEvaluation=1
ConstantVersion=170
ConstantValue=7.5
</Genome>
</PlexuraData>
)";

}  // namespace

// The text of a database, assignments line by line and a table, with "\0" between them. Without it
// the same text is each of them, and the model is a small one.
void RunCommand(std::string_view data) {
  std::vector<std::string> parts;
  for (std::string_view rest = data; parts.size() < 3;) {
    const std::size_t end = parts.size() < 2 ? rest.find('\0') : std::string_view::npos;
    parts.emplace_back(rest.substr(0, end));
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  ShowDatabase(parts[0]);
  const bool has_parts = parts.size() == 3;
  const std::vector<std::string> assignments = LinesOf(has_parts ? parts[1] : parts[0]);
  const std::string& table = has_parts ? parts[2] : parts[0];
  Try([&] { ReadTable(table); });
  for (const std::string& text : {std::string(kModel), parts[0]}) {
    const ModelInputs database(text + '\0');
    Model model;
    if (!database.Read(model)) continue;
    const std::vector<Input> inputs = InputsOf(model);
    Try([&] { static_cast<void>(TextsByName(model, inputs, assignments)); });
    Try([&] { OutsideBounds(model, PointOf(model, assignments)); });
    Try([&] { EvaluateTable(model, {}, table); });
    Try([&] { EvaluateTable(model, assignments, table); });
    Try([&] { ValidateTable(model, assignments, table); });
  }
}

}  // namespace fuzz
