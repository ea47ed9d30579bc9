#!/bin/bash
# run_wine.sh WINE PROGRAM ... - runs a program under Wine with standard error closed off: Wine's own services start
# with the first program, keep its standard error open, and ctest would wait for them after the test has ended.
# With CORVALIS_WINE_SLOTS (tools/wine.sh) it runs in a slot that nobody else is in, waiting for one if need be.
# A Wine process that is ended by others may still report success. GoogleTest keeps a file from its first test to its
# last, so one that is left behind tells that there would have been more.
. "$(dirname "$0")/fixed_layout.sh"
unfinished=$(mktemp -u "${TMPDIR:-/tmp}/corvalis-unfinished-XXXXXXXX")
export TEST_PREMATURE_EXIT_FILE="Z:$unfinished"
finish() {
    [ -e "$unfinished" ] || exit "$1"
    rm -f "$unfinished"
    echo "run_wine.sh: the program ended before its last test, with $1"
    exit 1
}

if [ -z "${CORVALIS_WINE_SLOTS:-}" ]; then
    "$@" 2>/dev/null </dev/null
    finish $?
fi
while :; do
    for slot in "$CORVALIS_WINE_SLOTS"/*/; do
        exec {lock}>"$slot/lock"
        if flock -n "$lock"; then
            DISPLAY=$(cat "$slot/display")
            export DISPLAY WINEPREFIX="${slot%/}/prefix"
            # The lock is this script's: a child that outlives the program must not keep the slot.
            "$@" 2>/dev/null </dev/null {lock}>&-
            finish $?
        fi
        exec {lock}>&-
    done
    sleep 0.1
done
