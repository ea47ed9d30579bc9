#include "panel/panel_tooltip_win.h"
#include <commctrl.h>
#include "base/wide_text_win.h"
#include "panel/panel_tooltip.h"
#include "ui/monitor_win.h"

namespace {

constexpr UINT_PTR kToolId = 1;
constexpr LPARAM kMaxTipWidth = 480;  // pixels; long tips wrap, and line breaks count

TTTOOLINFOW toolOf(HWND owner) {
    TTTOOLINFOW tool = {};
    // Not the whole record: a host without a manifest has the old controls, which reject the newer size.
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
    tool.hwnd = owner;
    tool.uId = kToolId;
    return tool;
}

}  // namespace

void PanelTooltip::create(HWND owner, HINSTANCE module) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    owner_ = owner;
    tooltip_window_ = CreateWindowExW(WS_EX_NOACTIVATE | WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                      WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT, CW_USEDEFAULT,
                                      CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, module, nullptr);
    if (!tooltip_window_) return;
    TTTOOLINFOW tool = toolOf(owner_);
    wchar_t none[] = L"";
    tool.lpszText = none;
    SendMessageW(tooltip_window_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageW(tooltip_window_, TTM_SETMAXTIPWIDTH, 0, kMaxTipWidth);
}

void PanelTooltip::destroy() {
    if (tooltip_window_) DestroyWindow(tooltip_window_);
    tooltip_window_ = nullptr;
    isShown_ = false;
    text_.clear();
}

void PanelTooltip::show(std::string_view text) {
    if (text.empty()) return hide();
    if (!tooltip_window_) return;
    const bool isOther = setText(text);
    POINT cursor = {};
    GetCursorPos(&cursor);
    const bool isNew = !isShown_;
    if (isNew) moveBeside(cursor);
    activate(true);
    // Only a tip that is shown has the size of its text.
    if (isNew || isOther || cursor.x != cursor_.x || cursor.y != cursor_.y) moveBeside(cursor);
}

void PanelTooltip::hide() {
    activate(false);
}

bool PanelTooltip::setText(std::string_view text) {
    if (text == text_) return false;
    text_ = text;
    std::wstring wide = wideFromUtf8(text);
    TTTOOLINFOW tool = toolOf(owner_);
    tool.lpszText = wide.data();
    SendMessageW(tooltip_window_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    return true;
}

void PanelTooltip::moveBeside(const POINT& cursor) {
    RECT tip = {};
    GetWindowRect(tooltip_window_, &tip);
    const PixelPoint at{cursor.x, cursor.y};
    const PixelPoint place = tipPlace(at, {tip.right - tip.left, tip.bottom - tip.top}, workAreaOf(at));
    const LPARAM position = MAKELPARAM(place.x, place.y);
    if (position != position_ || !isShown_) SendMessageW(tooltip_window_, TTM_TRACKPOSITION, 0, position);
    position_ = position;
    cursor_ = cursor;
}

void PanelTooltip::activate(bool on) {
    if (!tooltip_window_ || on == isShown_) return;
    isShown_ = on;
    TTTOOLINFOW tool = toolOf(owner_);
    SendMessageW(tooltip_window_, TTM_TRACKACTIVATE, on ? TRUE : FALSE, reinterpret_cast<LPARAM>(&tool));
}
