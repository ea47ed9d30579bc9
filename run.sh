#!/usr/bin/env bash
# run.sh [--fast] [--simconnect] - installs what is missing, builds, and flies a circuit: the real plugin in the
# stand-in voice client under Wine, its real worker with the built-in aircraft; then runs a voice through the radio and
# takes pictures of the windows. Leaves everything worth keeping in out/. Ends with 0 only if all went as it should.
# --fast flies a short circuit and leaves voice and pictures out (under 30 s once built). --simconnect puts the stand-in
# simulator behind the simulator's pipe in the built-in aircraft's place, and afterwards kills and restarts simulator,
# worker, plugin and voice client in turn.
set -euo pipefail
cd "$(dirname "$0")"

fast=()
simconnect=()
for option in "$@"; do
    case "$option" in
        --fast) fast=(--fast) ;;
        --simconnect) simconnect=(--simconnect) ;;
        *) echo "usage: ./run.sh [--fast] [--simconnect]" >&2; exit 2 ;;
    esac
done

tools/packages.sh build wine
[ -f build/windows/build.ninja ] || cmake --preset windows
cmake --build build/windows --target corvalis_win64 hopline_worker circuit restarts

rm -rf out
mkdir -p out
package=$(packaging/make_package.sh build/windows dist)

. tools/wine.sh
start_wine
echo
echo "Flying the circuit"
result=0
wine build/windows/bin/circuit.exe out "${fast[@]}" "${simconnect[@]}" 2>&1 | tr -d '\r' | tee out/timeline.txt || result=$?

if [ ${#simconnect[@]} -gt 0 ]; then
    echo
    echo "Killing and restarting"
    rm -rf out/restarts
    wine build/windows/bin/restarts.exe out/restarts 2>&1 | tr -d '\r' | tee out/restarts.txt || result=1
    rm -rf out/restarts
fi

# What the flight left behind, without the temporary profile around it.
data=out/appdata/Corvalis
for file in "$data"/*.wav "$data"/*.log "$data"/circuit.txt; do
    [ ! -e "$file" ] || cp "$file" out/
done
for sound in radio_tail text_alert; do
    [ ! -e "out/$sound.wav" ] || sox "out/$sound.wav" -n spectrogram -o "out/$sound.png" -t "$sound.wav" || result=1
done
rm -rf out/appdata

if [ ${#fast[@]} -eq 0 ]; then
    echo
    echo "A voice through the radio, received and as sent with noise reduction"
    tools/audition tools/voice/clip.wav out/voice_received.wav --received || result=1
    tools/audition tools/voice/clip.wav out/voice_own.wav --own --nr || result=1
    echo
    echo "Pictures of the windows"
    tools/screenshots out/pictures || result=1
fi

echo
if [ "$result" -eq 0 ]; then
    echo "$package is ready to install. out/ holds the timeline, the logs, the flight script, and both sounds with their spectrograms;"
    [ ${#fast[@]} -gt 0 ] || echo "voice_*.wav and .png are the voice as others hear it, pictures/ shows the windows."
else
    echo "Not all went as it should; see out/timeline.txt and the logs beside it." >&2
fi
exit "$result"
