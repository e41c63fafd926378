#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Compiles for Windows whatever needs no library that is there for Linux alone: everything but DevIL's one place.
#   windows.sh SOURCE_TREE WORK HIGHWAY_INCLUDE_DIR
set -euo pipefail
source_tree=$1 work=$2 highway=$3
compiler=x86_64-w64-mingw32-g++-posix

rm -rf "$work"
mkdir -p "$work/include"
ln -s "$highway/hwy" "$work/include/hwy" # the rest of that folder is Linux's own

compile() {
    local source=$1 exports=$2
    "$compiler" -std=c++20 -fopenmp -ffp-contract=off -Wall -Wextra -Werror -Wno-error=restrict -D"$exports" \
        -I"$source_tree/src" -I"$source_tree/velloric/src" -I"$work/include" -c "$source_tree/$source" -o "$work/$(echo "$source" | tr / _).o"
}

sources() {
    find "$source_tree/$1" -name '*.cpp' ! -name '*_posix.cpp' ! -name image_io.cpp -printf "$1/%P\n" | sort
}

count=0
for folder in src velloric/src; do
    exports=UMBRIX_BUILDING
    [ "$folder" = src ] || exports=VELLORIC_BUILDING
    while read -r source; do
        compile "$source" "$exports"
        count=$((count + 1))
    done < <(sources "$folder")
done
[ -f "$work/src_boundary_platform_windows.cpp.o" ] || { echo "the platform's Windows side was not compiled" >&2; exit 1; }
echo "$count sources compiled for Windows"
