#pragma once

// An example of an added family: a plane, start + sum of slopes[i] x[i], in physical units. Only
// its own test links it. It shows what a family has to define and what it gets from the library.

#include "families/family_of.h"
#include "pxrom/rs_data.h"
#include "pxrom/rs_evaluator.h"

namespace Tarvane::Plexura::PXROM {

constexpr auto DT_PlaneData = static_cast<E_DataType>(200);

struct CPlaneData : public CRSData {
  CPlaneData* Clone() const override { return new CPlaneData(*this); }
  E_DataType DataType() const override { return DT_PlaneData; }

  int Version = 200;
  double Start = 0.0;
  /// One per input.
  std::vector<double> Slopes;
};

class CPlaneEvaluator : public CRSEvaluator {
 public:
  using CRSEvaluator::EvaluateResponseSurface;

  CPlaneEvaluator* Clone() const override { return new CPlaneEvaluator(*this); }
  int EvaluateResponseSurface(const CRSData* data, const std::vector<double>& x,
                              double& y) const override;
  int EvaluateResponseSurfaceDerivativeWrtInputVariables(
      const CRSData* data, const std::vector<double>& x,
      std::vector<double>& gradient) const override;
};

// The words that it adds to the format.
const std::string& attPlaneVersion();
const std::string& attPlaneStart();
const std::string& attPlaneSlopes();

template <>
struct FamilyOf<CPlaneData> {
  static constexpr E_DataType kType = DT_PlaneData;
  static constexpr const char* kName = "plane";
  static constexpr const char* kRecordName = "CPlaneData";
  static const Family family;

  template <class Visitor, class Record>
  static int Fields(Visitor& visit, Record& record) {
    using fields::Key;
    visit(Key(&attPlaneVersion).Version(200), "Version", record.Version);
    visit(Key(&attPlaneStart), "Start", record.Start);
    visit(Key(&attPlaneSlopes), "Slopes", record.Slopes);
    return 0;
  }
};

}  // namespace Tarvane::Plexura::PXROM
