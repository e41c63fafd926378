#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Shows that the example pictures come out the same, built by g++ for release and for debugging, for 1, 2, 3 and 8
# threads and this machine's number, and built by clang++, for this machine's number alone: its OpenMP cannot be made to
# see other processors. Usage: scripts/same_everywhere.sh [TIMES]    10 times by default
# The tests of the kernels do the same for each instruction set that the machine has.
set -euo pipefail
cd "$(dirname "$0")/.."
times=${1-10}

scripts/install_packages.sh tests
for preset in release debug release-clang; do
    cmake --preset "$preset" -DUMBRIX_BUILD_TESTS=ON > /dev/null
    cmake --build --preset "$preset" --parallel "$(nproc)" --target golden_test > /dev/null
    for ((i = 1; i <= times; ++i)); do
        ctest --test-dir "build/$preset" --tests-regex Golden --output-on-failure > build/same.log ||
            { cat build/same.log; echo "$preset: different in run $i" >&2; exit 1; }
    done
    echo "$preset: $times times $(grep -oE '[0-9]+ tests? failed out of [0-9]+|passed, 0 tests failed out of [0-9]+' build/same.log)"
done
