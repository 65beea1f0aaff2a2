#pragma once

#include <cstdint>
#include <optional>

#include "database/inspection/context.h"
#include "families/surface_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// The keys of the numbers of inputs and samples, the samples and the scaling. A candidate has them
/// as well as a surface.
struct ShapeLabels {
  const std::string& inputs;
  const std::string& samples;
  const std::string& inputSamples;
  const std::string& outputSamples;
  const std::string& inputSlopes;
  const std::string& inputIntercepts;
  const std::string& outputSlope;
};

/// The facts that a group is compared with.
struct ShapeFrame {
  std::optional<int> inputs;
  /// Where that number comes from, in words.
  std::string source;
  bool scalesInput = true;
  bool scalesOutput = true;
  /// Whether samples may be kept without their outputs, which no value of the group needs.
  bool mayLackOutputs = false;
};

/// Compares counts, lists and scaling with each other. If two disagree, it blames the one that the
/// other evidence contradicts.
Shape CheckShape(const GroupText& in, const ShapeLabels& labels, const ShapeFrame& frame);

/// "3 samples of 2 inputs".
std::string SamplesOfInputs(const Shape& shape);

/// The facts of a surface that its ensemble needs.
struct SurfaceFacts {
  CSurfaceOverview overview;
  std::optional<double> weight;
  std::size_t weightOffset = 0;
};

/// Checks one `Genome` group, of an ensemble of `inputs` inputs. Sub surfaces need no weight.
SurfaceFacts CheckSurface(Context& context, const Group& group, std::optional<int> inputs,
                          bool isSub);

}  // namespace Tarvane::Plexura::PXROM::inspection
