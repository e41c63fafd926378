#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes one wheel of the Python package for every Python 3 on Linux, with the shared objects that it needs and their
# licences, in build/wheel. Usage: scripts/wheel.sh
# Debian's libtiff needs JBIG, whose licence is the GPL; the wheel has libtiff from Debian's sources, built without it.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh wheel
work=$PWD/build/wheel
rm -rf "$work/dist" "$work/plain"
mkdir -p "$work"

# Debian's sources of libtiff, by a list of sources of its own: that of the system stays as it is.
if [ ! -d "$work/tiff/source" ]; then
    rm -rf "$work/tiff"
    mkdir -p "$work/tiff/lists/partial" "$work/tiff/sources"
    mirror=$(apt-get indextargets --format '$(REPO_URI)' | head -n 1)
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    for suite in "$release" "$release-updates"; do
        echo "deb-src $mirror $suite main"
    done > "$work/tiff/sources/sources.list"
    apt_options=(-o "Dir::Etc::sourcelist=$work/tiff/sources/sources.list" -o "Dir::Etc::sourceparts=-"
        -o "Dir::State::lists=$work/tiff/lists" -o APT::Sandbox::User=root)
    apt-get "${apt_options[@]}" update
    (cd "$work/tiff" && apt-get "${apt_options[@]}" source --only-source tiff)
    mv "$work"/tiff/tiff-*/ "$work/tiff/source"
fi
cmake -S "$work/tiff/source" -B "$work/tiff/build" -DCMAKE_BUILD_TYPE=Release -Djbig=OFF -Dtiff-tools=OFF \
    -Dtiff-tests=OFF -Dtiff-contrib=OFF -Dtiff-docs=OFF -Dtiff-opengl=OFF -Dcxx=OFF > "$work/tiff/cmake.log"
cmake --build "$work/tiff/build" --parallel "$(nproc)"

cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DUMBRIX_UNITY=ON > "$work/cmake.log"
cmake --build build/release --parallel "$(nproc)" --target umbrix_c
UMBRIX_FOR_OTHERS=1 UMBRIX_BUILD=$PWD/build/release /usr/bin/python3 -m pip wheel ./python --no-build-isolation --no-deps --quiet -w "$work/plain"
/usr/bin/python3 -B python/packing/bundle.py "$work"/plain/umbrix-*.whl "$work/dist" "$work/tiff/build/libtiff/libtiff.so.6"
ls -l "$work"/dist/umbrix-*.whl
