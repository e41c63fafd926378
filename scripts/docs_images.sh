#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the pictures of the documents' pages from the example textures. Usage: scripts/docs_images.sh BUILD
# BUILD is a folder where the tool and the generator of the examples are built, build/release for instance.
set -euo pipefail
build=$(cd "$1" && pwd)
cd "$(dirname "$0")/../docs/images"
umbrix() { "$build/apps/umbrix/umbrix" "$@" --overwrite --progress none > /dev/null; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
side=160
"$build/examples/make_textures" "$work" $side $side cobbles > /dev/null
height=$work/cobbles_height.png

# maps.md: the two factors of a map, and the modes of its light
cp "$height" maps_height.png
umbrix normal "$height" -o maps_normal.png
umbrix map "$height" --no-occlusion -o maps_light.png
umbrix map "$height" --no-light -o maps_occlusion.png
umbrix map "$height" -o maps_map.png
for mode in unit flat squared; do
    umbrix map "$height" --no-occlusion --mode $mode -o maps_$mode.png
done

# command-relight.md
umbrix relight maps_map.png --turntable 8 --light 0,40 --cell 80 -o turntable.png

# tutorial.md: what its commands make, at a smaller size
umbrix map "$height" -o "$work/ground.png"
umbrix relight "$work/ground.png" --light 100,60 -o tutorial_photo.png
umbrix normal tutorial_photo.png --relief 0.04 --gaussian 1 -o tutorial_normal.png
umbrix map tutorial_photo.png --relief 0.04 --gaussian 1 --b-radius 3 -o tutorial_map.png
umbrix relight tutorial_map.png --light 200,35 -o tutorial_left.png
umbrix relight tutorial_map.png --light 20,35 -o tutorial_right.png
