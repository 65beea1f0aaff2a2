#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "text/inspection/group_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

/// The counts that are most likely meant; empty where the text gives no hint.
struct Shape {
  std::optional<int> inputs;
  std::optional<int> samples;
};

/// The text of a surface while a family checks it.
struct SurfaceText {
  GroupText& in;
  Shape shape;
};

// "3 samples", "2 inputs": the counts of a shape in words, 0 for none.
std::string SamplesOf(const Shape& shape);
std::string InputsOf(const Shape& shape);

/// The number of functions of a polynomial basis; empty for an unknown type or number of inputs.
std::optional<std::int64_t> BasisSize(std::optional<int> type, std::optional<int> inputs);

}  // namespace Tarvane::Plexura::PXROM::inspection
