#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a program on a screen of its own that nobody sees, and ends with its exit code.
#   with_screen.sh XVFB PROGRAM [ARGUMENT...]
set -euo pipefail
xvfb=$1
shift

# The server chooses a free number and tells it.
exec {number}< <(exec "$xvfb" -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 2> /dev/null)
server=$!
trap 'kill "$server" 2> /dev/null || true' EXIT
read -r -u "$number" display || { echo "with_screen.sh: $xvfb does not start" >&2; exit 1; }
DISPLAY=:$display "$@"
