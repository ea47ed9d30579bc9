#include "settings/dialog/dialog_layout.h"
#include <algorithm>
#include <cmath>
#include <span>
#include "base/identity.h"
#include "settings/interface_texts.h"

namespace {

constexpr unsigned kBaseDpi = 96;

// Units. The page scrolls between the title bar and the bottom bar, right of the navigation.
constexpr float kTitleHeight = 64;
constexpr float kNavigationWidth = 226;
constexpr float kBottomHeight = 64;
constexpr float kColumn = 327;  // width of each of two columns, 20 apart and 20 from the edges
constexpr float kLeft = kNavigationWidth + 20;
constexpr float kRight = kLeft + kColumn + 20;
// The radio page's words are longer on the right.
constexpr float kKeyColumn = 300;
constexpr float kTextColumn = 354;
constexpr float kTextLeft = kLeft + kKeyColumn + 20;
constexpr float kKeyLetter = 42;  // a selector's key, before its value
constexpr float kArrow = 26;
constexpr float kPageEnd = 18;  // below the last control
constexpr float kLiveHeight = 106;

// A control, or equal ones below each other or in a grid: the identifiers from `id` on.
struct Placement {
    int id;
    ControlLook look;
    UnitRect rect;  // of the first; y from the page's top
    int count = 1;
    int columns = 1;
    float stepX = 0;
    float stepY = 0;
};

struct TextPlacement {
    DialogTextStyle style;
    int entry;
    const char* value;
    UnitRect rect;
};

// clang-format off
constexpr Placement kTabs[] = {
    {kGeneralTab, ControlLook::kTab, {12, 80, 202, 40}, kPageCount, 1, 0, 48},
};
constexpr Placement kGeneralPage[] = {
    {kFirstLanguage,       ControlLook::kLanguage,      {kLeft,  46, 103, 34}, kLanguageCount, 3, 112, 40},
    {kThemeChoice,         ControlLook::kSegments,      {kLeft,  212, kColumn, 38}},
    {kOpacitySlider,       ControlLook::kSlider,        {kLeft,  266, kColumn, 54}},
    {kPanelScaleSlider,    ControlLook::kSlider,        {kLeft,  326, kColumn, 54}},
    {kResetPanel,          ControlLook::kButton,        {kLeft,  398, kColumn, 38}},
    {kMasterToggle,        ControlLook::kToggle,        {kRight, 18, kColumn, 54}},
    {kPanelVisibleToggle,  ControlLook::kToggle,        {kRight, 78, kColumn, 54}},
    {kAutoSwitchingToggle, ControlLook::kCompactToggle, {kRight, 182, kColumn, 46}, 2, 1, 0, 48},
    {kDistortSelfToggle,   ControlLook::kCompactToggle, {kRight, 278, kColumn, 46}, 4, 1, 0, 48},
};
constexpr Placement kVoicePage[] = {
    {kFollowVolumeToggle,  ControlLook::kToggle,        {kLeft,  46, kColumn, 54}},
    {kReceiveVolumeSlider, ControlLook::kSlider,        {kLeft,  112, kColumn, 54}, 4, 1, 0, 60},
    {kDistortSelfToggle,   ControlLook::kCompactToggle, {kRight, 46, kColumn, 46}, 4, 1, 0, 48},
    {kEqualizeToggle,      ControlLook::kToggle,        {kRight, 290, kColumn, 54}, 2, 1, 0, 60},
};
constexpr Placement kRadioPage[] = {
    {kCom1Option,      ControlLook::kOption,   {kLeft,  46, 146, 36}, 4, 2, 154, 44},
    {kKeyASelector,    ControlLook::kFixedKey, {kLeft,  182, kKeyColumn, 36}},
    {kKeyBSelector,    ControlLook::kSelector, {kLeft,  224, kKeyColumn, 36}, 4, 1, 0, 42},
    {kPinToggle,       ControlLook::kToggle,   {kTextLeft, 46, kTextColumn, 54}, 2, 1, 0, 60},
    {kTextAlertToggle, ControlLook::kToggle,   {kTextLeft, 210, kTextColumn, 54}, 2, 1, 0, 60},
    {kTextScaleSlider, ControlLook::kSlider,   {kTextLeft, 334, kTextColumn, 54}},
    {kPreviewMessages, ControlLook::kButton,   {kTextLeft, 402, kTextColumn, 38}, 2, 1, 0, 46},
};
// y from the bottom bar's top.
constexpr Placement kBottomButtons[] = {
    {kApply,        ControlLook::kButton,        {454, 14, 130, 36}},
    {kCancel,       ControlLook::kButton,        {592, 14, 130, 36}},
    {kSaveAndClose, ControlLook::kPrimaryButton, {730, 14, 190, 36}},
};
constexpr Placement kCloseButton[] = {
    {kWindowButton, ControlLook::kWindowButton, {884, 14, 36, 36}},
};

constexpr float kWide = 2 * kColumn + 20;
constexpr TextPlacement kGeneralTexts[] = {
    {DialogTextStyle::kHeading, kTextLanguage, nullptr, {kLeft,  18, kColumn, 20}},
    {DialogTextStyle::kHeading, kTextTheme,    nullptr, {kLeft,  184, kColumn, 20}},
    {DialogTextStyle::kHeading, kTextOptions,  nullptr, {kRight, 154, kColumn, 20}},
};
constexpr TextPlacement kVoiceTexts[] = {
    {DialogTextStyle::kHeading, kTextReceiveAndGain, nullptr, {kLeft,  18, kColumn, 20}},
    {DialogTextStyle::kHeading, kTextAudioEffects,   nullptr, {kRight, 18, kColumn, 20}},
    {DialogTextStyle::kHeading, kTextOther,          nullptr, {kRight, 262, kColumn, 20}},
};
constexpr TextPlacement kRadioTexts[] = {
    {DialogTextStyle::kHeading, kTextRadio,        nullptr, {kLeft,  18, kKeyColumn, 20}},
    {DialogTextStyle::kHeading, kTextCustomKeys,   nullptr, {kLeft,  154, kKeyColumn, 20}},
    {DialogTextStyle::kNote,    kTextKeyANote,     nullptr, {kLeft + kKeyLetter, 398, kKeyColumn - kKeyLetter, 76}},
    {DialogTextStyle::kHeading, kTextPanel,        nullptr, {kTextLeft, 18, kTextColumn, 20}},
    {DialogTextStyle::kHeading, kTextTextMessages, nullptr, {kTextLeft, 182, kTextColumn, 20}},
};
constexpr TextPlacement kAboutTexts[] = {
    {DialogTextStyle::kAppName,    kNoText,             kPluginName,                                {kLeft, 24, kWide, 40}},
    {DialogTextStyle::kAppVersion, kNoText,             kPluginVersion,                             {kLeft, 66, kWide, 20}},
    {DialogTextStyle::kParagraph,  kTextAboutParagraph, nullptr,                                    {kLeft, 104, kWide, 92}},
    {DialogTextStyle::kAboutLabel, kTextAuthor,         nullptr,                                    {kLeft, 220, 160, 36}},
    {DialogTextStyle::kAboutLabel, kTextSupport,        nullptr,                                    {kLeft, 260, 160, 36}},
    {DialogTextStyle::kAboutLabel, kTextPlatform,       nullptr,                                    {kLeft, 300, 160, 36}},
    {DialogTextStyle::kAboutLabel, kTextLicence,        nullptr,                                    {kLeft, 340, 160, 36}},
    {DialogTextStyle::kAboutValue, kNoText,             kPluginAuthor,                              {kLeft + 170, 220, kWide - 170, 36}},
    {DialogTextStyle::kAboutValue, kNoText,             "Attach what hopline_worker.exe --diagnose writes", {kLeft + 170, 260, kWide - 170, 36}},
    {DialogTextStyle::kAboutValue, kNoText,             "MSFS 2024 · TeamSpeak 3 · Windows x64",    {kLeft + 170, 300, kWide - 170, 36}},
    {DialogTextStyle::kAboutValue, kNoText,             "MIT",                                      {kLeft + 170, 340, kWide - 170, 36}},
    {DialogTextStyle::kNote,       kTextLanguageNames,  nullptr,                                    {kLeft, 400, kWide, 40}},
};
// clang-format on

struct Page {
    std::span<const Placement> controls;
    std::span<const TextPlacement> texts;
};

Page pageOf(int page) {
    switch (page) {
        case 1:
            return {kVoicePage, kVoiceTexts};
        case 2:
            return {kRadioPage, kRadioTexts};
        case 3:
            return {{}, kAboutTexts};
        default:
            return {kGeneralPage, kGeneralTexts};
    }
}

UnitRect rectOf(const Placement& placement, int index) {
    const int column = index % placement.columns;
    const int row = index / placement.columns;
    return {placement.rect.x + static_cast<float>(column) * placement.stepX,
            placement.rect.y + static_cast<float>(row) * placement.stepY, placement.rect.width, placement.rect.height};
}

float pageHeight(const Page& page) {
    float bottom = 0;
    for (const Placement& placement : page.controls) {
        const UnitRect last = rectOf(placement, placement.count - 1);
        bottom = std::max(bottom, last.y + last.height);
    }
    for (const TextPlacement& text : page.texts) bottom = std::max(bottom, text.rect.y + text.rect.height);
    return bottom + kPageEnd;
}

// Units to pixels, with an origin in pixels. Edges are rounded, so that what touches still touches.
PixelRect toPixels(const DialogLayout& layout, const UnitRect& rect, std::int32_t top) {
    return {layout.px(rect.x), top + layout.px(rect.y), layout.px(rect.x + rect.width),
            top + layout.px(rect.y + rect.height)};
}

void place(DialogLayout& layout, std::span<const Placement> placements, std::int32_t top, bool isOnPage) {
    for (const Placement& placement : placements) {
        for (int i = 0; i < placement.count; i++) {
            const DialogRow* row = findRow(placement.id + i);
            if (!row) continue;
            layout.controls.push_back(
                {row->id, row->kind, placement.look, toPixels(layout, rectOf(placement, i), top), isOnPage});
        }
    }
}

void placeScrollBar(DialogLayout& layout, std::int32_t contentHeight) {
    const PixelRect& view = layout.pageView;
    if (layout.scrollRange == 0) return;
    layout.scrollBar = {view.right - layout.px(14), view.top + layout.px(4), view.right - layout.px(4),
                        view.bottom - layout.px(4)};
    const std::int32_t length = layout.scrollBar.bottom - layout.scrollBar.top;
    const std::int32_t thumb = std::max(layout.px(24), length * (view.bottom - view.top) / contentHeight);
    layout.scrollThumb = layout.scrollBar;
    layout.scrollThumb.top += (length - thumb) * layout.scroll / layout.scrollRange;
    layout.scrollThumb.bottom = layout.scrollThumb.top + thumb;
}

float usableDpiScale(unsigned dpi) {
    return static_cast<float>(dpi == 0 ? kBaseDpi : dpi) / static_cast<float>(kBaseDpi);
}

// The window's size at a resolution, at most the work area's.
PixelSize sizeIn(const PixelRect& workArea, unsigned dpi) {
    const float scale = usableDpiScale(dpi);
    const auto wanted = [&](int units) {
        return static_cast<std::int32_t>(std::lround(static_cast<float>(units) * scale));
    };
    return {std::min(wanted(kDialogWidth), workArea.width()), std::min(wanted(kDialogHeight), workArea.height())};
}

int partCount(const DialogControl& control) {
    if (control.look == ControlLook::kSegments) return optionCount(*findRow(control.id));
    return control.look == ControlLook::kSelector ? 2 : 1;
}

// Part 1 (forward) is all of a selector but its back arrow: a click on its value steps forward.
int partAt(const DialogLayout& layout, const DialogControl& control, PixelPoint point) {
    if (control.look == ControlLook::kSelector) return partRect(layout, control, 0).contains(point) ? 0 : 1;
    for (int part = 0; part < partCount(control); part++) {
        if (partRect(layout, control, part).contains(point)) return part;
    }
    return 0;
}

}  // namespace

std::int32_t DialogLayout::px(float units) const {
    return static_cast<std::int32_t>(std::lround(units * scale));
}

DialogLayout layoutDialog(std::int32_t width, std::int32_t height, unsigned dpi, int page, std::int32_t scroll) {
    DialogLayout layout;
    layout.page = std::clamp(page, 0, kPageCount - 1);
    layout.client = {0, 0, std::max(width, 1), std::max(height, 1)};
    // Half a pixel is no reason to shrink: the window's own size is rounded.
    const float fitting = std::min((static_cast<float>(layout.client.right) + 0.5f) / kDialogWidth,
                                   (static_cast<float>(layout.client.bottom) + 0.5f) / kDialogLowest);
    layout.scale = std::min(usableDpiScale(dpi), fitting);
    layout.titleBar = {0, 0, layout.client.right, layout.px(kTitleHeight)};
    layout.navigation = {0, layout.titleBar.bottom, layout.px(kNavigationWidth), layout.client.bottom};
    const std::int32_t bottomTop = layout.client.bottom - layout.px(kBottomHeight);
    layout.bottomBar = {layout.navigation.right, bottomTop, layout.client.right, layout.client.bottom};
    layout.pageView = {layout.navigation.right, layout.titleBar.bottom, layout.client.right, bottomTop};

    const Page shown = pageOf(layout.page);
    const std::int32_t contentHeight = layout.px(pageHeight(shown));
    layout.scrollRange = std::max(0, contentHeight - (layout.pageView.bottom - layout.pageView.top));
    layout.scroll = std::clamp(scroll, 0, layout.scrollRange);
    const std::int32_t pageTop = layout.pageView.top - layout.scroll;

    place(layout, kTabs, 0, false);
    place(layout, shown.controls, pageTop, true);
    place(layout, kBottomButtons, bottomTop, false);
    place(layout, kCloseButton, 0, false);
    const std::int32_t liveTop = layout.client.bottom - layout.px(kLiveHeight + 14);
    layout.controls.push_back({kLiveRow, RowKind::kLive, ControlLook::kLive,
                               toPixels(layout, {14, 0, kNavigationWidth - 22, kLiveHeight}, liveTop), false});
    for (const TextPlacement& text : shown.texts)
        layout.pageTexts.push_back({text.style, text.entry, text.value, toPixels(layout, text.rect, pageTop)});
    placeScrollBar(layout, contentHeight);
    return layout;
}

DialogHit hitDialog(const DialogLayout& layout, PixelPoint point) {
    if (!layout.client.contains(point)) return {};
    if (layout.scrollBar.contains(point)) return {kScrollBarHit, 0};
    for (const DialogControl& control : layout.controls) {
        if (!control.rect.contains(point)) continue;
        if (control.isOnPage && !layout.pageView.contains(point)) continue;
        return {control.id, partAt(layout, control, point)};
    }
    return {layout.titleBar.contains(point) ? kTitleBarHit : kNothingHit, 0};
}

const DialogControl* findControl(const DialogLayout& layout, int id) {
    for (const DialogControl& control : layout.controls) {
        if (control.id == id) return &control;
    }
    return nullptr;
}

PixelRect partRect(const DialogLayout& layout, const DialogControl& control, int part) {
    PixelRect rect = control.rect;
    if (control.look == ControlLook::kSegments) {
        const int count = partCount(control);
        const std::int32_t width = rect.right - rect.left;
        rect.right = rect.left + width * (part + 1) / count;
        rect.left += width * part / count;
    } else if (control.look == ControlLook::kFixedKey) {
        rect.left += layout.px(kKeyLetter);
    } else if (control.look == ControlLook::kSelector) {
        rect.left += layout.px(kKeyLetter);
        if (part == 0) rect.right = rect.left + layout.px(kArrow);
        if (part == 1) rect.left = rect.right - layout.px(kArrow);
    }
    return rect;
}

PixelRect switchRect(const DialogLayout& layout, const DialogControl& control) {
    const std::int32_t right = control.rect.right - layout.px(12);
    const std::int32_t top = (control.rect.top + control.rect.bottom - layout.px(20)) / 2;
    return {right - layout.px(36), top, right, top + layout.px(20)};
}

PixelRect trackRect(const DialogLayout& layout, const DialogControl& control) {
    const std::int32_t middle = control.rect.bottom - layout.px(14);
    return {control.rect.left + layout.px(12), middle - layout.px(2), control.rect.right - layout.px(12),
            middle + layout.px(2)};
}

std::int32_t thumbX(const DialogLayout& layout, const DialogControl& control, const SliderRange& range, float value) {
    const PixelRect track = trackRect(layout, control);
    const float share = std::clamp((value - range.min) / (range.max - range.min), 0.0f, 1.0f);
    return track.left + static_cast<std::int32_t>(std::lround(share * static_cast<float>(track.right - track.left)));
}

float levelAt(const DialogLayout& layout, const DialogControl& control, const SliderRange& range, std::int32_t x) {
    const PixelRect track = trackRect(layout, control);
    const auto length = static_cast<float>(std::max(1, track.right - track.left));
    const float share = std::clamp(static_cast<float>(x - track.left) / length, 0.0f, 1.0f);
    return range.min + share * (range.max - range.min);
}

std::int32_t scrollTo(const DialogLayout& layout, const DialogControl& control) {
    if (!control.isOnPage) return layout.scroll;
    const std::int32_t margin = layout.px(kPageEnd);
    std::int32_t scroll = layout.scroll;
    if (control.rect.bottom + margin > layout.pageView.bottom)
        scroll += control.rect.bottom + margin - layout.pageView.bottom;
    if (control.rect.top - margin < layout.pageView.top) scroll += control.rect.top - margin - layout.pageView.top;
    return std::clamp(scroll, 0, layout.scrollRange);
}

PixelRect placeDialog(const PixelRect& workArea, unsigned dpi) {
    const PixelSize size = sizeIn(workArea, dpi);
    const std::int32_t x = (workArea.left + workArea.right - size.width) / 2;
    const std::int32_t y = (workArea.top + workArea.bottom - size.height) / 2;
    return {x, y, x + size.width, y + size.height};
}

PixelRect placeForResolution(const PixelRect& suggested, const PixelRect& workArea, unsigned dpi, bool isHeld) {
    if (workArea.isEmpty()) return suggested;
    if (!isHeld) return placeDialog(workArea, dpi);
    const PixelSize size = sizeIn(workArea, dpi);
    const std::int32_t x = suggested.left + (suggested.width() - size.width) / 2;
    return {x, suggested.top, x + size.width, suggested.top + size.height};
}

PixelRect moveInto(const PixelRect& rect, const PixelRect& workArea) {
    if (workArea.isEmpty()) return rect;
    const std::int32_t x = std::max(workArea.left, std::min(rect.left, workArea.right - rect.width()));
    const std::int32_t y = std::max(workArea.top, std::min(rect.top, workArea.bottom - rect.height()));
    return {x, y, x + rect.width(), y + rect.height()};
}
