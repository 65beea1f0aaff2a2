// The keys of the format: what the groups hold and in which form. One row per key.

#include "inspection/key_tables.h"

#include <iterator>

#include "pxrom/database_labels.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using L = CPXROMDatabaseLabels;

constexpr Need kRequired = Need::Required;
constexpr Need kOptional = Need::Optional;
constexpr Range kAny = {};
constexpr Range kCount = {0, std::numeric_limits<int>::max()};

constexpr KeyFact Version(const std::string& (*label)(), int known, int alsoKnown, Need need) {
  return {label, Form::Int, need, kAny, {known, alsoKnown}};
}

constexpr KeyFact kRegistry[] = {
    Version(&L::attParameterVersion, 170, 170, kOptional),
    {&L::attParameterIDs, Form::Strings},
    {&L::attParameterCausalities, Form::Ints},
    {&L::attParameterTypes, Form::Ints},
    {&L::attParameterAvailability, Form::Ints},
    {&L::attParameterDiscreteIndexing, Form::IntPairs, kOptional},
    {&L::attParameterRegistrationRank, Form::IntPairs},
    {&L::attParameterUnits, Form::StringPairs, kOptional},
    {&L::attParameterCaptions, Form::StringPairs, kOptional},
    {&L::attParameterLowerBound, Form::DoublePairs, kOptional},
    {&L::attParameterUpperBound, Form::DoublePairs, kOptional},
};

constexpr KeyFact kSets[] = {{&L::attDiscreteSet, Form::Line, kOptional}};

constexpr KeyFact kCandidate[] = {
    Version(&L::attCandidateVersion, 170, 192, kRequired),
    {&L::attCandidateNumberOfInputVariables, Form::Int, kRequired, kCount},
    {&L::attCandidateNumberOfSamples, Form::Int, kRequired, kCount},
    {&L::attCandidateInputSamples, Form::Doubles},
    {&L::attCandidateOutputSamples, Form::Doubles},
    {&L::attCandidateInputScaleSlopes, Form::Doubles},
    {&L::attCandidateInputScaleIntercepts, Form::Doubles},
    {&L::attCandidateOutputScaleSlope, Form::Double},
    {&L::attCandidateOutputScaleIntercept, Form::Double},
    {&L::attCandidateRSCardinality, Form::Int, kRequired, kCount},
    {&L::GARSExportPredictionOfError, Form::Bool, kOptional},
};

constexpr KeyFact kCrossValidation[] = {
    {&L::CardinalOfEachFold, Form::Ints},
    {&L::WeightingRho, Form::Double},
    {&L::attScInputPoints, Form::Doubles},
    {&L::attCandidateSubRSCardinality, Form::Int, kRequired, kCount},
};

// The weight is optional here since sub surfaces have none.
constexpr KeyFact kGenome[] = {
    {&L::attType, Form::Int},
    {&L::tagGenomeWeight, Form::Double, kOptional},
    {&L::attRSNumberOfInputVariables, Form::Int, kRequired, kCount},
    {&L::attRSNumberOfSamples, Form::Int, kRequired, kCount},
    {&L::attRSInputSamples, Form::Doubles},
    {&L::attRSOutputSamples, Form::Doubles},
    {&L::attRSInputScaleSlopes, Form::Doubles},
    {&L::attRSInputScaleIntercepts, Form::Doubles},
    {&L::attRSOutputScaleSlope, Form::Double},
    {&L::attRSOutputScaleIntercept, Form::Double},
    {&L::attRSIsReadyForSolve, Form::Int},
    {&L::attRSIsReadyForEvaluation, Form::Int},
    {&L::attRSIsStopped, Form::Int},
};

constexpr KeyFact kConstant[] = {
    Version(&L::attConstantVersion, 170, 170, kRequired),
    {&L::attConstantValue, Form::Double},
};

constexpr KeyFact kKriging[] = {
    Version(&L::attKrigingVersion, 170, 192, kRequired),
    {&L::attKrigingPolynomialType, Form::Int, kRequired, {PolyNone, PolyFullQuadratic}},
    {&L::attKrigingPolynomialCoefficients, Form::Doubles},
    {&L::attKrigingCorrelationFunctionType, Form::Int, kRequired, {1, 11}},
    {&L::attKrigingCorrelationCoefficients, Form::Doubles},
    {&L::attKrigingCorrelationKernels, Form::Doubles},
    {&L::attKrigingSavePredictorError, Form::Bool, kOptional},
    {&L::attKrigingPredictorError, Form::Unread, kOptional},
};

constexpr KeyFact kKrigingError[] = {
    {&L::attKrigingNumberOfPolyCoeff, Form::Int, kRequired, kCount},
    {&L::attKrigingSigmaSquare, Form::Double},
    {&L::attKrigingInverseOfC, Form::Doubles},
    {&L::attKrigingInverseOfG, Form::Doubles},
    {&L::attKrigingFTilde, Form::Doubles},
};

constexpr KeyFact kRegression[] = {
    Version(&L::attQRSVersion, 170, 192, kRequired),
    {&L::attQRSRespSurfType, Form::Int, kOptional},
    {&L::attQRSRegTermFilterType, Form::Int, kOptional},
    {&L::attQRSRegTermFilterConfVal, Form::Double, kOptional},
    {&L::attQRSInputTransformType, Form::Int, kRequired, {0, 9}},
    {&L::attQRSInputTransformValues, Form::Doubles, kOptional},
    {&L::attQRSInputLambdas, Form::Doubles, kOptional},
    {&L::attQRSOutputTransformType, Form::Int, kRequired, {0, 9}},
    {&L::attQRSOutputTransformValue, Form::Double, kOptional},
    {&L::attQRSOutputLambda, Form::Double, kOptional},
    {&L::attQRSNumSelRegTerm, Form::Int, kRequired, kCount},
    {&L::attQRSMaxRegTerm, Form::Int, kRequired, kCount},
    {&L::attQRSSavePredictorError, Form::Bool, kOptional},
};

constexpr KeyFact kRegressionError[] = {
    {&L::attQRSSigmaSquare, Form::Double},
    {&L::attQRSInverseOfXtX, Form::Doubles},
};

constexpr KeyFact kTerm[] = {
    {&L::attQRSRegTermFuncType, Form::Int, kRequired, {1, 4}},
    {&L::attQRSRegTermIsActive, Form::Int, kRequired, {0, 1}},
    {&L::attQRSRegTermInputVarIdx, Form::Ints, kOptional},
    {&L::attQRSRegTermParameter, Form::Doubles},
};

constexpr KeyFact kSupportVector[] = {
    Version(&L::attSVRVersion, 170, 171, kRequired),
    {&L::attSVRKernType, Form::Int},
    {&L::attSVRCompType, Form::Int, kOptional},
    {&L::attSVRLossFuncType, Form::Int},
    {&L::attSVREpsilonValue, Form::Double, kOptional},
    {&L::attSVRNuValue, Form::Double, kOptional},
    {&L::attSVRConstantValue, Form::Double, kOptional},
    {&L::attSVRAlpha, Form::Doubles, kOptional},
    {&L::attSVRAlphaStar, Form::Doubles, kOptional},
    {&L::attSVRBeta, Form::Doubles, kOptional},
    {&L::attSVRConstCoeff, Form::Double},
};

constexpr KeyFact kWidths[] = {{&L::attSVRKernelArray, Form::Doubles}};

constexpr KeyFact kMovingLeastSquares[] = {
    {&L::attMLSVersion, Form::Int, kRequired, kAny, {162, 170}, true},
    {&L::attMLSWeightFunction, Form::Int, kRequired, {0, 4}},
    {&L::attMLSPolynomialType, Form::Int, kRequired, {PolyConstant, PolyFullQuadratic}},
    {&L::attMLSUsedPointsOption, Form::Int, kOptional},
    {&L::attMLSExtraPointPercent, Form::Double, kOptional},
    {&L::attMLSNumberOfBasisFunctions, Form::Int, kRequired, kCount},
    {&L::attMLSNumberOfUsedPoints, Form::Int, kRequired, kCount},
};

constexpr KeyFact kLinearBasis[] = {
    Version(&L::attLBFVersion, 170, 170, kRequired),
    {&L::attLBFFunction, Form::Int, kRequired, {0, 5}},
    {&L::attLBFPolynomialType, Form::Int, kRequired, {PolyConstant, PolyFullQuadratic}},
    {&L::attLBFKernelValues, Form::Doubles},
    {&L::attLBFPolynomialCoefficients, Form::Doubles},
    {&L::attLBFKernelCoefficients, Form::Doubles},
};

constexpr KeyFact kFmu[] = {
    {&L::attFMUNumberOfReals, Form::Int, kRequired, kCount},
    {&L::attFMUNumberOfIntegers, Form::Int, kRequired, kCount},
    {&L::attFMUNumberOfBooleans, Form::Int, kRequired, kCount},
    {&L::attFMUNumberOfStrings, Form::Int, kRequired, kCount},
    {&L::attFMUNumberOfEvents, Form::Int, kRequired, kCount},
    {&L::attFMUIDToValRef, Form::IntPairs},
};

constexpr KeyFact kUnread[] = {
    {&L::attRegisteredDiscreteValues, Form::Unread, kOptional},
    {&L::attWriterVersion, Form::Unread, kOptional},
    {&L::attRSVersion, Form::Unread, kOptional},
};

template <std::size_t kSize>
constexpr KeyTable Table(const KeyFact (&facts)[kSize]) {
  return {facts, kSize};
}

constexpr KeyTable kNoKeys = {nullptr, 0};

constexpr FamilyFact kFamilies[] = {
    {DT_RSData, "plain", kNoKeys, kNoKeys, false, false},
    {DT_QRSData, "regression", Table(kRegression), Table(kRegressionError), true, true},
    {DT_KrigingData, "Kriging", Table(kKriging), Table(kKrigingError), true, true},
    {DT_SVRData, "support vector", Table(kSupportVector), Table(kWidths), true, true},
    {DT_MLSData, "moving least squares", Table(kMovingLeastSquares), kNoKeys, false, false},
    {DT_LBFData, "linear basis", Table(kLinearBasis), kNoKeys, true, true},
    {DT_ConstantData, "constant", Table(kConstant), kNoKeys, false, false},
};

/// A table with the kind of group that it belongs to, for keys that stand in a wrong place.
struct NamedTable {
  KeyTable keys;
  const char* place;
};

constexpr NamedTable kPlaces[] = {
    {Table(kRegistry), "the ParameterRegistry group"},
    {Table(kSets), "the DiscreteSets group"},
    {Table(kCandidate), "a PlexuraData group"},
    {Table(kCrossValidation), "a PlexuraData group"},
    {Table(kGenome), "a Genome group"},
    {Table(kConstant), "a constant surface"},
    {Table(kKriging), "a Kriging surface"},
    {Table(kKrigingError), "a Kriging surface"},
    {Table(kRegression), "a regression surface"},
    {Table(kRegressionError), "a regression surface"},
    {Table(kTerm), "a RegTerm group"},
    {Table(kSupportVector), "a support vector surface"},
    {Table(kWidths), "a support vector surface"},
    {Table(kMovingLeastSquares), "a moving least squares surface"},
    {Table(kLinearBasis), "a linear basis surface"},
    {Table(kFmu), "the FMU group"},
};

}  // namespace

const KeyTable kRegistryKeys = Table(kRegistry);
const KeyTable kSetsKeys = Table(kSets);
const KeyTable kCandidateKeys = Table(kCandidate);
const KeyTable kCrossValidationKeys = Table(kCrossValidation);
const KeyTable kGenomeKeys = Table(kGenome);
const KeyTable kKrigingErrorKeys = Table(kKrigingError);
const KeyTable kRegressionErrorKeys = Table(kRegressionError);
const KeyTable kWidthKeys = Table(kWidths);
const KeyTable kTermKeys = Table(kTerm);
const KeyTable kFmuKeys = Table(kFmu);
const KeyTable kUnreadKeys = Table(kUnread);

const FamilyFact* FindFamilyFact(int type) {
  for (const FamilyFact& family : kFamilies) {
    if (family.type == type) return &family;
  }
  return nullptr;
}

std::string FamilyName(int type) {
  const FamilyFact* const family = FindFamilyFact(type);
  return family == nullptr ? "type " + std::to_string(type) : family->name;
}

const char* FindPlaceOf(std::string_view key) {
  for (const NamedTable& place : kPlaces) {
    for (const KeyFact& fact : place.keys) {
      if (fact.label() == key) return place.place;
    }
  }
  return nullptr;
}

}  // namespace Tarvane::Plexura::PXROM::inspection
