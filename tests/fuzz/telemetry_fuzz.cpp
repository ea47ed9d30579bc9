// telemetry_fuzz.cpp - any bytes as a telemetry file: the reader must agree with the plain search key by key, what is
// read can be written and reads back, and what is published must be at rest unless the reading is fresh.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include "bridge/sim_state.h"
#include "tests/fuzz/text_mutator.h"
#include "tests/unit/exchange/telemetry_reference.h"
#include "tests/unit/fakes.h"

namespace {

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "telemetry: %s\n", what);
    std::abort();
}

// Readers take the first match of a quoted key: a text that is a key's name would be taken for one. The worker has
// none.
bool isKeyName(const std::string& text) {
    static const std::string keys = writeTelemetryText(Telemetry{}, 0.0);
    return keys.find('"' + plainText(text) + "\":") != std::string::npos;
}

// What is read can be written, and reads back the same; only a volume loses what six digits cannot hold, once.
void checkWritten(const std::string& text) {
    Telemetry once = parseTelemetry(text);
    if (isKeyName(once.status) || isKeyName(once.ackMessage)) return;
    const std::string written = writeTelemetryText(once, 1790000000.0);
    const Telemetry again = parseTelemetry(written);
    if (writeTelemetryText(again, 1790000000.0) != written) fail("the second text differs from the first");
    if (again.updated != 1790000000.0 || again.protocol != kTelemetryProtocol) fail("the writer's own keys are lost");
    for (std::string* const shown : {&once.status, &once.ackId, &once.ackMessage}) *shown = plainText(*shown);
    once.updated = again.updated;
    once.protocol = again.protocol;
    for (std::size_t i = 0; i < kRadioCount; i++) {
        const float before = once.radios[i].volume, after = again.radios[i].volume;
        if (std::fabs(before - after) > 1e-5f * std::fabs(before)) fail("a volume changed");
        once.radios[i].volume = after;
    }
    if (!(again == once)) fail("what was written reads otherwise");
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

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(writeTelemetryText(Telemetry{}, 1790000000.0), ",:\" ");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string difference = telemetryDifference(text);
    if (!difference.empty()) fail(difference.c_str());
    checkWritten(text);

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
