#!/usr/bin/env bash
# An outside project finds the CMake package, is built and runs.
set -euo pipefail
prefix=$1 libdir=$2 source=$3 board=$4 cmake=$5 build=$6
. "$(dirname "$0")/expect.sh"

rm -rf "$build"
"$cmake" -S "$source" -B "$build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
"$cmake" --build "$build" >/dev/null

expect_output "$with_host_output" "$build/with_host" "$board"
expect_output "$with_host_output" "$build/with_host_static" "$board"
expect_output "$own_host_output" "$build/own_host" "$board"

# The installed command finds the installed libraries.
[ ! -e "$prefix/bin/sbd" ] || "$prefix/bin/sbd" check "$board"
