#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# From a fresh checkout to pictures: installs what is missing, builds, and makes the maps of a shipped example.
# Usage: scripts/run.sh [--desktop]    with --desktop it opens the example in the desktop program instead
set -euo pipefail
cd "$(dirname "$0")/.."

case $* in
    "") groups= desktop=OFF ;;
    --desktop) groups=desktop desktop=ON ;;
    *) echo "Usage: scripts/run.sh [--desktop]" >&2; exit 2 ;;
esac

# shellcheck disable=SC2086 # no group is no word
scripts/install_packages.sh $groups
cmake -S . -B build/run -DCMAKE_BUILD_TYPE=Release -DUMBRIX_BUILD_TESTS=OFF -DUMBRIX_BUILD_EXAMPLES=OFF \
    -DUMBRIX_DESKTOP=$desktop
cmake --build build/run --parallel "$(nproc)"

umbrix=build/run/apps/umbrix/umbrix
height=examples/textures/cobbles_height.png
if [ $desktop = ON ]; then
    exec build/run/apps/desktop/umbrix-desktop "$height"
fi
mkdir -p out
"$umbrix" map "$height" -o out/cobbles_umbrix.png --overwrite
"$umbrix" normal "$height" -o out/cobbles_normal.png --overwrite
"$umbrix" relight out/cobbles_umbrix.png --turntable 8 -o out/cobbles_turntable.png --overwrite

cat << END

The height map:                    $height
Its Umbrix map:                    out/cobbles_umbrix.png
Its normal map:                    out/cobbles_normal.png
The map lit from eight directions: out/cobbles_turntable.png
END
