#!/usr/bin/env bash
# test.sh - installs what is missing, builds everything and runs all tests: the real DLL in the stand-in voice client
# and the unit tests under Wine, while the unit tests are built and run under the address and undefined-behaviour
# sanitizers, those with threads under the thread sanitizer, and without one those that no sanitizer allows; the
# stand-in simulators; the artwork; the fuzz targets on the inputs in the tree, then FUZZ_SECONDS (1) each on new ones;
# the documents' links and quotes; the formatting. Logs are in build/test-logs. Ends with the sum of all runs.
# test.sh --full - the same with every unit test under Wine too, otherwise those whose results depend on the compiler;
# with the client tests a second time as a voice client of today (CORVALIS_NEW_CLIENT); and with two minutes of soak.
# test.sh --long - 1,000 loads of the plugin into one process, 500 timed shutdowns, and a start and an end for each of
# their allocations (Long.*), and nothing else: half an hour on a machine with little else to do, as its time limit asks.
# test.sh --soak MINUTES [--seed N ...] - builds the package and soaks it (tests/soak/soak_win.cpp has the options), and
# nothing else; build/soak has the figures.
# test.sh --threads MINUTES - those with threads in random order under the thread sanitizer, and nothing else.
# test.sh --lint - clang-tidy over every source file of the product, and nothing else.
set -uo pipefail
. "$(dirname "$0")/tools/fixed_layout.sh"
cd "$(dirname "$0")"
export LC_ALL=C.UTF-8

windows_tests=(client_tests number_tests restarts)
windows_without=(-E '^(unit_tests|Long[.])')  # without --full
soak_folder=build/soak

# soak MINUTES [OPTION...] - succeeds only after a good verdict. The program ends by itself when it is stuck; twenty-five
# minutes late are too late in any case.
soak() {
    mkdir -p "$soak_folder"
    CORVALIS_PRODUCT_FOLDER="Z:$PWD/build/windows/package/unpacked/plugins" \
        timeout -k 10 "$(awk "BEGIN { print int($1 * 60) + 1500 }")" \
        tools/run_wine.sh wine build/windows/bin/soak.exe "$soak_folder" --minutes "$@" | sed -u 's,\r$,,' |
        tee "$soak_folder/soak.txt"
    [ "${PIPESTATUS[0]}" -eq 0 ] && grep -q '^Soaked: ' "$soak_folder/soak.txt"
}

# build_windows TARGET...
build_windows() {
    { [ -f build/windows/build.ninja ] || cmake --preset windows; } && cmake --build build/windows --target "$@"
}
soak_alone() {
    tools/packages.sh product wine || return 1
    build_windows corvalis_win64 hopline_worker soak || return 1
    packaging/check_package.sh "$PWD/build/windows" "$PWD/build/windows/package" || return 1
    . tools/wine.sh
    start_wine
    soak "$@"
}

long_runs() {
    tools/packages.sh product wine test || return 1
    build_windows client_tests restarts || return 1
    . tools/wine.sh
    start_wine_slots 1
    ctest --preset windows -j 1 -R '^Long[.]' --verbose
}

case "${1:-}" in
    "") ;;
    --full) windows_tests+=(soak unit_tests); windows_without=(-E '^Long[.]') ;;
    --long) long_runs; exit ;;
    --soak)
        [[ "${2:-}" =~ ^[0-9]+(\.[0-9]+)?$ ]] || { echo "usage: ./test.sh --soak MINUTES [--seed N]" >&2; exit 2; }
        soak_alone "${@:2}"
        exit
        ;;
    --threads)
        tools/packages.sh product native test && exec tests/unit/threads/random_schedules.sh "${@:2}"
        exit 1
        ;;
    --lint)
        tools/packages.sh product lint && exec tools/lint.sh
        exit 1
        ;;
    *) echo "usage: ./test.sh [--full | --long | --soak MINUTES | --threads MINUTES | --lint]" >&2; exit 2 ;;
esac

fuzz_seconds=${FUZZ_SECONDS:-1}
fuzz_jobs=$(nproc)
wine_slots=6  # client tests mostly wait, so more of them than there are cores
logs=build/test-logs
counts=$logs/counts
rm -rf "$logs"
mkdir -p "$logs"
: >"$counts"
started=$SECONDS

# say WORDS - a line with the minutes since the start. One system call, so that lines of two phases do not mix.
say() {
    local now=$((SECONDS - started))
    printf '%2d:%02d  %s\n' $((now / 60)) $((now % 60)) "$*"
}

# add PASSED FAILED - adds to the sum, in a file: the only thing that phases running side by side share.
add() {
    echo "$1 $2" >>"$counts"
}

# count RESULT WHAT - a check by this script itself.
count() {
    if [ "$1" -eq 0 ]; then
        add 1 0
    else
        add 0 1
        say "FAILED: $2"
    fi
}

# build PRESET TARGET...
build() {
    local preset=$1 log="$logs/build-$1.log"
    { [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"; } >"$log" 2>&1 &&
        cmake --build "build/$preset" --target "${@:2}" >>"$log" 2>&1
    local result=$?
    [ $result -eq 0 ] || tail -40 "$log"
    count $result "build of $preset"
    [ $result -eq 0 ] && say "$preset: built"
    return $result
}

# run_tests PRESET JOBS [OPTION...] - runs the preset's tests and adds what the runner counted; a run that counts
# nothing is a failure.
run_tests() {
    local preset=$1 jobs=$2 as=${CORVALIS_NEW_CLIENT:+", as a new client"} total bad cases
    local log="$logs/test-$1${as:+-new}.log"
    ctest --preset "$preset" -j "$jobs" "${@:3}" >"$log" 2>&1
    read -r bad total < <(sed -nE 's/^[0-9]+% tests passed, ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' "$log" | tail -1)
    if [ -z "${total:-}" ] || [ "$total" -eq 0 ]; then
        tail -40 "$log"
        count 1 "no test was run in $preset"
        return
    fi
    if [ "$bad" -gt 0 ]; then
        grep -vE '^ *[0-9]+/[0-9]+ Test.* Passed|^ +Start |^\[ +(OK|RUN) ' "$log" | tail -200
    fi
    # To ctest one run of a GoogleTest program is one test; this counts its cases, and each other test as one.
    cases=$(sed -nE 's/^\[==========\] ([0-9]+) tests? from .* ran\..*/\1/p' "build/$preset/Testing/Temporary/LastTest.log" |
        awk '{ sum += $1 } END { print sum + 0 }')
    add "$((cases > bad ? cases - bad : 0))" "$bad"
    say "$preset$as: $((total - bad)) of $total programs passed, with $cases cases"
}

# The programs fail with the first input that breaks a promise, and say which.
fuzz() {
    local program=$1 name corpus result
    name=$(basename "$program")
    corpus=tests/fuzz/corpus/$name
    mkdir -p "build/asan/corpus/$name"
    "$program" -runs=0 -timeout=10 -rss_limit_mb=4096 "$corpus" >"$logs/$name.log" 2>&1 &&
        "$program" -max_total_time="$fuzz_seconds" -timeout=10 -rss_limit_mb=4096 -artifact_prefix="$logs/$name-" \
            -print_final_stats=1 "build/asan/corpus/$name" "$corpus" >>"$logs/$name.log" 2>&1
    result=$?
    [ $result -eq 0 ] || tail -30 "$logs/$name.log"
    count $result "fuzzing $name"
}

fuzz_all() {
    local programs=() program inputs
    mapfile -t programs < <(find build/asan/bin -name '*_fuzz' -type f | sort)
    [ ${#programs[@]} -gt 0 ] || { count 1 "no fuzz target was built"; return; }
    for program in "${programs[@]}"; do
        [ "$(jobs -rp | wc -l)" -lt "$fuzz_jobs" ] || wait -n
        fuzz "$program" &
    done
    wait
    inputs=$(sed -nE 's/^stat::number_of_executed_units: +//p' "$logs"/*_fuzz.log | awk '{ sum += $1 } END { print sum + 0 }')
    say "fuzz: ${#programs[@]} targets, $inputs new inputs"
}

# The stand-in simulators, each tested with a client that other people wrote, and the worker on the same flight. Needs
# the network once, for npm.
check_simulator() {
    local name=$1 good bad
    "tests/$name/node/check.sh" build/asan/bin "build/node-$name" >"$logs/$name.log" 2>&1
    read -r good bad < <(sed -nE 's/^([0-9]+) passed, ([0-9]+) failed$/\1 \2/p' "$logs/$name.log" | tail -1)
    if [ -z "${good:-}" ] || [ "$good" -eq 0 ]; then
        tail -20 "$logs/$name.log"
        count 1 "the stand-in $name was not checked"
        return
    fi
    add "$good" "$bad"
    grep '^FAILED' "$logs/$name.log"
    say "$name: $good of $((good + bad)) checks passed"
}

# check NAME WHAT COMMAND... - a command that itself says what is wrong, or ends with 77 if it cannot be run.
check() {
    local log="$logs/$1.log"
    "${@:3}" >"$log" 2>&1
    local result=$?
    case $result in
        0) count 0 "$2" ;;
        77) ;;
        *) cat "$log"; count $result "$2"; return ;;
    esac
    say "$(tail -1 "$log")"
}

# What the address sanitizer's build is for; runs and waits more than it computes.
test_with_asan() {
    run_tests asan 2
    check_simulator simulator
    check_simulator xplane
    fuzz_all
}

# What is tested on this machine itself; mostly builds.
test_natively() {
    # shellcheck disable=SC2046  # words are what is wanted
    if build asan unit_tests memory_tests stand_in_simulator stand_in_xplane native_worker \
        $(cd tests/fuzz && echo *_fuzz.cpp | sed 's/\.cpp//g'); then
        test_with_asan &
    fi
    build tsan unit_tests && run_tests tsan 2
    build native realtime_tests &&
        check realtime "an audio hook allocates, locks or calls the system" build/native/bin/realtime_tests
    check artwork "the artwork does not fit the layout tables" /usr/bin/python3 tools/artwork/check_art.py --prove
    check page "the page of run.sh does not show what was flown" /usr/bin/python3 -B tools/page/page_test.py
    check rooms "a room uses one that it may not" /usr/bin/python3 tools/check_rooms.py
    check docs "a document names what is not there" /usr/bin/python3 tools/check_docs.py
    check format "the formatting is not the house's" tools/format.sh --check
    wait
}

say "Installing what is missing"
tools/packages.sh product native wine test node || exit 1
. tools/wine.sh

# One mostly waits, the other mostly compiles: side by side they leave no core idle, and the one that takes longer goes
# first.
say "Building for Windows, then testing under Wine; the rest meanwhile"
test_natively &
natively=$!
renice -n 4 -p $natively >/dev/null  # with more it would hardly run at all beside a busy program
build windows "${windows_tests[@]}" &
windows_build=$!
start_wine_slots "$wine_slots"
if wait $windows_build; then
    run_tests windows "$wine_slots" "${windows_without[@]}"
    if [ "${1:-}" = --full ]; then
        CORVALIS_NEW_CLIENT=1 run_tests windows "$wine_slots" -L client
        check soak "something grew, stalled or broke in two minutes of soak" soak 2 --every 5
    fi
fi
wait $natively

read -r passed failed < <(awk '{ passed += $1; failed += $2 } END { print passed + 0, failed + 0 }' "$counts")
echo
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
