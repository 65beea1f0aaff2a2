#pragma once

#include <cstddef>
#include <functional>

namespace pxrom_python {

/// Calls work(first, count) for all segments of `rows`, in this thread and up to `jobs` - 1 others,
/// with the interpreter's lock released. The segments do not depend on the number of jobs. Throws
/// what a call throws, and what a signal such as Ctrl-C raises; then the rest is left out.
void ForSegments(std::size_t rows, std::size_t jobs,
                 const std::function<void(std::size_t first, std::size_t count)>& work);

}  // namespace pxrom_python
