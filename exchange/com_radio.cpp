#include "exchange/com_radio.h"

bool parseSlot(std::string_view name, RadioSlot& slot) {
    for (std::size_t i = 0; i < kSlotNames.size(); i++) {
        if (name != kSlotNames[i]) continue;
        slot = static_cast<RadioSlot>(i);
        return true;
    }
    return false;
}
