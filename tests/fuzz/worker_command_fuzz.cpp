// worker_command_fuzz.cpp - command.json and telemetry.json as the worker reads them, from any bytes.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include "exchange/command_text.h"
#include "exchange/telemetry_text.h"
#include "tests/fuzz/text_mutator.h"

namespace {

const std::string kSample = writeCommandText({"4242-1", {1, kSlotStandby, 121500.0}, 1790000000.0}) +
                            writeTelemetryText(Telemetry{}, 1790000000.0) + "[[{}],nul";

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(kSample, ",:\" ");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    lastAckId(text);
    const auto command = parseCommandText(text);
    if (!command) return 0;
    // What is accepted must be usable: a known radio, finite numbers, an id that a telemetry file keeps unchanged.
    Telemetry record;
    record.ackId = command->id;
    const bool usable = command->write.radio < 2 && std::isfinite(command->write.value) &&
                        std::isfinite(command->created) && lastAckId(writeTelemetryText(record, 0.0)) == command->id;
    if (!usable) std::abort();
    // What the plugin would write for it reads back the same; the numbers lose digits, once.
    const auto written = writeCommandText(*command);
    const auto again = parseCommandText(written);
    const bool isSame = again && again->id == command->id && again->write.radio == command->write.radio &&
                        again->write.slot == command->write.slot && writeCommandText(*again) == written;
    if (!isSame) std::abort();
    return 0;
}
