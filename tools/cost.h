#pragma once

#include <string>

#include "pxrom/evaluation_cost.h"

namespace pxrom_command {

constexpr const char* kLimitHelp =
    "Largest number of floating-point operations at a point, such as 1e10, or none; pxrom info "
    "shows what a model takes";

/// The limit of `--limit`; without that option about a second for each point, and a gibibyte.
/// CLI::ValidationError for a text that is not a number of operations.
Tarvane::Plexura::PXROM::CEvaluationLimit LimitOf(const std::string& given);

/// "29.9 MB"
std::string MemoryOf(const Tarvane::Plexura::PXROM::CEvaluationCost& cost);
/// "9.06e+09"
std::string OperationsOf(const Tarvane::Plexura::PXROM::CEvaluationCost& cost);

}  // namespace pxrom_command
