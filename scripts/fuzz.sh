#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds the fuzz targets and runs each of them, as many at a time as there are processors.
# Usage: scripts/fuzz.sh [SECONDS]
# SECONDS is the time for each target, 60 by default. What was found to be worth keeping stays in build/fuzz/corpus/
# for the next run; an input that breaks something is left in build/fuzz/findings/, and what each target said.
set -euo pipefail
cd "$(dirname "$0")/.."
export seconds=${1-60}

scripts/install_packages.sh fuzz
cmake --preset fuzz -DUMBRIX_UNITY=ON
cmake --build --preset fuzz --parallel "$(nproc)" --target fuzz_targets

export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1}
export OMP_WAIT_POLICY=${OMP_WAIT_POLICY-passive} # a thread that spins takes the time of the next run
export findings=build/fuzz/findings
mkdir -p "$findings"

tests/fuzz/picture_seeds.sh tests/pictures/files build/fuzz/seeds/picture_fuzz

run_target() {
    name=$(basename "$1")
    corpus=build/fuzz/corpus/$name
    seeds=tests/fuzz/seeds/$name
    [ -d "$seeds" ] || seeds=build/fuzz/seeds/$name
    mkdir -p "$corpus"
    if "$1" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=1024 -print_final_stats=1 \
        -artifact_prefix="$findings/$name-" "$corpus" "$seeds" > "$findings/$name.log" 2>&1; then
        echo "$name: $(grep -o 'number_of_executed_units: .*' "$findings/$name.log"), no finding"
    else
        tail -n 60 "$findings/$name.log"
        echo "$name: a finding, see $findings" >&2
        return 1
    fi
}
export -f run_target
printf '%s\n' build/fuzz/tests/fuzz/*_fuzz | xargs -I {} -P "$(nproc)" bash -c 'run_target {}'
