#!/usr/bin/env bash
# Installs the Debian packages that building, testing and benchmarking Vistrane need, and any
# named as arguments, but only those that are missing, so that a machine that already has them
# is left alone and needs no network. Runs unattended (no prompts); needs root or sudo only when something is missing.
set -euo pipefail

packages=(
    cmake
    g++
    pkg-config
    make
    libpng-dev
    libfreetype-dev
    libfontconfig-dev
    fonts-dejavu-core
    libgtest-dev
    googletest
    libbenchmark-dev
)
# A target may need more (the fuzz build needs clang): it names them as arguments.
packages+=("$@")

missing=()
for package in "${packages[@]}"; do
    # Asked by name alone, dpkg reports a package installed for two architectures as ambiguous.
    if ! dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed; then
        missing+=("$package")
    fi
done

if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

echo "install-deps: installing missing packages: ${missing[*]}"

if ! command -v apt-get >/dev/null 2>&1; then
    echo "install-deps: apt-get is not available; install these packages by hand: ${missing[*]}" >&2
    exit 1
fi

run_as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
        run_as_root=(sudo -n)
    else
        echo "install-deps: root is needed to install: ${missing[*]}" >&2
        echo "install-deps: run 'sudo $0' or install them by hand" >&2
        exit 1
    fi
fi

export DEBIAN_FRONTEND=noninteractive
if ! "${run_as_root[@]}" apt-get update </dev/null; then
    echo "install-deps: 'apt-get update' failed; check the network and the apt sources" >&2
    exit 1
fi
if ! "${run_as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}" </dev/null; then
    echo "install-deps: 'apt-get install' failed for: ${missing[*]}" >&2
    exit 1
fi
