// Reads and evaluates the text on objects of its own, as a host would, to find what no check of
// shapes can find.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>

#include "database/inspection/context.h"
#include "database/reader/candidate_reading.h"
#include "families/family.h"
#include "model/candidate_access.h"
#include "model/ensemble_cost.h"
#include "pxrom/database_reader.h"
#include "pxrom/discrete_combinations.h"
#include "text/database_text.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using reading::DatabaseText;

class OpenReader : public CReaderPXROMDatabase {
 public:
  using CReaderPXROMDatabase::ResumeParameterRegistry;
  /// As ReadDataStream, which takes a text that is not const.
  void Take(const std::string& text) { DataStream = text; }
};

class OpenModel : public CDiscreteCombinations {
 public:
  using CDiscreteCombinations::PickAndSortValuesWrtParameterRegistrationRank;
};

/// The status of a call, or -1 for an exception because of the text.
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

/// The family of a surface that was read. Such a surface always has a family.
const Family& FamilyOfSurface(const CRSData& surface) { return *FindFamily(surface.DataType()); }

class Trial {
 public:
  Trial(Context& context, const std::string& text) : context_(context), text_(context.text) {
    reader_.Take(text);
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

  // Whether earlier findings already explain why something does not work.
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
    const CEvaluationCost cost = CostOf(*candidate).OfEvaluation();
    if (CEnsembleOverview* const ensemble = OverviewOf(id)) ensemble->cost = cost;
    if (!hasPoint || !TakesWork(cost)) {
      if (hasPoint) {
        Report(
            SeverityWarning, FindingNotTried, group.tag, path,
            "the evaluation of " + path + " would take out of proportion long, it was not tried");
      }
      return;
    }
    if (TryValue(list, *candidate, group, path)) TryError(list, *candidate, group, path);
  }

  // False if an evaluation costs more than what is left of the limit.
  bool TakesWork(const CEvaluationCost& cost) {
    const auto operations = static_cast<double>(cost.operations);
    if (operations > context_.workLeft) {
      isAllTried_ = false;
      return false;
    }
    context_.workLeft -= operations;
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

  static std::string CauseOf(const CRSData& surface) {
    const Family& family = FamilyOfSurface(surface);
    return family.causeOfRefusal == nullptr ? "" : family.causeOfRefusal(surface);
  }

  // The first surface that refuses or whose value is not finite; the number of surfaces without
  // one.
  std::size_t Culprit(const CFittingCandidate& candidate, bool isRefused) const {
    std::vector<double> point = point_;
    if (candidate.ScaleAndOverwriteInputSample(point) != 0) return candidate.GetRSCount();
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData* const surface = candidate.GetRSPtr(static_cast<int>(i));
      double value = 0.0;
      const CRSEvaluator& evaluator = FamilyOfSurface(*surface).evaluator();
      const bool refuses = evaluator.EvaluateResponseSurface(surface, point, value) == 1;
      if (isRefused ? refuses : !std::isfinite(value)) return i;
    }
    return candidate.GetRSCount();
  }

  // The form with errors may write a record, which is not used afterwards.
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
      const Family* const changing = FindChanging(candidate);
      Report(SeverityNote, FindingErrorNone, group.tag, path,
             path + " has values but no predicted error: the form with errors returns -2" +
                 (changing == nullptr ? ""
                                      : ", and repeating it on a " + std::string(changing->name) +
                                            " surface changes values"));
    } else {
      const std::string reason = ReasonOfRefusal(candidate);
      Report(reason.empty() ? SeverityWarning : SeverityNote, FindingErrorFormRefused, group.tag,
             path,
             "the form with errors is refused for " + path +
                 (reason.empty() ? ", though it has data for it" : ": " + reason));
    }
  }

  // The first surface whose record the form with an error changes; null without such a surface.
  static const Family* FindChanging(const CFittingCandidate& candidate) {
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData& surface = *candidate.GetRSPtr(static_cast<int>(i));
      const Family& family = FamilyOfSurface(surface);
      if (family.changesRecordForError != nullptr && family.changesRecordForError(surface)) {
        return &family;
      }
    }
    return nullptr;
  }

  // Why a sound ensemble can't have an error; empty for any other ensemble.
  static std::string ReasonOfRefusal(const CFittingCandidate& candidate) {
    if (candidate.GetIsErrPredRequired()) return "";
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData* const surface = candidate.GetRSPtr(static_cast<int>(i));
      const Family& family = FamilyOfSurface(*surface);
      const std::string name = std::string("a ") + family.name + " surface ";
      if (!family.hasErrorForm) return name + "has no predictor error of its own";
      if (family.lacksErrorData != nullptr && family.lacksErrorData(*surface)) {
        return name + "holds no error data";
      }
    }
    return "";
  }

  void SetErrorKind(int id, E_PredictedErrorKind kind) {
    if (CEnsembleOverview* const ensemble = OverviewOf(id)) ensemble->errorKind = kind;
  }

  CEnsembleOverview* OverviewOf(int id) {
    std::vector<CEnsembleOverview>& all = context_.overview.ensembles;  // by number
    const auto found = std::lower_bound(
        all.begin(), all.end(), id,
        [](const CEnsembleOverview& ensemble, int number) { return ensemble.id < number; });
    return found != all.end() && found->id == id ? &*found : nullptr;
  }

  // Stores the first place of each kind of surface whose derivative is not that of the value.
  void NoteFamilies(const CFittingCandidate& candidate, const Group& group) {
    for (std::size_t i = 0; i < candidate.GetRSCount(); ++i) {
      const CRSData* const surface = candidate.GetRSPtr(static_cast<int>(i));
      const Family& family = FamilyOfSurface(*surface);
      const bool isOff = family.isDerivativeOff != nullptr && family.isDerivativeOff(*surface);
      if (family.derivative == Derivative::OfValue && !isOff) continue;
      const Group* const genome =
          context_.outline.Find(Word::Genome, static_cast<int>(i), context_.outline.IndexOf(group));
      WithoutDerivative& entry = withoutDerivative_[family.type];
      ++entry.count;
      if (genome == nullptr || (entry.count > 1 && genome->tag > entry.offset)) continue;
      entry.offset = genome->tag;
      entry.path = context_.outline.PathOf(*genome);
    }
  }

  static std::string SentenceOn(const Family& family) {
    const std::string surfaces = std::string(family.name) + " surfaces";
    switch (family.derivative) {
      case Derivative::OfValue:
        return "the derivative of " + surfaces +
               " with such transformations is not that of the value";
      case Derivative::Silent:
        return surfaces + " have no derivative, although its status is 0";
      case Derivative::Refused:
        break;
    }
    return surfaces + " have no derivative, it is refused";
  }

  void ReportDerivatives() {
    for (const auto& [type, entry] : withoutDerivative_) {
      std::string sentence = SentenceOn(*FindFamily(type));
      if (entry.count > 1) sentence += "; this is the first of " + std::to_string(entry.count);
      Report(SeverityNote, FindingDerivativeNone, entry.offset, entry.path, std::move(sentence));
    }
  }

  // The whole text, as a host reads it, and each of its combinations.
  void TryAll() {
    CDiscreteCombinations model;
    const int status = StatusOf([&] { return reader_.ResumeDiscreteCombinations(model); });
    if (status != 0) {
      Report(SeverityError, FindingReadingRefused, 0, "",
             "no group is damaged, but the text as a whole can't be read: " + Answer(status));
      return;
    }
    if (!isAllTried_) return;
    const std::vector<std::string> names = model.ListEnabledDiscreteParameterWrtRegistrationRank();
    std::vector<std::string> inputs;
    for (const std::string& name : names) {
      if (model.IsInput(name)) inputs.push_back(name);
    }
    const std::vector<CDiscreteCombinations::OutputsByID>& all = *model.GetOutputsWrtDiscCombPtr();
    std::map<Contents, bool> refusals;
    std::map<const void*, EnsembleCost> costs;
    for (const auto& [values, position] : *model.GetDiscreteCombinationsIndexingPtr()) {
      std::vector<std::pair<std::string, int>> discrete;
      for (std::size_t i = 0; i < values.size() && i < inputs.size(); ++i) {
        discrete.emplace_back(inputs[i], values[i]);
      }
      const auto& outputs = all[static_cast<std::size_t>(position)];
      const auto [known, isNew] = refusals.emplace(ContentsOf(outputs), false);
      if (isNew) {
        if (!TakesWork(CostOfAll(outputs, costs).OfEvaluation())) {
          Report(SeverityWarning, FindingNotTried, 0, TextOf(Word::DiscreteSets),
                 "the evaluation of all combinations would take out of proportion long, not all "
                 "were tried");
          return;
        }
        std::vector<std::pair<std::string, double>> results;
        known->second = model.Evaluate(discrete, middle_, results) != 0;
      }
      if (!known->second) continue;
      Report(SeverityError, FindingEvaluationRefused, 0, TextOf(Word::DiscreteSets),
             "combination " + std::to_string(position + 1) +
                 " is read, but in the middle of the bounds its evaluation is refused");
    }
  }

  using Contents = std::vector<const void*>;

  // What the outputs of a combination hold. Combinations that hold the same are evaluated once.
  static Contents ContentsOf(const CDiscreteCombinations::OutputsByID& outputs) {
    Contents contents;
    contents.reserve(outputs.size());
    for (const auto& [id, list] : outputs) {
      contents.push_back(CandidateAccess::Identity(*list->GetEvaluationCandidatePtr()));
    }
    return contents;
  }

  static EnsembleCost CostOfAll(const CDiscreteCombinations::OutputsByID& outputs,
                                std::map<const void*, EnsembleCost>& known) {
    EnsembleCost cost;
    for (const auto& [id, list] : outputs) {
      const CFittingCandidate& candidate = *list->GetEvaluationCandidatePtr();
      const auto [own, isNew] = known.emplace(CandidateAccess::Identity(candidate), EnsembleCost());
      if (isNew) own->second = CostOf(candidate);
      cost += own->second;
    }
    return cost;
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
  bool isAllTried_ = true;
  std::map<E_DataType, WithoutDerivative> withoutDerivative_;
};

}  // namespace

void TryText(Context& context, const std::string& text) { Trial(context, text).Run(); }

}  // namespace Tarvane::Plexura::PXROM::inspection
