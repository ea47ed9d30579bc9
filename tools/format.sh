#!/usr/bin/env bash
# format.sh [--check] - formats all C++ sources as .clang-format says; with --check it changes nothing, names the places
# and ends with 1. Versions of clang-format disagree on details (spaces around ::*, short lambdas and structs), and this
# code follows version 14, Debian 12's: with any other it does nothing, says so and ends with 77. CLANG_FORMAT names a
# clang-format other than the system's.
set -euo pipefail
cd "$(dirname "$0")/.."

needed=14
format=${CLANG_FORMAT:-$(command -v "clang-format-$needed" || echo clang-format)}
command -v "$format" >/dev/null || { echo "format.sh: no $format (Debian's package clang-format)" >&2; exit 1; }
version=$("$format" --version | sed -nE 's/.*version ([0-9]+)\..*/\1/p')
if [ "$version" != "$needed" ]; then
    echo "format: not checked, this is clang-format $version and the code is formatted with $needed"
    exit 77
fi

case "${1:-}" in
    --check) how=(--dry-run -Werror) ;;
    "") how=(-i) ;;
    *) echo "usage: tools/format.sh [--check]" >&2; exit 2 ;;
esac
mapfile -t files < <(find . \( -path './.*' -o -path ./build -o -path ./out -o -path ./dist \) -prune -o \
    \( -name '*.cpp' -o -name '*.h' -o -name '*.inc' \) -print | sort)
[ ${#files[@]} -gt 0 ] || { echo "format.sh: no sources found" >&2; exit 1; }
if ! printf '%s\0' "${files[@]}" | xargs -0 -n 64 -P 2 "$format" "${how[@]}"; then
    echo "format: run tools/format.sh" >&2
    exit 1
fi
echo "format: ${#files[@]} files are as clang-format $version has them"
