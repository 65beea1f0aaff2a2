#!/usr/bin/env bash
# The library and the command have the guards of the build, and the library can be unloaded.
#
#   hardened.sh WORK HEADERS LIBRARY COMMAND FLAGS...
set -euo pipefail
work=$1 headers=$2 library=$3 command=$4
shift 4

fail() {
  echo "hardened.sh: $*" >&2
  exit 1
}
has() { # FILE TEXT, in what readelf says of it
  readelf -nldW --dyn-syms "$1" | grep -- "$2" >/dev/null
}

for file in "$library" "$command"; do
  for flag in "$@"; do
    case $flag in
      relro)
        has "$file" GNU_RELRO || fail "$file: tables of addresses can be written to"
        has "$file" BIND_NOW || fail "$file: addresses are bound late"
        ;;
      -fstack-protector-strong) has "$file" __stack_chk_fail || fail "$file: without $flag" ;;
      -fcf-protection)
        # The file as a whole is marked only where the C library's own start files are.
        entry=$([[ $file == "$library" ]] && echo pxrom_version || echo main)
        objdump -d --disassemble="$entry" "$file" | grep endbr64 >/dev/null ||
          fail "$file: without $flag"
        ;;
    esac
  done
done

mkdir -p "$work"
"${CC:-cc}" -std=c99 -Wall -Wextra -Wpedantic -Werror -I"$headers" "$(dirname "$0")/unload.c" -ldl \
  -o "$work/unload"
"$work/unload" "$library"
