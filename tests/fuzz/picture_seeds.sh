#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The pictures of all formats as seeds of picture_fuzz, each behind the byte that chooses its name.
#   picture_seeds.sh PICTURES FOLDER
set -euo pipefail
pictures=$1 folder=$2

rm -rf "$folder"
mkdir -p "$folder"
for file in "$pictures"/*/*; do
    case $file in
        *.tga) ending=1 ;; *.r16) ending=2 ;; *.r32) ending=3 ;; *.pix) ending=4 ;; *.dib) ending=5 ;; *.cur) ending=6 ;;
        *) ending=0 ;;
    esac
    { printf "%b" "\\x$ending" && cat "$file"; } > "$folder/$(basename "$(dirname "$file")")_$(basename "$file")"
done
