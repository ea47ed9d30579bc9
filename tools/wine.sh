# wine.sh - sourced by run.sh, test.sh and tools/screenshots: Wine prefixes of our own and screens for them, gone when
# the script ends. Needs: the working folder is the repository's root.
#   start_wine          one prefix with a screen, for programs that this script starts itself
#   start_wine_slots N  N copies of that prefix, each with a screen and a Wine server of its own, for programs that run
#                       beside each other and must not see each other's windows and pipes (tools/run_wine.sh takes them)
# CORVALIS_WINEPREFIX names another prefix, CORVALIS_DPI the screen's resolution (96; 144 is Windows' 150 %).

export WINEPREFIX="${CORVALIS_WINEPREFIX:-$PWD/build/windows/wineprefix}"
export WINEDEBUG=-all
export WINEARCH=win64
# Wine names files in the locale's character set: without UTF-8 nobody called Jürgen could log in.
export LC_ALL=C.UTF-8
# Not UTC, or a mix-up of UTC and local time would go unnoticed. A rule, not a name: that needs no zone files.
export TZ=CET-1CEST,M3.5.0,M10.5.0/3
# Wine would offer to download these.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="

wine_prefixes=()
screen_pids=()

stop_wine() {
    local prefix
    for prefix in "${wine_prefixes[@]}"; do WINEPREFIX="$prefix" wineserver -k 2>/dev/null & done
    wait $!
    [ ${#screen_pids[@]} -eq 0 ] || kill "${screen_pids[@]}" 2>/dev/null || true
}

# A screen of our own: what is on the user's must not matter.
start_screen() {
    local number_file
    number_file=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1920x1200x24 -nolisten tcp 3>"$number_file" 2>/dev/null &
    screen_pids+=($!)
    for _ in $(seq 600); do [ -s "$number_file" ] && break; sleep 0.1; done
    [ -s "$number_file" ] || { echo "Xvfb did not start" >&2; return 1; }
    DISPLAY=":$(cat "$number_file")"
    export DISPLAY
    rm -f "$number_file"
}

# What the prefix's registry needs, as a file for regedit: Windows' interface fonts are not here, so each is replaced by
# a Debian font (packages.sh wine) with glyphs of the same region; the resolution; and unmanaged windows, since there is
# no window manager, for whose answers Wine would wait seconds.
wine_registry() {
    cat <<END
REGEDIT4

[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]
"Segoe UI"="Open Sans"
"Consolas"="DejaVu Sans Mono"
"Microsoft YaHei UI"="Noto Sans CJK SC"
"Microsoft JhengHei UI"="Noto Sans CJK TC"
"Yu Gothic UI"="Noto Sans CJK JP"
"Malgun Gothic"="Noto Sans CJK KR"

[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]
"Managed"="N"

[HKEY_CURRENT_USER\\Control Panel\\Desktop]
"LogPixels"=dword:$(printf '%08x' "${CORVALIS_DPI:-96}")
END
}

# One server for the whole run: programs then start in a fraction of a second. Wine's own services are started here,
# with nowhere to write to: started by a program of ours, they would keep its output pipe open for ever.
boot_wine() {
    wineserver -p >/dev/null 2>&1 </dev/null || true
    wineboot >/dev/null 2>&1 </dev/null
}

# The server writes the registry as it ends.
end_server() {
    wineserver -k 2>/dev/null || true
    wineserver -w 2>/dev/null || true
}

# Only a change costs time: what was last registered is in the prefix beside the registry.
register_wine() {
    local registered="$WINEPREFIX/corvalis.reg"
    wine_registry | cmp -s - "$registered" && return
    wine_registry >"$registered.new"
    wine regedit /S "$(winepath -w "$registered.new" 2>/dev/null)" >/dev/null 2>&1 </dev/null
    # Fonts and resolution are read when the desktop starts.
    end_server
    mv "$registered.new" "$registered"
    boot_wine
}

start_wine() {
    trap stop_wine EXIT
    start_screen
    wine_prefixes+=("$WINEPREFIX")
    mkdir -p "$WINEPREFIX"
    boot_wine
    register_wine
}

# Wine's own files, which nobody changes, are shared with the prepared prefix; the registry is a copy.
copy_prefix() {
    rm -rf "$2"
    mkdir -p "$2"
    cp -al "$1/drive_c" "$2/"
    cp -a "$1/dosdevices" "$1"/*.reg "$1/.update-timestamp" "$2/"
}

# start_slot FOLDER - what tools/run_wine.sh finds there: the prefix, the display's name and a lock.
start_slot() {
    start_screen
    echo "$DISPLAY" >"$1/display"
    : >"$1/lock"
    WINEPREFIX="$1/prefix"
    wine_prefixes+=("$WINEPREFIX")
}

start_wine_slots() {
    local prepared="$WINEPREFIX" slots="$PWD/build/windows/wineslots" slot boots=()
    start_wine
    end_server
    for slot in $(seq "$1"); do
        slot="$slots/$slot"
        [ "$slot/prefix/corvalis.reg" -nt "$prepared/corvalis.reg" ] || copy_prefix "$prepared" "$slot/prefix"
        touch "$slot/prefix/corvalis.reg"
        start_slot "$slot"
        boot_wine &
        boots+=($!)
    done
    wait "${boots[@]}"
    export CORVALIS_WINE_SLOTS="$slots" WINEPREFIX="$prepared"
}
