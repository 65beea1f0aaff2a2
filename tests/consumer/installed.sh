#!/usr/bin/env bash
# Installs a build of the library, builds host.cpp and host.c against the installed copy with CMake's
# package and with pkg-config, and compares what the hosts print.
#
#   installed.sh SOURCE WORK COMPILER shared BUILD    an existing build
#   installed.sh SOURCE WORK COMPILER static          built here, without tests and tools
set -euo pipefail
source=$1 work=$2 compiler=$3 kind=$4

fail() {
  echo "installed.sh ($kind): $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
prefix=$work/prefix
if [[ $kind == static ]]; then
  build=$work/library
  cmake -S "$source" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_BUILD_TYPE= -DBUILD_SHARED_LIBS=OFF -DPXROM_JOIN_SOURCES=ON \
    -DPXROM_BUILD_TESTS=OFF -DPXROM_BUILD_TOOLS=OFF -DPXROM_BUILD_EXAMPLES=OFF >"$work/log"
  cmake --build "$build" >>"$work/log" || { cat "$work/log"; fail "the library does not build"; }
else
  build=$5
fi
cmake --install "$build" --prefix "$prefix" >>"$work/log"

# Moved after installation: nothing may depend on the first place.
mv "$prefix" "$work/moved"
prefix=$work/moved
library_folder=$(dirname "$(find "$prefix" -name 'libpxrom.*' | head -n 1)")

# Without the compiler options of the environment, as in an unrelated project.
unset CFLAGS CXXFLAGS LDFLAGS
cmake -S "$source/tests/consumer" -B "$work/by_cmake" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$prefix" >>"$work/log"
cmake --build "$work/by_cmake" >>"$work/log"

export PKG_CONFIG_PATH=$library_folder/pkgconfig
static_option=()
[[ $kind == static ]] && static_option=(--static)
read -ra flags < <(pkg-config "${static_option[@]}" --cflags --libs pxrom)
mkdir "$work/by_pkg_config"
"$compiler" -std=c++17 "$source/tests/consumer/host.cpp" "${flags[@]}" -o "$work/by_pkg_config/host"
# A program in C that links the static library needs the run-time library of C++ beside it.
c_flags=("${flags[@]}")
[[ $kind == static ]] && c_flags+=(-lstdc++)
"${CC:-cc}" -std=c99 -Wall -Wextra -Wpedantic -Werror "$source/tests/consumer/host.c" \
  "${c_flags[@]}" -o "$work/by_pkg_config/c_host"

expected="$(pkg-config --modversion pxrom) y=7.5"
[[ $kind == static ]] || export LD_LIBRARY_PATH=$library_folder
for host in by_cmake/host by_cmake/c_host by_pkg_config/host by_pkg_config/c_host; do
  printed=$("$work/$host" "$source/examples/constant.pxdb") || fail "the host $host fails"
  [[ $printed == "$expected" ]] || fail "$host printed '$printed' instead of '$expected'"
done

if [[ $kind == static ]]; then
  [[ " ${flags[*]} " == *" -DPXROM_STATIC "* ]] || fail "pkg-config does not pass PXROM_STATIC"
  if ldd "$work/by_cmake/host" | grep -q pxrom; then fail "the static host loads a shared library"; fi
else
  printed=$("$work/by_cmake/code_host" "$source/examples/constant.pxdb") || fail "code_host fails"
  [[ $printed == "#ifndef MODEL_H" ]] || fail "code_host printed '$printed'"
  # The installed command finds the library without help.
  unset LD_LIBRARY_PATH
  "$prefix/bin/pxrom" eval "$source/examples/constant.pxdb" x=0.5 >/dev/null ||
    fail "the installed command does not run"
fi
