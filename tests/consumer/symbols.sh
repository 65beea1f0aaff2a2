#!/usr/bin/env bash
# The shared library, or the import library of a DLL, exports what the public headers mark with
# PXROM_API, and nothing else.
#
#   symbols.sh HEADERS LIBRARY
set -euo pipefail
headers=$1 library=$2

classes=$(grep -ohE '^(class|struct) PXROM_API \w+' "$headers"/*.h | awk '{print $3}' | paste -sd '|')
functions=$(sed -nE 's/^PXROM_API .* \*?(\w+)\(.*/\1/p' "$headers"/*.h | sort -u | paste -sd '|')
about='(vtable for |typeinfo for |typeinfo name for |(non-)?virtual thunk to )?'
public="^$about(Tarvane::Plexura::(PXROM|Core)::|pxrom::)?(($classes)(::.*|\$)|($functions)(\(|\$))"

if [[ $library == *.dll.a ]]; then
  # Its other symbols and its parts without symbols are not of the DLL.
  exported=$(nm -g --defined-only "$library" 2>/dev/null | sed -nE 's/^[0-9a-f]+ I __imp_//p' | c++filt)
else
  exported=$(nm -DC --defined-only "$library" | cut -d ' ' -f 3-)
fi
[[ $exported == *Tarvane::Plexura::PXROM::CDiscreteCombinations::Evaluate* ]] || {
  echo "symbols.sh: the library does not export what it should" >&2
  exit 1
}
# Weak instances of the standard library's templates are allowed.
if others=$(grep -vE "$public" <<<"$exported" | grep -vE "^${about}([^(<]* )?(std|__gnu_cxx)::"); then
  echo "symbols.sh: exported, but no part of the public headers:" >&2
  echo "$others" >&2
  exit 1
fi

[[ $library == *.dll.a ]] && exit
# A symbol that is unique in the process keeps a library in memory after dlclose. Compilers that can
# avoid such symbols must do so.
if unique=$(nm -DC --defined-only "$library" | grep -E '^\S* u '); then
  echo "symbols.sh: unique symbols keep the library loaded:" >&2
  echo "$unique" >&2
  exit 1
fi
