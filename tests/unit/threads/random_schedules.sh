#!/usr/bin/env bash
# random_schedules.sh - all tests that start threads under the thread sanitizer, again and again for so many minutes,
# each time in another order and with another seed (random_rooms_test.cpp). The first failure ends it and names the seed.
#   tests/unit/threads/random_schedules.sh [MINUTES [SEED]]     10 minutes; SEED: of the first round, else by chance
set -euo pipefail
cd "$(dirname "$0")/../../.."

minutes=${1:-10}
seed=${2:-$RANDOM}
log=build/tsan/random_schedules.log
mkdir -p build/tsan
{ [ -f build/tsan/build.ninja ] || cmake --preset tsan; } >"$log" 2>&1 || { tail -20 "$log"; exit 1; }
cmake --build build/tsan --target unit_tests >>"$log" 2>&1 || { tail -40 "$log"; exit 1; }

rounds=0 cases=0
end=$((SECONDS + minutes * 60))
while [ $rounds -eq 0 ] || [ $SECONDS -lt $end ]; do
    if ! CORVALIS_SCHEDULE_SEED=$seed CORVALIS_SCHEDULE_TURNS=1000 timeout 900 build/tsan/bin/unit_tests \
        --gtest_shuffle --gtest_random_seed=$((seed % 99999 + 1)) --gtest_brief=1 >"$log" 2>&1; then
        tail -60 "$log"
        echo "threads: FAILED in round $((rounds + 1)), CORVALIS_SCHEDULE_SEED=$seed"
        exit 1
    fi
    cases=$((cases + $(sed -nE 's/^\[==========\] ([0-9]+) tests? .*/\1/p' "$log" | tail -1)))
    rounds=$((rounds + 1))
    seed=$((seed + 1))
done
echo "threads: $rounds rounds with $cases cases in $(((SECONDS - end + minutes * 60) / 60)) minutes, the last seed $((seed - 1)): no race, no broken promise"
