#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the fuzz targets and runs each of them. Usage: scripts/fuzz.sh [SECONDS]
# SECONDS is the time for each target, 60 by default. What was found to be worth keeping stays in build/fuzz/corpus/
# for the next run; an input that breaks something is left in build/fuzz/findings/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1-60}

scripts/install_packages.sh fuzz
cmake --preset fuzz
cmake --build --preset fuzz --parallel "$(nproc)" --target fuzz_targets

export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}
export OMP_WAIT_POLICY=${OMP_WAIT_POLICY-passive} # a thread that spins takes the time of the next run
findings=build/fuzz/findings
mkdir -p "$findings"
broken=""
for target in build/fuzz/tests/fuzz/*_fuzz; do
    name=$(basename "$target")
    corpus=build/fuzz/corpus/$name
    mkdir -p "$corpus"
    echo "$name: $seconds seconds"
    "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=1024 -print_final_stats=1 \
        -artifact_prefix="$findings/$name-" "$corpus" "tests/fuzz/seeds/$name" ||
        broken="$broken $name"
done
if [ -n "$broken" ]; then
    echo "Findings of$broken: see $findings" >&2
    exit 1
fi
