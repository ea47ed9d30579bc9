// worker_command_fuzz.cpp - command.json and telemetry.json as the worker reads them, from any bytes.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include "exchange/command_text.h"
#include "exchange/telemetry_text.h"

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
    return 0;
}
