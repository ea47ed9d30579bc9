#!/usr/bin/env bash
# test.sh - installs what is missing, builds everything and runs all tests: unit tests natively, under the address and
# undefined-behaviour sanitizers and under Wine, those with threads under the thread sanitizer; the real DLL in the
# stand-in voice client; the artwork; each fuzz target for FUZZ_SECONDS (10). Logs stand in build/test-logs. Ends with
# the sum of all runs.
set -uo pipefail
cd "$(dirname "$0")"

fuzz_seconds=${FUZZ_SECONDS:-10}
logs=build/test-logs
passed=0
failed=0
mkdir -p "$logs"

# Counts one check of this script's own.
count() {
    if [ "$1" -eq 0 ]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $2"
    fi
}

# build PRESET [TARGET...] - everything of the preset unless targets are named.
build() {
    local preset=$1
    local targets=("${@:2}")
    [ ${#targets[@]} -eq 0 ] || targets=(--target "${targets[@]}")
    { [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"; } >"$logs/build-$preset.log" 2>&1 &&
        cmake --build "build/$preset" "${targets[@]}" >>"$logs/build-$preset.log" 2>&1
    local result=$?
    [ $result -eq 0 ] || tail -40 "$logs/build-$preset.log"
    count $result "build of $preset"
    return $result
}

# Runs the preset's tests and adds what the runner counted; a run that counts nothing is a failure.
run_tests() {
    local preset=$1 jobs=$2 log="$logs/test-$1.log" total bad
    ctest --preset "$preset" -j "$jobs" >"$log" 2>&1
    read -r bad total < <(sed -nE 's/^[0-9]+% tests passed, ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' "$log" | tail -1)
    if [ -z "${total:-}" ] || [ "$total" -eq 0 ]; then
        tail -40 "$log"
        count 1 "no test was run in $preset"
        return
    fi
    passed=$((passed + total - bad))
    failed=$((failed + bad))
    if [ "$bad" -gt 0 ]; then
        grep -vE '^ *[0-9]+/[0-9]+ Test.* Passed|^ +Start ' "$log" | tail -120
    fi
    # A run of a GoogleTest program is one test to ctest, or many; this counts them all.
    local cases
    cases=$(sed -nE 's/^\[==========\] ([0-9]+) tests? from .* ran\..*/\1/p' "build/$preset/Testing/Temporary/LastTest.log" |
        awk '{ sum += $1 } END { print sum + 0 }')
    echo "$preset: $((total - bad)) of $total tests passed, with $cases cases"
}

fuzz() {
    local program=$1 name
    name=$(basename "$program")
    mkdir -p "build/asan/corpus/$name"
    "$program" -max_total_time="$fuzz_seconds" -timeout=10 -rss_limit_mb=4096 -artifact_prefix="$logs/$name-" \
        -print_final_stats=1 "build/asan/corpus/$name" >"$logs/$name.log" 2>&1
    local result=$?
    [ $result -eq 0 ] || tail -30 "$logs/$name.log"
    echo "fuzz: $name $(grep -oE 'number_of_executed_units: +[0-9]+' "$logs/$name.log" | grep -oE '[0-9]+' || echo 0) inputs"
    return $result
}

# Two at a time: the machines have two cores.
fuzz_all() {
    local programs=() first second
    mapfile -t programs < <(find build/asan/bin -name '*_fuzz' -type f | sort)
    [ ${#programs[@]} -gt 0 ] || { count 1 "no fuzz target was built"; return; }
    for ((i = 0; i < ${#programs[@]}; i += 2)); do
        fuzz "${programs[i]}" &
        first=$!
        if [ $((i + 1)) -lt ${#programs[@]} ]; then
            fuzz "${programs[i + 1]}"
            second=$?
            count $second "fuzzing ${programs[i + 1]}"
        fi
        wait $first
        count $? "fuzzing ${programs[i]}"
    done
}

# The stand-in simulator through a client that other people wrote, and the worker on the same flight. Needs the network
# once, for npm.
check_simulator() {
    local log="$logs/simulator.log" good bad
    tests/simulator/node/check.sh build/native/bin build/node >"$log" 2>&1
    read -r good bad < <(sed -nE 's/^([0-9]+) passed, ([0-9]+) failed$/\1 \2/p' "$log" | tail -1)
    if [ -z "${good:-}" ] || [ "$good" -eq 0 ]; then
        tail -20 "$log"
        count 1 "the stand-in simulator was not checked"
        return
    fi
    passed=$((passed + good))
    failed=$((failed + bad))
    grep '^FAILED' "$log"
    echo "simulator: $good of $((good + bad)) checks passed"
}

tools/packages.sh build wine test node || exit 1
. tools/wine.sh

# What no test runs (benchmarks, pictures, the circuit) is built by who uses it.
echo "== native"
build native unit_tests stand_in_simulator native_worker && run_tests native 2
for preset in asan tsan; do
    echo "== $preset"
    build $preset && run_tests $preset 2
done

echo "== windows, under Wine"
if build windows client_tests unit_tests restarts; then
    start_wine
    # Most of a test is waiting for the plugin's own times: more than there are cores.
    run_tests windows 6
fi

echo "== simulator"
check_simulator

echo "== artwork"
/usr/bin/python3 tools/artwork/check_art.py --prove >"$logs/artwork.log" 2>&1
artwork=$?
cat "$logs/artwork.log"
count $artwork "the artwork does not fit the layout tables"

echo "== fuzz targets, $fuzz_seconds s each"
fuzz_all

echo
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
