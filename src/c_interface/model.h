#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pxrom/discrete_combinations.h"
#include "pxrom/pxrom_c.h"

/// A model with all data that it hands out, which are prepared when it is read.
struct pxrom_model {
  struct Parameter {
    std::string id;
    std::string unit;
    std::string caption;
    std::vector<std::int32_t> values;
    /// Points into the strings and values above.
    pxrom_parameter shown = {};
  };

  pxrom_model() = default;
  pxrom_model(const pxrom_model&) = delete;
  pxrom_model& operator=(const pxrom_model&) = delete;

  Tarvane::Plexura::PXROM::CDiscreteCombinations combinations;
  std::vector<Parameter> parameters;
  /// Places in `parameters`, by pxrom_list.
  std::vector<std::size_t> lists[4];
  std::vector<std::vector<std::int32_t>> keys;
};
