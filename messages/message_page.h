// message_page.h - what the message window shows: which message, its lines, and every shape and text as data. Painting
// only carries the items out.
// [ui] One page, on the thread of its window. The store's lock is taken for a copy.
#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include "base/clock.h"
#include "messages/message_geometry.h"
#include "messages/message_store.h"
#include "ui/geometry.h"
#include "ui/word_wrap.h"

enum class PageFont { kMono, kChinese, kInterface };
// "Consolas", "Microsoft YaHei UI", "Segoe UI".
std::string_view pageFontFamily(PageFont font);
// All that is ever drawn in kInterface: close, more text above, more text below.
inline constexpr std::u16string_view kPageSigns = u"\u2715\u25B2\u25BC";

struct PageTextStyle {
    PageFont font = PageFont::kMono;
    float size = 12.0f;  // em height, design pixels
    bool isBold = false;

    bool operator==(const PageTextStyle&) const = default;
};

enum class PageItemKind {
    kFill,   // the rectangle, filled
    kFrame,  // its outline, one design pixel wide, centred on its edges
    kRule,   // a horizontal line of that width along its top
    kDot,    // the ellipse in it, filled
    kText,   // one line, vertically centred, cut to the rectangle; aligned right, it overflows to the left
};
enum class PageAlign { kLeft, kCentre, kRight };

struct PageItem {
    PageItemKind kind = PageItemKind::kFill;
    UnitRect rect;             // design pixels
    std::uint32_t colour = 0;  // ARGB
    // Of a text.
    std::u16string text = {};
    PageTextStyle style = {};
    PageAlign align = PageAlign::kLeft;
    float indent = 0.0f;  // of a text aligned left: from the rectangle's left edge to the first letter

    bool operator==(const PageItem&) const = default;
};

// All that the picture of a page depends on; the cursor blinks above it.
struct PageLook {
    std::uint32_t revision = 0;  // of the store
    std::int32_t page = 0;
    std::int32_t scroll = 0;
    std::int32_t unread = 0;
    std::int32_t language = 0;  // settings/language.h
    float textSize = 15.0f;     // design pixels, 12..22
    std::uint32_t dpi = 96;
    bool isCloseHovered = false;
    bool hasKeyboard = false;

    bool operator==(const PageLook&) const = default;
};

struct TimeOfDay {
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// How wide a text is when it is drawn in that style: design pixels.
using MeasureStyledText = std::function<float(const PageTextStyle& style, std::u16string_view text)>;

// What a page is laid out with; all called on the page's own thread.
struct PageTools {
    MeasureStyledText measure;
    std::function<TimeOfDay(double unixSeconds)> localTime;
    const Clock& clock;
};

// The shown message as laid out; made anew when the messages, the page, the text size, DPI or language change.
struct PageLayout {
    std::int32_t count = 0;  // messages stored; with 0 nothing below counts
    std::u16string sender;   // with an ellipsis where it would reach the time's label
    PageTextStyle senderStyle;
    std::u16string targetAndTime;
    PageTextStyle timeStyle;
    bool isPdc = false;
    std::u16string text;
    // No input scrolls, so lines below the last row are never seen: one line too many shows that there is more text.
    std::vector<std::u16string> lines;
    PageTextStyle style;         // of the lines
    float lastLineWidth = 0.0f;  // design pixels
    std::int32_t visibleRows = 1;
    std::int32_t maxScroll = 0;
};

inline constexpr float kPageLineHeight = 1.5f;  // of the text's size

class MessagePage {
  public:
    // Turns by delta pages, older positive, as far as there are messages; the newest page makes all messages read.
    void change_page(MessageStore& store, std::int32_t delta);
    // The newest message from its first line.
    void rewind();
    // From the next layout on the message of that number, whatever arrives, until release() or until it is no longer
    // there: then the newest.
    void hold(std::uint32_t number);
    // The page keeps its number again, not its message.
    void release() { held_.reset(); }
    // Forgets all messages.
    void clear(MessageStore& store);
    // Whether the pointer is on the close button.
    void hoverClose(bool isHovered) { isCloseHovered_ = isHovered; }
    // Whether the window's keys work: it has the keyboard.
    void setKeyboard(bool isHere) { hasKeyboard_ = isHere; }

    // What is to be shown now. textScale: the setting, in any range.
    PageLook look(const MessageStore& store, float textScale, std::int32_t language, std::uint32_t dpi) const;
    // Lays the page's message out anew if that is out of date; moves the page to where there are messages. Returns the
    // look that was laid out: messages that arrive meanwhile are not in it.
    PageLook layOut(MessageStore& store, const PageLook& look, const PageTools& tools);
    // From back to front; the look as returned by layOut().
    std::vector<PageItem> items(const PageLook& look) const;
    // The block after the last line, lit for every other half second: on top of everything. Nothing while it is dark,
    // if the text goes on below the last row, and on the empty page.
    std::optional<PageItem> cursor(std::uint64_t nowMs) const;

    std::int32_t page() const { return page_; }  // 0 the newest
    const PageLayout& layout() const { return layout_; }

  private:
    struct Key {
        std::uint32_t revision;
        std::int32_t page;
        float wrapWidth;
        float textSize;
        std::uint32_t dpi;
        std::int32_t language;

        bool operator==(const Key&) const = default;
    };
    Key keyOf(const PageLook& look) const;
    void layOutAnew(MessageStore& store, const PageLook& look, const PageTools& tools);
    PageSnapshot findMessage(MessageStore& store);

    std::int32_t page_ = 0;
    std::optional<std::uint32_t> held_;  // the number of the message that the page stays on
    std::int32_t scroll_ = 0;            // the first line shown
    bool isCloseHovered_ = false;
    bool hasKeyboard_ = false;
    PageLayout layout_;
    std::optional<Key> laidOut_;  // what layout_ was made for
};

// The style of the labels of the meta line: the fixed-pitch font has no Chinese, Japanese or Korean.
PageTextStyle labelStyle(std::u16string_view label);

// Whether the text has a word of a departure clearance, even inside another word: bytes are compared, a-z as A-Z.
bool isPdc(std::string_view text);
