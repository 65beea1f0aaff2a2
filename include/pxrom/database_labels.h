#pragma once

#include <string>

#include "pxrom/export.h"

namespace Tarvane::Plexura::PXROM {

/// The words of a database text: `str` is a separator, `tag` the word of a group, `att` the key of
/// an attribute. A writer of databases must use the same table. Names and literals are part of the
/// format and stay as they are, misspellings and mismatches included (tagGenomeWeight is a key;
/// attScInputPoints is its own literal).
///
/// Each operation returns the same immutable string on every call. Threads: safe, also the first
/// calls. The strings end with the program: no destructor that runs after that may use one.
class PXROM_API CPXROMDatabaseLabels {
 public:
  static const std::string& strEOL();
  static const std::string& strSep();
  static const std::string& strSubSep();
  static const std::string& strSubSubSep();
  static const std::string& strGrpStart();
  static const std::string& strGrpEnd();
  static const std::string& tagPlexuraData();
  static const std::string& tagDiscreteSets();
  static const std::string& tagFMU();
  static const std::string& tagGenome();
  static const std::string& tagGenomeWeight();
  static const std::string& tagParameterRegistry();
  static const std::string& tagQRSRegTerm();
  static const std::string& attID();
  static const std::string& attType();
  static const std::string& attDiscreteSet();
  static const std::string& attRegisteredDiscreteValues();
  static const std::string& attWriterVersion();
  static const std::string& attRSVersion();
  static const std::string& attRSNumberOfSamples();
  static const std::string& attRSInputSamples();
  static const std::string& attRSInputScaleIntercepts();
  static const std::string& attRSInputScaleSlopes();
  static const std::string& attRSIsReadyForEvaluation();
  static const std::string& attRSIsReadyForSolve();
  static const std::string& attRSIsStopped();
  static const std::string& attRSNumberOfInputVariables();
  static const std::string& attRSOutputSamples();
  static const std::string& attRSOutputScaleIntercept();
  static const std::string& attRSOutputScaleSlope();
  static const std::string& attConstantValue();
  static const std::string& attConstantVersion();
  static const std::string& attCandidateInputSamples();
  static const std::string& attCandidateInputScaleIntercepts();
  static const std::string& attCandidateInputScaleSlopes();
  static const std::string& attCandidateNumberOfInputVariables();
  static const std::string& attCandidateNumberOfSamples();
  static const std::string& attCandidateOutputSamples();
  static const std::string& attCandidateOutputScaleIntercept();
  static const std::string& attCandidateOutputScaleSlope();
  static const std::string& attCandidateRSCardinality();
  static const std::string& attCandidateSubRSCardinality();
  static const std::string& attCandidateVersion();
  static const std::string& attScInputPoints();
  static const std::string& CardinalOfEachFold();
  static const std::string& GARSExportPredictionOfError();
  static const std::string& WeightingRho();
  static const std::string& attParameterAvailability();
  static const std::string& attParameterCaptions();
  static const std::string& attParameterCausalities();
  static const std::string& attParameterDiscreteIndexing();
  static const std::string& attParameterIDs();
  static const std::string& attParameterLowerBound();
  static const std::string& attParameterRegistrationRank();
  static const std::string& attParameterTypes();
  static const std::string& attParameterUnits();
  static const std::string& attParameterUpperBound();
  static const std::string& attParameterVersion();
  static const std::string& attFMUIDToValRef();
  static const std::string& attFMUNumberOfBooleans();
  static const std::string& attFMUNumberOfEvents();
  static const std::string& attFMUNumberOfIntegers();
  static const std::string& attFMUNumberOfReals();
  static const std::string& attFMUNumberOfStrings();
  static const std::string& attKrigingPredictorError();
  static const std::string& attKrigingCorrelationCoefficients();
  static const std::string& attKrigingCorrelationFunctionType();
  static const std::string& attKrigingCorrelationKernels();
  static const std::string& attKrigingPolynomialCoefficients();
  static const std::string& attKrigingPolynomialType();
  static const std::string& attKrigingSavePredictorError();
  static const std::string& attKrigingVersion();
  static const std::string& attKrigingFTilde();
  static const std::string& attKrigingInverseOfC();
  static const std::string& attKrigingInverseOfG();
  static const std::string& attKrigingNumberOfPolyCoeff();
  static const std::string& attKrigingSigmaSquare();
  static const std::string& attQRSInputLambdas();
  static const std::string& attQRSInputTransformType();
  static const std::string& attQRSInputTransformValues();
  static const std::string& attQRSMaxRegTerm();
  static const std::string& attQRSOutputLambda();
  static const std::string& attQRSOutputTransformType();
  static const std::string& attQRSOutputTransformValue();
  static const std::string& attQRSRegTermFilterConfVal();
  static const std::string& attQRSRegTermFilterType();
  static const std::string& attQRSRegTermFuncType();
  static const std::string& attQRSRegTermInputVarIdx();
  static const std::string& attQRSRegTermIsActive();
  static const std::string& attQRSRegTermParameter();
  static const std::string& attQRSRespSurfType();
  static const std::string& attQRSSavePredictorError();
  static const std::string& attQRSVersion();
  static const std::string& attQRSNumSelRegTerm();
  static const std::string& attQRSInverseOfXtX();
  static const std::string& attQRSSigmaSquare();
  static const std::string& attSVRAlpha();
  static const std::string& attSVRAlphaStar();
  static const std::string& attSVRBeta();
  static const std::string& attSVRCompType();
  static const std::string& attSVRConstantValue();
  static const std::string& attSVRConstCoeff();
  static const std::string& attSVREpsilonValue();
  static const std::string& attSVRKernelArray();
  static const std::string& attSVRKernType();
  static const std::string& attSVRLossFuncType();
  static const std::string& attSVRNuValue();
  static const std::string& attSVRVersion();
  static const std::string& attMLSExtraPointPercent();
  static const std::string& attMLSNumberOfBasisFunctions();
  static const std::string& attMLSNumberOfUsedPoints();
  static const std::string& attMLSPolynomialType();
  static const std::string& attMLSUsedPointsOption();
  static const std::string& attMLSVersion();
  static const std::string& attMLSWeightFunction();
  static const std::string& attLBFFunction();
  static const std::string& attLBFKernelCoefficients();
  static const std::string& attLBFKernelValues();
  static const std::string& attLBFPolynomialCoefficients();
  static const std::string& attLBFPolynomialType();
  static const std::string& attLBFVersion();

  CPXROMDatabaseLabels& operator=(const CPXROMDatabaseLabels&);

 private:
  CPXROMDatabaseLabels() = default;
  ~CPXROMDatabaseLabels() = default;
};

}  // namespace Tarvane::Plexura::PXROM
