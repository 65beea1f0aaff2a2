#pragma once

#include <cstdint>

namespace Tarvane::Plexura::PXROM {

/// The class of an object. The numbers are those of "DataType=" in a database and never change.
enum E_DataType : std::int32_t {
  DT_FittingCandidates = 0,
  DT_FittingCandidate = 1,
  DT_RSData = 2,
  DT_QRSData = 3,
  DT_KrigingData = 4,
  DT_SVRData = 5,
  DT_MLSData = 6,
  DT_LBFData = 7,
  DT_ConstantData = 8,
  // The library's own families, well apart from the others.
  DT_GaussianProcessData = 101,
  DT_PolynomialData = 102,
};

/// The kind of a reader.
///
/// Deliberate (one-reader-type): both text readers return ReaderTypeText, so the kind does not
/// distinguish them.
enum E_ReaderType : std::int32_t {
  ReaderTypeNone = 0,
  ReaderTypeText = 1,
};

/// The role of a parameter.
enum E_ParameterCausality : std::int32_t {
  CausalityInput = 0,
  CausalityOutput = 1,
};

/// The kind of a parameter. Both continuous kinds take any real value; "manufacturable" parameters
/// are only counted separately.
enum E_ParameterType : std::int32_t {
  ContinuousNotManufacturable = 0,
  ContinuousManufacturable = 1,
  DiscreteParameter = 2,  ///< takes one of a set of integers and selects a combination
  DerivedParameter = 3,   ///< kept and listed, never passed to an evaluation
};

/// The polynomial basis of a trend in d inputs, in this order of functions.
enum E_PolynomialType : std::int32_t {
  PolyNone = 0,           ///< no function
  PolyConstant = 1,       ///< 1
  PolyLinear = 2,         ///< 1, x0 ... x(d-1)
  PolyPureQuadratic = 3,  ///< 1, x0 ... x(d-1), x0^2 ... x(d-1)^2
  PolyFullQuadratic = 4,  ///< 1, x0 ... x(d-1), xi*xj for i ascending and j from i
};

}  // namespace Tarvane::Plexura::PXROM
