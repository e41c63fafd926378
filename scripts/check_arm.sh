#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the libraries for 64-bit ARM and runs their tests in an emulator: the same sources with NEON, bit for bit what
# the plain forms give. Needs root and the package mirror that this system uses. Usage: scripts/check_arm.sh
set -euo pipefail
cd "$(dirname "$0")/.."

[ "$(id -u)" -eq 0 ] || { echo "Making a root takes root." >&2; exit 1; }
scripts/install_packages.sh tests arm

# What the libraries and tests are linked with, for ARM. The C library's headers are those of the cross compiler.
root=$PWD/build/arm-root
if [ ! -f "$root/complete" ]; then
    rm -rf "$root"
    mirror=$(apt-get indextargets --format '$(REPO_URI)' | head -n 1)
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    debootstrap --foreign --arch=arm64 --variant=minbase \
        --include=libhwy-dev,libgtest-dev,libgmock-dev,libdevil-dev "$release" "$root" "$mirror"
    for package in "$root"/var/cache/apt/archives/*.deb; do
        case $package in
            */libc6-dev_* | */linux-libc-dev_*) ;;
            *) dpkg-deb --extract "$package" "$root" ;;
        esac
    done
    rm -f "$root"/usr/lib/aarch64-linux-gnu/lib{c,m}.{so,a} # scripts that name files of the running system
    cp /usr/aarch64-linux-gnu/lib/libgomp.so.1 "$root/usr/lib/aarch64-linux-gnu"
    touch "$root/complete"
fi

cmake -S . -B build/arm -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/arm64-toolchain.cmake" -DARM_ROOT="$root" \
    -DCMAKE_BUILD_TYPE=Release -DUMBRIX_BUILD_TESTS=ON -DUMBRIX_BUILD_APPS=OFF -DUMBRIX_BUILD_EXAMPLES=OFF \
    -DCORALITH_OPENCL=OFF -DCORALITH_CUDA=OFF
cmake --build build/arm --parallel "$(nproc)"
# Packages and rules for sources have nothing to do with the processor.
ctest --test-dir build/arm --parallel 2 --output-on-failure --exclude-regex '^(Package|Conventions|LongRun)'
