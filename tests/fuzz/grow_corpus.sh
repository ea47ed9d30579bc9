#!/usr/bin/env bash
# grow_corpus.sh - fuzzes on from tests/fuzz/corpus and minimises it again: the fewest inputs that reach what all reach,
# and how often; where those are more than 150, the fewest that reach it at all and the shortest of the others.
#   tests/fuzz/grow_corpus.sh [SECONDS [TARGET...]]     180 s of each target, one after the other; needs build/asan
# Inputs of your own to begin with: put them into build/asan/corpus/TARGET first.
set -euo pipefail
cd "$(dirname "$0")/../.."

seconds=${1:-180}
targets=("${@:2}")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(find build/asan/bin -name '*_fuzz' -type f -printf '%f\n' | sort)
cmake --build build/asan --target "${targets[@]}"

most=150

# cover PROGRAM INTO [OPTION] FROM...
cover() {
    rm -rf "$2"
    mkdir "$2"
    nice -n 10 "$1" -set_cover_merge=1 "$2" "${@:3}" >>"$log" 2>&1 || { tail -30 "$log"; exit 1; }
}

for target in "${targets[@]}"; do
    program=build/asan/bin/$target
    kept=tests/fuzz/corpus/$target
    grown=build/asan/corpus/$target
    log=build/asan/corpus/$target.log
    mkdir -p "$kept" "$grown"
    # A crash stops here, with the input that crashes beside the log.
    nice -n 10 "$program" -max_total_time="$seconds" -max_len=2048 -timeout=10 -rss_limit_mb=4096 \
        -artifact_prefix="build/asan/corpus/$target-" "$grown" "$kept" >"$log" 2>&1 || { tail -30 "$log"; exit 1; }
    cover "$program" "$grown.often" "$grown" "$kept"
    if [ "$(find "$grown.often" -type f | wc -l)" -gt $most ]; then
        cover "$program" "$grown.once" -use_counters=0 "$grown" "$kept"
        # Sizes first, names second: the same files whatever the order of the folder.
        while read -r _ name; do
            [ "$(find "$grown.once" -type f | wc -l)" -lt $most ] || break
            cp "$grown.often/$name" "$grown.once/"
        done < <(find "$grown.often" -type f -printf '%s %f\n' | sort -n -k1,1 -k2,2)
        rm -rf "$grown.often"
        mv "$grown.once" "$grown.often"
    fi
    rm -rf "$kept"
    mv "$grown.often" "$kept"
    echo "$target: $(find "$kept" -type f | wc -l) inputs, $(du -sb --apparent-size "$kept" | cut -f1) bytes"
done
