// The `PlexuraData` groups: candidate, surfaces, cross-validation data.

#include <cmath>
#include <limits>
#include <memory>

#include "database/inspection/key_tables.h"
#include "database/inspection/surface_checks.h"
#include "pxrom/database_labels.h"
#include "pxrom/fitting_candidate.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

/// The numbers of surfaces that an ensemble states.
struct Cardinality {
  std::int64_t surfaces = 0;
  std::int64_t subSurfaces = 0;
  bool isKnown = true;

  std::int64_t Total() const { return surfaces + subSurfaces; }
};

class EnsembleCheck {
 public:
  EnsembleCheck(Context& context, const Group& group)
      : context_(context),
        group_(group),
        in_(context.text, context.outline, group, {&CandidateKeys(), &CrossValidationKeys()},
            FormatVocabulary(), context.findings) {}

  /// The number of inputs, where the candidate and its first surface agree on one.
  std::optional<int> Inputs() const {
    const std::optional<int> inputs = in_.Int(Labels::attCandidateNumberOfInputVariables());
    const Group* const first =
        context_.outline.Find(Word::Genome, 0, context_.outline.IndexOf(group_));
    if (!inputs || first == nullptr) return std::nullopt;
    const std::string_view body = context_.text.substr(first->lower, first->upper - first->lower);
    const std::string& key = Labels::attRSNumberOfInputVariables();
    const std::size_t at = body.find(key);
    int ofSurface = 0;
    if (at == std::string_view::npos ||
        CheckNumber(reading::RestOfLine(body, at + key.size()), ofSurface) != Defect::None) {
      return std::nullopt;
    }
    return ofSurface == *inputs ? inputs : std::nullopt;
  }

  void Run(std::optional<int> inputs) {
    in_.Require(CandidateKeys());
    hasErrorData_ = HasErrorData();
    if (hasErrorData_) in_.Require(CrossValidationKeys());
    in_.Finish();
    const ShapeLabels labels = {
        Labels::attCandidateNumberOfInputVariables(), Labels::attCandidateNumberOfSamples(),
        Labels::attCandidateInputSamples(),           Labels::attCandidateOutputSamples(),
        Labels::attCandidateInputScaleSlopes(),       Labels::attCandidateInputScaleIntercepts(),
        Labels::attCandidateOutputScaleSlope(),
    };
    const ShapeFrame frame = {inputs, "the registry", true, true};
    shape_ = CheckShape(in_, labels, frame);
    Cardinality cardinality = ReadCardinality();
    const bool isRight = cardinality.isKnown && CheckGenomes(cardinality);
    CheckSurfaces(cardinality);
    if (hasErrorData_) CheckCrossValidation(cardinality, isRight);
    FillOverview(cardinality);
  }

 private:
  bool HasErrorData() {
    const std::string& flag = Labels::GARSExportPredictionOfError();
    const bool isOld = in_.Int(Labels::attCandidateVersion()) == FittingCandidateVersion170;
    if (in_.Bool(flag) && !isOld) return true;
    if (in_.CountKeysOf(CrossValidationKeys()) > 0) {
      in_.Report(SeverityWarning, FindingErrorDataIgnored, flag, "", "",
                 "the cross-validation data of " + in_.Path() + " is not read, since " +
                     (isOld ? "the candidate's version is 170" : Quoted(flag) + " is not 1"));
    }
    return false;
  }

  Cardinality ReadCardinality() {
    Cardinality cardinality;
    const std::optional<int> surfaces = in_.Int(Labels::attCandidateRSCardinality());
    cardinality.surfaces = surfaces.value_or(0);
    cardinality.isKnown = surfaces && *surfaces >= 0;
    if (surfaces == 0) {
      in_.Report(SeverityError, FindingNothingToPredict, Labels::attCandidateRSCardinality(), "0",
                 "1 or more", in_.Path() + " has no surface");
      cardinality.isKnown = false;
    }
    if (!hasErrorData_) return cardinality;
    const std::optional<int> subSurfaces = in_.Int(Labels::attCandidateSubRSCardinality());
    cardinality.subSurfaces = subSurfaces.value_or(0);
    cardinality.isKnown = cardinality.isKnown && subSurfaces && *subSurfaces >= 0;
    return cardinality;
  }

  // Compares the `Genome` groups with the counts. False when they disagree.
  bool CheckGenomes(const Cardinality& cardinality) {
    if (context_.outline.IsDamaged(Word::Genome, group_.tag, group_.end)) return false;
    const Outline& outline = context_.outline;
    const std::size_t parent = outline.IndexOf(group_);
    std::int64_t there = 0;
    const Group* extra = nullptr;
    for (const std::size_t index : group_.children) {
      const Group& genome = outline.At(index);
      if (genome.word != Word::Genome) continue;
      ++there;
      const bool isExtra = genome.id < 0 || genome.id >= cardinality.Total();
      if (isExtra && extra == nullptr) extra = &genome;
    }
    std::int64_t contiguous = 0;
    while (contiguous < there &&
           outline.Find(Word::Genome, static_cast<int>(contiguous), parent) != nullptr) {
      ++contiguous;
    }
    if (contiguous == there) {
      if (there == cardinality.Total()) return true;
      ReportCardinality(cardinality, there);
    } else if (extra != nullptr) {
      Report(*extra, FindingGroupMissing, std::to_string(contiguous),
             "the group Genome " + std::to_string(contiguous) + " of " + in_.Path() +
                 " is missing; this one has the number " + std::to_string(extra->id));
    } else {
      ReportGap(static_cast<int>(contiguous));
    }
    return false;
  }

  void Report(const Group& genome, E_FindingCode code, std::string expected, std::string sentence) {
    context_.findings.Add(
        SeverityError, code,
        {genome.tag, context_.outline.PathOf(genome), "", "", std::move(expected)},
        std::move(sentence));
  }

  // Reports the gap at the group that follows the missing one.
  void ReportGap(int missing) {
    for (const std::size_t index : group_.children) {
      const Group& genome = context_.outline.At(index);
      if (genome.word != Word::Genome || genome.id < missing) continue;
      Report(genome, FindingGroupMissing, std::to_string(missing),
             "the group Genome " + std::to_string(missing) + " of " + in_.Path() +
                 ", which should stand before this one, is missing");
      return;
    }
  }

  // The groups have no gap, so a count is wrong. The fold counts may show which one.
  void ReportCardinality(const Cardinality& cardinality, std::int64_t there) {
    const std::string& surfaces = Labels::attCandidateRSCardinality();
    const std::string& subSurfaces = Labels::attCandidateSubRSCardinality();
    const std::string genomes = Counted(static_cast<std::size_t>(there), "Genome group");
    if (!hasErrorData_) {
      // Sub surfaces that are not read because of a flag are already reported.
      if (in_.Int(subSurfaces).value_or(0) + cardinality.surfaces == there) return;
      in_.Report(SeverityError, FindingCardinalityMismatch, surfaces,
                 std::to_string(cardinality.surfaces), std::to_string(there),
                 Quoted(surfaces) + " is " + std::to_string(cardinality.surfaces) + ", there are " +
                     genomes);
      return;
    }
    const auto folds =
        static_cast<std::int64_t>(in_.Length(Labels::CardinalOfEachFold()).value_or(0));
    const bool isSurfaces =
        there % (folds + 1) == 0 && there / (folds + 1) * folds == cardinality.subSurfaces;
    const std::string& label = isSurfaces ? surfaces : subSurfaces;
    const std::int64_t count = isSurfaces ? cardinality.surfaces : cardinality.subSurfaces;
    const std::int64_t other = cardinality.Total() - count;
    in_.Report(SeverityError, FindingCardinalityMismatch, label, std::to_string(count),
               std::to_string(there - other),
               Quoted(label) + " is " + std::to_string(count) + ", with " + std::to_string(other) +
                   " others there should be " + std::to_string(cardinality.Total()) +
                   " Genome groups, there are " + std::to_string(there));
  }

  void CheckSurfaces(const Cardinality& cardinality) {
    double sum = 0.0;
    bool isSummed = true;
    std::size_t offset = group_.tag;
    for (const std::size_t index : group_.children) {
      const Group& genome = context_.outline.At(index);
      if (genome.word != Word::Genome) continue;
      if (!genome.isSound) isSummed = false;
      const bool isSub = genome.id >= cardinality.surfaces;
      // Those beyond the counts are never read.
      if (!genome.isSound || genome.id < 0 || genome.id >= cardinality.Total()) continue;
      const SurfaceFacts facts = CheckSurface(context_, genome, shape_.inputs, isSub);
      if (isSub) continue;
      if (overview_.surfaces.empty()) offset = facts.weightOffset;
      overview_.surfaces.push_back(facts.overview);
      sum += facts.weight.value_or(0.0);
      if (!facts.weight) isSummed = false;
    }
    constexpr double kTolerance = 1e-6;
    if (!isSummed || overview_.surfaces.empty() || std::fabs(sum - 1.0) <= kTolerance) return;
    in_.ReportAt(
        offset, SeverityNote, FindingWeightSum, Labels::tagGenomeWeight(), NumberText(sum), "1",
        "the weights of " + in_.Path() + " add up to " + NumberText(sum) + " and not to 1");
  }

  void CheckCrossValidation(const Cardinality& cardinality, bool hasRightCardinality) {
    const std::string& points = Labels::attScInputPoints();
    const std::string& rho = Labels::WeightingRho();
    if (shape_.samples && shape_.inputs) {
      in_.ExpectLength(points, std::int64_t{*shape_.samples} * *shape_.inputs,
                       SamplesOfInputs(shape_));
    }
    if (in_.Double(rho) && !(*in_.Double(rho) > 0.0)) {
      in_.Report(SeverityError, FindingValueOutOfRange, rho, NumberText(*in_.Double(rho)),
                 "above 0",
                 Quoted(rho) + " is " + NumberText(*in_.Double(rho)) +
                     ", a squared distance by which others are divided");
    }
    if (hasRightCardinality) CheckFolds(cardinality);
    CheckFoldCounts();
  }

  void CheckFolds(const Cardinality& cardinality) {
    const std::string& label = Labels::attCandidateSubRSCardinality();
    const std::string& counts = Labels::CardinalOfEachFold();
    const std::int64_t folds = cardinality.subSurfaces / cardinality.surfaces;
    const std::string subSurfaces =
        Counted(static_cast<std::size_t>(cardinality.subSurfaces), "sub surface");
    const std::string surfaces = Counted(static_cast<std::size_t>(cardinality.surfaces), "surface");
    if (cardinality.subSurfaces % cardinality.surfaces != 0) {
      in_.Report(SeverityError, FindingFoldsMismatch, label,
                 std::to_string(cardinality.subSurfaces), "",
                 subSurfaces + " are no whole multiple of " + surfaces);
    } else if (folds == 0) {
      in_.Report(SeverityWarning, FindingFoldsMismatch, label, "0", "",
                 "without sub surfaces the predicted error is not a spread of predictions");
    } else if (const auto length = in_.Length(counts);
               length && *length != static_cast<std::uint64_t>(folds)) {
      in_.Report(SeverityError, FindingFoldsMismatch, counts, Counted(*length, "value"),
                 std::to_string(folds),
                 Quoted(counts) + " has " + Counted(*length, "value") + ", " + subSurfaces +
                     " of " + surfaces + " make " + std::to_string(folds) + " folds");
    }
    overview_.folds = static_cast<std::size_t>(folds);
  }

  void CheckFoldCounts() {
    const std::string& label = Labels::CardinalOfEachFold();
    const std::vector<int> counts = in_.Ints(label);
    std::int64_t sum = 0;
    for (std::size_t f = 0; f < counts.size(); ++f) {
      sum += counts[f];
      if (counts[f] > 0) continue;
      in_.ReportAt(in_.OffsetOfElement(label, f), SeverityError, FindingFoldsMismatch, label,
                   std::to_string(counts[f]), "1 or more",
                   "fold " + std::to_string(f) + " of " + Quoted(label) + " has " +
                       std::to_string(counts[f]) + " samples");
      return;
    }
    if (counts.empty() || !shape_.samples || sum == *shape_.samples) return;
    in_.Report(SeverityError, FindingFoldsMismatch, label, std::to_string(sum),
               std::to_string(*shape_.samples),
               "the folds of " + Quoted(label) + " add up to " + std::to_string(sum) +
                   " samples, there are " + std::to_string(*shape_.samples));
  }

  void FillOverview(const Cardinality& cardinality) {
    overview_.id = group_.id;
    overview_.inputs = shape_.inputs.value_or(0);
    overview_.samples = shape_.samples.value_or(0);
    overview_.subSurfaces =
        static_cast<std::size_t>(std::max<std::int64_t>(cardinality.subSurfaces, 0));
    overview_.characters = group_.end - group_.tag;
    context_.overview.ensembles.push_back(std::move(overview_));
  }

  Context& context_;
  const Group& group_;
  GroupText in_;
  Shape shape_;
  bool hasErrorData_ = false;
  CEnsembleOverview overview_;
};

// The number of inputs that evaluations pass. If all ensembles agree on a number other than that of
// the registry, the registry is wrong, and one finding there replaces one in each ensemble.
std::optional<int> AgreedInputs(Context& context,
                                const std::vector<std::unique_ptr<EnsembleCheck>>& ensembles) {
  if (!context.registry.isKnown) return std::nullopt;
  const std::size_t count = context.registry.continuousInputs.size();
  if (count > static_cast<std::size_t>(std::numeric_limits<int>::max())) return std::nullopt;
  const int registered = static_cast<int>(count);
  std::optional<int> agreed;
  for (const auto& ensemble : ensembles) {
    const std::optional<int> inputs = ensemble->Inputs();
    if (!inputs || *inputs == registered || (agreed && agreed != inputs)) return registered;
    agreed = inputs;
  }
  if (!agreed || *agreed < 0) return registered;
  context.findings.Add(
      SeverityError, FindingInputsMismatch,
      {context.registry.offset, TextOf(Word::ParameterRegistry), Labels::attParameterIDs(),
       std::to_string(registered), std::to_string(*agreed)},
      "the registry has " + Counted(count, "enabled continuous input") +
          ", all ensembles are fitted on " + std::to_string(*agreed));
  return agreed;
}

}  // namespace

void CheckEnsembles(Context& context) {
  std::vector<std::unique_ptr<EnsembleCheck>> ensembles;
  for (const auto& [id, group] : context.used) {
    if (group->isSound) ensembles.push_back(std::make_unique<EnsembleCheck>(context, *group));
  }
  const std::optional<int> inputs = AgreedInputs(context, ensembles);
  for (const auto& ensemble : ensembles) ensemble->Run(inputs);
}

}  // namespace Tarvane::Plexura::PXROM::inspection
