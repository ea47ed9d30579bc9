#include "bridge/sim_state.h"

SimState copySimState(SharedSimState& shared) {
    MutexLock lock(shared.mutex);
    return shared.state;
}

void setStatusText(SharedSimState& shared, std::string_view text) {
    MutexLock lock(shared.mutex);
    shared.state.statusText = text;
}

void setChannelStatus(SharedSimState& shared, std::string_view text) {
    MutexLock lock(shared.mutex);
    shared.state.channelStatus = text;
}

void setDisconnected(SharedSimState& shared) {
    MutexLock lock(shared.mutex);
    shared.state.connected = false;
    for (auto& radio : shared.state.radios) {
        radio.active = 0;
        radio.standby = 0;
        radio.volume = -1.0f;
    }
    shared.state.statusText = "DISCONNECTED";
}

const RadioReading* radioOf(const SimState& state, std::int32_t com) {
    return com >= 1 && com <= kRadioCount ? &state.radios[static_cast<std::size_t>(com - 1)] : nullptr;
}
