#!/usr/bin/env bash
# Outside programs are built with what pkg-config says of the installed libraries.
set -euo pipefail
prefix=$1 libdir=$2 source=$3 board=$4 build=$5
. "$(dirname "$0")/expect.sh"

rm -rf "$build"
mkdir -p "$build"
export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig LD_LIBRARY_PATH=$prefix/$libdir

read -ra flags < <(pkg-config --cflags --libs sbd sbd_host)
"$CXX" -std=c++17 "$source/with_host.cpp" -o "$build/with_host" "${flags[@]}"
expect_output "$with_host_output" "$build/with_host" "$board"

read -ra flags < <(pkg-config --cflags --libs sbd)
"$CXX" -std=c++17 "$source/../../../examples/programs/own_host.cpp" -o "$build/own_host" "${flags[@]}"
expect_output "$own_host_output" "$build/own_host" "$board"

read -ra flags < <(pkg-config --cflags --libs sbd_c)
"$CC" -std=c11 "$source/plain_c.c" -o "$build/plain_c" "${flags[@]}"
expect_output "$plain_c_output" "$build/plain_c" "$board"
