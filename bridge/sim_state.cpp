#include "bridge/sim_state.h"
#include <optional>

namespace {

RadioReading unknownRadio(std::int32_t spacing) {
    RadioReading radio;
    radio.spacing = spacing;
    return radio;
}

// The status line for a reading, given the state before it; nothing: the line stays as it is.
std::optional<std::string> statusOf(const TelemetryReading& reading, const DisconnectReason& reason,
                                    const SimState& before) {
    if (!reading.fresh) return disconnectedText(reason);
    if (reading.telemetry.ackId != before.ackId) return reading.telemetry.ackMessage;
    if (!before.connected) return std::string(kConnectedText);
    return std::nullopt;
}

}  // namespace

SimState copySimState(SharedSimState& shared) {
    MutexLock lock(shared.mutex);
    return shared.state;
}

void publishTelemetry(const TelemetryReading& reading, const DisconnectReason& reason, SharedSimState& sim,
                      StatusLines& status) {
    const Telemetry& telemetry = reading.telemetry;
    std::optional<std::string> statusText;
    {
        const MutexLock lock(sim.mutex);
        SimState& state = sim.state;
        statusText = statusOf(reading, reason, state);
        for (std::size_t i = 0; i < state.radios.size(); i++)
            state.radios[i] = reading.fresh ? telemetry.radios[i] : unknownRadio(telemetry.radios[i].spacing);
        state.connected = reading.fresh;
        state.commandPending = telemetry.commandPending;
        state.rangeMin = telemetry.rangeMin;
        state.rangeMax = telemetry.rangeMax;
        state.ackId = telemetry.ackId;
        state.ackOk = telemetry.ackOk;
        state.readTick = reading.readTickMs;
        state.reason = reason;
    }
    if (statusText) setStatusText(status, *statusText);
}

void setDisconnected(const DisconnectReason& reason, SharedSimState& sim, StatusLines& status) {
    {
        const MutexLock lock(sim.mutex);
        sim.state.connected = false;
        sim.state.reason = reason;
        for (auto& radio : sim.state.radios) {
            radio.active = 0;
            radio.standby = 0;
            radio.volume = -1.0f;
        }
    }
    setStatusText(status, disconnectedText(reason));
}

const RadioReading* radioOf(const SimState& state, std::int32_t com) {
    return com >= 1 && com <= kRadioCount ? &state.radios[static_cast<std::size_t>(com - 1)] : nullptr;
}
