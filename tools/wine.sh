# wine.sh - sourced by run.sh, test.sh and tools/screenshots: a Wine prefix of our own and a screen for it, gone when
# the script ends. Needs: the working folder is the repository's root.
# CORVALIS_WINEPREFIX names another prefix, CORVALIS_DPI the screen's resolution (96; 144 is Windows' 150 %).

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

# What the prefix's registry needs, as a file for regedit: Windows' interface fonts are not here, so each is replaced by
# a Debian font (packages.sh wine) with glyphs of the same region; and the resolution.
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

# Only a change costs time: what was registered last stands in the prefix beside the registry.
register_wine() {
    local registered="$WINEPREFIX/corvalis.reg"
    wine_registry | cmp -s - "$registered" && return
    wine_registry >"$registered.new"
    wine regedit /S "$(winepath -w "$registered.new" 2>/dev/null)" >/dev/null 2>&1 </dev/null
    # Fonts and resolution are read when the desktop starts. The server writes the registry as it ends.
    wineserver -k 2>/dev/null || true
    wineserver -w 2>/dev/null || true
    mv "$registered.new" "$registered"
    boot_wine
}

start_wine() {
    trap stop_wine EXIT
    start_screen
    mkdir -p "$WINEPREFIX"
    boot_wine
    register_wine
}
