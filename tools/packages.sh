#!/usr/bin/env bash
# packages.sh GROUP... - installs those Debian packages of the named groups (see below) that are missing.
# Does nothing, and asks no package server, on a machine that has them all.
set -euo pipefail

# The plugin and all that loads it.
product_packages=(ca-certificates cmake ninja-build git python3-minimal g++-mingw-w64-x86-64-posix googletest zip)
# The tests of this machine itself, and the benchmarks with their peers.
native_packages=(g++ clang libgtest-dev libbenchmark-dev nlohmann-json3-dev libspeexdsp-dev libkissfft-dev libfftw3-dev)
# Including the fonts that stand in for Windows' (wine.sh).
wine_packages=(wine wine64 xvfb xauth sox fonts-noto-cjk fonts-open-sans fonts-dejavu-core fonts-liberation)
pictures_packages=(xcompmgr)
test_packages=(libclang-rt-dev clang-format python3-numpy python3-pil)
lint_packages=(clang-tidy)
coverage_packages=(llvm)
# A Node from elsewhere has its own npm, which is not Debian's package.
node_packages=()
command -v npm >/dev/null || node_packages=(nodejs npm)
artwork_packages=(blender fonts-b612 python3-numpy python3-pil)

wanted=()
for group in "$@"; do
    case "$group" in
        product) wanted+=("${product_packages[@]}") ;;
        native) wanted+=("${native_packages[@]}") ;;
        wine) wanted+=("${wine_packages[@]}") ;;
        pictures) wanted+=("${pictures_packages[@]}") ;;
        lint) wanted+=("${lint_packages[@]}") ;;
        coverage) wanted+=("${coverage_packages[@]}") ;;
        test) wanted+=("${test_packages[@]}") ;;
        node) wanted+=("${node_packages[@]}") ;;
        artwork) wanted+=("${artwork_packages[@]}") ;;
        *) echo "packages.sh: unknown group $group" >&2; exit 2 ;;
    esac
done

missing=()
for package in "${wanted[@]}"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Install these as root first: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
