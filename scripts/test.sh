#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds and runs all tests. Usage: scripts/test.sh [PRESET]
# PRESET is one of CMakePresets.json, release by default; asan-ubsan runs the tests under the sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1-release}

scripts/install_packages.sh tests
cmake --preset "$preset" -DUMBRIX_BUILD_TESTS=ON
cmake --build --preset "$preset" --parallel "$(nproc)"

export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}
ctest --test-dir "build/$preset" --parallel 2 --output-on-failure
