// The names and explanations of all codes.

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
     "A group is missing that every database needs, or that a line or a count refers to."},
    {FindingTagMalformed, "tag-malformed",
     "A tag is not written as the reader searches for it, so it opens or closes nothing."},
    {FindingGroupUnclosed, "group-unclosed",
     "A group has no closing tag before the next one begins or the group around it ends."},
    {FindingGroupUnopened, "group-unopened", "A closing tag has no opening tag before it."},
    {FindingGroupNested, "group-nested",
     "A group is inside a group of the same word; the first closing tag ends both."},
    {FindingGroupTwice, "group-twice",
     "Two groups have the same word and number; the first is used."},
    {FindingGroupMisplaced, "group-misplaced",
     "A group is at a place where the reader does not look for it."},
    {FindingGroupUnused, "group-unused", "Nothing refers to a group, so it is never read."},
    {FindingStrayText, "stray-text", "A line is neither a tag nor a key with its value."},
    {FindingLineEndsMixed, "line-ends-mixed",
     "Lines end in different ways, or with a carriage return alone, which does not end a line."},

    {FindingKeyMissing, "key-missing", "A key that its group needs is missing; it reads as 0."},
    {FindingKeyUnknown, "key-unknown",
     "A line looks like a key with its value, but the format has no such key."},
    {FindingKeyTwice, "key-twice", "A key occurs twice in its group; the first is used."},
    {FindingKeyCaught, "key-caught",
     "The letters of a key first occur inside other text and not at the start of a line; the "
     "reader reads that place."},
    {FindingKeyMisplaced, "key-misplaced",
     "A key of the format is in a group where nothing reads it."},

    {FindingValueMissing, "value-missing",
     "A value is blank; it reads as 0, or in a list of integers as the value before it."},
    {FindingValueNotANumber, "value-not-a-number",
     "A value does not begin with a number; it reads as 0."},
    {FindingValueTrailingText, "value-trailing-text",
     "Text follows a number; the number is read up to it."},
    {FindingValueOverflow, "value-overflow",
     "A number is too large or too small for its type; the limit of the type is read."},
    {FindingValueOutOfRange, "value-out-of-range",
     "A value has no meaning or is outside the accepted range."},
    {FindingPairMalformed, "pair-malformed",
     "A pair is not written as an opening brace, key, semicolon, value and closing brace."},
    {FindingVersionUnknown, "version-unknown", "A version number is unknown."},
    {FindingCountMismatch, "count-mismatch", "A list is longer or shorter than a count says."},
    {FindingScaleSlopeZero, "scale-slope-zero",
     "A scale slope that is used is zero: an input has no effect, or scaling back divides by "
     "zero."},

    {FindingParameterTwice, "parameter-twice",
     "An ID occurs twice in a list; one of the two is lost, even if one is an input and the other "
     "an output."},
    {FindingParameterUnknown, "parameter-unknown", "A name is not registered in \"IDs=\"."},
    {FindingParameterMissing, "parameter-missing", "A list of pairs lacks a parameter."},
    {FindingRankIncomplete, "rank-incomplete",
     "\"RegistrationRank=\" does not have exactly one pair for each ID, so reading is refused."},
    {FindingRankEqual, "rank-equal",
     "Parameters that are ordered by rank have the same rank, so their values can change places."},
    {FindingBoundsUnusable, "bounds-unusable", "A lower bound is above the upper bound."},
    {FindingNothingToPredict, "nothing-to-predict",
     "The database has no enabled output, or no combination, or an ensemble without surfaces."},
    {FindingCombinationTwice, "combination-twice",
     "Two lines have the same discrete values; the later line is used."},
    {FindingDiscreteInputWrong, "discrete-input-wrong",
     "A line does not begin with one pair for each enabled discrete input."},
    {FindingOutputMissing, "output-missing",
     "A line lacks an enabled output; reading is refused unless the count is right by accident."},
    {FindingOutputUnexpected, "output-unexpected",
     "A line names an output twice, or a name that is not an enabled output."},

    {FindingInputsMismatch, "inputs-mismatch",
     "The number of inputs differs from that of the registry or of the ensemble."},
    {FindingCardinalityMismatch, "cardinality-mismatch",
     "There are more or fewer groups than a count says."},
    {FindingFamilyMismatch, "family-mismatch",
     "\"DataType=\" names one family and the keys belong to another."},
    {FindingFoldsMismatch, "folds-mismatch",
     "The fold counts fit neither the sub surfaces nor the samples of the cross-validation data."},
    {FindingSurfaceNotReady, "surface-not-ready",
     "A surface is not ready for evaluation, so its evaluation is refused."},
    {FindingSurfaceStopped, "surface-stopped",
     "A surface is stopped, so its evaluation is refused."},
    {FindingSurfaceWithoutValue, "surface-without-value",
     "A surface of this type, or with this combination of settings, cannot be evaluated."},
    {FindingTermWrong, "term-wrong",
     "The indices or the coefficient of a regression term do not fit its type or the inputs."},
    {FindingWeightSum, "weight-sum",
     "The weights of an ensemble do not add up to 1; they are used as they are."},
    {FindingErrorDataIgnored, "error-data-ignored",
     "A text holds data of a predicted error that are not read, because of a version or a flag."},

    {FindingReadingRefused, "reading-refused",
     "The library refuses to read the text or a group of it."},
    {FindingEvaluationRefused, "evaluation-refused",
     "The library reads the data but refuses to evaluate in the middle of the bounds."},
    {FindingErrorFormRefused, "error-form-refused",
     "The evaluation with errors is refused; the one without errors works."},
    {FindingErrorNone, "error-none",
     "The evaluation with errors returns -2: there is a value and no error."},
    {FindingDerivativeNone, "derivative-none",
     "A surface has no derivative, or one that is not the derivative of its value."},
    {FindingValueNotFinite, "value-not-finite",
     "The value in the middle of the bounds is infinite or not a number."},
    {FindingNotTried, "not-tried",
     "The evaluation would take disproportionately long and was not tried."},
    {FindingCheckPointsDamaged, "check-points-damaged",
     "The group of check points is not as it was written, or is not the last of the text."},
    {FindingTextChanged, "text-changed",
     "The text was changed or damaged after its check points were written."},
    {FindingLineEndsChanged, "line-ends-changed",
     "The line ends were changed after the check points were written, and nothing else."},
    {FindingAnswersSame, "answers-same", "The check points gave the same bits here."},
    {FindingAnswersClose, "answers-close",
     "The check points gave the same here to 1e-12, but not to the last bit."},
    {FindingAnswersDiffer, "answers-differ",
     "The check points gave other answers here than where the text was written."},
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
