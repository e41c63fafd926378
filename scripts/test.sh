#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds and runs the tests. Usage: scripts/test.sh [PRESET [OPTION...]]
# PRESET is one of CMakePresets.json, release by default; asan-ubsan runs the tests under the sanitizers. The options
# are those of ctest: --label-regex fast for the tests of daily work, for instance.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1-release}
shift || true

scripts/install_packages.sh tests
cmake --preset "$preset" -DUMBRIX_BUILD_TESTS=ON -DUMBRIX_UNITY=ON
cmake --build --preset "$preset" --parallel "$(nproc)"

export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}
ctest --test-dir "build/$preset" --parallel 2 --output-on-failure "$@"
