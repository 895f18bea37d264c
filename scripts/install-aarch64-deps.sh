#!/usr/bin/env bash
# Installs what the arm64 build needs, but only what is missing: Debian's cross compiler, the
# user-mode emulator that runs the tests, and the arm64 builds of the libraries the engine and
# its tests link (as a foreign architecture). Needs root or sudo only when something is missing.
set -euo pipefail

host_packages=(g++-aarch64-linux-gnu qemu-user)
arm64_packages=(libstdc++6 libpng-dev libfreetype-dev libfontconfig-dev libgtest-dev)

run_as_root=()
if [ "$(id -u)" -ne 0 ]; then
    run_as_root=(sudo -n)
fi

missing=()
for package in "${host_packages[@]}"; do
    dpkg -s "$package" >/dev/null 2>&1 || missing+=("$package")
done
for package in "${arm64_packages[@]}"; do
    dpkg -s "$package:arm64" >/dev/null 2>&1 || missing+=("$package:arm64")
done
if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

echo "install-aarch64-deps: installing missing packages: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
if ! dpkg --print-foreign-architectures | grep -qx arm64; then
    "${run_as_root[@]}" dpkg --add-architecture arm64
fi
"${run_as_root[@]}" apt-get update </dev/null
"${run_as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}" </dev/null
