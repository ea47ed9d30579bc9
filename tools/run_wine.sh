#!/bin/bash
# run_wine.sh WINE PROGRAM ... - runs a program under Wine with standard error closed off: Wine's own services start
# with the first program, keep its standard error open, and ctest would wait for them after the test has ended.
# With CORVALIS_WINE_SLOTS (tools/wine.sh) it runs in a slot that nobody else is in, waiting for one if need be.
if [ -z "${CORVALIS_WINE_SLOTS:-}" ]; then
    exec "$@" 2>/dev/null </dev/null
fi
while :; do
    for slot in "$CORVALIS_WINE_SLOTS"/*/; do
        exec {lock}>"$slot/lock"
        if flock -n "$lock"; then
            DISPLAY=$(cat "$slot/display")
            export DISPLAY WINEPREFIX="${slot%/}/prefix"
            # The lock is this script's: a child that outlives the program must not keep the slot.
            "$@" 2>/dev/null </dev/null {lock}>&-
            exit
        fi
        exec {lock}>&-
    done
    sleep 0.1
done
