#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"
#include "records/prepared_surface.h"
#include "records/surface_cost.h"
#include "text/attribute_sink.h"
#include "text/database_text.h"
#include "text/key_facts.h"

namespace Tarvane::Plexura::PXROM {

namespace inspection {
struct SurfaceText;
}

/// The keys of a family in a `Genome` group.
struct FamilyKeys {
  fields::KeyTable keys;
  /// The keys that only some of its records have.
  fields::KeyTable keysOfPart;
};

/// What the derivative of a family's evaluator gives.
enum class Derivative {
  Refused,  ///< its status is 1
  Silent,   ///< its status is 0, and nothing is written
  OfValue,  ///< the derivative of the value
};

/// What a family of surfaces is to the rest of the library. Each family has one, in its folder;
/// families.h has the list.
struct Family {
  E_DataType type = DT_RSData;
  /// For people, as an adjective: "Kriging".
  const char* name = "";
  /// For programs: the class of its records, "CKrigingData".
  const char* recordName = "";

  std::unique_ptr<CRSData> (*newRecord)() = nullptr;
  /// Evaluators have no state, so one object serves every evaluation of every thread.
  const CRSEvaluator& (*evaluator)() = nullptr;

  /// Fills the record from the attributes of one `Genome` group. 1 when the record is null or of
  /// another family, which leaves it alone, or when the content is refused; else 0.
  int (*resume)(reading::AttributeRange&, CRSData*) = nullptr;
  /// Puts the attributes of a record of the family into one `Genome` group, or refuses what
  /// `resume` would not restore.
  void (*write)(writing::AttributeSink&, const CRSData&) = nullptr;
  const FamilyKeys& (*keys)() = nullptr;
  /// The word of groups inside a `Genome` group and the keys in them; null without any.
  const std::string& (*innerGroup)() = nullptr;
  const fields::KeyTable& (*innerKeys)() = nullptr;

  /// Whether a surface has a value at all: a plain record has none.
  bool hasValue = true;
  /// Whether the evaluator has a form with an error. If it has, a record may still lack the data.
  bool hasErrorForm = false;
  Derivative derivative = Derivative::Refused;
  /// Whether a prediction uses the surface's own scaling.
  bool scalesInput = false;
  bool scalesOutput = false;

  // The operations below may be null.

  /// For a family whose value does not depend on the point: what the evaluator does for a record
  /// that is ready, without a point.
  void (*constantValue)(const CRSData&, double& value) = nullptr;
  /// The checks of an inspection beyond keys and their forms.
  void (*check)(inspection::SurfaceText&) = nullptr;
  /// Prepares a record for many points. If it is null, the evaluator is called for each point.
  std::unique_ptr<batch::PreparedSurface> (*prepare)(const CRSData&, std::size_t inputs) = nullptr;
  /// Whether a sound record may refuse some points, so that a trial at one point proves nothing for
  /// others.
  bool valueDependsOnPoint = false;
  /// Whether the value of a surface with `samples` samples needs their outputs.
  bool (*needsOutputs)(int samples) = nullptr;
  /// The cost of an evaluation. It follows from the sizes of the data and not from counts, since
  /// the evaluator refuses a count that exceeds the data. `reach` is the magnitude of the
  /// coordinates of an ordinary point.
  costing::SurfaceCost (*cost)(const CRSData&, double reach) = nullptr;
  /// Whether a record of a family with predicted errors lacks the data for them, so that the form
  /// with an error is refused.
  bool (*lacksErrorData)(const CRSData&) = nullptr;
  /// Whether the form with an error leaves this record changed; null for a family that never does.
  bool (*changesRecordForError)(const CRSData&) = nullptr;
  /// Whether the evaluator's derivative for this record is not that of the value.
  bool (*isDerivativeOff)(const CRSData&) = nullptr;
  /// Why a value can still be refused when every shape fits, as the end of a sentence; or "".
  const char* (*causeOfRefusal)(const CRSData&) = nullptr;
};

struct FamilyList {
  const Family* const* first = nullptr;
  std::size_t count = 0;
  E_DataType lowest = DT_RSData;  ///< the number of the first

  const Family* const* begin() const { return first; }
  const Family* const* end() const { return first + count; }
};

/// All families, by ascending number. It is defined in an object of its own (all_families.cpp),
/// which a test may replace by another one.
extern const FamilyList kAllFamilies;

/// The family of `type`, or null for an unknown number.
inline const Family* FindFamily(E_DataType type) noexcept {
  const FamilyList& families = kAllFamilies;
  // The numbers are consecutive except for our own, so the first test normally finds it.
  const auto place = static_cast<std::size_t>(std::int64_t{type} - families.lowest);
  if (place < families.count && families.first[place]->type == type) return families.first[place];
  for (const Family* const family : families) {
    if (family->type == type) return family;
  }
  return nullptr;
}

}  // namespace Tarvane::Plexura::PXROM
