#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tests the tests: changes one operator, constant or rounding at a time in src/, velloric/src/ or toolkit/, and tells which
# changes no test sees. Usage: scripts/mutate.sh [COUNT]    150 changes by default
# The hash of the commit is the seed of the draw. Each change compiles one source, then runs the fast tests of its folder,
# then whole results, then the other fast tests that use its part of the tree. build/mutants/HASH.tsv has what is done; a run that
# was stopped goes on from there. Ends with 1 if more than one change in 20 survives.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh tests mutate
python3 tests/mutation/mutate.py "${1-150}" "$(nproc)"
