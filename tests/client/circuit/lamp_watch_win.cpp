#include "tests/client/circuit/lamp_watch_win.h"
#include <windows.h>
#include <algorithm>
#include "tests/client/panel_driver_win.h"

namespace {

// The middle of a lit glass is nearly white (panel/lamp_images.cpp), that of a dark one nearly black.
constexpr int kShiningFrom = 130;

bool shines(COLORREF colour) {
    if (colour == CLR_INVALID) return false;
    return std::min({GetRValue(colour), GetGValue(colour), GetBValue(colour)}) >= kShiningFrom;
}

}  // namespace

LampWatch::LampWatch(std::int32_t theme)
    : layout_(themeLayout(theme)),
      glasses_{layout_.txLamp, layout_.rxLamp, findHotspot(layout_, kCustomKeyA)->indicator} {}

const std::array<PanelLamp, 3>& LampWatch::look() {
    const HWND panel = findPanel();
    RECT place = {};
    const bool isThere = panel && IsWindowVisible(panel) && GetWindowRect(panel, &place);
    const float scale = static_cast<float>(place.right - place.left) / layout_.width;
    const HDC screen = GetDC(nullptr);
    for (std::size_t i = 0; i < lamps_.size(); i++) {
        const UnitRect& glass = glasses_[i];
        const float x = (glass.x + glass.width / 2.0f - layout_.origin.x) * scale;
        const float y = (glass.y + glass.height / 2.0f - layout_.origin.y) * scale;
        lamps_[i].isLit =
            isThere && shines(GetPixel(screen, place.left + static_cast<int>(x), place.top + static_cast<int>(y)));
    }
    ReleaseDC(nullptr, screen);
    return lamps_;
}
