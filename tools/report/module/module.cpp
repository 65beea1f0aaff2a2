// The module exports the C interface as it stands (CMakeLists.txt names the operations). Here is
// made sure of what ../library.js knows of its structures.

#include <cstddef>

#include "pxrom/pxrom_c.h"

static_assert(sizeof(void*) == 4 && sizeof(size_t) == 4, "addresses and sizes are 32 bits");
static_assert(sizeof(pxrom_parameter) == 56, "PARAMETER.size");
static_assert(offsetof(pxrom_parameter, id) == 0, "PARAMETER.id");
static_assert(offsetof(pxrom_parameter, unit) == 4, "PARAMETER.unit");
static_assert(offsetof(pxrom_parameter, caption) == 8, "PARAMETER.caption");
static_assert(offsetof(pxrom_parameter, has_bounds) == 28, "PARAMETER.hasBounds");
static_assert(offsetof(pxrom_parameter, lower_bound) == 32, "PARAMETER.lower");
static_assert(offsetof(pxrom_parameter, upper_bound) == 40, "PARAMETER.upper");
static_assert(offsetof(pxrom_parameter, values) == 48, "PARAMETER.values");
static_assert(offsetof(pxrom_parameter, value_count) == 52, "PARAMETER.count");
