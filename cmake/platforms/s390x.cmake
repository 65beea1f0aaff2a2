# S/390 Linux, whose bytes have the other order.
set(PXROM_MACHINE s390x)
include(${CMAKE_CURRENT_LIST_DIR}/linux.cmake)
