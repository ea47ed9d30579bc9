#!/usr/bin/env bash
# coverage.sh - how many lines of each reader the inputs in tests/fuzz/corpus reach. Fails if it is fewer than 95 of 100
# of all, or 90 of one (whose lines for lack of memory only tests/memory reaches), or if a target fails.
#   tests/fuzz/coverage.sh [--missed]     builds build/coverage; --missed: prints the lines that nothing reaches
set -euo pipefail
cd "$(dirname "$0")/../.."

least_of_all=95
least_of_one=90
# Whatever takes bytes from outside apart. A new one is added here, together with the target that feeds it.
readers=(
    audio/capture_mode.cpp
    base/display_text.cpp base/number_text.cpp base/utf8.cpp base/version_resource.cpp
    bridge/sim_state.cpp bridge/telemetry_file.cpp
    channels/channel_name.cpp channels/follow_frequency.cpp
    exchange/com_radio.cpp exchange/command_text.cpp exchange/flat_json.cpp exchange/frequency_grid.cpp
    exchange/telemetry_text.cpp
    messages/message_intake.cpp messages/message_page.cpp messages/message_page_items.cpp
    plugin/host_interface.cpp
    settings/settings_text.cpp
    ui/word_wrap.cpp
    worker/command_handler.cpp worker/command_inbox.cpp worker/diagnosis.cpp worker/flight_script.cpp
    worker/host_names.cpp worker/host_port.cpp worker/readable_text.cpp worker/simulated_aircraft.cpp
    worker/user_names.cpp worker/worker_loop.cpp worker/worker_options.cpp
    worker/simconnect/connection.cpp worker/simconnect/packet_stream.cpp worker/simconnect/packets.cpp
    worker/simconnect/session.cpp worker/simconnect/simconnect_link.cpp
    worker/xplane/beacon_watch.cpp worker/xplane/packets.cpp worker/xplane/session.cpp worker/xplane/xplane_link.cpp
)

tools/packages.sh product native test coverage
# The tools of the compiler's own version: another one's cannot read what its programs write.
version=$(clang --version | sed -nE '1s/.*version ([0-9]+).*/\1/p')
tool() { command -v "$1-$version" || command -v "$1"; }
profdata=$(tool llvm-profdata)
cov=$(tool llvm-cov)

build=build/coverage
targets=()
for source in tests/fuzz/*_fuzz.cpp; do targets+=("$(basename "$source" .cpp)"); done
log=$build/coverage.log
mkdir -p "$build"
{ [ -f "$build/build.ninja" ] || cmake --preset coverage; } >"$log" 2>&1 || { tail -20 "$log"; exit 1; }
cmake --build "$build" --target "${targets[@]}" >>"$log" 2>&1 || { tail -40 "$log"; exit 1; }

objects=()
rm -f "$build"/*.profraw
for target in "${targets[@]}"; do
    LLVM_PROFILE_FILE="$build/$target.profraw" "$build/bin/$target" -runs=0 "tests/fuzz/corpus/$target" >>"$log" 2>&1 ||
        { tail -20 "$log"; echo "coverage: $target fails"; exit 1; }
    objects+=(${objects[@]+-object} "$build/bin/$target")  # the first one stands alone
done
"$profdata" merge -sparse "$build"/*.profraw -o "$build/readers.profdata"

if [ "${1:-}" = --missed ]; then
    "$cov" show "${objects[@]}" -instr-profile="$build/readers.profdata" "${readers[@]/#/$PWD/}" 2>>"$log" |
        grep -E "^/|^ +[0-9]+\| +0\|"
    exit
fi
"$cov" export "${objects[@]}" -instr-profile="$build/readers.profdata" -summary-only "${readers[@]/#/$PWD/}" \
    2>>"$log" >"$build/readers.json" || { tail -5 "$log"; exit 1; }
python3 - "$build/readers.json" "$PWD" $least_of_all $least_of_one "${readers[@]}" <<'PYTHON'
import json, sys
report, root, least_of_all, least, readers = sys.argv[1], sys.argv[2], float(sys.argv[3]), float(sys.argv[4]), sys.argv[5:]
files = {f["filename"]: f["summary"]["lines"] for f in json.load(open(report))["data"][0]["files"]}
bad = covered = count = 0
for reader in readers:
    lines = files.get(f"{root}/{reader}")
    percent = 100 * lines["covered"] / lines["count"] if lines and lines["count"] else 0.0
    covered += lines["covered"] if lines else 0
    count += lines["count"] if lines else 0
    bad += percent < least
    print(f"{percent:6.1f} %  {lines['covered'] if lines else 0:4} of {lines['count'] if lines else 0:4} lines  {reader}"
          + ("" if percent >= least else f"   FEWER THAN {least:.0f} %"))
share = 100 * covered / count if count else 0
print(f"coverage: {covered} of {count} lines of {len(readers)} readers, {share:.1f} %, {bad} below {least:.0f} %")
sys.exit(bad > 0 or share < least_of_all)
PYTHON
