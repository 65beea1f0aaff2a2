# ARM64 Linux.
set(PXROM_MACHINE aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
