#include "families/support_vector/svr_checks.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "families/support_vector/multipliers.h"
#include "families/support_vector/svr_fields.h"
#include "kernels/kernels.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

// The reader ignores a value outside its range, and the record keeps its default.
void CheckSetting(const GroupText& in, const std::string& label, double most,
                  const std::string& range) {
  const std::optional<double> value = in.Double(label);
  if (!value || (*value > 0.0 && *value < most)) return;
  in.Report(SeverityWarning, FindingValueOutOfRange, label, NumberText(*value), range,
            Quoted(label) + " is " + NumberText(*value) + ", taken is only " + range +
                "; the default stays");
}

void CheckMultipliers(const SurfaceText& surface) {
  GroupText& in = surface.in;
  const std::optional<int> loss = in.Int(Labels::attSVRLossFuncType());
  if (!loss) return;
  std::vector<const std::string*> used = {&Labels::attSVRBeta()};
  if (IsPaired(static_cast<E_SVRLossFuncType>(*loss)))
    used = {&Labels::attSVRAlpha(), &Labels::attSVRAlphaStar()};
  for (const std::string* label : used) {
    in.Require(*label);
    if (surface.shape.samples) {
      in.ExpectLength(*label, *surface.shape.samples, SamplesOf(surface.shape));
    }
  }
}

// 1, 2, 3 and 4, with " and " before the last.
std::string Listed(const std::vector<int>& numbers, const char* before) {
  std::string text;
  for (std::size_t k = 0; k < numbers.size(); ++k) {
    if (k > 0) text += k + 1 < numbers.size() ? ", " : before;
    text += std::to_string(numbers[k]);
  }
  return text;
}

void CheckKernel(const GroupText& in) {
  const std::vector<int> known = kernels::NumbersOfSupportVectorKernels();
  const std::string& label = Labels::attSVRKernType();
  const std::optional<int> type = in.Int(label);
  if (!type || std::count(known.begin(), known.end(), *type) > 0) return;
  in.Report(
      SeverityError, FindingValueOutOfRange, label, std::to_string(*type), Listed(known, " or "),
      Quoted(label) + " is " + std::to_string(*type) + ", kernels are " + Listed(known, " and "));
}

}  // namespace

void CheckSupportVector(SurfaceText& surface) {
  GroupText& in = surface.in;
  CheckKernel(in);
  CheckMultipliers(surface);
  CheckSetting(in, Labels::attSVREpsilonValue(), 1.0, "between 0 and 1");
  CheckSetting(in, Labels::attSVRNuValue(), 1.0, "between 0 and 1");
  CheckSetting(in, Labels::attSVRConstantValue(), std::numeric_limits<double>::infinity(),
               "above 0");
  // The kernel scales of older records are computed from the samples.
  if (in.Int(Labels::attSVRVersion()).value_or(0) < SVRDataVersion171) return;
  in.Require(FamilyOf<CSVRData>::family.keys().keysOfPart);
  if (surface.shape.inputs) {
    in.ExpectLength(Labels::attSVRKernelArray(), *surface.shape.inputs, InputsOf(surface.shape));
  }
}

}  // namespace Tarvane::Plexura::PXROM::inspection
