// dialog_layout.h - where everything is in the settings dialog, and what lies under a point. The design is 940 x 660
// units, one unit per pixel at 96 DPI; rectangles are client pixels, y down. Pure functions. [any]
#pragma once
#include <cstdint>
#include <vector>
#include "settings/dialog/dialog_rows.h"
#include "ui/geometry.h"

inline constexpr int kDialogWidth = 940;  // units
inline constexpr int kDialogHeight = 660;
inline constexpr int kDialogLowest = 420;  // units: below this height everything shrinks

// How a control is drawn.
enum class ControlLook {
    kTab,
    kLanguage,
    kToggle,         // label and description
    kCompactToggle,  // label only
    kSlider,
    kSegments,  // a choice's options side by side
    kOption,
    kSelector,
    kFixedKey,  // a selector that cannot be changed
    kButton,
    kPrimaryButton,
    kWindowButton,
    kLive,
};

struct DialogControl {
    int id = 0;
    RowKind kind = RowKind::kButton;
    ControlLook look = ControlLook::kButton;
    PixelRect rect;         // where it is now, the page's scrolling included
    bool isOnPage = false;  // scrolls with the page and is cut to pageView
};

// A text of the page itself: headings, the note about key A, the About page.
enum class DialogTextStyle { kHeading, kNote, kAppName, kAppVersion, kParagraph, kAboutLabel, kAboutValue };
struct DialogPageText {
    DialogTextStyle style;
    int entry;  // text entry, or kNoText: value is the text
    const char* value;
    PixelRect rect;  // as for a control on the page
};

struct DialogLayout {
    float scale = 1.0f;  // client pixels per unit
    int page = 0;
    PixelRect client;
    PixelRect titleBar;  // drags the window, where no control is
    PixelRect navigation;
    PixelRect pageView;  // the page shows here
    PixelRect bottomBar;
    PixelRect scrollBar;  // empty when the page fits
    PixelRect scrollThumb;
    std::int32_t scroll = 0;              // pixels, 0..scrollRange
    std::int32_t scrollRange = 0;         // 0 when the page fits
    std::vector<DialogControl> controls;  // in the order the keyboard visits them
    std::vector<DialogPageText> pageTexts;

    std::int32_t px(float units) const;  // rounded
};

// The dialog in a client area at a resolution. A client narrower than the design or lower than kDialogLowest shrinks
// it; a page higher than its view scrolls. scroll is clamped.
DialogLayout layoutDialog(std::int32_t width, std::int32_t height, unsigned dpi, int page, std::int32_t scroll);

// What is under a point, or in focus: a control with its part, or one of the places below.
inline constexpr int kNothingHit = -1;
inline constexpr int kTitleBarHit = -2;
inline constexpr int kScrollBarHit = -3;
struct DialogHit {
    int id = kNothingHit;
    int part = 0;  // option of a segments control; of a selector 0 back, 1 forward; else 0

    bool operator==(const DialogHit&) const = default;
};
DialogHit hitDialog(const DialogLayout& layout, PixelPoint point);

// Null when the page shown has none of that identifier.
const DialogControl* findControl(const DialogLayout& layout, int id);

// The parts of a control: an option of segments; the back (0) and forward (1) arrows of a selector; the words of a
// fixed key. Other controls are one part.
PixelRect partRect(const DialogLayout& layout, const DialogControl& control, int part);
// The switch within a toggle.
PixelRect switchRect(const DialogLayout& layout, const DialogControl& control);
// The line that a slider's thumb runs on: its ends are where the thumb's middle is at minimum and maximum.
PixelRect trackRect(const DialogLayout& layout, const DialogControl& control);
std::int32_t thumbX(const DialogLayout& layout, const DialogControl& control, const SliderRange& range, float value);
// The value at which a slider's thumb has its middle at x; beyond an end of the track, that end's value.
float levelAt(const DialogLayout& layout, const DialogControl& control, const SliderRange& range, std::int32_t x);

// The scroll position nearest to the present one that shows the whole control.
std::int32_t scrollTo(const DialogLayout& layout, const DialogControl& control);

// The window in a monitor's work area: its size at this resolution, at most the work area's, and centred.
PixelRect placeDialog(const PixelRect& workArea, unsigned dpi);
// The window where the resolution under it is another from now on: centred in the work area; while the mouse holds it
// by its title bar, where the system suggests it, so that it stays under the pointer. An empty work area is an unknown
// one: the suggestion as it is.
PixelRect placeForResolution(const PixelRect& suggested, const PixelRect& workArea, unsigned dpi, bool isHeld);
// Moved as little as it takes to be inside the work area, as far as it has room; from an unknown (empty) one not at
// all.
PixelRect moveInto(const PixelRect& rect, const PixelRect& workArea);
