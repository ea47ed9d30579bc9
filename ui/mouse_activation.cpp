#include "ui/mouse_activation.h"

bool clickActivates(std::optional<std::uint32_t> wheelRouting) {
    return wheelRouting && *wheelRouting != static_cast<std::uint32_t>(WheelRouting::kPointer);
}
