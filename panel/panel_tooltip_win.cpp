#include "panel/panel_tooltip_win.h"
#include <commctrl.h>
#include "base/wide_text_win.h"
#include "panel/panel_tooltip.h"

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
    setText(text);
    POINT cursor = {};
    GetCursorPos(&cursor);
    const PixelPoint place = tipPlace({cursor.x, cursor.y});
    const LPARAM position = MAKELPARAM(place.x, place.y);
    if (position != position_ || !isShown_) SendMessageW(tooltip_window_, TTM_TRACKPOSITION, 0, position);
    position_ = position;
    activate(true);
}

void PanelTooltip::hide() {
    activate(false);
}

void PanelTooltip::setText(std::string_view text) {
    if (text == text_) return;
    text_ = text;
    std::wstring wide = wideFromUtf8(text);
    TTTOOLINFOW tool = toolOf(owner_);
    tool.lpszText = wide.data();
    SendMessageW(tooltip_window_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
}

void PanelTooltip::activate(bool on) {
    if (!tooltip_window_ || on == isShown_) return;
    isShown_ = on;
    TTTOOLINFOW tool = toolOf(owner_);
    SendMessageW(tooltip_window_, TTM_TRACKACTIVATE, on ? TRUE : FALSE, reinterpret_cast<LPARAM>(&tool));
}
