# What our own builds ask of the compiler. Nothing here reaches a host that links the library.

set(PXROM_SANITIZE "" CACHE STRING "Sanitizers for the whole build, for example address,undefined")
option(PXROM_COVERAGE "Instrument the build for coverage" OFF)
option(PXROM_WERROR "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})

add_library(pxrom_developer INTERFACE)

# Results are defined to the last bit, so that no multiply and add may be fused.
target_compile_options(pxrom_developer INTERFACE -ffp-contract=off)
# Nobody replaces our own functions at load time, so that calls among them may be direct.
target_compile_options(pxrom_developer INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)

if(PROJECT_IS_TOP_LEVEL)
  target_compile_options(pxrom_developer INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wfloat-conversion
    -Wnon-virtual-dtor
    # Evaluators override one of two overloads on purpose: the other is the base's answer.
    -Wno-overloaded-virtual)
  if(PXROM_WERROR)
    target_compile_options(pxrom_developer INTERFACE -Werror)
  endif()
endif()

if(PXROM_SANITIZE)
  set(sanitize -fsanitize=${PXROM_SANITIZE} -fno-omit-frame-pointer
    # Among the checks g++ loses track of std::optional, and of replaced allocation functions.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized -Wno-mismatched-new-delete>)
  if(PXROM_SANITIZE MATCHES undefined)
    list(APPEND sanitize -fno-sanitize-recover=all)
  endif()
  target_compile_options(pxrom_developer INTERFACE ${sanitize})
  target_link_options(pxrom_developer INTERFACE ${sanitize})
endif()

if(PXROM_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "PXROM_BUILD_FUZZERS needs clang")
  endif()
  target_compile_options(pxrom_developer INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(pxrom_developer INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(PXROM_COVERAGE)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "PXROM_COVERAGE needs clang, which counts what is written")
  endif()
  target_compile_options(pxrom_developer INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(pxrom_developer INTERFACE -fprofile-instr-generate)
endif()
