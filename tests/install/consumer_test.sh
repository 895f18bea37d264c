#!/usr/bin/env bash
# Installs the already built library and tool into a scratch prefix, then checks what a host
# meets there: a program built with find_package and one built with pkg-config both start, and
# the installed tool runs without LD_LIBRARY_PATH. Arguments: the source tree and the build tree.
set -euo pipefail
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null

"$work/prefix/bin/vistrane" --version >/dev/null

cmake -S "$source_dir/tests/install/consumer" -B "$work/found" \
    -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/found" >/dev/null
"$work/found/consumer"

# Under a prefix the loader does not search, a pkg-config build names the library's folder as
# its run path, as the README tells hosts to.
libdir=$(find "$work/prefix" -name vistrane.pc -printf '%h\n' | head -n 1)
export PKG_CONFIG_PATH="$libdir"
g++ -o "$work/pkg_consumer" "$source_dir/tests/install/consumer/main.cpp" \
    $(pkg-config --cflags --libs vistrane) \
    -Wl,-rpath,"$(pkg-config --variable=libdir vistrane)"
"$work/pkg_consumer"
echo "installed tool ran; consumer built and ran through find_package and pkg-config"
