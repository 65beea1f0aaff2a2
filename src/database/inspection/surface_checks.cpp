// The checks that all surfaces share, and the choice of the family.

#include "database/inspection/surface_checks.h"

#include "database/inspection/key_tables.h"
#include "families/family.h"
#include "pxrom/database_labels.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

// The type as the reader finds it, before the keys of a family can be looked for.
int DataTypeIn(const Context& context, const Group& group) {
  const std::string_view body = context.text.substr(group.lower, group.upper - group.lower);
  const std::size_t at = body.find(Labels::attType());
  int type = 0;
  if (at != std::string_view::npos) {
    CheckNumber(reading::RestOfLine(body, at + Labels::attType().size()), type);
  }
  return type;
}

void CheckFlags(const GroupText& in) {
  const std::string& ready = Labels::attRSIsReadyForEvaluation();
  if (in.Int(ready) == 0) {
    in.Report(SeverityError, FindingSurfaceNotReady, ready, "0", "1",
              in.Path() + " is not ready for evaluation");
  }
  const std::string& stopped = Labels::attRSIsStopped();
  if (in.Int(stopped).value_or(0) != 0) {
    in.Report(SeverityError, FindingSurfaceStopped, stopped, std::to_string(*in.Int(stopped)), "0",
              in.Path() + " is stopped");
  }
}

// "2 to 8 or 102": consecutive numbers are joined.
template <class Families>
std::string NumbersOf(const Families& families) {
  std::string numbers;
  for (auto family = families.begin(); family != families.end();) {
    const int first = (*family)->type;
    int last = first;
    while (++family != families.end() && (*family)->type == last + 1) ++last;
    if (!numbers.empty()) numbers += " or ";
    numbers += std::to_string(first);
    if (last != first) numbers += " to " + std::to_string(last);
  }
  return numbers;
}

std::vector<const Family*> FamiliesWithValue() {
  std::vector<const Family*> families;
  for (const Family* const family : kAllFamilies) {
    if (family->hasValue) families.push_back(family);
  }
  return families;
}

// Whether the family can be checked: its number is known, and the keys are those of the family.
bool CheckFamily(GroupText& in, int type, const Family* family) {
  const std::string& label = Labels::attType();
  if (!in.Has(label)) return false;
  if (family == nullptr) {
    if (in.Int(label)) {
      in.Report(SeverityError, FindingValueOutOfRange, label, std::to_string(type),
                NumbersOf(kAllFamilies),
                Quoted(label) + " is " + std::to_string(type) +
                    ", which is no family: reading is refused");
    }
    return false;
  }
  if (!family->hasValue) {
    in.Report(SeverityError, FindingSurfaceWithoutValue, label, std::to_string(type),
              NumbersOf(FamiliesWithValue()),
              in.Path() + " is a " + family->name + " record, which no evaluation takes");
    return false;
  }
  const char* const place = in.PlaceOfUnknownKeys();
  if (place != nullptr && in.CountKeysOf(family->keys().keys) == 0) {
    in.Report(SeverityError, FindingFamilyMismatch, label, std::to_string(type), "",
              Quoted(label) + " says that this is a " + family->name +
                  " surface, but its keys are those of " + place);
    return false;
  }
  return true;
}

// Reports a list that does not fit the counts, or a count if the lists agree with each other.
std::optional<int> CheckSamples(const GroupText& in, const ShapeLabels& labels,
                                std::optional<int> inputs, bool mayLackOutputs) {
  std::optional<int> samples = in.Int(labels.samples);
  const std::optional<std::size_t> values = in.Length(labels.inputSamples);
  const std::optional<std::size_t> outputs = in.Length(labels.outputSamples);
  if (samples && outputs && values && inputs && *inputs > 0 &&
      static_cast<std::int64_t>(*outputs) != *samples && *outputs <= INT32_MAX &&
      *values == *outputs * static_cast<std::size_t>(*inputs)) {
    in.Report(SeverityError, FindingCountMismatch, labels.samples, std::to_string(*samples),
              std::to_string(*outputs),
              Quoted(labels.samples) + " is " + std::to_string(*samples) + ", but the lists hold " +
                  Counted(*outputs, "sample"));
    samples = static_cast<int>(*outputs);
  }
  if (!samples || *samples < 0) return std::nullopt;
  if (inputs && *inputs >= 0) {
    in.ExpectLength(labels.inputSamples, std::int64_t{*samples} * *inputs,
                    SamplesOfInputs({inputs, samples}));
  }
  if (!mayLackOutputs || outputs != 0U) {
    in.ExpectLength(labels.outputSamples, *samples,
                    Counted(static_cast<std::size_t>(*samples), "sample"));
  }
  return samples;
}

bool NeedsOutputs(const Family& family, std::optional<int> samples) {
  return family.needsOutputs != nullptr && family.needsOutputs(samples.value_or(0));
}

}  // namespace

std::string SamplesOfInputs(const Shape& shape) {
  return SamplesOf(shape) + " of " + InputsOf(shape);
}

Shape CheckShape(const GroupText& in, const ShapeLabels& labels, const ShapeFrame& frame) {
  Shape shape;
  shape.inputs = in.Int(labels.inputs);
  if (frame.inputs && shape.inputs != frame.inputs) {
    if (shape.inputs) {
      in.Report(SeverityError, FindingInputsMismatch, labels.inputs, std::to_string(*shape.inputs),
                std::to_string(*frame.inputs),
                Quoted(labels.inputs) + " is " + std::to_string(*shape.inputs) + ", " +
                    frame.source + " has " +
                    Counted(static_cast<std::size_t>(*frame.inputs), "input"));
    }
    shape.inputs = frame.inputs;
  }
  shape.samples = CheckSamples(in, labels, shape.inputs, frame.mayLackOutputs);
  if (shape.inputs && *shape.inputs >= 0) {
    const std::string why = Counted(static_cast<std::size_t>(*shape.inputs), "input");
    in.ExpectLength(labels.inputSlopes, *shape.inputs, why);
    in.ExpectLength(labels.inputIntercepts, *shape.inputs, why);
  }
  const std::optional<std::size_t> zero = in.FirstZero(labels.inputSlopes);
  if (frame.scalesInput && zero) {
    in.ReportAt(in.OffsetOfElement(labels.inputSlopes, *zero), SeverityError, FindingScaleSlopeZero,
                labels.inputSlopes, "0", "not 0",
                "slope " + std::to_string(*zero + 1) + " of " + Quoted(labels.inputSlopes) +
                    " is 0, so that the input has no effect");
  }
  if (frame.scalesOutput && in.Double(labels.outputSlope) == 0.0) {
    in.Report(SeverityError, FindingScaleSlopeZero, labels.outputSlope, "0", "not 0",
              Quoted(labels.outputSlope) + " is 0, by which the value would be divided");
  }
  return shape;
}

SurfaceFacts CheckSurface(Context& context, const Group& group, std::optional<int> inputs,
                          bool isSub) {
  const int type = DataTypeIn(context, group);
  const Family* const family = FindFamily(static_cast<E_DataType>(type));
  std::vector<const KeyTable*> tables = {&GenomeKeys()};
  if (family != nullptr) {
    tables.push_back(&family->keys().keys);
    tables.push_back(&family->keys().keysOfPart);
  }
  GroupText in(context.text, context.outline, group, std::move(tables), FormatVocabulary(),
               context.findings);
  SurfaceFacts facts;
  facts.overview.genome = group.id;
  facts.overview.type = static_cast<E_DataType>(type);
  facts.overview.family = family != nullptr && family->hasValue ? std::string(family->name)
                                                                : "type " + std::to_string(type);
  facts.overview.samples = in.Int(Labels::attRSNumberOfSamples()).value_or(0);
  facts.weight = in.Double(Labels::tagGenomeWeight());
  facts.overview.weight = facts.weight.value_or(0.0);
  facts.weightOffset = in.OffsetOf(Labels::tagGenomeWeight());

  in.Require(GenomeKeys());
  if (!isSub) in.Require(Labels::tagGenomeWeight());
  const bool isJudged = CheckFamily(in, type, family);
  if (isJudged) {
    in.Require(family->keys().keys);
  } else {
    in.ForgetMisplacedKeys();
  }
  CheckFlags(in);
  const ShapeLabels labels = {
      Labels::attRSNumberOfInputVariables(), Labels::attRSNumberOfSamples(),
      Labels::attRSInputSamples(),           Labels::attRSOutputSamples(),
      Labels::attRSInputScaleSlopes(),       Labels::attRSInputScaleIntercepts(),
      Labels::attRSOutputScaleSlope(),
  };
  const ShapeFrame frame = {inputs, "its ensemble", isJudged && family->scalesInput,
                            isJudged && family->scalesOutput,
                            isJudged && !NeedsOutputs(*family, in.Int(labels.samples))};
  SurfaceText surface{in, CheckShape(in, labels, frame)};
  if (isJudged && family->check != nullptr) family->check(surface);
  in.Finish();
  return facts;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
