#include "exchange/command_file.h"
#include "base/number_text.h"
#include "bridge/sim_state.h"

namespace {

const char* slotName(std::int32_t slot) {
    switch (slot) {
        case kSlotActive:
            return "active";
        case kSlotStandby:
            return "standby";
        case kSlotVolume:
            return "volume";
        default:
            return "swap";
    }
}

}  // namespace

std::string writeCommandText(const Command& command, double createdUnixSeconds) {
    std::string text = "{\"id\":\"" + command.id;
    text += "\",\"com\":" + std::to_string(command.com);
    text += ",\"slot\":\"" + std::string(slotName(command.slot));
    text += "\",\"target\":" + formatGeneral(command.value);
    text += ",\"created\":" + formatFixed(createdUnixSeconds, 3);
    return text += "}";
}
