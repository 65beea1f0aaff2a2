#include "database/inspection/key_tables.h"

#include "database/fmu_fields.h"
#include "families/family.h"
#include "model/candidate_fields.h"
#include "model/registry_fields.h"
#include "records/rs_fields.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using fields::FieldLister;
using fields::Form;
using fields::Key;
using fields::Labels;

/// The keys that `list` passes to a lister.
template <class List>
KeyTable Collected(List list) {
  FieldLister lister;
  list(lister);
  return lister.Keys();
}

bool Has(const KeyTable& table, std::string_view key) {
  for (const Key& fact : table) {
    if (fact.label() == key) return true;
  }
  return false;
}

const KeyTable& UnreadKeys() {
  static const KeyTable keys = {Key(&Labels::attRegisteredDiscreteValues).Of(Form::Unread),
                                Key(&Labels::attWriterVersion).Of(Form::Unread),
                                Key(&Labels::attRSVersion).Of(Form::Unread)};
  return keys;
}

/// A table, and the kind of group that it belongs to.
struct Place {
  const KeyTable& keys;
  std::string words;
};

std::vector<Place> ListPlaces() {
  std::vector<Place> places = {
      {RegistryKeys(), "the ParameterRegistry group"},
      {SetsKeys(), "the DiscreteSets group"},
      {CandidateKeys(), "a PlexuraData group"},
      {CrossValidationKeys(), "a PlexuraData group"},
      {GenomeKeys(), "a Genome group"},
      {FmuKeys(), "the FMU group"},
  };
  for (const Family* const family : kAllFamilies) {
    const std::string surface = std::string("a ") + family->name + " surface";
    places.push_back({family->keys().keys, surface});
    places.push_back({family->keys().keysOfPart, surface});
    if (family->innerKeys != nullptr) {
      places.push_back({family->innerKeys(), "a " + family->innerGroup() + " group"});
    }
  }
  return places;
}

const char* PlaceOf(std::string_view key) {
  static const std::vector<Place> places = ListPlaces();
  for (const Place& place : places) {
    if (Has(place.keys, key)) return place.words.c_str();
  }
  return nullptr;
}

}  // namespace

const KeyTable& RegistryKeys() {
  static const KeyTable keys = Collected([](FieldLister& lister) {
    RegistryText registry;
    RoleFields(lister, registry);
    InfoFields(lister, registry);
  });
  return keys;
}

const KeyTable& SetsKeys() {
  static const KeyTable keys = {Key(&Labels::attDiscreteSet).Of(Form::Line).Optional()};
  return keys;
}

const KeyTable& CandidateKeys() {
  static const KeyTable keys = Collected([](FieldLister& lister) {
    CFittingCandidate candidate;
    CandidateHead head;
    CandidateFields(lister, candidate, head);
  });
  return keys;
}

const KeyTable& CrossValidationKeys() {
  static const KeyTable keys = Collected([](FieldLister& lister) {
    CFittingCandidate candidate;
    CandidateHead head;
    CrossValidationFields(lister, candidate, head);
  });
  return keys;
}

const KeyTable& GenomeKeys() {
  static const KeyTable keys = Collected([](FieldLister& lister) {
    SurfaceHead head;
    SurfaceHeadFields(lister, head);
    CRSData record;
    BaseFields(lister, record);
  });
  return keys;
}

const KeyTable& FmuKeys() {
  static const KeyTable keys = Collected([](FieldLister& lister) {
    FmuText description;
    FmuFields(lister, description);
  });
  return keys;
}

const Vocabulary& FormatVocabulary() {
  static const Vocabulary vocabulary = {UnreadKeys(), &PlaceOf};
  return vocabulary;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
