#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the pictures of the documents' pages from the example textures. Usage: scripts/docs_images.sh BUILD
# BUILD is a folder where the tool and the generator of the examples are built, build/release for instance.
# TERRAIN names an elevation model of 16 bits, of which the page about formats shows a piece; without it that piece stays.
# ImageMagick cuts the pieces out.
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

# command-height.md: normals, the heights of them, and a map of these
umbrix height maps_normal.png -o height_made.png --height-range 0,1 --depth 8
umbrix map height_made.png -o height_map.png

# command-curvature.md: what is shown of it, and a larger scale
for part in all cavity ridges; do
    umbrix curvature "$height" --curvature-part $part -o curvature_$part.png
done
umbrix curvature "$height" --gaussian 3 -o curvature_broad.png

# command-bent.md
umbrix bent "$height" -o bent_normals.png --occlusion bent_occlusion.png

# command-horizon.md: two of the eight directions
umbrix horizon "$height" -o "$work/early.png" --later "$work/late.png"
umbrix convert "$work/early.png" --height-from r -o horizon_right.png
umbrix convert "$work/early.png" --height-from b -o horizon_up.png

# command-pack.md
umbrix pack R=bent_occlusion.png G=curvature_cavity.png -o packed.png

# command-relight.md
umbrix relight maps_map.png --turntable 8 --light 0,40 --cell 80 -o turntable.png

# index.md
umbrix view maps_map.png --title Cobbles -o cobbles_light.html

# tutorial.md: what its commands make, at a smaller size
umbrix map "$height" -o "$work/ground.png"
umbrix relight "$work/ground.png" --light 100,60 -o tutorial_photo.png
umbrix normal tutorial_photo.png --relief 0.04 --gaussian 1 -o tutorial_normal.png
umbrix map tutorial_photo.png --relief 0.04 --gaussian 1 --b-radius 3 -o tutorial_map.png
umbrix relight tutorial_map.png --light 200,35 -o tutorial_left.png
umbrix relight tutorial_map.png --light 20,35 -o tutorial_right.png

# python.md
UMBRIX_BUILD=$build PYTHONPATH=../../python python3 -B ../../tests/docs/run_python_page.py ../python.md ../../examples .

# formats.md: the same heights in 8 bits and at full depth, lit
lit_piece() { # HEIGHTS RELIEF PLACE PICTURE
    umbrix map "$1" --relief "$2" --rays 64 -o "$work/lit.exr"
    umbrix relight "$work/lit.exr" --light 135,35 -o "$work/lit.png"
    convert "$work/lit.png" -crop "200x200$3" +repage -colorspace Gray -strip "$4"
}
if [ -n "${TERRAIN-}" ]; then
    umbrix convert "$TERRAIN" --depth 8 -o "$work/terrain.png"
    lit_piece "$work/terrain.png" 0.06 +400+400 formats_terrain_8.png
    lit_piece "$TERRAIN" 0.06 +400+400 formats_terrain_16.png
fi
printf '[[layer]]\nfile = "%s"\ngaussian = 6\nn_scale = 10\n' "$PWD/../../examples/textures/dunes_height.png" > "$work/soft.toml"
umbrix stack "$work/soft.toml" -o "$work/normals.exr" --height "$work/soft.exr" --depth float
umbrix convert "$work/soft.exr" --depth 8 -o "$work/soft.png"
lit_piece "$work/soft.png" 0.12 +150+150 formats_soft_8.png
lit_piece "$work/soft.exr" 0.12 +150+150 formats_soft_float.png
