#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that are missing. Usage: scripts/install_packages.sh [tests|bench]
# Without an argument: what the libraries and the command line need. With "tests": what the tests need besides. With
# "bench": what the benchmarks need besides, the libraries that ours is compared with among it.
set -euo pipefail

packages="g++ make cmake pkg-config libhwy-dev libdevil-dev libfmt-dev libcli11-dev nlohmann-json3-dev libtomlplusplus-dev"
test_packages="libgtest-dev libgmock-dev libpng-dev python3"
bench_packages="libembree-dev libopencv-dev cimg-dev libpng-dev python3"

case "${1-}" in
    tests) packages="$packages $test_packages" ;;
    bench) packages="$packages $bench_packages" ;;
esac

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
