#include "kernels/kernels.h"

#include <array>

#include "kernels/loops/rows_of_table.h"
#include "kernels/table.h"

namespace Tarvane::Plexura::PXROM::kernels {

namespace {

template <class... Rows>
constexpr std::array<Kernel, sizeof...(Rows)> Made(Table<Rows...>) {
  std::size_t index = 0;
  return {KernelOf<typename Rows::Type>(index++)...};
}

constexpr auto kKernels = Made(Kernels());

/// The places of the rows of an enum's numbers, from 0 up.
template <class Number>
constexpr auto Places() {
  std::array<std::size_t, Kernels::Largest<Number>() + 1> places = {};
  for (std::size_t number = 0; number < places.size(); ++number) {
    places[number] = Kernels::Find(static_cast<Number>(number));
  }
  return places;
}

template <class Number>
const Kernel* Found(Number number) {
  static constexpr auto kPlaces = Places<Number>();
  if (number < 0 || static_cast<std::size_t>(number) >= kPlaces.size()) return nullptr;
  const std::size_t at = kPlaces[static_cast<std::size_t>(number)];
  return at < kKernels.size() ? &kKernels[at] : nullptr;
}

template <class Number>
std::vector<int> Numbers() {
  std::vector<int> numbers;
  for (int number = 0; number <= Kernels::Largest<Number>(); ++number) {
    if (Found(static_cast<Number>(number)) != nullptr) numbers.push_back(number);
  }
  return numbers;
}

}  // namespace

std::size_t KernelCount() noexcept { return kKernels.size(); }
const Kernel& KernelAt(std::size_t index) noexcept { return kKernels[index]; }

const Kernel* FindKernel(E_KringingCorrelationFunctionType type) noexcept { return Found(type); }
const Kernel* FindKernel(E_SVRKernType type) noexcept { return Found(type); }
const Kernel* FindKernel(E_LinearBasisFunction type) noexcept { return Found(type); }
const Kernel* FindKernel(E_CovarianceFunctionType type) noexcept { return Found(type); }

std::vector<int> NumbersOfCorrelations() { return Numbers<E_KringingCorrelationFunctionType>(); }
std::vector<int> NumbersOfSupportVectorKernels() { return Numbers<E_SVRKernType>(); }
std::vector<int> NumbersOfRadialFunctions() { return Numbers<E_LinearBasisFunction>(); }
std::vector<int> NumbersOfCovarianceFunctions() { return Numbers<E_CovarianceFunctionType>(); }

}  // namespace Tarvane::Plexura::PXROM::kernels
