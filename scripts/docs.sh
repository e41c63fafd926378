#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the site of the documents, after installing Doxygen if it is missing. Ends with an error if Doxygen warns.
# Usage: scripts/docs.sh [FOLDER]    the site is FOLDER/html/index.html, build/docs by default
set -euo pipefail
cd "$(dirname "$0")/.."
output=${1-build/docs}

command -v doxygen > /dev/null || scripts/install_packages.sh docs

# The public headers: umbrixlib.h and all that it includes, directly or through others.
public_headers() {
    local pending=(src/umbrixlib.h) found="" header
    while [ ${#pending[@]} -gt 0 ]; do
        header=${pending[0]}
        pending=("${pending[@]:1}")
        case " $found " in *" $header "*) continue ;; esac
        found="$found $header"
        while read -r header; do
            [ -f "$header" ] || header=src/$header # those of common/ lie beside src/
            pending+=("$header")
        done < <(sed -n 's/^#include "\([^"]*\)".*/\1/p' "$header")
    done
    echo "$found"
}

rm -rf "$output/html"
mkdir -p "$output"
DOCS_HEADERS=$(public_headers)
DOCS_VERSION=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
DOCS_OUTPUT=$output
export DOCS_HEADERS DOCS_VERSION DOCS_OUTPUT
doxygen docs/Doxyfile
echo "The site is $output/html/index.html"
