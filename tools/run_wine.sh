#!/bin/sh
# run_wine.sh WINE PROGRAM ... - runs a program under Wine with standard error closed off: Wine's own services start
# with the first program, keep its standard error open, and ctest would wait for them after the test has ended.
exec "$@" 2>/dev/null </dev/null
