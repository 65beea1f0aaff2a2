#include "batch/sampled_region.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace Tarvane::Plexura::PXROM::batch {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
/// The samples whose distances are computed together: they stay in the nearest cache.
constexpr std::size_t kRowsAtOnce = 32;
/// The samples whose nearest neighbours the typical spacing is made from. The time for it is then
/// in proportion to the number of samples.
constexpr std::size_t kMostNeighbours = 1024;
// How far a value may lie beyond the range of samples and still count as inside: what rounding in
// the scaling of an ensemble can cause.
constexpr double kRangeTolerance = 1e-9;
constexpr double kRoundingTolerance = 1e-14;

/// The least squared distance of each point of a block to the samples. Unless `skipped` is null, it
/// has for each point a sample that does not count.
void FindLeast(const LoopTable& loops, const std::vector<double>& rows, std::size_t inputs,
               const Points& points, const std::size_t* skipped, double* work, double* least) {
  const std::size_t count = rows.size() / inputs;
  std::fill_n(least, kBlock, kInfinity);
  for (std::size_t first = 0; first < count; first += kRowsAtOnce) {
    const std::size_t some = std::min(kRowsAtOnce, count - first);
    loops.squaredDistances(rows.data() + first * inputs, some, points.x, inputs, points.count,
                           work);
    for (std::size_t point = 0; skipped != nullptr && point < points.count; ++point) {
      const std::size_t own = skipped[point] - first;
      if (own < some) work[own * kBlock + point] = kInfinity;
    }
    for (std::size_t r = 0; r < some; ++r) {
      const double* const row = work + r * kBlock;
      for (std::size_t point = 0; point < kBlock; ++point) {
        least[point] = row[point] < least[point] ? row[point] : least[point];
      }
    }
  }
}

/// Of an odd number the middle one, of an even number the mean of the two in the middle.
double MedianOf(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  return (*std::max_element(values.begin(), middle) + *middle) / 2.0;
}

}  // namespace

/// The parts of an evaluation's working area.
struct SampledRegion::Work {
  Work(std::size_t inputs, double* start) {
    WorkArea area(start);
    x = area.Take(inputs * kBlock);
    distances = area.Take(kRowsAtOnce * kBlock);
    size = area.Used();
    std::fill_n(distances, start != nullptr ? kRowsAtOnce * kBlock : 0, 0.0);
  }

  double* x;
  double* distances;
  std::size_t size;
};

SampledRegion::SampledRegion(Sharing::Array rows, std::size_t inputs)
    : rows_(std::move(rows)), inputs_(inputs), count_(inputs > 0 ? rows_->size() / inputs : 0) {
  if (inputs == 0 || count_ == 0) return;
  const std::vector<double>& values = *rows_;
  lower_.assign(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(inputs));
  upper_ = lower_;
  for (std::size_t at = 0; at < values.size(); ++at) {
    const std::size_t i = at % inputs;
    lower_[i] = std::min(lower_[i], values[at]);
    upper_[i] = std::max(upper_[i], values[at]);
  }
  for (std::size_t i = 0; i < inputs; ++i) {
    const double width = upper_[i] - lower_[i];
    widths_.push_back(std::isfinite(width) ? width : 0.0);
  }
}

SampledRegion::~SampledRegion() { delete neighbours_.load(std::memory_order_acquire); }

signed char SampledRegion::SideOf(std::size_t i, double value) const {
  const double largest = std::max(std::fabs(lower_[i]), std::fabs(upper_[i]));
  const double tolerance = kRangeTolerance * widths_[i] + kRoundingTolerance * largest;
  if (value < lower_[i] - tolerance) return -1;
  return value <= upper_[i] + tolerance ? 0 : 1;
}

std::size_t SampledRegion::WorkSize() const { return Work(inputs_, nullptr).size; }

void SampledRegion::FindDistances(const Points& points, const LoopTable& loops, double* start,
                                  double* distances) const {
  const Neighbours& neighbours = Found(loops);
  const Work work(inputs_, start);
  for (std::size_t at = 0; at < inputs_ * kBlock; ++at) {
    work.x[at] = ScaledValue(at / kBlock, points.x[at]);
  }
  FindLeast(loops, neighbours.rows, inputs_, {work.x, points.count, 0}, nullptr, work.distances,
            distances);
  for (std::size_t point = 0; point < points.count; ++point) {
    distances[point] = std::sqrt(distances[point]) / neighbours.spacing;
    for (std::size_t i = 0; i < inputs_; ++i) {
      if (std::isnan(points.x[i * kBlock + point])) distances[point] = kUnknown;
    }
  }
}

const SampledRegion::Neighbours& SampledRegion::Found(const LoopTable& loops) const {
  if (const Neighbours* const known = neighbours_.load(std::memory_order_acquire)) return *known;
  std::unique_ptr<const Neighbours> made = Find(loops);
  const Neighbours* first = nullptr;
  if (neighbours_.compare_exchange_strong(first, made.get(), std::memory_order_acq_rel)) {
    return *made.release();
  }
  return *first;
}

std::unique_ptr<const SampledRegion::Neighbours> SampledRegion::Find(const LoopTable& loops) const {
  auto found = std::make_unique<Neighbours>();
  std::vector<double> scaled;
  scaled.reserve(rows_->size());
  for (std::size_t at = 0; at < rows_->size(); ++at) {
    scaled.push_back(ScaledValue(at % inputs_, (*rows_)[at]));
  }
  const auto rowAt = [&](std::size_t r) { return scaled.data() + r * inputs_; };
  std::vector<std::size_t> order(count_);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return std::lexicographical_compare(rowAt(a), rowAt(a) + inputs_, rowAt(b), rowAt(b) + inputs_);
  });
  order.erase(std::unique(order.begin(), order.end(),
                          [&](std::size_t a, std::size_t b) {
                            return std::equal(rowAt(a), rowAt(a) + inputs_, rowAt(b));
                          }),
              order.end());
  for (const std::size_t r : order) {
    found->rows.insert(found->rows.end(), rowAt(r), rowAt(r) + inputs_);
  }

  const std::size_t count = order.size();
  const std::size_t asked = std::min(count, kMostNeighbours);
  std::vector<double> area(WorkSize());
  const Work work(inputs_, area.data());
  std::vector<double> nearest;
  for (std::size_t first = 0; first < asked; first += kBlock) {
    const std::size_t some = std::min(kBlock, asked - first);
    std::size_t own[kBlock];
    for (std::size_t point = 0; point < kBlock; ++point) {
      own[point] = (first + std::min(point, some - 1)) * count / asked;
      for (std::size_t i = 0; i < inputs_; ++i) {
        work.x[i * kBlock + point] = found->rows[own[point] * inputs_ + i];
      }
    }
    double least[kBlock];
    FindLeast(loops, found->rows, inputs_, {work.x, some, 0}, own, work.distances, least);
    for (std::size_t point = 0; point < some; ++point) nearest.push_back(std::sqrt(least[point]));
  }
  const double spacing = MedianOf(nearest);
  found->spacing = count > 1 && spacing > 0.0 ? spacing : kUnknown;
  return found;
}

}  // namespace Tarvane::Plexura::PXROM::batch
