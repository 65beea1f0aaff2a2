#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pxrom/export.h"
#include "pxrom/fitting_candidates.h"
#include "pxrom/types.h"

namespace Tarvane::Plexura::PXROM {

/// Version of the top object.
enum E_DiscreteCombinationVersion : std::int32_t { DiscreteCombinationVersion192 = 192 };

/// The top object of the library: the registry of a model's parameters, and for each combination of
/// discrete values one candidate list per output. CReaderPXROMDatabase fills it; Evaluate predicts.
///
/// An immutable ID identifies a parameter. Lists of IDs are in the byte order of the ID.
///
/// Deliberate (values-by-rank): values are ordered by registration rank, so a caller may name them
/// in any order. Only their number and their names are checked: a registered name of the wrong kind
/// is not noticed and takes its place by rank.
///
/// Ownership: RegisterDiscreteCombination takes over the candidate lists that it gets; the copy
/// constructor clones them. **Assignment shares** them: nothing is cloned, and a list is destroyed
/// with the last object that holds it.
/// Threads: const operations may run at the same time as long as nothing changes the object. See
/// Evaluate for the form with errors.
class PXROM_API CDiscreteCombinations {
 public:
  using CombinationIndexing = std::map<std::vector<int>, std::int32_t>;
  using OutputsByID = std::map<std::string, CFittingCandidates*>;

  CDiscreteCombinations();
  CDiscreteCombinations(const CDiscreteCombinations&);
  CDiscreteCombinations& operator=(const CDiscreteCombinations&);

  virtual ~CDiscreteCombinations();
  /// Empties the object. The vector of GetOutputsWrtDiscCombPtr keeps its length and holds empty
  /// maps; later registrations append to it. Always 0.
  virtual int ResetData();

  /// Predicts every output of one combination, with predicted errors.
  ///
  /// `discreteValues` names each enabled discrete input once, `continuousValues` each enabled
  /// continuous input; derived and disabled parameters are left out. `outputs` is replaced and gets
  /// (ID, value) in the order of IDs; **`errors` is appended to, not emptied**, and lacks the
  /// outputs that have no error.
  /// 0; -2 when an output has no error; 1 when a count, a name or the combination doesn't fit, with
  /// both lists untouched, or when an output fails, with the outputs before it in `outputs`.
  ///
  /// Threads: several threads may call this on one object, unless it evaluates a Kriging surface
  /// without cross-validation data, which writes the record of the surface (kriging.h).
  virtual int Evaluate(const std::vector<std::pair<std::string, int>>& discreteValues,
                       const std::vector<std::pair<std::string, double>>& continuousValues,
                       std::vector<std::pair<std::string, double>>& outputs,
                       std::vector<std::pair<std::string, double>>& errors) const;
  /// The same without errors, and never -2. Several threads may call it on one object.
  virtual int Evaluate(const std::vector<std::pair<std::string, int>>& discreteValues,
                       const std::vector<std::pair<std::string, double>>& continuousValues,
                       std::vector<std::pair<std::string, double>>& outputs) const;

  E_DiscreteCombinationVersion DataVersion() const;

  /// Sets all entries of `id`; its rank is the number of parameters before the call. Registering an
  /// ID again overwrites it, which can repeat a rank. Always 0.
  int RegisterParameter(const std::string& id, E_ParameterCausality causality, E_ParameterType type,
                        bool enabled);
  /// Sets what a host shows of a parameter, whether or not it is registered. 1 for an empty id.
  ///
  /// Deliberate (upper-bound-first): **the upper bound comes before the lower bound.**
  int RegisterParameterExtraInfos(const std::string& id, const std::string& name,
                                  const std::string& unit, const std::string& caption,
                                  double upperBound, double lowerBound);
  /// Replaces ranks. 1 unless there is one pair per parameter; 1 at the first unknown name, with
  /// the pairs before it applied.
  int SetRegistrationRank(const std::vector<std::pair<std::string, int>>& ranks);
  /// ID to rank, owned by the object.
  const std::map<std::string, std::int32_t>* GetRegistrationRank() const;

  // False for an unknown ID.
  bool IsRegistered(const std::string& id) const;
  bool IsInput(const std::string& id) const;
  bool IsOutput(const std::string& id) const;
  bool IsContinuous(const std::string& id) const;
  bool IsDiscrete(const std::string& id) const;
  bool IsDerived(const std::string& id) const;
  bool IsEnabled(const std::string& id) const;

  // With a bool: only those that are enabled (true) or disabled (false).
  std::size_t ParameterCount() const;
  std::size_t EnabledParameterCount() const;
  std::size_t InputParameterCount() const;
  std::size_t InputParameterCount(bool enabled) const;
  std::size_t OutputParameterCount() const;
  std::size_t OutputParameterCount(bool enabled) const;
  std::size_t ContinuousCount() const;
  std::size_t ContinuousCount(bool enabled) const;
  std::size_t DiscreteCount() const;
  std::size_t DiscreteCount(bool enabled) const;
  std::size_t DerivedCount() const;
  std::size_t ContinuousManufacturableCount() const;
  std::size_t ContinuousNotManufacturableCount() const;
  std::size_t Count(E_ParameterCausality causality, E_ParameterType type) const;
  std::size_t Count(E_ParameterCausality causality, E_ParameterType type, bool enabled) const;

  std::vector<std::string> ListParameterImmutableID() const;
  std::vector<std::string> ListParameterImmutableID(bool enabled) const;
  std::vector<std::string> ListParameterImmutableID(E_ParameterCausality causality,
                                                    bool enabled) const;
  std::vector<std::string> ListParameterImmutableID(E_ParameterType type, bool enabled) const;

  // One entry per known ID in the order given.
  //
  // Deliberate (unknown-ids-skipped): **unknown IDs are skipped**, so results without names may no
  // longer line up with the argument.
  std::vector<bool> ListParameterAvailability(std::vector<std::string> ids) const;
  std::vector<E_ParameterCausality> ListParameterCausality(std::vector<std::string> ids) const;
  std::vector<E_ParameterType> ListParameterType(std::vector<std::string> ids) const;
  std::vector<std::pair<std::string, std::string>> ListParameterUnit(
      std::vector<std::string> ids) const;
  std::vector<std::pair<std::string, std::string>> ListParameterCaption(
      std::vector<std::string> ids) const;
  std::vector<std::pair<std::string, double>> ListLowerBound(std::vector<std::string> ids) const;
  std::vector<std::pair<std::string, double>> ListUpperBound(std::vector<std::string> ids) const;

  /// The enabled discrete parameters by rank: the order of the values in a combination's key.
  std::vector<std::string> ListEnabledDiscreteParameterWrtRegistrationRank() const;
  /// The distinct values of `id` over the registered combinations, ascending. **For an unknown ID,
  /// the values of the first parameter.** Empty without discrete parameters.
  std::vector<int> ListRegisteredValuesForDiscreteParameter(const std::string& id) const;

  /// Registers the outputs of one combination: one value per enabled discrete input, one candidate
  /// list per enabled output of type ContinuousNotManufacturable. Registering the same values again
  /// makes Evaluate use the new outputs.
  ///
  /// Deliberate (register-takes-pointers): with 0 the object owns every pointer, also one with a
  /// repeated name (the first one is used). With 1 (a count or a name doesn't fit, or a pointer is
  /// null) nothing changes and the pointers stay with the caller, also if memory runs out.
  int RegisterDiscreteCombination(
      const std::vector<std::pair<std::string, int>>& discreteValues,
      const std::vector<std::pair<std::string, CFittingCandidates*>>& outputs);
  /// From a combination's values, by rank, to its position in the vector below.
  const CombinationIndexing* GetDiscreteCombinationsIndexingPtr() const;
  /// Per combination, from output ID to its candidate list. Owned by the object.
  const std::vector<OutputsByID>* GetOutputsWrtDiscCombPtr() const;

 protected:
  /// The values of `named` by rank, equal ranks by value. 1 at a name that isn't registered, with
  /// `sorted` empty. Kinds and repeated names are not checked.
  int PickAndSortValuesWrtParameterRegistrationRank(
      const std::vector<std::pair<std::string, int>>& named, std::vector<int>& sorted) const;
  int PickAndSortValuesWrtParameterRegistrationRank(
      const std::vector<std::pair<std::string, double>>& named, std::vector<double>& sorted) const;

 private:
  /// Owns what OutputsWrtDiscComb points at: each pointer once, in a box that objects share after
  /// an assignment.
  using Boxes = std::map<CFittingCandidates*, std::shared_ptr<std::unique_ptr<CFittingCandidates>>>;

  struct Parameter {
    E_ParameterCausality causality = CausalityInput;
    E_ParameterType type = ContinuousNotManufacturable;
    bool enabled = false;
  };
  struct ExtraInfos {
    std::string unit;
    std::string caption;
    double upperBound = 0.0;
    double lowerBound = 0.0;
  };

  template <class Predicate>
  std::size_t CountIf(Predicate predicate) const;
  template <class Predicate>
  std::vector<std::string> ListIf(Predicate predicate) const;
  /// What calls expect of the registry. Computed when a combination is registered and dropped when
  /// a parameter changes. Without it each call would walk through all parameters, so that the calls
  /// for all parameters or combinations together would take quadratic time.
  struct ExpectedInputs {
    bool known = false;
    /// Inputs by rank.
    std::vector<std::pair<std::string, std::int32_t>> discrete;
    std::vector<std::pair<std::string, std::int32_t>> continuous;
    /// How many enabled outputs of type ContinuousNotManufacturable there are.
    std::size_t outputs = 0;
    /// The places of IDs in ListEnabledDiscreteParameterWrtRegistrationRank.
    std::map<std::string, std::size_t> discretePlaces;
  };
  void NoteExpectedInputs();
  std::size_t PlaceOfDiscrete(const std::string& id) const;
  const OutputsByID* FindOutputs(
      const std::vector<std::pair<std::string, int>>& discreteValues,
      const std::vector<std::pair<std::string, double>>& continuousValues, double* point) const;

  E_DiscreteCombinationVersion Version = DiscreteCombinationVersion192;
  std::map<std::string, std::int32_t> RegistrationRank;
  std::map<std::string, Parameter> Parameters;
  std::map<std::string, std::string> NameToImmutableID;
  std::map<std::string, ExtraInfos> Infos;
  ExpectedInputs Expected;
  CombinationIndexing DiscreteCombinationsIndexing;
  std::vector<OutputsByID> OutputsWrtDiscComb;
  Boxes Owned;
};

}  // namespace Tarvane::Plexura::PXROM
