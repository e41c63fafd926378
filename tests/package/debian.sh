#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Packs the built tree into Debian packages, looks over what they hold and need, and runs the tool from their files.
#   debian.sh BUILD WORK PICTURE
set -euo pipefail
build=$1 work=$2 picture=$3

fail() {
    echo "debian packages: $*" >&2
    exit 1
}

# one_package NAME: the path of its .deb.
one_package() {
    local found
    found=$(find "$work" -maxdepth 1 -name "$1_*.deb")
    [ -f "$found" ] || fail "there is no one package $1"
    echo "$found"
}

# expect_file PACKAGE PATTERN
expect_file() {
    grep -qE "$2" <<< "$(dpkg-deb --contents "$(one_package "$1")")" || fail "$1 holds nothing like $2"
}

# expect_dependency PACKAGE PATTERN
expect_dependency() {
    grep -qE "$2" <<< "$(dpkg-deb --field "$(one_package "$1")" Depends)" || fail "$1 does not depend on $2"
}

rm -rf "$work"
mkdir -p "$work"
(cd "$build" && cpack -G DEB -B "$work" > "$work/cpack.log" 2>&1) || { cat "$work/cpack.log" >&2; fail "cpack failed"; }

library=$(basename "$(find "$work" -maxdepth 1 -name 'libumbrix[0-9]*.deb')")
library=${library%%_*}
for name in umbrix velloric coralith umbrix-toolkit umbrix-c; do
    expect_file "$library" "/lib$name\.so\.[0-9.]+$"
    expect_file libumbrix-dev "/lib$name\.so ->"
done
expect_file "$library" /LICENSE
expect_file "$library" /usr/libexec/umbrix/umbrix-worker
expect_file libumbrix-dev /umbrixlib\.h
expect_file libumbrix-dev /umbrix\.h
expect_file libumbrix-dev /toolkit/base/failure\.h
expect_file libumbrix-dev /UmbrixLibConfig\.cmake
expect_file libumbrix-dev /umbrix\.pc
expect_file umbrix /usr/bin/umbrix
expect_file umbrix /usr/share/umbrixlib/shaders/umbrix\.glsl
expect_file python3-umbrix /usr/lib/python3/dist-packages/umbrix/__init__\.py
expect_dependency python3-umbrix "$library \(=.*python3-numpy"
expect_dependency "$library" libdevil
expect_dependency umbrix "$library \(="
expect_dependency libumbrix-dev "$library \(="
if [ -x "$build/apps/desktop/umbrix-desktop" ]; then
    expect_file umbrix-desktop /usr/bin/umbrix-desktop
    expect_file umbrix-desktop /applications/umbrix-desktop\.desktop
    expect_file umbrix-desktop /scalable/apps/umbrix-desktop\.svg
    expect_file umbrix-desktop /metainfo/umbrix-desktop\.metainfo\.xml
    expect_file umbrix-desktop /mime/packages/umbrix-desktop\.xml
    expect_dependency umbrix-desktop "$library \(=.*libqt6widgets6"
fi

root=$work/root
for package in "$library" libumbrix-dev umbrix python3-umbrix; do
    dpkg-deb --extract "$(one_package "$package")" "$root"
done
"$root/usr/bin/umbrix" map "$picture" -o "$work/map.png" --rays 16
[ -s "$work/map.png" ] || fail "the tool of the packages made no map"

libraries=$(dirname "$(find "$root" -name 'libumbrix-c.so.1')")
if [ -z "${SANITIZE-}" ] && /usr/bin/python3 -c 'import numpy' 2> /dev/null; then
    LD_LIBRARY_PATH=$libraries PYTHONPATH=$root/usr/lib/python3/dist-packages /usr/bin/python3 -B -c '
import sys, umbrix
assert umbrix.__file__.startswith(sys.argv[1]), umbrix.__file__
umbrix.write(sys.argv[3], umbrix.map(umbrix.read(sys.argv[2]), rays=16))' "$root" "$picture" "$work/by_python.png"
    cmp "$work/map.png" "$work/by_python.png" || fail "the package for Python makes another map than the tool"
else
    echo "sanitizers, or no NumPy: the package for Python is not run"
fi
