# What our own builds ask of the compiler. Nothing here reaches a host that links the library.

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)

set(PXROM_SANITIZE "" CACHE STRING "Sanitizers for the whole build, for example address,undefined")
option(PXROM_COVERAGE "Instrument the build for coverage" OFF)
option(PXROM_JOIN_SOURCES "Compile the sources of a folder together, to build faster; our presets do" OFF)
option(PXROM_JOIN_TESTS "The same for the tests alone" ${PXROM_JOIN_SOURCES})
option(PXROM_WERROR "Treat warnings as errors; our presets do" OFF)
option(PXROM_HARDEN "Guard stacks, string functions and tables of addresses, where it can be done" ON)

add_library(pxrom_developer INTERFACE)

# Deliberate (bits-are-defined): results are defined to the last bit by the order of operations, so
# the compiler must not fuse a multiplication and an addition.
if(MSVC)
  target_compile_options(pxrom_developer INTERFACE /fp:precise)
else()
  target_compile_options(pxrom_developer INTERFACE -ffp-contract=off)
endif()
# For code whose results are defined to the bit. In code that rarely runs g++ would call the function
# sqrt, which MinGW rounds wrongly once in some thousand arguments; the processor's instruction does not.
add_library(pxrom_roots INTERFACE)
if(MINGW)
  target_compile_options(pxrom_roots INTERFACE -fno-math-errno)
endif()
# Nobody replaces our own functions at load time, so that calls among them may be direct.
target_compile_options(pxrom_developer INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
# A unique symbol would keep the library in memory after dlclose.
target_compile_options(pxrom_developer INTERFACE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

# Sanitizers replace the functions that _FORTIFY_SOURCE checks, and it needs an optimised build.
set(pxrom_guards "")
if(PXROM_HARDEN AND UNIX AND NOT APPLE AND NOT EMSCRIPTEN AND NOT PXROM_SANITIZE)
  target_compile_options(pxrom_developer INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  # clang++ only warns of a flag for other processors.
  set(CMAKE_REQUIRED_FLAGS -Werror)
  foreach(flag -fstack-protector-strong -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER PXROM_HAS${flag} has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
      target_compile_options(pxrom_developer INTERFACE ${flag})
      list(APPEND pxrom_guards ${flag})
    endif()
  endforeach()
  unset(CMAKE_REQUIRED_FLAGS)
  check_linker_flag(CXX LINKER:-z,relro,-z,now PXROM_HAS_RELRO)
  if(PXROM_HAS_RELRO)
    target_link_options(pxrom_developer INTERFACE LINKER:-z,relro,-z,now)
    list(APPEND pxrom_guards relro)
  endif()
endif()

if(PROJECT_IS_TOP_LEVEL AND NOT MSVC)
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

# pxrom_join_by_folder(TARGET JOIN sources...): if JOIN is true, compiles the sources that lie in one
# folder together. Each name of their unnamed namespaces may be used once in the folder then.
function(pxrom_join_by_folder target join)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${join} UNITY_BUILD_MODE GROUP)
  if(join)
    # g++ takes a class of a joined source for one of a header.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
  foreach(source ${ARGN})
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(RELATIVE_PATH folder BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
    string(MAKE_C_IDENTIFIER "${folder}" group)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
  endforeach()
endfunction()
