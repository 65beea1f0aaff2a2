#!/usr/bin/env bash
# A host that adds the project as a subdirectory gets the library and nothing of our own builds: no
# tests, tools or examples, no install rules and no warnings turned into errors.
#
#   subdirectory.sh SOURCE WORK COMPILER
set -euo pipefail
source=$1 work=$2 compiler=$3

rm -rf "$work"
mkdir -p "$work/host"
cat >"$work/host/CMakeLists.txt" <<HOST
cmake_minimum_required(VERSION 3.25)
project(host LANGUAGES CXX)
add_subdirectory($source pxrom)
add_executable(host $source/tests/consumer/host.cpp)
target_link_libraries(host PRIVATE pxrom::pxrom)
get_property(folders DIRECTORY $source PROPERTY SUBDIRECTORIES)
if(NOT folders STREQUAL "$source/src")
  message(FATAL_ERROR "the host builds more than the library: \${folders}")
endif()
HOST
cmake -S "$work/host" -B "$work/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >"$work/log"
if grep -E -- '-Werror|-Wconversion' "$work/build/compile_commands.json"; then
  echo "subdirectory.sh: our warnings reach a host" >&2
  exit 1
fi
if grep -i pxrom "$work/build/cmake_install.cmake" "$work/build/pxrom/cmake_install.cmake" |
  grep -E 'file\(INSTALL'; then
  echo "subdirectory.sh: the host's installation would hold our files" >&2
  exit 1
fi
