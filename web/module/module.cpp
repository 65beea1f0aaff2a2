// The module exports the C interface unchanged (CMakeLists.txt names the operations). The checks
// here make sure that ../pxrom.js knows the layout of its structures.

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
static_assert(sizeof(pxrom_cost) == 16, "COST.size");
static_assert(offsetof(pxrom_cost, operations) == 0, "COST.operations");
static_assert(offsetof(pxrom_cost, bytes) == 8, "COST.bytes");
