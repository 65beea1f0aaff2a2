#include "eval_points.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <deque>
#include <fstream>
#include <future>
#include <iostream>
#include <memory>
#include <utility>

#include "csv_reader.h"
#include "model_file.h"
#include "output_file.h"
#include "point_columns.h"
#include "point_evaluator.h"
#include "progress.h"
#include "refusal.h"
#include "row_workers.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

// A block of rows ends early when its rows are long.
constexpr std::size_t kCharacters = std::size_t{1} << 22U;

/// Where the table comes from and what messages call it.
class Source {
 public:
  explicit Source(const std::string& path) : name_(path == "-" ? "<stdin>" : path) {
    if (path != "-") file_ = OpenFile(path);
    // Otherwise the standard input is read character by character.
    std::ios::sync_with_stdio(false);
  }

  const std::string& Name() const { return name_; }
  std::istream& Stream() { return name_ == "<stdin>" ? std::cin : file_; }

 private:
  std::string name_;
  std::ifstream file_;
};

std::vector<CsvRow> NextRows(CsvReader& reader, std::size_t most) {
  std::vector<CsvRow> rows;
  std::size_t characters = 0;
  CsvRow row;
  while (rows.size() < most && characters < kCharacters && reader.NextUnsplit(row)) {
    characters += row.text.size();
    rows.push_back(std::move(row));
  }
  return rows;
}

/// Writes results in the order of the table, and counts.
class Delivery {
 public:
  Delivery(OutputFile& out, const std::string& name, bool prints)
      : out_(out), name_(Printed(name)), progress_(prints) {}

  void Take(const EvaluatedRows& done) {
    out_.Write(done.text);
    for (const EvaluatedRows::Fault& fault : done.faults) {
      if (listed_ == PointEvaluator::kMostFaults) break;
      progress_.Clear();
      std::cerr << name_ << ':' << fault.line << ": " << Printed(fault.sentence) << '\n';
      ++listed_;
    }
    rows_ += done.rows;
    bad_ += done.bad;
    outside_bounds_ += done.outside_bounds;
    progress_.Show(rows_);
  }

  void Finish() {
    progress_.Clear();
    out_.Finish();
    if (bad_ > listed_) {
      std::cerr << name_ << ": " << bad_ - listed_ << " more bad rows are not listed\n";
    }
    std::cerr << "pxrom eval: " << Counted(rows_, "row") << ", "
              << (bad_ == 0 ? "none" : std::to_string(bad_)) << " bad";
    if (outside_bounds_ > 0) {
      std::cerr << "; " << Counted(outside_bounds_, "row")
                << " outside the bounds of an input, where the surfaces extrapolate";
    }
    std::cerr << '\n';
    if (bad_ > 0) throw CLI::RuntimeError(1);
  }

 private:
  OutputFile& out_;
  std::string name_;
  Progress progress_;
  std::size_t listed_ = 0;
  std::size_t rows_ = 0;
  std::size_t bad_ = 0;
  std::size_t outside_bounds_ = 0;
};

bool IsReady(const std::future<EvaluatedRows>& result) {
  return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

/// The header unchanged, followed by the new headings.
std::string HeaderText(const Model& model, const CsvRow& header) {
  std::string text = header.text;
  for (const std::string& heading : HeadingsOf(OutputColumnsOf(model))) {
    text += ',' + CsvField(heading);
  }
  return text + (header.line_end.empty() ? "\n" : header.line_end);
}

}  // namespace

void EvalPoints(const PointsOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  Source table(options.table);
  CsvReader reader(table.Stream(), table.Name());
  CsvRow header;
  if (!reader.Next(header)) {
    throw Refusal(Quoted(table.Name()) + " is empty: its first line has to name the columns");
  }
  const PointColumns columns(*model, header, options.assignments, Quoted(table.Name()));
  OutputFile out(options.out, {options.table, options.model});
  out.Write(HeaderText(*model, header));

  PointEvaluator evaluator(
      *model, columns, options.fast ? pxrom::PrecisionFast : pxrom::PrecisionExact, options.limit);
  Delivery delivery(out, table.Name(), options.out.empty());
  RowWorkers workers(options.jobs);
  std::deque<std::future<EvaluatedRows>> pending;
  const auto deliver_first = [&] {
    delivery.Take(pending.front().get());
    pending.pop_front();
  };
  // Each worker has a block, and another one waits for it while this thread reads and writes.
  const std::size_t most = 2 * options.jobs;
  const std::size_t rows_at_once = evaluator.RowsPerBlock();
  for (auto rows = NextRows(reader, rows_at_once); !rows.empty();
       rows = NextRows(reader, rows_at_once)) {
    pending.push_back(workers.Add(RowWorkers::Task([&evaluator, rows = std::move(rows)]() mutable {
      for (CsvRow& row : rows) {
        if (!row.is_split) SplitFields(row);
      }
      return evaluator.Evaluate(rows);
    })));
    while (!pending.empty() && (pending.size() >= most || IsReady(pending.front()))) {
      deliver_first();
    }
  }
  while (!pending.empty()) deliver_first();
  delivery.Finish();
}

}  // namespace pxrom_command
