// telemetry_fuzz.cpp - any bytes as a telemetry file: the reader must agree with the plain search key by key, and what
// it publishes must be at rest unless the reading is fresh.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include "bridge/sim_state.h"
#include "tests/unit/exchange/telemetry_reference.h"
#include "tests/unit/fakes.h"

namespace {

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "telemetry: %s\n", what);
    std::abort();
}

bool isAtRest(const RadioReading& radio) {
    return radio.active == 0 && radio.standby == 0 && radio.volume == -1.0f &&
           radio.writable == std::array{false, false, false, false};
}

void checkPublished(const SimState& state, const StatusTexts& status, bool fresh) {
    if (state.connected != fresh) fail("connected is not what the reading says");
    if (fresh) return;
    if (!status.statusText.starts_with(kDisconnectedText)) fail("a stale file shows a status of its own");
    if (status.statusText.size() > kDisconnectedText.size() + 2 + kMaxReasonBytes) fail("a reason is too long");
    for (const char c : status.statusText)
        if (static_cast<unsigned char>(c) < 0x20) fail("a reason has a control character");
    for (const auto& radio : state.radios)
        if (!isAtRest(radio)) fail("a stale file leaves a radio known");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string difference = telemetryDifference(text);
    if (!difference.empty()) fail(difference.c_str());

    ManualClock clock;
    MemoryFiles files;
    files.put("telemetry.json", text);
    SharedSimState sim;
    StatusLines status;
    const auto reading = readTelemetry(files, "", clock);
    if (!reading) {
        if (!text.empty()) fail("a file that can be read is not");
        return 0;
    }
    publishTelemetry(*reading, reasonOf(WorkerLife{}, reading), sim, status);
    checkPublished(copySimState(sim), copyStatus(status), reading->fresh);
    if (!reading->fresh && selectRadio(Settings{}, *reading).frequencyKHz != 0)
        fail("a stale file selects a frequency");
    return 0;
}
