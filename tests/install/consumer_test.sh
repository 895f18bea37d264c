#!/usr/bin/env bash
# Builds a small host program against Vistrane three ways: installed with find_package, installed
# with pkg-config, and as a subdirectory. Arguments: the source tree and the build tree.
set -euo pipefail
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null

cmake -S "$source_dir/tests/install/consumer" -B "$work/found" \
    -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/found" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib:${LD_LIBRARY_PATH:-}" "$work/found/consumer"

libdir=$(find "$work/prefix" -name vistrane.pc -printf '%h\n' | head -n 1)
PKG_CONFIG_PATH="$libdir" pkg-config --exists vistrane
g++ -o "$work/pkg_consumer" "$source_dir/tests/install/consumer/main.cpp" \
    $(PKG_CONFIG_PATH="$libdir" pkg-config --cflags --libs vistrane)
LD_LIBRARY_PATH="$work/prefix/lib:${LD_LIBRARY_PATH:-}" "$work/pkg_consumer"

cmake -S "$source_dir/tests/install/consumer" -B "$work/subdir" \
    -DVISTRANE_SOURCE_DIR="$source_dir" >/dev/null
cmake --build "$work/subdir" -j2 >/dev/null
"$work/subdir/consumer"
echo "consumer built and ran through find_package, pkg-config and add_subdirectory"
