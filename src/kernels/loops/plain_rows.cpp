// The plain loops of all kernels, apart from the rest of the table so that they can be compiled for
// size.

#include "kernels/loops/plain.h"
#include "kernels/table.h"

namespace Tarvane::Plexura::PXROM::kernels {

namespace {

using Loop = void (*)(const RowKernels& call);

template <class... Rows>
struct PlainLoopsOf {
  explicit constexpr PlainLoopsOf(Table<Rows...>) {}
  Loop loops[sizeof...(Rows)] = {&PlainRows<typename Rows::Type>...};
};

}  // namespace

// Visible to other files, so that the compiler keeps the loops: kernels.cpp refers to the
// functions.
extern const Loop* const kPlainRows;
constexpr PlainLoopsOf kPlainLoops{Kernels()};
const Loop* const kPlainRows = kPlainLoops.loops;

}  // namespace Tarvane::Plexura::PXROM::kernels
