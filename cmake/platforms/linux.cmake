# Linux on PXROM_MACHINE, from another machine, by Debian's cross compilers; programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${PXROM_MACHINE})
set(CMAKE_C_COMPILER ${PXROM_MACHINE}-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER ${PXROM_MACHINE}-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/${PXROM_MACHINE}-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${PXROM_MACHINE};-L;/usr/${PXROM_MACHINE}-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/other_machine.cmake)
