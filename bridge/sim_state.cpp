#include "bridge/sim_state.h"
#include <optional>

namespace {

constexpr std::string_view kConnected = "CONNECTED";
constexpr std::string_view kDisconnected = "DISCONNECTED";

RadioReading unknownRadio(std::int32_t spacing) {
    RadioReading radio;
    radio.spacing = spacing;
    return radio;
}

// The status line for a reading, given the state before it; nothing: the line stays as it is.
std::optional<std::string_view> statusOf(const TelemetryReading& reading, const SimState& before) {
    if (!reading.fresh) return kDisconnected;
    if (reading.telemetry.ackId != before.ackId) return reading.telemetry.ackMessage;
    if (!before.connected) return kConnected;
    return std::nullopt;
}

}  // namespace

SimState copySimState(SharedSimState& shared) {
    MutexLock lock(shared.mutex);
    return shared.state;
}

void publishTelemetry(const TelemetryReading& reading, SharedSimState& sim, StatusLines& status) {
    const Telemetry& telemetry = reading.telemetry;
    std::optional<std::string_view> statusText;
    {
        const MutexLock lock(sim.mutex);
        SimState& state = sim.state;
        statusText = statusOf(reading, state);
        for (std::size_t i = 0; i < state.radios.size(); i++)
            state.radios[i] = reading.fresh ? telemetry.radios[i] : unknownRadio(telemetry.radios[i].spacing);
        state.connected = reading.fresh;
        state.commandPending = telemetry.commandPending;
        state.rangeMin = telemetry.rangeMin;
        state.rangeMax = telemetry.rangeMax;
        state.ackId = telemetry.ackId;
        state.ackOk = telemetry.ackOk;
        state.readTick = reading.readTickMs;
    }
    if (statusText) setStatusText(status, *statusText);
}

void setDisconnected(SharedSimState& sim, StatusLines& status) {
    {
        const MutexLock lock(sim.mutex);
        sim.state.connected = false;
        for (auto& radio : sim.state.radios) {
            radio.active = 0;
            radio.standby = 0;
            radio.volume = -1.0f;
        }
    }
    setStatusText(status, kDisconnected);
}

const RadioReading* radioOf(const SimState& state, std::int32_t com) {
    return com >= 1 && com <= kRadioCount ? &state.radios[static_cast<std::size_t>(com - 1)] : nullptr;
}
