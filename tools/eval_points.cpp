#include "eval_points.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <deque>
#include <future>
#include <iostream>
#include <memory>
#include <utility>

#include "csv_reader.h"
#include "model_file.h"
#include "output_file.h"
#include "point_columns.h"
#include "point_evaluator.h"
#include "points_source.h"
#include "progress.h"
#include "row_workers.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

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
  for (const char* const heading : kLocationHeadings) text += std::string(",") + heading;
  return text + (header.line_end.empty() ? "\n" : header.line_end);
}

}  // namespace

void EvalPoints(const PointsOptions& options) {
  const std::unique_ptr<Model> model = ReadModel(options.model);
  PointsSource table(options.table);
  CsvReader reader(table.Stream(), table.Name());
  const CsvRow header = HeaderOf(reader, table.Name());
  const PointColumns columns(*model, header, options.assignments, Quoted(table.Name()));
  RequireNewHeadings(*model, header, Quoted(table.Name()));
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
