#include "cost.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <iterator>
#include <optional>

#include "numbers.h"
#include "wording.h"

namespace pxrom_command {

namespace pxrom = Tarvane::Plexura::PXROM;

namespace {

constexpr std::uint64_t kOperations = 2'000'000'000;
constexpr std::uint64_t kBytes = std::uint64_t{1} << 30U;
constexpr int kDigits = 3;

}  // namespace

pxrom::CEvaluationLimit LimitOf(const std::string& given) {
  if (given.empty()) return {kOperations, kBytes};
  pxrom::CEvaluationLimit limit;
  if (given == "none") return limit;
  constexpr double kTooMany = 18446744073709551616.0;
  const std::optional<double> operations = ParseReal(given);
  if (!operations.has_value() || *operations < 0.0 || *operations >= kTooMany) {
    throw CLI::ValidationError(
        "--limit", Quoted(given) + " is not a number of operations such as 1e10, or none");
  }
  limit.operations = static_cast<std::uint64_t>(*operations);
  return limit;
}

std::string MemoryOf(const pxrom::CEvaluationCost& cost) {
  static const char* const kUnits[] = {" kB", " MB", " GB"};
  constexpr double kStep = 1000.0;
  double amount = static_cast<double>(cost.bytes) / kStep;
  std::size_t unit = 0;
  while (amount >= kStep && unit + 1 < std::size(kUnits)) {
    amount /= kStep;
    ++unit;
  }
  return Shown(amount, kDigits) + kUnits[unit];
}

std::string OperationsOf(const pxrom::CEvaluationCost& cost) {
  return Shown(static_cast<double>(cost.operations), kDigits);
}

}  // namespace pxrom_command
