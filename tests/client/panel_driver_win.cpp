#include "tests/client/panel_driver_win.h"
#include "settings/dialog/dialog_rows.h"
#include "tests/client/test_machine_win.h"

namespace {

constexpr UnitPoint kNowhere = {-1.0e6f, -1.0e6f};
constexpr float kRingShare = 0.75f;    // of the large knob's radius: between the inner knob's edge and its own
constexpr float kSpotDistance = 8.0f;  // units between a free spot and every element, at least

UnitPoint middleOf(const UnitRect& rect) {
    return {rect.x + rect.width / 2.0f, rect.y + rect.height / 2.0f};
}

UnitPoint digitsMiddle(const ThemeLayout& layout, std::int32_t element) {
    const bool isActive = element == kActiveMhzDigits || element == kActiveChannelDigits;
    const FrequencyCells cells = layoutFrequency(layout.displays[isActive ? 0 : 1]);
    const bool isMhz = element == kActiveMhzDigits || element == kStandbyMhzDigits;
    return middleOf(isMhz ? cells.mhzField : cells.channelField);
}

UnitPoint ringPoint(const PanelHotspot& knob) {
    const UnitPoint middle = middleOf(knob.rect);
    return {middle.x + knob.rect.width / 2.0f * kRingShare, middle.y};
}

bool isFree(std::int32_t theme, UnitPoint at) {
    for (const float dx : {-kSpotDistance, 0.0f, kSpotDistance}) {
        for (const float dy : {-kSpotDistance, 0.0f, kSpotDistance}) {
            if (hit_test(theme, {at.x + dx, at.y + dy}) != kBackground) return false;
        }
    }
    return true;
}

}  // namespace

HWND findPanel() {
    return static_cast<HWND>(findOwnWindow(L"CorvalisRadioPanel"));
}

HWND findPanelTip() {
    return static_cast<HWND>(findOwnWindow(L"tooltips_class32"));
}

DPI_AWARENESS_CONTEXT useDevicePixels() {
    return SetThreadDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
}

std::string_view themeName(std::int32_t theme) {
    return optionText(*findRow(kThemeChoice), theme, 0);
}

double PanelDriver::scale() const {
    RECT client = {};
    GetClientRect(panel_, &client);
    return static_cast<double>(client.right) / static_cast<double>(layout_.width);
}

POINT PanelDriver::toClient(UnitPoint point) const {
    return {static_cast<LONG>(static_cast<double>(point.x - layout_.origin.x) * scale()),
            static_cast<LONG>(static_cast<double>(point.y - layout_.origin.y) * scale())};
}

UnitPoint PanelDriver::freeSpot() const {
    for (float y = layout_.origin.y + 20.0f; y < layout_.origin.y + layout_.height; y += 10.0f) {
        for (float x = layout_.origin.x + 60.0f; x < layout_.origin.x + layout_.width; x += 10.0f) {
            if (isFree(theme_, {x, y})) return {x, y};
        }
    }
    return kNowhere;
}

POINT PanelDriver::pointOn(std::int32_t element) const {
    UnitPoint point = kNowhere;
    const PanelHotspot* hotspot = findHotspot(layout_, element);
    if (element == kBackground) {
        point = freeSpot();
    } else if (element == kFrequencyDisplay) {
        point = middleOf(layoutFrequency(layout_.displays[1]).pointField);
    } else if (element >= kActiveMhzDigits && element <= kStandbyChannelDigits) {
        point = digitsMiddle(layout_, element);
    } else if (hotspot) {
        point = element == kLargeKnob ? ringPoint(*hotspot) : middleOf(hotspot->rect);
    }
    if (point.x < 0.0f || hit_test(theme_, point) != element) return {-1, -1};
    return toClient(point);
}

void PanelDriver::post(UINT message, WPARAM wParam, LPARAM lParam) const {
    PostMessageW(panel_, message, wParam, lParam);
}

void PanelDriver::postAt(UINT message, WPARAM keys, POINT at) const {
    post(message, keys, MAKELPARAM(at.x, at.y));
}

void PanelDriver::wheel(POINT at, int delta) const {
    ClientToScreen(panel_, &at);
    postAt(WM_MOUSEWHEEL, MAKEWPARAM(0, delta), at);
}

void PanelDriver::click(std::int32_t element) const {
    const POINT at = pointOn(element);
    press(at);
    release(at);
}

void PanelDriver::drag(std::int32_t element, int pixelsPerMove, int moves) const {
    POINT at = pointOn(element);
    press(at);
    for (int i = 0; i < moves; i++) {
        at.y -= pixelsPerMove;
        move(at);
    }
    release(at);
}
