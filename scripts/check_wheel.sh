#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Puts the wheel of scripts/wheel.sh into a fresh Debian root that has nothing but python3-numpy, and makes a map there.
# Needs root, debootstrap and the package mirror that this system uses.
# Usage: scripts/check_wheel.sh [FOLDER]    the root is made under FOLDER, a temporary one by default
set -euo pipefail
cd "$(dirname "$0")/.."

[ "$(id -u)" -eq 0 ] || { echo "Making a root takes root." >&2; exit 1; }
command -v debootstrap > /dev/null || { echo "debootstrap is missing: apt-get install debootstrap" >&2; exit 1; }
[ -e build/wheel/dist/umbrix-*.whl ] || { echo "scripts/wheel.sh makes the wheel." >&2; exit 1; }

work=${1-$(mktemp -d)}
root=$work/root
mirror=$(apt-get indextargets --format '$(REPO_URI)' | head -n 1)
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
[ -d "$root/usr" ] || debootstrap --variant=minbase "$release" "$root" "$mirror"
rm -rf "$root/etc/apt"
cp --parents -r /etc/apt "$root" # the same sources and settings, proxies included
cp /etc/resolv.conf "$root/etc/"

in_root() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"
}
in_root apt-get update
in_root apt-get install --yes --no-install-recommends python3-numpy
rm -rf "$root/wheel"
mkdir "$root/wheel"
cp build/wheel/dist/umbrix-*.whl examples/textures/cobbles_height.png "$root/wheel"
in_root sh -c 'cd /wheel && python3 -m zipfile -e umbrix-*.whl package'
in_root env PYTHONPATH=/wheel/package python3 -c '
import numpy, umbrix
picture = umbrix.read("/wheel/cobbles_height.png")
made = umbrix.map(picture.heights, relief=0.05)
umbrix.write("/wheel/map.png", made)
umbrix.write("/wheel/map.tif", made, depth=16)
deep = umbrix.read("/wheel/map.tif").samples.astype(float) / 257
assert abs(deep - umbrix.read("/wheel/map.png").samples).max() <= 1
print(made.shape, made.dtype, float(made.min()), float(made.max()))
'
in_root sh -c 'for each in /wheel/package/umbrix/_library/*.so*; do ldd "$each"; done' > "$work/ldd.txt"
! grep "not found" "$work/ldd.txt"
! grep -i jbig "$work/ldd.txt"
echo "the wheel works in a root with python3-numpy alone"
