#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian packages, installs them into a fresh Debian root and runs the main job there, then builds a user's
# program against them. Needs root, debootstrap and the package mirror that this system uses.
# Usage: scripts/check_packages.sh [FOLDER]    the root is made under FOLDER, a temporary one by default
set -euo pipefail
cd "$(dirname "$0")/.."

[ "$(id -u)" -eq 0 ] || { echo "Making a root takes root." >&2; exit 1; }
command -v debootstrap > /dev/null || { echo "debootstrap is missing: apt-get install debootstrap" >&2; exit 1; }

work=${1-$(mktemp -d)}
root=$work/root
mirror=$(apt-get indextargets --format '$(REPO_URI)' | head -n 1)
release=$(. /etc/os-release && echo "$VERSION_CODENAME")

scripts/install_packages.sh tests
cmake -S . -B build/packages -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DUMBRIX_BUILD_TESTS=OFF -DUMBRIX_BUILD_EXAMPLES=OFF
cmake --build build/packages --parallel "$(nproc)"
rm -f build/packages/*.deb
(cd build/packages && cpack -G DEB)

[ -d "$root/usr" ] || debootstrap --variant=minbase "$release" "$root" "$mirror"
rm -rf "$root/etc/apt"
cp --parents -r /etc/apt "$root" # the same sources and settings, proxies included
cp /etc/resolv.conf "$root/etc/"
mkdir -p "$root/packages" "$root/consumer"
rm -f "$root"/packages/*
cp build/packages/*.deb examples/textures/cobbles_height.png "$root/packages"
cp -r tests/package/consumer/. "$root/consumer"

# The tool starts its workers by way of /proc.
mount -t proc proc "$root/proc"
trap 'umount "$root/proc"' EXIT

in_root() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"
}
in_root apt-get update
in_root sh -c 'apt-get install --yes --no-install-recommends /packages/umbrix_*.deb /packages/libumbrix[0-9]*.deb'
in_root umbrix map /packages/cobbles_height.png -o /packages/map.png
in_root umbrix info /packages/map.png

in_root sh -c 'apt-get install --yes --no-install-recommends g++ make cmake pkg-config /packages/libumbrix-dev_*.deb'
for way in find_package pkg_config; do
    in_root cmake -S /consumer -B "/consumer/$way" -DUMBRIX_FROM=$way
    in_root cmake --build "/consumer/$way"
    in_root "/consumer/$way/consumer"
    echo "a program built by $way runs against the packages"
done
