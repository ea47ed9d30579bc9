#include "panel/panel_style.h"
#include "panel/panel_layout.h"

namespace {

// clang-format off
constexpr PanelStyle kStyles[kThemeCount] = {
    // confirmed  pending     unlit  slant  key lamp    TEXT lamp   pin icon    status      plate       key         engraving
    {0xFFE4F3FF, 0xFF52C4FF, 0.055f, 0.07f, 0xFF6FE0FF, 0xFFFFC04A, 0xFF5FD8FF, 0xFFC3D2DC, 0xFF1B1D20, 0xFF2A2D31, 0xFFB9BEC4},  // GENERAL
    {0xFFFFEFD2, 0xFFF0A848, 0.050f, 0.05f, 0xFFFFDFA0, 0xFFFFB347, 0xFFFFC766, 0xFFE6D7BA, 0xFF6B6358, 0xFF34312D, 0xFFE6E0D4},  // BOEING
    {0xFFFFA826, 0xFF6FD6E8, 0.065f, 0.00f, 0xFF63F58A, 0xFFFFB347, 0xFF6DF08F, 0xFFF0B565, 0xFF4A6072, 0xFF1A1C20, 0xFFDDE3E8},  // AIRBUS
};
// clang-format on
static_assert(kStyles[kThemeCount - 1].confirmedDigits != 0);  // a theme without a row would be black

}  // namespace

const PanelStyle& panelStyle(std::int32_t theme) {
    return kStyles[theme >= 0 && theme < kThemeCount ? theme : 0];
}
