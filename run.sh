#!/usr/bin/env bash
# run.sh [--full] [--simconnect | --xplane] - shows the product: installs what is missing, builds, makes the package,
# flies a short circuit (the real plugin in the stand-in voice client under Wine, its real worker with the built-in
# aircraft), takes a picture of each window and sends a voice through the radio. out/index.html has it all on one page.
# Takes a minute once built. Ends with 0 only if all went as it should and the page lacks nothing.
# --full flies as a pilot would, takes every picture there is and sends the own voice through the chain too: some
# minutes. In place of the built-in aircraft, --simconnect puts the stand-in simulator behind the simulator's pipe, and
# --xplane the stand-in X-Plane that announces itself on this computer's network; afterwards either is killed and
# restarted, and so are worker, plugin and voice client in turn. With CORVALIS_NEW_CLIENT=1 in the environment the voice
# client is one of today.
set -euo pipefail
. "$(dirname "$0")/tools/fixed_layout.sh"
cd "$(dirname "$0")"

full=()
simulator=()
for option in "$@"; do
    case "$option" in
        --full) full=(--full) ;;
        --simconnect | --xplane) simulator=("$option") ;;
        --fast) ;;  # the short circuit, from when the long one was the default
        *) echo "usage: ./run.sh [--full] [--simconnect | --xplane]" >&2; exit 2 ;;
    esac
done

step() {
    echo
    echo "== $*"
}

# Prints ninja's progress: in place on a terminal, elsewhere after every tenth of the way.
show_progress() {
    local line made all before=0 tenth=-1 end='\n'
    [ ! -t 1 ] || end='\r'
    while IFS= read -r line; do
        [[ $line =~ ^\[([1-9][0-9]*)/([0-9]+)\] ]] || continue
        made=${BASH_REMATCH[1]} all=${BASH_REMATCH[2]}
        [ "$all" -eq "$before" ] || tenth=-1  # ninja first checks whether there is anything to do
        before=$all
        [ -t 1 ] || [ "$made" -eq "$all" ] || [ $((10 * made / all)) -gt "$tenth" ] || continue
        tenth=$((10 * made / all))
        printf "Building %d/%d$end" "$made" "$all"
    done
    [ ! -t 1 ] || echo
}

# Builds everything that this run starts, in one go.
build() {
    local log=build/run.log
    mkdir -p build
    : >"$log"
    if [ ! -f build/windows/build.ninja ]; then
        echo "Configuring"
        cmake --preset windows >"$log" 2>&1 || { tail -40 "$log" >&2; return 1; }
    fi
    NINJA_STATUS='[%f/%t] ' cmake --build build/windows --target "$@" 2>&1 | tee -a "$log" | show_progress ||
        { sed -n '/^FAILED/,$p' "$log" | head -40 >&2; return 1; }
}

tools/packages.sh product wine pictures
SECONDS=0
step "Building; the package"
targets=(corvalis_win64 hopline_worker circuit pictures audition_chain)
[ ${#simulator[@]} -eq 0 ] || targets+=(restarts)
build "${targets[@]}"
rm -rf out
mkdir -p out
package=$(realpath --relative-to=. "$(packaging/make_package.sh build/windows dist)")
echo "$package"

. tools/wine.sh
start_wine
export CORVALIS_WINE_RUNS=1  # the tools below use this screen and this server
result=0

step "Flying the circuit: $([ ${#full[@]} -gt 0 ] && echo two minutes || echo half a minute)"
wine build/windows/bin/circuit.exe out "${full[@]}" "${simulator[@]}" 2>&1 | tr -d '\r' | tee out/timeline.txt ||
    result=1
# What the flight left behind, without the temporary profile around it.
data=out/appdata/Corvalis
for file in "$data"/*.wav "$data"/*.log "$data"/circuit.txt; do
    [ ! -e "$file" ] || cp "$file" out/
done
rm -rf out/appdata

restarts=()
if [ ${#simulator[@]} -gt 0 ]; then
    step "Killing and restarting"
    restarts=(--restarts)
    wine build/windows/bin/restarts.exe out/restarts "${simulator[@]}" 2>&1 | tr -d '\r' | tee out/restarts.txt ||
        result=1
    rm -rf out/restarts
fi

step "Sounds: a voice through the radio, the squelch tail, the chime"
cp tools/voice/clip.wav out/voice_before.wav
tools/audition out/voice_before.wav out/voice_received.wav --received || result=1
[ ${#full[@]} -eq 0 ] || tools/audition out/voice_before.wav out/voice_own.wav --own --nr || result=1
for sound in radio_tail text_alert; do
    [ ! -e "out/$sound.wav" ] ||
        /usr/bin/python3 tools/voice/draw_sound.py "out/$sound.svg" "${sound/_/ }=out/$sound.wav" || result=1
done

step "Pictures of the windows"
pictures=(--each)
[ ${#full[@]} -eq 0 ] || pictures=()
tools/screenshots out/pictures "${pictures[@]}" || result=1

/usr/bin/python3 -B tools/page/page.py out "$package" "${full[@]}" "${restarts[@]}" || result=1
echo
echo "$package is ready to install. Open out/index.html for the flight, the windows and the sounds. ($SECONDS s)"
[ "$result" -eq 0 ] || echo "Not all went as it should; see above, out/timeline.txt and the logs beside it." >&2
exit "$result"
