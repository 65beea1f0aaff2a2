#include "families/gaussian_process/gaussian_process_checks.h"

#include <algorithm>
#include <string>
#include <vector>

#include "families/gaussian_process/covariance.h"
#include "families/gaussian_process/gaussian_process_fields.h"
#include "text/tokens.h"

namespace Tarvane::Plexura::PXROM::inspection {

namespace {

using Labels = CPXROMDatabaseLabels;

std::string Number(std::size_t number) { return std::to_string(number); }

void ReportElement(const GroupText& in, const std::string& label, std::size_t index,
                   const std::string& found, const std::string& expected, const std::string& why) {
  in.ReportAt(in.OffsetOfElement(label, index), SeverityError, FindingValueOutOfRange, label, found,
              expected,
              "value " + Number(index + 1) + " of " + Quoted(label) + " is " + found + ", " + why);
}

std::vector<double> Doubles(const GroupText& in, const std::string& label) {
  std::vector<double> values;
  reading::Tokenize(in.TextOf(label), Labels::strSep()[0], values);
  return values;
}

/// The number of trend functions, if type and monomials give one. Reports exponents that are
/// negative or too few.
std::optional<std::int64_t> CheckTrend(const SurfaceText& surface) {
  const GroupText& in = surface.in;
  const std::optional<std::int64_t> basis =
      BasisSize(in.Int(Labels::attGPPolynomialType()), surface.shape.inputs);
  const std::string& label = Labels::attGPMonomials();
  const std::vector<int> exponents = in.Ints(label);
  for (std::size_t k = 0; k < exponents.size(); ++k) {
    if (exponents[k] >= 0) continue;
    ReportElement(in, label, k, std::to_string(exponents[k]), "0 or more",
                  "an exponent is 0 or more");
    return std::nullopt;
  }
  if (!basis || *surface.shape.inputs < 0) return std::nullopt;
  const auto inputs = static_cast<std::size_t>(*surface.shape.inputs);
  if (exponents.empty()) return basis;
  if (inputs == 0 || exponents.size() % inputs != 0) {
    in.Report(SeverityError, FindingCountMismatch, label, Counted(exponents.size(), "value"),
              "a multiple of " + Number(inputs),
              Quoted(label) + " has " + Counted(exponents.size(), "value") +
                  ", a monomial has one for each of " + InputsOf(surface.shape));
    return std::nullopt;
  }
  return *basis + static_cast<std::int64_t>(exponents.size() / inputs);
}

/// The number of factors: that of two of the lists, or of the functions.
std::size_t CheckFactorCounts(const GroupText& in) {
  const std::string* const labels[] = {&Labels::attGPFactorFunctions(), &Labels::attGPFactorTerms(),
                                       &Labels::attGPFactorParameters()};
  std::size_t counts[3];
  for (int k = 0; k < 3; ++k) counts[k] = in.Length(*labels[k]).value_or(0);
  const std::size_t factors = counts[1] == counts[2] ? counts[1] : counts[0];
  for (const std::string* const label : labels) {
    in.ExpectLength(*label, static_cast<std::int64_t>(factors), Counted(factors, "factor"));
  }
  return factors;
}

void CheckFactors(const GroupText& in) {
  const std::size_t terms = in.Length(Labels::attGPTermAmplitudes()).value_or(0);
  const std::vector<int> termOf = in.Ints(Labels::attGPFactorTerms());
  for (std::size_t f = 0; terms > 0 && f < termOf.size(); ++f) {
    const int least = f == 0 ? 0 : termOf[f - 1];
    if (termOf[f] >= least && static_cast<std::size_t>(termOf[f]) < terms) continue;
    ReportElement(in, Labels::attGPFactorTerms(), f, std::to_string(termOf[f]),
                  std::to_string(least) + " to " + std::to_string(static_cast<int>(terms) - 1),
                  "terms are numbered from 0 and ascend");
    break;
  }
  const std::vector<int> functions = in.Ints(Labels::attGPFactorFunctions());
  const std::vector<double> parameters = Doubles(in, Labels::attGPFactorParameters());
  const int most = kernels::Kernels::Largest<E_CovarianceFunctionType>();
  for (std::size_t f = 0; f < functions.size(); ++f) {
    if (functions[f] < CovMatern12 || functions[f] > most) {
      ReportElement(in, Labels::attGPFactorFunctions(), f, std::to_string(functions[f]),
                    "1 to " + std::to_string(most), "which is no function of a distance");
    }
    const bool isUsed = gaussian_process::HasParameter(functions[f]);
    if (isUsed && f < parameters.size() && !(parameters[f] > 0.0)) {
      ReportElement(
          in, Labels::attGPFactorParameters(), f, NumberText(parameters[f]), "above 0",
          "the parameter of function " + std::to_string(functions[f]) + " has to be above 0");
    }
  }
}

void CheckLengths(const SurfaceText& surface, std::size_t factors) {
  const GroupText& in = surface.in;
  const std::string& label = Labels::attGPFactorLengths();
  const std::vector<double> lengths = Doubles(in, label);
  for (std::size_t k = 0; k < lengths.size(); ++k) {
    if (lengths[k] >= 0.0) continue;
    ReportElement(in, label, k, NumberText(lengths[k]), "0 or more",
                  "a length is above 0, or 0 for an infinite one");
    break;
  }
  if (!surface.shape.inputs || *surface.shape.inputs < 0 || lengths.size() == factors) return;
  in.ExpectLength(label, static_cast<std::int64_t>(factors) * *surface.shape.inputs,
                  Counted(factors, "factor") + " of " + InputsOf(surface.shape) +
                      " (or all inputs together 1)");
}

void CheckErrorData(const SurfaceText& surface, std::optional<std::int64_t> functions) {
  GroupText& in = surface.in;
  in.Require(FamilyOf<CGaussianProcessData>::family.keys().keysOfPart);
  if (!surface.shape.samples) return;
  const std::int64_t n = *surface.shape.samples;
  in.ExpectLength(Labels::attGPInverseFactor(), n * (n + 1) / 2, SamplesOf(surface.shape));
  const std::string& inner = Labels::attGPTrendInverseFactor();
  if (!functions || *functions > INT32_MAX) return;
  // Without values the trend is known.
  const bool isKnown = in.Length(inner).value_or(0) == 0;
  const std::int64_t p = isKnown ? 0 : *functions;
  const std::string words = isKnown ? "a trend that is known would"
                                    : Counted(static_cast<std::size_t>(p), "trend function");
  in.ExpectLength(inner, p * (p + 1) / 2, words);
  in.ExpectLength(Labels::attGPTrendAtSamples(), p * n,
                  words + (isKnown ? "" : " at " + SamplesOf(surface.shape)));
}

}  // namespace

void CheckGaussianProcess(SurfaceText& surface) {
  GroupText& in = surface.in;
  const std::optional<std::int64_t> functions = CheckTrend(surface);
  if (functions) {
    in.ExpectLength(Labels::attGPPolynomialCoefficients(), *functions,
                    "the functions of the trend");
  }
  const std::string& amplitudes = Labels::attGPTermAmplitudes();
  if (surface.shape.samples.value_or(0) > 0 && in.Length(amplitudes) == 0U) {
    in.Report(SeverityError, FindingSurfaceWithoutValue, amplitudes, "0 values", "1 or more",
              Quoted(amplitudes) + " is empty, and a process with samples needs a term");
  }
  const std::size_t factors = CheckFactorCounts(in);
  CheckFactors(in);
  CheckLengths(surface, factors);
  if (surface.shape.samples) {
    in.ExpectLength(Labels::attGPWeights(), *surface.shape.samples, SamplesOf(surface.shape));
  }
  const std::string& noise = Labels::attGPNoiseVariance();
  if (in.Double(noise).value_or(0.0) < 0.0) {
    in.Report(SeverityError, FindingValueOutOfRange, noise, NumberText(*in.Double(noise)),
              "0 or more", Quoted(noise) + " is negative, so that there is no error");
  }
  if (in.Bool(Labels::attGPSavePredictorError())) CheckErrorData(surface, functions);
}

}  // namespace Tarvane::Plexura::PXROM::inspection
