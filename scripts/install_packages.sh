#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that are missing. Usage: scripts/install_packages.sh [GROUP]...
# Without an argument: what the libraries and the command line need. With "docs" alone: what the site of the documents
# needs, and nothing else. With desktop, tests, coverage, mutate, fuzz, tidy, bench, peers, arm or wheel: what these need
# besides.
set -euo pipefail

build_packages="g++ make cmake pkg-config libhwy-dev libdevil-dev libpng-dev libtiff-dev libopenexr-dev libjpeg-dev
    libwebp-dev libgif-dev libdeflate-dev libseccomp-dev libfmt-dev libcli11-dev nlohmann-json3-dev libtomlplusplus-dev
    opencl-c-headers"
docs_packages="doxygen"
desktop_packages="qt6-base-dev libqt6opengl6-dev libqt6svg6-dev qt6-tools-dev qt6-l10n-tools libgl1-mesa-dri
    fonts-dejavu-core xvfb"
test_packages="libgtest-dev libgmock-dev python3 pocl-opencl-icd ocl-icd-libopencl1 oclgrind dpkg-dev file binutils
    g++-mingw-w64-x86-64-posix groff-base zsh slurm-wlm parallel clang clang-format-14 valgrind chromium
    openimageio-tools glslang-tools python3-numpy python3-pytest python3-matplotlib python3-pip python3-setuptools
    python3-wheel mypy $docs_packages $desktop_packages"
coverage_packages="clang llvm libclang-rt-14-dev libomp-14-dev"
mutate_packages="ninja-build"
fuzz_packages="clang libclang-rt-14-dev libomp-14-dev"
tidy_packages="clang clang-tidy-14 libomp-14-dev python3"
arm_packages="g++-aarch64-linux-gnu qemu-user debootstrap"
bench_packages="libopencv-dev libembree-dev cimg-dev python3"
peer_packages="gegl imagemagick"
wheel_packages="python3-numpy python3-pip python3-setuptools python3-wheel patchelf dpkg-dev binutils zlib1g-dev libzstd-dev
    liblzma-dev liblerc-dev"

packages=$build_packages
[ "$*" != docs ] || packages=
for group in "$@"; do
    case $group in
        desktop) packages="$packages $desktop_packages" ;;
        tests) packages="$packages $test_packages" ;;
        coverage) packages="$packages $coverage_packages" ;;
        mutate) packages="$packages $mutate_packages" ;;
        fuzz) packages="$packages $fuzz_packages" ;;
        tidy) packages="$packages $tidy_packages" ;;
        arm) packages="$packages $arm_packages" ;;
        bench) packages="$packages $bench_packages" ;;
        peers) packages="$packages $peer_packages" ;;
        docs) packages="$packages $docs_packages" ;;
        wheel) packages="$packages $wheel_packages" ;;
        *) echo "There is no group of packages called $group" >&2; exit 2 ;;
    esac
done

if ! command -v dpkg-query > /dev/null || ! command -v apt-get > /dev/null; then
    echo "This is no Debian system: taking it that what these packages hold is there: $packages" >&2
    exit 0
fi

missing=""
for package in $packages; do
    if [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2> /dev/null)" != installed ]; then
        missing="$missing $package"
    fi
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
    as_root=""
elif command -v sudo > /dev/null; then
    as_root=sudo
else
    echo "Packages are missing, and there is neither root nor sudo to install them. As root, run:" >&2
    echo "    apt-get install$missing" >&2
    exit 1
fi

install() {
    # shellcheck disable=SC2086 # the lists are meant to fall into words
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install --yes --no-install-recommends $missing
}

echo "Installing$missing"
# The package lists of a fresh system are empty or old: then the first attempt fails.
install || { $as_root apt-get update && install; }
