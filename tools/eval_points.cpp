#include "eval_points.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <memory>
#include <utility>

#include "csv_reader.h"
#include "model_file.h"
#include "point_columns.h"
#include "point_evaluator.h"
#include "progress.h"
#include "refusal.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

// A part of the table that is worked on at once: its size doesn't depend on the number of jobs,
// for results of the fast mode may depend on the rows that are evaluated together.
constexpr std::size_t kRows = 2048;
constexpr std::size_t kCharacters = std::size_t{1} << 22U;

/// Where the table comes from and what messages call it.
class Source {
 public:
  explicit Source(const std::string& path) : name_(path == "-" ? "<stdin>" : path) {
    if (path != "-") file_ = OpenFile(path);
    // Else the standard input is read character by character.
    std::ios::sync_with_stdio(false);
  }

  const std::string& Name() const { return name_; }
  std::istream& Stream() { return name_ == "<stdin>" ? std::cin : file_; }

 private:
  std::string name_;
  std::ifstream file_;
};

/// Where the results go.
class Out {
 public:
  Out(const std::string& path, const PointsOptions& options) : path_(path) {
    if (path.empty()) return;
    for (const std::string& other : {options.table, options.model}) {
      std::error_code ignored;
      if (std::filesystem::equivalent(path, other, ignored)) {
        throw Refusal(Quoted(path) + " is read: the result needs another file");
      }
    }
    errno = 0;
    file_.open(path, std::ios::binary);
    Check();
  }

  void Write(const std::string& text) {
    errno = 0;
    Stream() << text;
    Check();
  }
  void Finish() {
    errno = 0;
    Stream().flush();
    Check();
  }

 private:
  std::ostream& Stream() { return path_.empty() ? std::cout : file_; }
  void Check() {
    if (Stream()) return;
    throw Refusal("can't write to " + (path_.empty() ? "the standard output" : Quoted(path_)) +
                  ": " + (errno != 0 ? std::strerror(errno) : "writing failed"));
  }

  std::string path_;
  std::ofstream file_;
};

std::vector<CsvRow> NextRows(CsvReader& reader) {
  std::vector<CsvRow> rows;
  std::size_t characters = 0;
  CsvRow row;
  while (rows.size() < kRows && characters < kCharacters && reader.Next(row)) {
    characters += row.text.size();
    rows.push_back(std::move(row));
  }
  return rows;
}

/// Sees results through in the order of the table, and counts.
class Delivery {
 public:
  Delivery(Out& out, std::string name, bool prints)
      : out_(out), name_(std::move(name)), progress_(prints) {}

  void Take(const EvaluatedRows& done) {
    out_.Write(done.text);
    for (const EvaluatedRows::Fault& fault : done.faults) {
      if (told_ == PointEvaluator::kMostFaults) break;
      progress_.Clear();
      std::cerr << name_ << ':' << fault.line << ": " << fault.sentence << '\n';
      ++told_;
    }
    rows_ += done.rows;
    bad_ += done.bad;
    outside_bounds_ += done.outside_bounds;
    progress_.Show(rows_);
  }

  void Finish() {
    progress_.Clear();
    out_.Finish();
    if (bad_ > told_) {
      std::cerr << name_ << ": " << bad_ - told_ << " more bad rows are not listed\n";
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
  Out& out_;
  std::string name_;
  Progress progress_;
  std::size_t told_ = 0;
  std::size_t rows_ = 0;
  std::size_t bad_ = 0;
  std::size_t outside_bounds_ = 0;
};

/// The header as it stood, with the new headings behind it.
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
  Out out(options.out, options);
  out.Write(HeaderText(*model, header));

  PointEvaluator evaluator(*model, columns,
                           options.fast ? pxrom::PrecisionFast : pxrom::PrecisionExact);
  Delivery delivery(out, table.Name(), options.out.empty());
  const auto launch = options.jobs > 1 ? std::launch::async : std::launch::deferred;
  std::deque<std::future<EvaluatedRows>> pending;
  const auto deliver_first = [&] {
    delivery.Take(pending.front().get());
    pending.pop_front();
  };
  for (std::vector<CsvRow> rows = NextRows(reader); !rows.empty(); rows = NextRows(reader)) {
    if (pending.size() == options.jobs) deliver_first();
    pending.push_back(std::async(
        launch, [&evaluator, rows = std::move(rows)] { return evaluator.Evaluate(rows); }));
  }
  while (!pending.empty()) deliver_first();
  delivery.Finish();
}

}  // namespace pxrom_command
