#!/usr/bin/env bash
# The Debian package of a build has everything that a host needs, and its command runs from any place.
#
#   package.sh SOURCE WORK BUILD CPACK
set -euo pipefail
source=$1 work=$2 build=$3 cpack=$4

rm -rf "$work"
mkdir -p "$work"
maintainer="A Packager <packager@example.org>"
"$cpack" --config "$build/CPackConfig.cmake" -B "$work" -D CPACK_PACKAGE_CONTACT="$maintainer" \
  >"$work/log" || { cat "$work/log" >&2; exit 1; }
version=$(sed -nE 's/.*PXROM_VERSION_STRING "([^"]+)".*/\1/p' "$source/include/pxrom/version.h")
package=$(ls "$work"/*.deb)
[[ $(dpkg-deb -f "$package" Package Version) == $'Package: pxrom\nVersion: '"$version" ]]
[[ $(dpkg-deb -f "$package" Maintainer) == "$maintainer" ]]

dpkg-deb -x "$package" "$work/root"
for file in include/pxrom/pxrom.h include/pxrom/pxrom_c.h bin/pxrom; do
  [[ -f $work/root/usr/$file ]] || { echo "package.sh: no $file in the package" >&2; exit 1; }
done
[[ -n $(find "$work/root" -name pxrom.pc) && -n $(find "$work/root" -name pxrom-config.cmake) ]]
[[ $("$work/root/usr/bin/pxrom" --version) == "$version" ]]
