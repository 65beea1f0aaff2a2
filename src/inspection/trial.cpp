// Reading and evaluating, for what no shape tells: on objects of its own, as a host would.

#include <cmath>
#include <cstdint>
#include <stdexcept>

#include "ensemble/candidate_reading.h"
#include "ensemble/families.h"
#include "inspection/context.h"
#include "inspection/key_tables.h"
#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "pxrom/moving_least_squares.h"
#include "pxrom/regression.h"
#include "reading/database_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using reading::DatabaseText;

// Multiplications that the evaluations of any text may take, and more for each of its characters.
constexpr double kWorkForAnyText = 1e9;
constexpr double kWorkPerCharacter = 256.0;

class OpenReader : public CReaderPXROMDatabase {
 public:
  using CReaderPXROMDatabase::ResumeParameterRegistry;
};

class OpenModel : public CDiscreteCombinations {
 public:
  using CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank;
};

/// What a call gave: a status, or -1 for an exception because of the text.
template <class Call>
int StatusOf(Call call) {
  constexpr int kThrown = -1;
  try {
    return call();
  } catch (const std::out_of_range&) {
    return kThrown;
  }
}

std::string Answer(int status) {
  return status == 1 ? "the library refuses it with status 1"
                     : "the library throws std::out_of_range";
}

// All families but one take a time in proportion to their data.
double WorkOf(const CRSData& surface) {
  if (surface.DataType() != DT_MLSData) return 0.0;
  const auto& record = static_cast<const CMLSData&>(surface);
  const double p = record.NumberOfBasisFunctions;
  return p * p * (p + std::fmax(record.NumberOfUsedPoints, 0.0));
}

class Trial {
 public:
  Trial(Context& context, const std::string& text)
      : context_(context),
        text_(context.text),
        workLeft_(kWorkForAnyText + kWorkPerCharacter * static_cast<double>(text.size())) {
    std::string copy = text;
    reader_.ReadDataStream(copy);
  }

  void Run() {
    const bool hasRegistry = TryRegistry();
    text_.Index();
    for (const auto& [id, group] : context_.used) {
      TryGroup(id, *group, hasRegistry);
      if (text_.IsExhausted()) break;
    }
    ReportDerivatives();
    if (!context_.findings.HasErrorIn("")) TryAll();
  }

 private:
  void Report(E_FindingSeverity severity, E_FindingCode code, std::size_t offset,
              const std::string& path, std::string sentence) {
    context_.findings.Add(severity, code, {offset, path, "", "", ""}, std::move(sentence));
  }

  // Whether the text's own findings say already why something does not work.
  bool IsExplained(const Group& group, const std::string& path) const {
    return context_.findings.HasErrorIn(path) || context_.outline.IsDamaged(group);
  }

  // The registry, and the middle of the bounds as a point.
  bool TryRegistry() {
    const int status = StatusOf([&] { return reader_.ResumeParameterRegistry(model_, 0, 0); });
    if (status != 0) {
      if (!context_.findings.HasErrorIn("")) {
        Report(SeverityError, FindingReadingRefused, 0, TextOf(Word::ParameterRegistry),
               "the registry can't be read: " + Answer(status));
      }
      return false;
    }
    for (const std::string& id : model_.ListParameterImmutableID(CausalityInput, true)) {
      if (!model_.IsContinuous(id)) continue;
      const auto lower = model_.ListLowerBound({id});
      const auto upper = model_.ListUpperBound({id});
      const bool hasBounds = !lower.empty() && !upper.empty();
      middle_.emplace_back(id, hasBounds ? 0.5 * lower[0].second + 0.5 * upper[0].second : 0.0);
    }
    return model_.PickAndSortValuesWrtParameterRegistrationRank(middle_, point_) == 0;
  }

  void TryGroup(int id, const Group& group, bool hasPoint) {
    const std::string path = context_.outline.PathOf(group);
    CFittingCandidates list;
    const int status = StatusOf([&] { return reading::ReadFittingCandidates(text_, id, list); });
    const CFittingCandidate* const candidate = list.GetEvaluationCandidatePtr();
    if (status != 0 || candidate == nullptr) {
      if (IsExplained(group, path)) return;
      Report(SeverityError, FindingReadingRefused, group.tag, path,
             text_.IsExhausted()
                 ? "the groups ask for more work than a text of this length may; the reader gives "
                   "up with status 1"
                 : path + " can't be read: " + Answer(status));
      return;
    }
    NoteFamilies(*candidate, group);
    if (!hasPoint || !IsAffordable(*candidate)) {
      if (hasPoint) {
        Report(
            SeverityWarning, FindingNotTried, group.tag, path,
            "the evaluation of " + path + " would take out of proportion long, it was not tried");
      }
      return;
    }
    if (TryValue(list, *candidate, group, path)) TryError(list, *candidate, group, path);
  }

  bool IsAffordable(const CFittingCandidate& candidate) {
    double work = 0.0;
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      work += WorkOf(*candidate.GetRSPtr(static_cast<int>(i)));
    }
    for (std::size_t i = 0; i < candidate.GetSubRSCounts(); ++i) {
      work += WorkOf(*candidate.GetSubRSPtr(static_cast<int>(i)));
    }
    if (work > workLeft_) {
      isAllTried_ = false;
      return false;
    }
    workLeft_ -= work;
    return true;
  }

  bool TryValue(const CFittingCandidates& list, const CFittingCandidate& candidate,
                const Group& group, const std::string& path) {
    double value = 0.0;
    const int status =
        CFittingCandidatesEvaluator().EvaluateResponseSurfaceCandidate(list, point_, value);
    if (status == 0 && std::isfinite(value)) return true;
    if (!IsExplained(group, path)) {
      const std::size_t culprit = Culprit(candidate, status != 0);
      const Group* const genome = context_.outline.Find(Word::Genome, static_cast<int>(culprit),
                                                        context_.outline.IndexOf(group));
      const bool isNamed = culprit < candidate.GetRSCount() && genome != nullptr;
      const std::string name = isNamed ? context_.outline.PathOf(*genome) : path;
      const std::size_t offset = isNamed ? genome->tag : group.tag;
      if (status != 0) {
        Report(SeverityError, FindingEvaluationRefused, offset, name,
               name +
                   " is read, but in the middle of the bounds its evaluation is refused with "
                   "status 1" +
                   (isNamed ? CauseOf(*candidate.GetRSPtr(static_cast<int>(culprit))) : ""));
      } else {
        Report(SeverityWarning, FindingValueNotFinite, offset, name,
               "the value of " + name + " in the middle of the bounds is not finite");
      }
    }
    return status == 0;
  }

  // What is left to refuse where every shape fits.
  static std::string CauseOf(const CRSData& surface) {
    switch (surface.DataType()) {
      case DT_QRSData:
        return static_cast<const CQRSData&>(surface).OutputTransformType == TransformNone
                   ? ""
                   : ": its output transformation has no way back from the sum of its terms";
      case DT_MLSData:
        return ": its equations have no solution there";
      default:
        return "";
    }
  }

  // The first surface that refuses, or whose value is not finite; their number when there is none.
  std::size_t Culprit(const CFittingCandidate& candidate, bool isRefused) const {
    std::vector<double> point = point_;
    if (candidate.ScaleAndOverwriteInputSample(point) != 0) return candidate.GetRSCount();
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData* const surface = candidate.GetRSPtr(static_cast<int>(i));
      const Family* const family = FindFamily(surface->DataType());
      double value = 0.0;
      const bool refuses = family == nullptr ||
                           family->evaluator().EvaluateResponseSurface(surface, point, value) == 1;
      if (isRefused ? refuses : !std::isfinite(value)) return i;
    }
    return candidate.GetRSCount();
  }

  // The form with errors may write a record, which is of no more use here.
  void TryError(const CFittingCandidates& list, const CFittingCandidate& candidate,
                const Group& group, const std::string& path) {
    double value = 0.0;
    double error = 0.0;
    const int status =
        CFittingCandidatesEvaluator().EvaluateResponseSurfaceCandidate(list, point_, value, error);
    if (status == 0) {
      SetErrorKind(group.id, candidate.GetIsErrPredRequired() ? PredictedErrorCrossValidation
                                                              : PredictedErrorSurface);
    } else if (status == -2) {
      Report(SeverityNote, FindingErrorNone, group.tag, path,
             path + " has values but no predicted error: the form with errors answers -2" +
                 (HasKriging(candidate) ? ", and repeating it on a Kriging surface changes values"
                                        : ""));
    } else {
      const std::string reason = ReasonOfRefusal(candidate);
      Report(reason.empty() ? SeverityWarning : SeverityNote, FindingErrorFormRefused, group.tag,
             path,
             "the form with errors is refused for " + path +
                 (reason.empty() ? ", though it has data for it" : ": " + reason));
    }
  }

  static bool HasKriging(const CFittingCandidate& candidate) {
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      if (candidate.GetRSPtr(static_cast<int>(i))->DataType() == DT_KrigingData) return true;
    }
    return false;
  }

  // Why an ensemble that is as it should be can't have an error; empty for any other.
  static std::string ReasonOfRefusal(const CFittingCandidate& candidate) {
    if (candidate.GetIsErrPredRequired()) return "";
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData* const surface = candidate.GetRSPtr(static_cast<int>(i));
      const E_DataType type = surface->DataType();
      if (type == DT_SVRData || type == DT_MLSData || type == DT_LBFData) {
        return "a " + FamilyName(type) + " surface has no predictor error of its own";
      }
      if (type == DT_QRSData && !static_cast<const CQRSData*>(surface)->SavePredictorError) {
        return "a regression surface holds no error data";
      }
    }
    return "";
  }

  void SetErrorKind(int id, E_PredictedErrorKind kind) {
    for (CEnsembleOverview& ensemble : context_.overview.ensembles) {
      if (ensemble.id == id) ensemble.errorKind = kind;
    }
  }

  // Remembers where each kind of surface comes first whose derivative is of no use.
  void NoteFamilies(const CFittingCandidate& candidate, const Group& group) {
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData* const surface = candidate.GetRSPtr(static_cast<int>(i));
      const E_DataType type = surface->DataType();
      if (type == DT_QRSData && !IsDerivativeOff(*static_cast<const CQRSData*>(surface))) continue;
      const Group* const genome =
          context_.outline.Find(Word::Genome, static_cast<int>(i), context_.outline.IndexOf(group));
      WithoutDerivative& entry = withoutDerivative_[type];
      ++entry.count;
      if (genome == nullptr || (entry.count > 1 && genome->tag > entry.offset)) continue;
      entry.offset = genome->tag;
      entry.path = context_.outline.PathOf(*genome);
    }
  }

  // Its derivative knows no input transformation and only some of the output's.
  static bool IsDerivativeOff(const CQRSData& record) {
    return record.InputTransformType != TransformNone ||
           (record.OutputTransformType != TransformNone &&
            record.OutputTransformType != TransformBox &&
            record.OutputTransformType != TransformLogBox);
  }

  void ReportDerivatives() {
    for (const auto& [type, entry] : withoutDerivative_) {
      const std::string surfaces = FamilyName(type) + " surfaces";
      std::string sentence =
          type == DT_QRSData
              ? "the derivative of " + surfaces +
                    " with such transformations is not that of the "
                    "value"
              : surfaces + (type == DT_KrigingData ? " have no derivative, although its status is 0"
                                                   : " have no derivative, it is refused");
      if (entry.count > 1) sentence += "; this is the first of " + std::to_string(entry.count);
      Report(SeverityNote, FindingDerivativeNone, entry.offset, entry.path, std::move(sentence));
    }
  }

  // The whole text, as a host reads it, and each of its combinations.
  void TryAll() {
    CDiscreteCombinations model;
    const int status = StatusOf([&] { return reader_.ResumeDiscreteCombinations(model); });
    if (status != 0) {
      ReportUnreadable(status);
      return;
    }
    if (!isAllTried_) return;
    const std::vector<std::string> names = model.ListEnabledDiscreteParameterWrtRegistrationRank();
    std::vector<std::string> inputs;
    for (const std::string& name : names) {
      if (model.IsInput(name)) inputs.push_back(name);
    }
    for (const auto& [values, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
      std::vector<std::pair<std::string, int>> discrete;
      for (std::size_t i = 0; i < values.size() && i < inputs.size(); ++i) {
        discrete.emplace_back(inputs[i], values[i]);
      }
      std::vector<std::pair<std::string, double>> outputs;
      if (model.Evaluate(discrete, middle_, outputs) == 0) continue;
      Report(SeverityError, FindingEvaluationRefused, 0, TextOf(Word::DiscreteSets),
             "combination " + std::to_string(position + 1) +
                 " is read, but in the middle of the bounds its evaluation is refused");
    }
  }

  // Each group could be read once, so that reading them again and again must be what is refused.
  void ReportUnreadable(int status) {
    std::size_t uses = 0;
    for (const CCombinationOverview& line : context_.overview.combinations) {
      uses += line.outputs.size();
    }
    const Group* const sets = context_.outline.FindPlain(Word::DiscreteSets);
    const std::size_t groups = context_.used.size();
    const bool isShared = sets != nullptr && uses > groups;
    Report(SeverityError, FindingReadingRefused, isShared ? sets->tag : 0,
           isShared ? TextOf(Word::DiscreteSets) : "",
           "no group is damaged, but the text as a whole can't be read: " + Answer(status) +
               (isShared
                    ? "; its lines use " + Counted(groups, "group") + ' ' + Counted(uses, "time") +
                          ", which is more work than a text of this length may ask for"
                    : ""));
  }

  struct WithoutDerivative {
    std::size_t count = 0;
    std::size_t offset = 0;
    std::string path;
  };

  Context& context_;
  DatabaseText text_;
  OpenReader reader_;
  OpenModel model_;
  std::vector<std::pair<std::string, double>> middle_;
  std::vector<double> point_;
  double workLeft_;
  bool isAllTried_ = true;
  std::map<E_DataType, WithoutDerivative> withoutDerivative_;
};

}  // namespace

void TryText(Context& context, const std::string& text) { Trial(context, text).Run(); }

}  // namespace Tarvane::Plexura::PXROM::inspection
