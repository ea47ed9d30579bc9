// telemetry_fuzz.cpp - any bytes as a telemetry file: the reader must agree with the plain search key by key, and what
// it publishes must be at rest unless the reading is fresh.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include "exchange/telemetry.h"
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

void checkPublished(const SimState& state, bool fresh) {
    if (state.connected != fresh) fail("connected is not what the reading says");
    if (fresh) return;
    if (state.statusText != "DISCONNECTED") fail("a stale file shows a status of its own");
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
    SettingsStore settings(files);
    SharedSimState sim;
    SelectedRadio selected;
    std::string status;
    const bool fresh = readTelemetry(files, "", clock, settings, sim, selected, status);
    checkPublished(copySimState(sim), fresh);
    if (!fresh && selected.frequencyKHz != 0) fail("a stale file selects a frequency");
    return 0;
}
