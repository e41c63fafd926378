#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Compiles for Windows whatever needs no library that is there for Linux alone: everything but DevIL's one place. Then
# links the tests of the foundation and of the platform's Windows side, and runs them if there is wine to do so.
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
        -I"$source_tree" -I"$source_tree/src" -I"$source_tree/velloric/src" -I"$work/include" -c "$source_tree/$source" \
        -o "$work/$(echo "$source" | tr / _).o"
}

sources() {
    find "$source_tree/$1" -name '*.cpp' ! -name '*_posix.cpp' ! -name image_io.cpp -printf "$1/%P\n" | sort
}

count=0
for folder in common src velloric/src; do
    exports=UMBRIX_BUILDING
    [ "$folder" != velloric/src ] || exports=VELLORIC_BUILDING
    while read -r source; do
        compile "$source" "$exports"
        count=$((count + 1))
    done < <(sources "$folder")
done
[ -f "$work/src_boundary_platform_windows.cpp.o" ] || { echo "the platform's Windows side was not compiled" >&2; exit 1; }
echo "$count sources compiled for Windows"

googletest=/usr/src/googletest # of Debian's package
tests=()
for test in foundation/{arrays,linked_list,retained_buffer,rounding,text,vector_math} \
    boundary/{folder_walk,output_name,platform,texel_array}; do
    tests+=("$source_tree/tests/${test}_test.cpp")
done
program=$work/windows_test.exe
"$compiler" -std=c++20 -O1 -fopenmp -ffp-contract=off -fno-sized-deallocation -static -DUMBRIX_BUILDING \
    -I"$source_tree" -I"$source_tree/src" -I"$source_tree/tests/support" -I$googletest/google{test,mock}{,/include} \
    $googletest/googletest/src/gtest-all.cc $googletest/googlemock/src/gmock{-all,_main}.cc "${tests[@]}" \
    "$work"/src_{foundation,boundary}_*.o "$work"/src_files_{folder_walk,output_name}.cpp.o -o "$program"
if command -v wine > /dev/null; then
    WINEPREFIX=$work/wine WINEDEBUG=-all wine "$program"
else
    echo "there is no wine: the tests are built, and not run"
fi
