#include "pxrom/evaluation_cost.h"

namespace Tarvane::Plexura::PXROM {

namespace {

constexpr std::uint64_t kShownExactly = 10000;

/// A large number rounded up to two significant digits.
std::uint64_t RoundedUp(std::uint64_t number) {
  std::uint64_t unit = 1;
  while (number / unit >= 100 && number >= kShownExactly) unit *= 10;
  const std::uint64_t rest = number % unit;
  const std::uint64_t up = rest == 0 ? 0 : unit - rest;
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  return number > kLargest - up ? kLargest : number + up;
}

/// "9.2e9" for a large round number, else all digits.
std::string Shown(std::uint64_t number) {
  std::string digits = std::to_string(number);
  const std::size_t last = digits.find_last_not_of('0');
  if (number < kShownExactly || last == std::string::npos || last > 2) return digits;
  const std::string exponent = std::to_string(digits.size() - 1);
  std::string mantissa = digits.substr(0, 1);
  if (last > 0) mantissa += '.' + digits.substr(1, last);
  return mantissa + 'e' + exponent;
}

}  // namespace

int CheckEvaluationCost(const CEvaluationCost& cost, const CEvaluationLimit& limit,
                        std::string* reason) {
  const bool isSlow = cost.operations > limit.operations;
  if (!isSlow && cost.bytes <= limit.bytes) return 0;
  if (reason == nullptr) return 1;
  const std::string needed = Shown(RoundedUp(isSlow ? cost.operations : cost.bytes));
  const std::string what = isSlow ? " floating-point operations at each point" : " bytes of memory";
  *reason = "An evaluation takes about " + needed + what + ", and the limit is " +
            Shown(isSlow ? limit.operations : limit.bytes) +
            ": the model is evaluated with a limit of " + needed +
            (isSlow ? " operations" : " bytes") + " or more, or with none.";
  return 1;
}

}  // namespace Tarvane::Plexura::PXROM
