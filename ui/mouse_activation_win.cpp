#include "ui/mouse_activation_win.h"
#include <windows.h>
#include "ui/mouse_activation.h"

namespace {

constexpr UINT kGetWheelRouting = 0x201C;  // SPI_GETMOUSEWHEELROUTING; older headers lack it

std::optional<std::uint32_t> wheelRouting() {
    DWORD routing = 0;
    if (!SystemParametersInfoW(kGetWheelRouting, 0, &routing, 0)) return std::nullopt;
    return routing;
}

}  // namespace

bool doesClickActivate() {
    return clickActivates(wheelRouting());
}
