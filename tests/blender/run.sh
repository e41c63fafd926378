#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Uses the add-on of examples/blender in Blender.   run.sh ROOT BUILD
# Ends with 77 where Blender, or NumPy for its Python, is not installed.
set -euo pipefail

root=$1 build=$2
command -v blender > /dev/null || { echo "Blender is not installed: skipped"; exit 77; }
/usr/bin/python3 -c 'import numpy' 2> /dev/null || { echo "NumPy is not installed: skipped"; exit 77; }
UMBRIX_BUILD=$build PYTHONPATH=$root/python:/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1 \
    blender --background --factory-startup --python-exit-code 1 --python "$(dirname "$0")/in_blender.py" -- \
    "$root/examples/blender/umbrix_maps.py" | tee blender.txt
grep -q "^the add-on works$" blender.txt
