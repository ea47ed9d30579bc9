#!/usr/bin/env bash
# lint.sh [FILE...] - clang-tidy over every source of the plugin and the worker, including those for Windows, or over
# the files named. .clang-tidy has the checks; a finding is an error. CLANG_TIDY replaces the system's clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."

export CORVALIS_TIDY=${CLANG_TIDY:-clang-tidy}
export CORVALIS_LINT_DATABASE=build/lint/clang
if ! command -v "$CORVALIS_TIDY" >/dev/null; then
    echo "lint.sh: no $CORVALIS_TIDY (Debian's package clang-tidy)" >&2
    exit 1
fi

# The Windows build's commands as clang understands them: the same flags, and the C++ library that comes with mingw-w64.
write_database() {
    local target=x86_64-w64-mingw32 library clang
    mkdir -p "$CORVALIS_LINT_DATABASE"
    cmake --preset windows -B build/lint -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >build/lint/configure.log 2>&1 ||
        { cat build/lint/configure.log; return 1; }
    library=$($target-g++-posix -print-file-name=include/c++)
    clang="clang++ --target=$target -nostdinc++ -isystem $library -isystem $library/$target -Wthread-safety"
    sed -E "s#\"command\": \"[^ ]*/$target-g[^ ]* #\"command\": \"$clang #; s# -Wno-restrict # #" \
        build/lint/compile_commands.json >"$CORVALIS_LINT_DATABASE/new"
    grep -q -- "--target=$target" "$CORVALIS_LINT_DATABASE/new" ||
        { echo "lint.sh: build/lint/compile_commands.json is not as expected" >&2; return 1; }
    mv "$CORVALIS_LINT_DATABASE/new" "$CORVALIS_LINT_DATABASE/compile_commands.json"  # another run may be reading it
}

# lint_one PLACE FILE - prints all that is found in one file in one go, since two of these run side by side.
lint_one() {
    local place=$1 file=$2 command=(-p "$CORVALIS_LINT_DATABASE") findings result=0
    # Not part of the Windows build.
    [[ $file != *_posix.cpp ]] || command=(-- -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -I.)
    findings=$("$CORVALIS_TIDY" --quiet "$file" "${command[@]}" 2>&1) || result=1
    findings=$(grep -vE '^[0-9]+ warnings? (generated|treated as errors?)\.?$' <<<"$findings" || true)
    printf '%s %s%s\n' "$place" "$file" "${findings:+$'\n'$findings}"
    return $result
}
export -f lint_one

write_database
files=("$@")
[ $# -gt 0 ] || mapfile -t files < <(find . \( -path './.*' -o -path ./bench -o -path ./build -o -path ./tests -o \
    -path ./tools \) -prune -o -name '*.cpp' -printf '%P\n' | sort)
[ ${#files[@]} -gt 0 ] || { echo "lint.sh: no sources found" >&2; exit 1; }

result=0
for i in "${!files[@]}"; do printf '%s\0' "[$((i + 1))/${#files[@]}]" "${files[i]}"; done |
    xargs -0 -n 2 -P 2 bash -c 'lint_one "$@"' lint_one || result=1
if [ $result -eq 0 ]; then
    echo "lint: no finding in ${#files[@]} files"
else
    echo "lint: findings, see above"
fi
exit $result
