#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tells which lines and branches the tests reach, by folder. Usage: scripts/coverage.sh [OPTION...]
# The options are those of ctest. The table goes to build/coverage/folders.md, what is not reached to
# build/coverage/unreached.txt. Counts are kept in files that processes map, so that workers without rights and killed
# processes count, too. Left out are tests that build the project anew, those that read sources only, and the two that
# the counting itself disturbs: which files a worker opens, and how little memory is enough.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage

scripts/install_packages.sh tests coverage
cmake --preset coverage -DUMBRIX_BUILD_TESTS=ON -DUMBRIX_UNITY=ON
cmake --build --preset coverage --parallel "$(nproc)"
rm -rf "$build/counts"
ctest --test-dir "$build" --parallel 2 --output-on-failure --exclude-regex '^(Conventions|Package|OpenedFiles|Memory|Docs\.(Site|Links))' "$@" \
    && passed=yes || passed=no

llvm-profdata merge --output "$build/all.profdata" "$build"/counts/*.profraw
python3 tests/coverage/report.py "$build"
[ "$passed" = yes ]
