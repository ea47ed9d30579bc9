# wine.sh - sourced by run.sh and test.sh: a Wine prefix of our own and a screen for it, gone when the script ends.
# Needs: the working folder is the repository's root.

export WINEPREFIX="${CORVALIS_WINEPREFIX:-$PWD/build/windows/wineprefix}"
export WINEDEBUG=-all
export WINEARCH=win64
# Wine names files in the locale's character set: without UTF-8 nobody called Jürgen could log in.
export LC_ALL=C.UTF-8
# Wine would offer to download these.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="

xvfb_pid=

stop_wine() {
    wineserver -k 2>/dev/null || true
    [ -z "$xvfb_pid" ] || kill "$xvfb_pid" 2>/dev/null || true
}

# A screen of our own: what stands on the user's must not matter.
start_screen() {
    local number_file
    number_file=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1920x1200x24 -nolisten tcp 3>"$number_file" 2>/dev/null &
    xvfb_pid=$!
    for _ in $(seq 100); do [ -s "$number_file" ] && break; sleep 0.1; done
    [ -s "$number_file" ] || { echo "Xvfb did not start" >&2; return 1; }
    DISPLAY=":$(cat "$number_file")"
    export DISPLAY
    rm -f "$number_file"
}

start_wine() {
    trap stop_wine EXIT
    start_screen
    mkdir -p "$WINEPREFIX"
    # One server for the whole run: programs then start in a fraction of a second. Wine's own services are started
    # here, with nowhere to write to: started by a program of ours, they would keep its output pipe open for ever.
    wineserver -p >/dev/null 2>&1 </dev/null || true
    wineboot >/dev/null 2>&1 </dev/null
}
