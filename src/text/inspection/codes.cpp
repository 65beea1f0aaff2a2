// The words of all codes.

#include "pxrom/findings.h"

namespace Tarvane::Plexura::PXROM {

namespace {

struct CodeWords {
  E_FindingCode code;
  const char* name;
  const char* explanation;
};

constexpr CodeWords kCodes[] = {
    {FindingGroupMissing, "group-missing",
     "A group that every database needs, or that a line or a count refers to, is not there."},
    {FindingTagMalformed, "tag-malformed",
     "A tag is not written as the reader searches for it, so that it opens or closes nothing."},
    {FindingGroupUnclosed, "group-unclosed",
     "A group has no closing tag before the next one begins or the group around it ends."},
    {FindingGroupUnopened, "group-unopened", "A closing tag has no opening tag before it."},
    {FindingGroupNested, "group-nested",
     "A group stands inside a group of its own word; the first closing tag ends both."},
    {FindingGroupTwice, "group-twice", "Two groups have one word and number; the first is used."},
    {FindingGroupMisplaced, "group-misplaced",
     "A group stands where the reader does not look for it."},
    {FindingGroupUnused, "group-unused", "Nothing refers to a group, so that it is never read."},
    {FindingStrayText, "stray-text", "A line is neither a tag nor a key with its value."},
    {FindingLineEndsMixed, "line-ends-mixed",
     "Lines end in different ways, or with a carriage return alone, which ends no line."},

    {FindingKeyMissing, "key-missing", "A key that its group needs is not there; it reads as 0."},
    {FindingKeyUnknown, "key-unknown",
     "A line looks like a key with its value, but the format has no such key."},
    {FindingKeyTwice, "key-twice", "A key stands twice in its group; the first is used."},
    {FindingKeyCaught, "key-caught",
     "The first place of a key's letters is not the begin of a line but inside other text, and "
     "that is what is read."},
    {FindingKeyMisplaced, "key-misplaced",
     "A key of the format stands in a group where nothing reads it."},

    {FindingValueMissing, "value-missing",
     "A value is blank; it reads as 0, and in a list of integers as the one before it."},
    {FindingValueNotANumber, "value-not-a-number",
     "A value does not begin with a number; it reads as 0."},
    {FindingValueTrailingText, "value-trailing-text",
     "Text follows a number; the number is read up to it."},
    {FindingValueOverflow, "value-overflow",
     "A number is too large or too small for its type; its limit is read."},
    {FindingValueOutOfRange, "value-out-of-range",
     "A value is none of those that have a meaning, or outside of the range that is taken."},
    {FindingPairMalformed, "pair-malformed",
     "A pair is not written as an opening brace, key, semicolon, value and closing brace."},
    {FindingVersionUnknown, "version-unknown", "A version number is none that is known."},
    {FindingCountMismatch, "count-mismatch", "A list is longer or shorter than a count says."},
    {FindingScaleSlopeZero, "scale-slope-zero",
     "A scale slope that is used is zero: an input has no effect, or the way back divides by "
     "zero."},

    {FindingParameterTwice, "parameter-twice",
     "An ID stands twice in a list; one of the two is lost, also if one is an input and the other "
     "an output."},
    {FindingParameterUnknown, "parameter-unknown",
     "A name is none of those that \"IDs=\" registers."},
    {FindingParameterMissing, "parameter-missing", "A list of pairs lacks a parameter."},
    {FindingRankIncomplete, "rank-incomplete",
     "\"RegistrationRank=\" has not exactly one pair for each ID, so that reading is refused."},
    {FindingRankEqual, "rank-equal",
     "Parameters that are ordered by rank have the same rank, so that their values change places."},
    {FindingBoundsUnusable, "bounds-unusable", "A lower bound lies above the upper one."},
    {FindingNothingToPredict, "nothing-to-predict",
     "The database has no enabled output, or no combination, or an ensemble without surfaces."},
    {FindingCombinationTwice, "combination-twice",
     "Two lines have the same discrete values; the later is used."},
    {FindingDiscreteInputWrong, "discrete-input-wrong",
     "A line does not begin with one pair for each enabled discrete input."},
    {FindingOutputMissing, "output-missing",
     "A line lacks an enabled output; reading is refused unless the count fits by accident."},
    {FindingOutputUnexpected, "output-unexpected",
     "A line names an output twice, or something that is no enabled output."},

    {FindingInputsMismatch, "inputs-mismatch",
     "The number of inputs is another one than that of the registry or of the ensemble."},
    {FindingCardinalityMismatch, "cardinality-mismatch",
     "There are more or fewer groups than a count says."},
    {FindingFamilyMismatch, "family-mismatch",
     "\"DataType=\" names one family and the keys belong to another."},
    {FindingFoldsMismatch, "folds-mismatch",
     "The fold counts fit neither the sub surfaces nor the samples of the cross-validation data."},
    {FindingSurfaceNotReady, "surface-not-ready",
     "A surface is not ready for evaluation, so that its evaluation is refused."},
    {FindingSurfaceStopped, "surface-stopped",
     "A surface is stopped, so that its evaluation is refused."},
    {FindingSurfaceWithoutValue, "surface-without-value",
     "No evaluation takes a surface of this type or with this combination of settings."},
    {FindingTermWrong, "term-wrong",
     "The indices or the coefficient of a regression term do not fit its type or the inputs."},
    {FindingWeightSum, "weight-sum",
     "The weights of an ensemble do not add up to 1; they are used as they stand."},
    {FindingErrorDataIgnored, "error-data-ignored",
     "The data of a predicted error is there, but a version or a flag keeps it from being read."},

    {FindingReadingRefused, "reading-refused",
     "The library refuses to read the text or a group of it."},
    {FindingEvaluationRefused, "evaluation-refused",
     "The library reads the data but refuses to evaluate in the middle of the bounds."},
    {FindingErrorFormRefused, "error-form-refused",
     "The evaluation with errors is refused; the one without errors works."},
    {FindingErrorNone, "error-none",
     "The evaluation with errors answers -2: there is a value and no error."},
    {FindingDerivativeNone, "derivative-none",
     "A surface has no derivative, or one that is not the derivative of its value."},
    {FindingValueNotFinite, "value-not-finite",
     "The value in the middle of the bounds is infinite or not a number."},
    {FindingNotTried, "not-tried",
     "The evaluation would take out of proportion long and was not tried."},
};

const CodeWords* WordsOf(E_FindingCode code) {
  for (const CodeWords& words : kCodes) {
    if (words.code == code) return &words;
  }
  return nullptr;
}

}  // namespace

const char* FindingCodeName(E_FindingCode code) {
  const CodeWords* const words = WordsOf(code);
  return words == nullptr ? "" : words->name;
}

const char* FindingCodeExplanation(E_FindingCode code) {
  const CodeWords* const words = WordsOf(code);
  return words == nullptr ? "" : words->explanation;
}

std::vector<E_FindingCode> ListFindingCodes() {
  std::vector<E_FindingCode> codes;
  for (const CodeWords& words : kCodes) codes.push_back(words.code);
  return codes;
}

}  // namespace Tarvane::Plexura::PXROM
