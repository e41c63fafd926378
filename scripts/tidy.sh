#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs clang-tidy over the sources without tests, after installing it if it is missing. Any finding is an error.
# Usage: scripts/tidy.sh [short] [REGEX]
# With short: quick checks that are seldom wrong, over the libraries, as CI does. Without: all checks of .clang-tidy over
# all sources, the analyser among them, which takes hours. REGEX picks sources by their path.
set -euo pipefail
cd "$(dirname "$0")/.."

rooms="common|src|velloric|coralith|toolkit|capi|apps|examples"
checks=()
if [ "${1-}" = short ]; then
    shift
    # What costs little beyond reading the sources. The commands of the tool take longest to read, so they are left out.
    rooms="common|src|velloric|coralith|toolkit|capi"
    short="-*,bugprone-use-after-move,misc-unused-using-decls,performance-for-range-copy,performance-move-const-arg,
        readability-container-size-empty,readability-duplicate-include,readability-misleading-indentation,
        readability-redundant-control-flow,readability-redundant-smartptr-get,readability-redundant-string-cstr"
    checks=("-checks=${short//[[:space:]]/}")
fi

scripts/install_packages.sh tidy
cmake --preset tidy > /dev/null
# clang-tidy counts the warnings of system headers on the error stream.
run-clang-tidy-14 -quiet -p build/tidy -j "$(nproc)" "${checks[@]}" "^$PWD/(?=($rooms)/).*${1-}" 2> build/tidy/stderr.txt |
    grep -v '^clang-tidy-14 ' || [ "${PIPESTATUS[0]}" -eq 0 ]
