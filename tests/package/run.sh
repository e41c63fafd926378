#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the built tree into a scratch prefix, and builds and runs a user's project against it.
#   run.sh install BUILD PREFIX               installs and looks over what is there
#   run.sh find_package|pkg_config PREFIX WORK
#   run.sh add_subdirectory SOURCE WORK       against the sources, nothing installed
#   run.sh move PREFIX WORK PICTURE           the tool of the prefix in another folder, with its worker and without
#   run.sh embed PREFIX WORK EXAMPLES         the example of the library in a program, on pictures of the examples
#   run.sh frontend PREFIX WORK EXAMPLES      the example of a front end on the toolkit, the same
#   run.sh c PREFIX WORK EXAMPLES             the example in C
#   run.sh snippets PREFIX WORK ROOT          the programs that README and docs/library.md show
# CXX is the compiler, SANITIZE the sanitizers of the build, both from the environment.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)

fail() {
    echo "package: $*" >&2
    exit 1
}

install_tree() {
    local build=$1 prefix=$2
    rm -rf "$prefix"
    cmake --install "$build" --prefix "$prefix" > /dev/null
    local headers=$prefix/include/umbrixlib
    [ -f "$headers/umbrixlib.h" ] || fail "umbrixlib.h is not installed"
    [ -f "$headers/umbrix.h" ] || fail "umbrix.h is not installed"
    [ -f "$headers/toolkit/base/failure.h" ] || fail "the headers of the toolkit are not installed"
    local private
    private=$(find "$headers" -name '*_internal.h' -o -name '*-inl.h' -o -name 'platform*.h' -o -name 'image_io.h')
    [ -z "$private" ] || fail "private headers are installed: $private"
    (cd "$headers" && find toolkit -name '*.h' -printf '#include <%p>\n') > "$prefix/all_headers.cpp"
    "${CXX:-c++}" -std=c++20 -fsyntax-only -I"$headers" "$prefix/all_headers.cpp" ||
        fail "a header of the toolkit needs what is not installed"
    [ -n "$(find "$prefix" -name LICENSE)" ] || fail "the licence is not installed"
    local shaders
    shaders=$(find "$prefix/share/umbrixlib/shaders" -type f | wc -l)
    [ "$shaders" -eq 6 ] || fail "$shaders shaders are installed"
    local library
    [ -x "$prefix/libexec/umbrix/umbrix-worker" ] || fail "the worker is not installed"
    for library in umbrix velloric coralith umbrix-toolkit umbrix-c; do
        find "$prefix" -name "lib$library.so" | grep -q . || fail "lib$library.so is not installed"
    done
}

# Builds the consumer with the given extra settings and runs it.
consume() {
    local work=$1 from=$2
    shift 2
    rm -rf "$work"
    cmake -S "$here/consumer" -B "$work" -DUMBRIX_FROM="$from" -DCMAKE_BUILD_TYPE=Debug "$@"
    cmake --build "$work" --parallel 2
    "$work/consumer" || fail "the consumer found a wrong result"
    [ "$from" != find_package ] || "$work/toolkit_consumer" || fail "the consumer of the toolkit found a wrong result"
}

# The tool finds its worker in a prefix that was moved, and says so in one sentence if it is missing.
move() {
    local prefix=$1 work=$2 picture=$3 code=0
    rm -rf "$work"
    mkdir -p "$work"
    cp -a "$prefix" "$work/moved prefix"
    cd "$work"
    "moved prefix/bin/umbrix" map "$picture" -o map.png --rays 16
    rm map.png "moved prefix/libexec/umbrix/umbrix-worker"
    "moved prefix/bin/umbrix" map "$picture" -o map.png --rays 16 2> said.txt || code=$?
    cat said.txt
    [ "$code" -eq 1 ] && [ ! -e map.png ] || fail "without its worker the tool ended with $code"
    [ "$(wc -l < said.txt)" -eq 1 ] && grep -q "moved prefix/libexec/umbrix/umbrix-worker: the program" said.txt ||
        fail "the tool does not say that its worker is missing"
}

# Makes WORK/NAME_height.tga, a picture of 24 bits, of an example's height map.
colour_heights() {
    local prefix=$1 examples=$2 work=$3 name=$4
    printf '[[layer]]\nfile = "%s"\n' "$examples/textures/${name}_height.png" > "$work/$name.toml"
    "$prefix/bin/umbrix" stack "$work/$name.toml" -o "$work/$name.png" --height "$work/${name}_height.tga"
}

# Compiles a program that a page shows, by its number among them, as it stands. Without PROGRAM to an object alone.
compile_snippet() {
    local prefix=$1 page=$2 number=$3 source=$4 program=${5-}
    awk -v number="$number" '/^```/ { inside = /^```cpp$/; count += inside; next } inside && count == number' \
        "$page" > "$source.cpp"
    [ -s "$source.cpp" ] || fail "$page shows no program $number"
    local libdir flags
    libdir=$(dirname "$(find "$prefix" -name 'libumbrix.so')")
    flags=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs umbrix)
    local compile=("${CXX:-c++}" -std=c++17 -Wall -Wextra -Werror ${SANITIZE:+-fsanitize=$SANITIZE} "$source.cpp")
    # shellcheck disable=SC2086 # one word each
    if [ -n "$program" ]; then
        "${compile[@]}" -o "$program" $flags "-Wl,-rpath,$libdir"
    else
        "${compile[@]}" -c -o "$source.o" $flags
    fi
}

# The programs on the pages make the map that the tool makes with its defaults.
snippets() {
    local prefix=$1 work=$2 root=$3
    local texels=(--ignore-initial=18 --bytes=$((512 * 512 * 3))) # of a TGA; the rest depends on who writes it
    rm -rf "$work"
    mkdir -p "$work/stones"
    cd "$work"
    colour_heights "$prefix" "$root/examples" "$work" cobbles
    "$prefix/bin/umbrix" map cobbles_height.tga -o expected.tga
    "$prefix/bin/umbrix" info expected.tga | tee info.txt
    grep -qE 'red +0 to 2[0-9]{2}' info.txt || fail "the expected map has no relief"

    compile_snippet "$prefix" "$root/README.md" 1 readme readme
    ./readme
    cmp "${texels[@]}" cobbles.tga expected.tga || fail "the program in README.md makes another map"

    cp cobbles_height.tga stones
    compile_snippet "$prefix" "$root/docs/library.md" 1 library library
    ./library || fail "the program in docs/library.md ended with $?"
    compile_snippet "$prefix" "$root/docs/library.md" 2 memory
    cmp "${texels[@]}" stones/cobbles_Umbrix.tga expected.tga || fail "the program in docs/library.md makes another map"
}

# make_example EXAMPLE: builds examples/EXAMPLE against the prefix.
make_example() {
    cmake -S "$examples/$1" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release \
        ${SANITIZE:+-DCMAKE_CXX_FLAGS="-fsanitize=$SANITIZE" -DCMAKE_C_FLAGS="-fsanitize=$SANITIZE"}
    cmake --build "$work"
}

# The interface for C, found by CMake and by pkg-config.
in_c() {
    local prefix=$1 work=$2 examples=$3 picture=$3/textures/cobbles_height.png libdir flags
    rm -rf "$work"
    make_example c
    libdir=$(dirname "$(find "$prefix" -name 'libumbrix-c.so')")
    flags=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs umbrix-c)
    # shellcheck disable=SC2086 # one word each
    cc -std=c99 ${SANITIZE:+-fsanitize=$SANITIZE} "$examples/c/map.c" -o "$work/by_pkg_config" $flags "-Wl,-rpath,$libdir"
    "$work/map" "$picture" 0.05 "$work/one.png"
    "$work/by_pkg_config" "$picture" 0.05 "$work/two.png"
    "$prefix/bin/umbrix" map "$picture" -o "$work/by_tool.png"
    cmp "$work/one.png" "$work/by_tool.png" && cmp "$work/two.png" "$work/by_tool.png" ||
        fail "the example in C made another map than the tool"
}

# stop_in_the_middle FOLDER PICTURE COMMAND...: the command makes maps of forty copies of the picture in the folder, and
# is stopped behind the first.
stop_in_the_middle() {
    local folder=$1 picture=$2 i code=0 made
    shift 2
    mkdir "$folder"
    for i in {1..40}; do
        cp "$picture" "$folder/cobbles${i}_height.tga"
    done
    "$@" &
    until compgen -G "$folder/*_Umbrix.tga" > /dev/null; do
        kill -0 $! || fail "the example of a front end made nothing"
        sleep 0.01
    done
    kill -INT $!
    wait $! || code=$?
    made=$(find "$folder" -name '*_Umbrix.tga' | wc -l)
    echo "stopped behind $made of 40 pictures, exit code $code"
    [ "$code" -eq 130 ] && [ "$made" -lt 40 ] || fail "the example of a front end does not stop"
}

# The library in a program: on one picture, and stopped in the middle of forty.
embed() {
    local prefix=$1 work=$2 examples=$3
    rm -rf "$work"
    make_example embed
    mkdir "$work/one"
    colour_heights "$prefix" "$examples" "$work/one" cobbles
    (cd "$work" && ./embed one/ '*_height.tga') || fail "the example of a front end ended with $?"
    "$prefix/bin/umbrix" info "$work/one/cobbles_Umbrix.tga" | tee "$work/info.txt"
    grep -qE 'red +0 to 2[0-9]{2}' "$work/info.txt" || fail "the example of a front end made a map without relief"
    stop_in_the_middle "$work/forty" "$work/one/cobbles_height.tga" "$work/embed" "$work/forty" '*_height.tga'
}

# A front end on the toolkit: on a picture and a file that is none, and stopped in the middle of forty.
frontend() {
    local prefix=$1 work=$2 examples=$3 code=0
    rm -rf "$work"
    make_example frontend
    mkdir "$work/two"
    cp "$examples/textures/cobbles_height.png" "$work/two"
    echo "no picture" > "$work/two/broken.png"
    "$work/frontend" "$work/two" stone | tee "$work/said.txt" || code=$?
    [ "$code" -eq 1 ] && grep -q '^1 made, 0 skipped, 1 failed, 0 left$' "$work/said.txt" ||
        fail "the front end ended with $code"
    "$prefix/bin/umbrix" map "$examples/textures/cobbles_height.png" -o "$work/by_tool.png" --preset stone
    cmp "$work/by_tool.png" "$work/two/cobbles_Umbrix.png" || fail "the front end made another map than the tool"
    colour_heights "$prefix" "$examples" "$work" cobbles
    stop_in_the_middle "$work/forty" "$work/cobbles_height.tga" "$work/frontend" "$work/forty"
}

case ${1-} in
install)
    install_tree "$2" "$3"
    ;;
find_package)
    consume "$3" find_package -DCMAKE_PREFIX_PATH="$2" \
        ${SANITIZE:+-DCMAKE_CXX_FLAGS="-fsanitize=$SANITIZE"}
    ;;
pkg_config)
    libdir=$(dirname "$(find "$2" -name umbrix.pc)")
    PKG_CONFIG_PATH=$libdir consume "$3" pkg_config \
        ${SANITIZE:+-DCMAKE_CXX_FLAGS="-fsanitize=$SANITIZE"}
    ;;
add_subdirectory)
    consume "$3" add_subdirectory -DUMBRIX_SOURCE="$2"
    ;;
move)
    move "$2" "$3" "$4"
    ;;
embed | frontend)
    "$1" "$2" "$3" "$4"
    ;;
c)
    in_c "$2" "$3" "$4"
    ;;
snippets)
    snippets "$2" "$3" "$4"
    ;;
*)
    fail "unknown step '${1-}'"
    ;;
esac
