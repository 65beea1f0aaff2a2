#include "model/fitted_samples.h"

#include <algorithm>
#include <cmath>

#include "model/candidate_access.h"
#include "records/samples.h"

namespace Tarvane::Plexura::PXROM {

namespace {

using Access = CandidateAccess;

/// Appends the rows of `samples`, each value as `toPhysical(input, value)`.
template <class ToPhysical>
void AppendRows(const SampleRows& samples, std::size_t inputs, const ToPhysical& toPhysical,
                std::vector<double>& rows) {
  for (const std::vector<double>& sample : samples) {
    if (sample.size() != inputs) continue;
    const std::size_t start = rows.size();
    for (std::size_t i = 0; i < inputs; ++i) rows.push_back(toPhysical(i, sample[i]));
    const bool isFinite = std::all_of(rows.begin() + static_cast<std::ptrdiff_t>(start), rows.end(),
                                      [](double value) { return std::isfinite(value); });
    if (!isFinite) rows.resize(start);
  }
}

}  // namespace

std::vector<double> FittedSamples(const CFittingCandidate& candidate, std::size_t inputs) {
  std::vector<double> rows;
  AppendRows(
      Access::InputSamples(candidate), inputs, [](std::size_t, double value) { return value; },
      rows);
  if (!rows.empty()) return rows;
  const std::vector<double>& slopes = Access::InputScaleSlopes(candidate);
  const std::vector<double>& intercepts = Access::InputScaleIntercepts(candidate);
  if (slopes.size() != inputs || intercepts.size() != inputs) return rows;
  const SampleRows* last = nullptr;
  for (const auto& surface : Access::Surfaces(candidate)) {
    // The surfaces of an ensemble often have the same samples.
    if (last != nullptr && surface->InputSamples == *last) continue;
    last = &surface->InputSamples;
    AppendRows(
        *last, inputs,
        [&](std::size_t i, double value) { return (value - intercepts[i]) / slopes[i]; }, rows);
  }
  return rows;
}

std::size_t MostFittedSamples(const CFittingCandidate& candidate) {
  std::size_t count = Access::InputSamples(candidate).size();
  if (count > 0) return count;
  for (const auto& surface : Access::Surfaces(candidate)) count += surface->InputSamples.size();
  return count;
}

}  // namespace Tarvane::Plexura::PXROM
