#include "settings/dialog/dialog_interaction.h"
#include <algorithm>
#include "settings/language.h"

namespace {

constexpr int kNotch = 120;
constexpr float kScrollUnits = 48;  // per notch of the wheel

bool isReachable(const DialogControl& control) {
    return control.look != ControlLook::kLive && control.look != ControlLook::kFixedKey;
}

bool isRingSeen(const DialogInput& input, const DialogLayout& layout) {
    const DialogControl* control = input.isFocusShown ? findControl(layout, input.focus) : nullptr;
    return control && (!control->isOnPage || !intersectRects(control->rect, layout.pageView).isEmpty());
}

void scrollIntoView(DialogInput& input, const DialogLayout& layout) {
    if (const DialogControl* control = findControl(layout, input.focus)) input.scroll = scrollTo(layout, *control);
}

void moveFocus(DialogInput& input, const DialogLayout& layout, int direction) {
    std::vector<int> ids;
    for (const DialogControl& control : layout.controls) {
        if (isReachable(control)) ids.push_back(control.id);
    }
    const auto count = static_cast<int>(ids.size());
    const auto found = std::find(ids.begin(), ids.end(), input.focus);
    const int start = found != ids.end() ? static_cast<int>(found - ids.begin()) : direction > 0 ? -1 : count;
    input.focus = ids[static_cast<std::size_t>((start + direction + count) % count)];
    scrollIntoView(input, layout);
}

// Moves the focus `by` controls further among several equal ones, if it stays among them.
void moveFocusAmong(DialogInput& input, const DialogLayout& layout, int first, int count, int by) {
    const int index = input.focus - first + by;
    if (index < 0 || index >= count) return;
    input.focus = first + index;
    scrollIntoView(input, layout);
}

void dragSlider(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at) {
    const DialogControl* control = findControl(layout, input.pressed.id);
    const DialogRow* row = findRow(input.pressed.id);
    if (control && row) setLevel(model, *row, levelAt(layout, *control, row->range, at.x));
}

void dragScrollBar(DialogInput& input, const DialogLayout& layout, PixelPoint at) {
    const std::int32_t thumb = layout.scrollThumb.bottom - layout.scrollThumb.top;
    const std::int32_t length = layout.scrollBar.bottom - layout.scrollBar.top - thumb;
    const std::int32_t top = at.y - input.grab - layout.scrollBar.top;
    input.scroll = std::clamp(top * layout.scrollRange / std::max(1, length), 0, layout.scrollRange);
}

void scrollPage(DialogInput& input, const DialogLayout& layout, std::int32_t pixels) {
    input.scroll = std::clamp(layout.scroll + pixels, 0, layout.scrollRange);
}

std::int32_t pageStep(const DialogLayout& layout) {
    return (layout.pageView.bottom - layout.pageView.top) * 3 / 4;
}

std::optional<DialogCommand> commandAt(const DialogHit& hit, const DialogModel& model) {
    const DialogRow* row = findRow(hit.id);
    if (!row || row->kind == RowKind::kSlider || row->kind == RowKind::kLive) return std::nullopt;
    if (row->kind == RowKind::kChoice) return DialogCommand{hit.id, hit.part};
    if (row->kind == RowKind::kSelector) {
        const int count = optionCount(*row);
        const int by = hit.part == 0 ? count - 1 : 1;
        return DialogCommand{hit.id, (rowNumber(*row, model.working) + by) % count};
    }
    return DialogCommand{hit.id, -1};
}

// Arrow keys on the focused control: horizontal and vertical are -1, 0 or 1, down and right positive.
std::optional<DialogCommand> pressArrow(DialogInput& input, DialogModel& model, const DialogLayout& layout,
                                        int horizontal, int vertical) {
    const DialogRow* row = findRow(input.focus);
    if (!row || !findControl(layout, input.focus)) {
        scrollPage(input, layout, vertical * layout.px(kScrollUnits));
        return std::nullopt;
    }
    switch (row->kind) {
        case RowKind::kTab: {
            const int page = row->value + vertical + horizontal;
            if (page < 0 || page >= kPageCount) return std::nullopt;
            input.focus = kGeneralTab + page;
            return DialogCommand{input.focus, -1};
        }
        case RowKind::kLanguage:
            moveFocusAmong(input, layout, kFirstLanguage, kLanguageCount, horizontal + 3 * vertical);
            return std::nullopt;
        case RowKind::kOption:
            moveFocusAmong(input, layout, kCom1Option, 4, horizontal + 2 * vertical);
            return std::nullopt;
        case RowKind::kSlider:
            stepLevel(model, *row, horizontal - vertical);
            scrollIntoView(input, layout);
            return std::nullopt;
        case RowKind::kChoice:
        case RowKind::kSelector:
            stepOption(model, *row, horizontal + vertical);
            scrollIntoView(input, layout);
            return std::nullopt;
        case RowKind::kToggle:
        case RowKind::kButton:
        case RowKind::kLive:
            moveFocus(input, layout, horizontal + vertical);
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<DialogCommand> pressPlainKey(DialogInput& input, DialogModel& model, const DialogLayout& layout,
                                           DialogKey key) {
    const DialogRow* row = findControl(layout, input.focus) ? findRow(input.focus) : nullptr;
    if (key == DialogKey::kHome || key == DialogKey::kEnd) {
        const bool isEnd = key == DialogKey::kEnd;
        if (row && row->kind == RowKind::kSlider)
            setLevel(model, *row, isEnd ? row->range.max : row->range.min);
        else if (row && optionCount(*row) > 0)
            stepOption(model, *row, isEnd ? optionCount(*row) : -optionCount(*row));
        else
            input.scroll = isEnd ? layout.scrollRange : 0;
        return std::nullopt;
    }
    if (!row || row->kind == RowKind::kSlider) return std::nullopt;
    return DialogCommand{input.focus, -1};  // Space, Enter
}

}  // namespace

void forgetMouse(DialogInput& input) {
    input.hover = {};
    letGo(input);
}

void letGo(DialogInput& input) {
    input.pressed = {};
    input.isDragging = false;
}

DialogAction runCommand(DialogInput& input, DialogModel& model, const DialogCommand& command,
                        std::uint16_t systemLanguage) {
    const int page = model.page;
    const std::int32_t language = dialogLanguage(model, systemLanguage);
    const DialogAction action = runDialogCommand(model, command.id, command.option);
    if (model.page != page) input.scroll = 0;
    if (model.page != page || dialogLanguage(model, systemLanguage) != language) forgetMouse(input);
    return action;
}

void moveMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at) {
    input.hover = hitDialog(layout, at);
    if (!input.isDragging) return;
    if (input.pressed.id == kScrollBarHit)
        dragScrollBar(input, layout, at);
    else
        dragSlider(input, model, layout, at);
}

void leaveMouse(DialogInput& input) {
    input.hover = {};
}

bool pressMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at) {
    const DialogHit hit = hitDialog(layout, at);
    forgetMouse(input);
    input.hover = hit;
    input.isFocusShown = false;
    if (hit.id == kScrollBarHit) {
        const PixelRect& thumb = layout.scrollThumb;
        const bool isOnThumb = at.y >= thumb.top && at.y < thumb.bottom;
        input.pressed = hit;
        input.isDragging = true;
        input.grab = isOnThumb ? at.y - thumb.top : (thumb.bottom - thumb.top) / 2;
        dragScrollBar(input, layout, at);
        return true;
    }
    const DialogRow* row = findRow(hit.id);
    if (!row || row->kind == RowKind::kLive || isFixedKey(*row)) return false;
    input.pressed = hit;
    input.focus = hit.id;
    if (row->kind == RowKind::kSlider) {
        const PixelRect track = trackRect(layout, *findControl(layout, hit.id));
        // A press on the words above the track does not drag.
        if (at.y < track.top - layout.px(10)) return true;
        input.isDragging = true;
        dragSlider(input, model, layout, at);
    }
    return true;
}

std::optional<DialogCommand> releaseMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout,
                                          PixelPoint at) {
    const DialogHit pressed = input.pressed;
    if (input.isDragging) moveMouse(input, model, layout, at);
    forgetMouse(input);
    input.hover = hitDialog(layout, at);
    if (pressed.id < 0 || pressed != input.hover) return std::nullopt;
    return commandAt(pressed, model);
}

void turnWheel(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at, int delta) {
    if ((input.wheelRest > 0) != (delta > 0)) input.wheelRest = 0;
    input.wheelRest += delta;
    const int notches = input.wheelRest / kNotch;
    input.wheelRest -= notches * kNotch;
    if (notches == 0) return;
    const DialogRow* row = findRow(hitDialog(layout, at).id);
    const bool isMeant = row && !isFixedKey(*row) && (row->id == input.focus || layout.scrollRange == 0);
    if (isMeant && row->kind == RowKind::kSlider)
        stepLevel(model, *row, notches);
    else if (isMeant && row->kind == RowKind::kSelector)
        stepOption(model, *row, -notches);
    else
        scrollPage(input, layout, -notches * layout.px(kScrollUnits));
}

std::optional<DialogCommand> pressKey(DialogInput& input, DialogModel& model, const DialogLayout& layout, DialogKey key,
                                      bool isRepeated) {
    const bool isPress = key == DialogKey::kSpace || key == DialogKey::kEnter;
    if (isRepeated && (isPress || key == DialogKey::kEscape)) return std::nullopt;
    if (key == DialogKey::kEscape) return DialogCommand{kCancel, -1};
    if (isPress && !isRingSeen(input, layout)) {
        if (key == DialogKey::kSpace) return std::nullopt;
        return DialogCommand{kSaveAndClose, -1};
    }
    input.isFocusShown = true;
    switch (key) {
        case DialogKey::kTab:
            moveFocus(input, layout, 1);
            return std::nullopt;
        case DialogKey::kBackTab:
            moveFocus(input, layout, -1);
            return std::nullopt;
        case DialogKey::kPageUp:
            scrollPage(input, layout, -pageStep(layout));
            return std::nullopt;
        case DialogKey::kPageDown:
            scrollPage(input, layout, pageStep(layout));
            return std::nullopt;
        case DialogKey::kLeft:
            return pressArrow(input, model, layout, -1, 0);
        case DialogKey::kRight:
            return pressArrow(input, model, layout, 1, 0);
        case DialogKey::kUp:
            return pressArrow(input, model, layout, 0, -1);
        case DialogKey::kDown:
            return pressArrow(input, model, layout, 0, 1);
        default:
            return pressPlainKey(input, model, layout, key);
    }
}
