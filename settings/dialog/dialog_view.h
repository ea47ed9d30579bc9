// dialog_view.h - every text the settings dialog shows at a moment, with its place, size and tone: what is painted, and
// what a test measures. Pure functions. [any]
#pragma once
#include <functional>
#include <string>
#include <vector>
#include "settings/dialog/dialog_layout.h"
#include "ui/text_side.h"

enum class TextTone { kStrong, kPlain, kDim, kFaint, kAccent, kAmber, kOnAccent };

struct DialogText {
    std::string text;              // UTF-8
    PixelRect rect;                // client pixels; centred vertically, or from the top when it wraps
    PixelRect clip;                // the part of it that may be seen
    std::int32_t fontPixels = 12;  // em height
    bool isBold = false;
    bool wraps = false;  // at spaces, and between ideographs
    TextTone tone = TextTone::kPlain;
    TextSide side = TextSide::kLeft;
    std::int32_t language = 0;  // whose font it is drawn in
    int id = 0;                 // the control it belongs to, 0 for none

    bool operator==(const DialogText&) const = default;
};

// A radio of the simulator at this moment.
struct LiveRadio {
    bool isConnected = false;      // the simulator's data is fresh
    bool isKnown = false;          // there is such a radio
    std::int32_t activeKHz = 0;    // 0 unknown
    float volume = -1.0f;          // 0..1, -1 unknown
    std::uint64_t readTickMs = 0;  // when it was read
    std::string reason;            // why it is not connected, one line of English, UTF-8
};

// The live row: the simulator's radio as the user reads it.
struct LiveStatus {
    std::string frequency;  // "COM1   122.800 MHz"
    std::string volume;     // "VOL 85%", empty when unknown
    int stateEntry = 72;    // text entry: connected, stale data or not connected
    bool isConnected = false;
    std::string reason;  // why there is no connection, as the panel says it; empty while there is one

    bool operator==(const LiveStatus&) const = default;
};

// What the dialog remembers between two looks at the simulator.
struct LiveMemory {
    std::uint64_t connectedMs = 0;  // tick of the last look that found it connected, 0 never
};

// com is the radio's number. A connection lost less than 10 s ago, or a reading older than 3 s, is stale.
LiveStatus liveStatusOf(const LiveRadio& radio, std::int32_t com, LiveMemory& memory, std::uint64_t nowMs);

struct DialogView {
    Settings settings;  // the working copy
    std::int32_t language = 0;
    LiveStatus live;

    bool operator==(const DialogView&) const = default;
};

std::vector<DialogText> dialogTexts(const DialogLayout& layout, const DialogView& view);

// The line height of a wrapped text, in pixels.
std::int32_t lineHeightOf(const DialogText& text);
// Width in pixels of a piece of the text in its font.
using MeasureDialogText = std::function<std::int32_t(const DialogText& style, const std::string& piece)>;
// The lines of a wrapped text, or the text itself as one.
std::vector<std::string> linesOf(const DialogText& text, const MeasureDialogText& measure);
// Whether the whole text fits into its rectangle.
bool isFitting(const DialogText& text, const MeasureDialogText& measure);
