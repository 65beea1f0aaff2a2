#include "families/polynomial/polynomial_preparation.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "families/polynomial/expansion.h"
#include "families/regression/transformation_slopes.h"
#include "families/regression/transformed_errors.h"
#include "records/evaluation_frame.h"

namespace Tarvane::Plexura::PXROM::batch {

namespace {

using polynomial::Expansion;
using polynomial::Factor;
using polynomial::Variable;

/// Rows of kBlock values that a block may take, for polynomials and products: 4 MiB. Beyond it,
/// points are evaluated one by one, so that memory stays in proportion to the record.
constexpr std::size_t kMostRows = std::size_t{1} << 14;

/// The products of an expansion as products of two rows. The rows are the table of values, a row of
/// ones, and the products of the first factors of longer terms, which terms share.
struct Products {
  std::vector<Monomial> leading;
  std::vector<Monomial> terms;
  std::size_t one = 0;

  std::size_t Rows() const { return one + 1 + leading.size(); }
};

/// False when they would take too many rows.
bool FindProducts(const Expansion& expansion, const std::vector<double>& coefficients,
                  Products& products) {
  products.one = expansion.TableSize();
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> known;
  const auto one = static_cast<std::uint32_t>(products.one);
  for (std::size_t term = 0; term < expansion.Terms(); ++term) {
    const Factor* factor = expansion.Begin(term);
    const Factor* const end = expansion.End(term);
    std::uint32_t row = factor == end ? one : (factor++)->place;
    for (; factor != end && factor + 1 != end; ++factor) {
      const auto next = static_cast<std::uint32_t>(products.Rows());
      const auto found = known.emplace(std::make_pair(row, factor->place), next);
      if (found.second) products.leading.push_back({1.0, row, factor->place});
      row = found.first->second;
      if (products.Rows() > kMostRows) return false;
    }
    products.terms.push_back({coefficients[term], row, factor == end ? one : factor->place});
  }
  return products.Rows() <= kMostRows;
}

/// What an evaluation works on, laid out over a working area.
struct PolynomialWork {
  PolynomialWork(std::size_t rowCount, std::size_t errorTerms, double* start) {
    WorkArea area(start);
    rows = area.Take(rowCount * kBlock);
    sums = area.Take(kBlock);
    part = area.Take(kBlock);
    f = area.Take(errorTerms * kBlock);
    size = area.Used();
  }

  double* rows;
  double* sums;
  double* part;
  double* f;
  std::size_t size;
};

/// What all prepared polynomials have: a copy of the record, and gradients.
class PolynomialSurface : public PreparedSurface {
 public:
  PolynomialSurface(const CPolynomialData& record, std::size_t inputs)
      : record_(record), inputs_(inputs) {}
  /// False when no point can be evaluated.
  bool LayOut() { return expansion_.LayOut(record_, inputs_); }
  const Expansion& LaidOut() const { return expansion_; }

  // The evaluator's way, point by point.
  void Evaluate(const Points& points, const Tools&, const Results& results) const override {
    const CPolynomialEvaluator evaluator;
    std::vector<double> x(inputs_);
    for (std::size_t point = 0; point < points.count; ++point) {
      for (std::size_t i = 0; i < inputs_; ++i) x[i] = points.x[i * kBlock + point];
      double& value = results.values[point];
      results.statuses[point] =
          results.errors == nullptr
              ? evaluator.EvaluateResponseSurface(&record_, x, value)
              : evaluator.EvaluateResponseSurface(&record_, x, value, results.errors[point]);
      if (results.inUnit.errors != nullptr && results.statuses[point] == 0) {
        FillErrorInUnit(x.data(), point, results);
      }
    }
  }

  bool HasErrors() const override { return expansion_.HasCovariance(); }
  bool AreErrorsFirstOrder() const override { return record_.OutputTransformType != TransformNone; }

  std::size_t GradientWorkSize() const override {
    return 2 * expansion_.TableSize() + expansion_.LongestProduct();
  }

  int Gradient(const double* x, double* work, double* gradient) const override {
    double* const table = work;
    double* const slopes = table + expansion_.TableSize();
    double* const products = slopes + expansion_.TableSize();
    if (expansion_.FillTable(x, table, slopes) != 0) return 1;
    const double s = expansion_.Sum(table);
    double y = 0.0;
    if (expansion_.Finish(s, y) != 0) return 1;
    std::fill_n(gradient, inputs_, 0.0);
    for (std::size_t term = 0; term < expansion_.Terms(); ++term) {
      expansion_.AddGradient(term, record_.Coefficients[term], table, slopes, products, gradient);
    }
    const double outer = BackSlope(s) / record_.OutputScaleSlope;
    for (std::size_t i = 0; i < inputs_; ++i) gradient[i] *= outer;
    return 0;
  }

 protected:
  const CPolynomialData& Record() const { return record_; }
  double BackSlope(double s) const {
    return BacktransformationSlope(expansion_.Back(), s, record_.OutputTransformValue,
                                   record_.OutputLambda);
  }
  /// From the sum of the terms and its standard error.
  void FillErrorInUnit(double sum, double deviation, std::size_t point,
                       const Results& results) const {
    const OutputWay way = {&expansion_.Back(), record_.OutputTransformValue, record_.OutputLambda,
                           record_.OutputScaleSlope, record_.OutputScaleIntercept};
    FillTransformedError(way, sum, deviation, point, results);
  }

 private:
  void FillErrorInUnit(const double* x, std::size_t point, const Results& results) const {
    std::vector<double> table(expansion_.TableSize());
    if (expansion_.FillTable(x, table.data(), nullptr) != 0) return;
    std::vector<double> products(expansion_.Terms());
    for (std::size_t k = 0; k < products.size(); ++k) {
      products[k] = expansion_.Product(k, table.data());
    }
    FillErrorInUnit(expansion_.Sum(table.data()), std::sqrt(expansion_.QuadraticForm(products)),
                    point, results);
  }

  CPolynomialData record_;
  std::size_t inputs_;
  Expansion expansion_;
};

/// One that evaluates the points of a block together.
class BlockedPolynomial : public PolynomialSurface {
 public:
  using PolynomialSurface::PolynomialSurface;
  /// False when it would take too much memory. After LayOut.
  bool Prepare() {
    if (!FindProducts(LaidOut(), Record().Coefficients, products_)) return false;
    for (const Variable& variable : LaidOut().Variables()) {
      for (int n = 0; variable.basis.HasSteps() && n < variable.highest; ++n) {
        steps_.push_back(variable.basis.StepAfter(n));
      }
    }
    if (!LaidOut().HasCovariance()) return true;
    for (const std::vector<double>& row : Record().Covariance) {
      covariance_.insert(covariance_.end(), row.begin(), row.end());
    }
    return true;
  }

  std::size_t WorkSize(bool withErrors, std::size_t) const override {
    return PolynomialWork(products_.Rows(), ErrorTerms(withErrors), nullptr).size;
  }

  void Evaluate(const Points& points, const Tools& tools, const Results& results) const override {
    const bool withErrors = results.errors != nullptr;
    const PolynomialWork work(products_.Rows(), ErrorTerms(withErrors), tools.work);
    std::fill_n(results.statuses, points.count, 0);
    FillRows(points, *tools.exact, work, results.statuses);
    tools.exact->polynomial({products_.terms.data(), products_.terms.size(), false}, work.rows,
                            points.count, work.sums);
    for (std::size_t point = 0; point < points.count; ++point) {
      int& status = results.statuses[point];
      if (status == 0) status = LaidOut().Finish(work.sums[point], results.values[point]);
    }
    if (!withErrors) return;
    if (covariance_.empty()) {
      std::replace(results.statuses, results.statuses + points.count, 0, -2);
    } else {
      FillErrors(points.count, *tools.exact, work, results);
    }
  }

 private:
  std::size_t ErrorTerms(bool withErrors) const {
    return withErrors && !covariance_.empty() ? LaidOut().Terms() : 0;
  }

  void FillRows(const Points& points, const LoopTable& loops, const PolynomialWork& work,
                int* statuses) const {
    const Step* step = steps_.data();
    for (const Variable& variable : LaidOut().Variables()) {
      double u[kBlock];
      Transform(variable, points, u, statuses);
      step = FillPolynomials(variable, u, step, work.rows + variable.place * kBlock);
    }
    std::fill_n(work.rows + products_.one * kBlock, kBlock, 1.0);
    // Each product may take the ones before it.
    loops.products({products_.leading.data(), products_.leading.size(), false}, work.rows,
                   points.count, work.rows + (products_.one + 1) * kBlock);
  }

  void Transform(const Variable& variable, const Points& points, double* u, int* statuses) const {
    const double slope = Record().InputScaleSlopes[variable.input];
    const double intercept = Record().InputScaleIntercepts[variable.input];
    const double* const x = points.x + variable.input * kBlock;
    for (std::size_t point = 0; point < kBlock; ++point) u[point] = slope * x[point] + intercept;
    if (variable.forward->TransformationType() != TransformNone) {
      for (std::size_t point = 0; point < points.count; ++point) {
        if (variable.forward->TransformAndOverwrite(u[point], variable.value, variable.lambda) != 0)
          statuses[point] = 1;
      }
    }
    for (std::size_t point = 0; point < kBlock; ++point) {
      u[point] = variable.slope * u[point] + variable.intercept;
    }
  }

  using Step = UnivariateBasis::Step;

  /// Takes the steps of the variable from `step` on, and returns those of the next one.
  static const Step* FillPolynomials(const Variable& variable, const double* u, const Step* step,
                                     double* row) {
    std::fill_n(row, kBlock, 1.0);
    for (int n = 0; n < variable.highest; ++n, row += kBlock) {
      double* const next = row + kBlock;
      if (!variable.basis.HasSteps()) {
        for (std::size_t point = 0; point < kBlock; ++point) next[point] = row[point] * u[point];
        continue;
      }
      const Step by = *step++;
      for (std::size_t point = 0; point < kBlock; ++point) {
        next[point] = (by.slope * u[point] + by.intercept) * row[point];
      }
      if (n == 0) continue;
      const double* const before = row - kBlock;
      for (std::size_t point = 0; point < kBlock; ++point) {
        next[point] -= by.previous * before[point];
      }
    }
    return step;
  }

  void FillErrors(std::size_t count, const LoopTable& loops, const PolynomialWork& work,
                  const Results& results) const {
    loops.products({products_.terms.data(), products_.terms.size(), false}, work.rows, count,
                   work.f);
    loops.quadraticForm(covariance_.data(), work.f, LaidOut().Terms(), count, work.part);
    for (std::size_t point = 0; point < count; ++point) {
      if (results.statuses[point] != 0) continue;
      const double deviation = std::sqrt(std::max(work.part[point], 0.0));
      results.errors[point] =
          std::fabs(BackSlope(work.sums[point])) * deviation / std::fabs(Record().OutputScaleSlope);
      if (results.inUnit.errors != nullptr) {
        FillErrorInUnit(work.sums[point], deviation, point, results);
      }
    }
  }

  Products products_;
  std::vector<Step> steps_;  ///< of all variables, one after the other
  std::vector<double> covariance_;
};

}  // namespace

std::unique_ptr<PreparedSurface> PreparePolynomial(const CRSData& base, std::size_t inputs) {
  const auto& record = static_cast<const CPolynomialData&>(base);
  if (!IsReadyFor(record, inputs)) return PrepareRefused();
  auto blocked = std::make_unique<BlockedPolynomial>(record, inputs);
  if (!blocked->LayOut()) return PrepareRefused();
  if (blocked->Prepare()) return blocked;
  auto surface = std::make_unique<PolynomialSurface>(record, inputs);
  surface->LayOut();
  return surface;
}

}  // namespace Tarvane::Plexura::PXROM::batch
