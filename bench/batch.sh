#!/bin/bash
# SPDX-License-Identifier: MIT
# Usage: bench/batch.sh UMBRIX [FILES] [MORE OPTIONS OF umbrix batch]
# A batch of 512 x 512 height maps with --jobs 1 and 2: files per second, the largest memory of a worker, and that of the
# batch itself after a tenth of the files and in the end.
set -euo pipefail

tool=$(realpath "$1")
files=${2:-200}
options=("${@:3}")
textures=$(realpath "$(dirname "$0")/../examples/textures")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

heights=("$textures"/*_height.png)
mkdir "$work/in"
for ((i = 0; i < files; ++i)); do
    cp "${heights[i % ${#heights[@]}]}" "$(printf '%s/in/texture%05d.png' "$work" "$i")"
done

resident() { # KiB that process $1 has in memory
    awk '/^VmRSS:/ { print $2 }' "/proc/$1/status" 2>/dev/null || true
}

number() { # of the field $1 in each line of the log
    grep -o "\"$1\":[0-9.]*" "$work/log" | cut -d: -f2
}

printf '%5s  %8s  %12s  %24s  %24s\n' jobs files/s 'worker, MiB' 'batch after a tenth, KiB' 'batch in the end, KiB'
for jobs in 1 2; do
    rm -rf "$work/out"
    "$tool" batch "$work/in" --keep-tree "$work/out" --json --jobs "$jobs" "${options[@]}" >"$work/log" &
    batch=$!
    early= late=
    while now=$(resident "$batch") && [ -n "$now" ]; do
        late=$now
        if [ -z "$early" ] && (($(wc -l <"$work/log") >= files / 10)); then
            early=$now
        fi
        sleep 0.02
    done
    wait "$batch"
    printf '%5d  %8.2f  %12.1f  %24d  %24d\n' "$jobs" \
        "$(tail -n 1 "$work/log" | sed -E 's/.*"done":([0-9]+).*"seconds":([0-9.]+).*/\1 \2/' | awk '{ print $1 / $2 }')" \
        "$(number peak_kib | sort -n | tail -n 1 | awk '{ print $1 / 1024 }')" "$early" "$late"
done
