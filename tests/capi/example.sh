#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds examples/c as its users would and looks at what it makes.
#   example.sh gcc|clang|asan|valgrind LIBRARY ROOT WORK TOOL
set -euo pipefail

way=$1 library=$2 root=$3 work=$4 tool=$5
picture=$root/examples/textures/cobbles_height.png

fail() {
    echo "example: $*" >&2
    exit 1
}

compiler=gcc flags=() run=()
case $way in
    clang) compiler=clang ;;
    asan) flags=(-fsanitize=address,undefined -fno-sanitize-recover=all) ;;
    # What OpenMP's threads keep until the end is no loss of ours.
    valgrind) run=(valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite) ;;
esac
command -v "$compiler" > /dev/null || fail "$compiler is not installed"
[ "$way" != valgrind ] || command -v valgrind > /dev/null || fail "valgrind is not installed"

rm -rf "$work"
mkdir -p "$work"
cd "$work"
warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wstrict-prototypes -Werror)
echo '#include <umbrix.h>' > header.c
cp header.c header.cpp
"$compiler" -std=c99 "${warnings[@]}" -I"$root/capi" -fsyntax-only header.c
"${compiler/gcc/g++}" -x c++ -std=c++17 "${warnings[@]/-Wstrict-prototypes/-Wshadow}" -I"$root/capi" -fsyntax-only header.cpp
"$compiler" -std=c99 -g "${warnings[@]}" "${flags[@]}" -I"$root/capi" "$root/examples/c/map.c" -o map \
    "$library" -Wl,-rpath,"$(dirname "$library")"
awk '/^```/ { inside = /^```c$/; next } inside' "$root/docs/c.md" > page.c
"$compiler" -std=c99 "${warnings[@]}" "${flags[@]}" -I"$root/capi" page.c -o page "$library" -Wl,-rpath,"$(dirname "$library")"
cp "$picture" cobbles_height.png
./page
"${run[@]}" ./map "$picture" 0.03 own.png
"$tool" map "$picture" --relief 0.03 -o tools.png --progress none
cmp own.png tools.png || fail "its map is not the tool's"
cmp cobbles_Umbrix.png tools.png || fail "the map of the page's program is not the tool's"

"${run[@]}" ./map "$picture" 99999 other.png > said.txt 2>&1 && fail "a relief of 99999 is taken" || code=$?
[ "$code" -eq 1 ] || fail "it ended with $code"
grep -q "relief: 99999 is out of range" said.txt || fail "it said: $(cat said.txt)"
[ ! -e other.png ] || fail "a file is left behind"
