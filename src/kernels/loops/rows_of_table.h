#pragma once

// Makes a row of the table of kernels, for plain numbers, from a kernel's class.

#include "kernels/kernels.h"
#include "kernels/loops/gradients.h"

namespace Tarvane::Plexura::PXROM::kernels {

/// See plain.h.
template <class K>
void PlainRows(const RowKernels& call);

template <class K>
void AnswerValues(const KernelSum& call, std::size_t firstCentre, const Question* questions,
                  std::size_t count, double* values) {
  for (const Question* question = questions; question != questions + count; ++question) {
    const std::size_t centre = firstCentre + question->place / kBlock;
    const double scale = call.centreScales != nullptr ? call.centreScales[centre] : 1.0;
    values[question->place] = K::Value(call.constants, question->argument, scale);
  }
}

template <class K>
void AnswerSteps(const Question* questions, std::size_t count, double* values) {
  for (const Question* question = questions; question != questions + count; ++question) {
    values[question->place] = K::Inner(question->argument);
  }
}

template <class Fast>
constexpr FastForm kFastForm = {Fast::kMostInputs, &Fast::InputFactor, &Fast::CentreFactor,
                                &Fast::Deviation};

template <class K>
constexpr Kernel KernelOf(std::size_t index) {
  Kernel kernel = {K::kName,         index,
                   K::kShape,        K::kOperations,
                   &K::ConstantsFor, &K::template Value<double>,
                   &PlainRows<K>,    &AnswerValues<K>,
                   nullptr,          &AddGradients<K>,
                   nullptr};
  if constexpr (K::kAsksPerInput) kernel.answerSteps = &AnswerSteps<K>;
  if constexpr (kHasFast<K>) kernel.fast = &kFastForm<typename K::Fast>;
  return kernel;
}

}  // namespace Tarvane::Plexura::PXROM::kernels
