#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Measures the speed of everything that has a bar, and prints one table: bar, figure, whether it holds. Installs what
# is missing, the libraries that ours is compared with among it, and builds first.
# Usage: scripts/bench.sh [--quick] [--compare] [--write-docs]
#   --quick       fewer maps, sets, rows and rounds: five minutes instead of twenty, and less exact
#   --compare     installs other programs, too, and times them at the same jobs: GEGL and ImageMagick
#   --write-docs  puts the tables into docs/performance.md
# The figures are those of the machine as it is: let it do nothing else meanwhile.
set -euo pipefail
cd "$(dirname "$0")/.."

quick=""
peers=""
docs=""
for word in "$@"; do
    case "$word" in
        --quick) quick=--quick ;;
        --compare) peers=peers ;;
        --write-docs) docs="--docs docs/performance.md" ;;
        *)
            sed -n '3,9s/^# //p' "$0" >&2
            exit 2
            ;;
    esac
done

# shellcheck disable=SC2086 # no group at all without the option
scripts/install_packages.sh bench $peers
cmake --preset bench -DUMBRIX_BENCH_COMPARE=ON
cmake --build --preset bench --parallel "$(nproc)"

programs=build/bench/bench
records=build/bench/records.jsonl
unset OMP_NUM_THREADS
: > "$records"
for program in machine_limits compare/compare_occlusion compare/compare_gaussian compare/compare_bilateral \
    compare/compare_normals compare/compare_tone layer_blends occlusion_threads occlusion_scaling whole_file \
    start_up jobs/whole_jobs stop memory formats/picture_formats; do
    echo "$(date +%T) measuring: ${program#*/}" >&2
    "$programs/$program" $quick >> "$records"
done

echo
# shellcheck disable=SC2086 # the options are meant to fall into words
python3 -B bench/tables/make_tables.py "$records" build/bench --date "$(date -u +%F)" $quick $docs
