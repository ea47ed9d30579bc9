#include "messages/message_page.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include "base/display_text.h"
#include "settings/interface_texts.h"
#include "ui/shorten_text.h"

namespace {

constexpr float kWrapWidth = 580.0f;
constexpr float kSmallestText = 12.0f;
constexpr float kLargestText = 22.0f;
constexpr float kBodyHeight = 282.0f;
constexpr std::size_t kSenderBytes = 512;  // read of a sender's name: more than the meta line can show

constexpr std::array<std::string_view, 3> kFontFamilies = {"Consolas", "Microsoft YaHei UI", "Segoe UI"};

constexpr std::array<std::string_view, 7> kPdcWords = {
    "PDC", "CLR", "CLEARANCE", "SID", "SQUAWK", "CLIMB VIA", "REQUEST",
};

// The meta line's columns, design pixels.
constexpr float kTimeLabelLeft = 430.0f;
constexpr float kTimeRight = 600.0f;
constexpr float kTimeGap = 2.0f;  // between label and time
constexpr float kSmallestTime = 9.0f;
constexpr float kSenderRoom = 348.0f;  // up to the label

PageFont fontFor(std::u16string_view text) {
    return holdsWide(text) ? PageFont::kChinese : PageFont::kMono;
}

const char* targetName(std::uint32_t target) {
    if (target == kPrivateMessage) return "PRIVATE";
    return target == kChannelMessage ? "CHANNEL" : "SERVER";
}

std::u16string targetAndTimeOf(const TextMessage& message, const PageTools& tools) {
    const std::uint64_t nowMs = tools.clock.tickMs();
    const std::uint64_t ageMs = nowMs - std::min(nowMs, message.receivedMs);
    const TimeOfDay time = tools.localTime(tools.clock.unixSeconds() - static_cast<double>(ageMs) / 1000.0);
    char text[64];
    std::snprintf(text, sizeof text, "%s   \u00B7   %02d:%02d:%02d", targetName(message.target), time.hour, time.minute,
                  time.second);
    return displayLine(text);
}

// Target and time just fit beside a label of four letters. A longer label or a font wider than Consolas leaves less
// space: they are then drawn smaller.
PageTextStyle timeStyleFor(std::u16string_view targetAndTime, std::int32_t language, const PageTools& tools) {
    const std::u16string label = displayLine(textOf(language, kTextTime));
    const float labelWidth = tools.measure(labelStyle(label), label);
    const float room = kTimeRight - kTimeLabelLeft - labelWidth - kTimeGap;
    PageTextStyle style = {PageFont::kMono, 12.0f, false};
    while (style.size > kSmallestTime && tools.measure(style, targetAndTime) > room) style.size -= 0.5f;
    return style;
}

PageLayout layOutMessage(const TextMessage& message, const PageLook& look, const PageTools& tools) {
    PageLayout layout;
    layout.sender = displayLine(message.sender, kSenderBytes);
    layout.senderStyle = {fontFor(layout.sender), 13.0f, true};
    layout.sender = shortenText(layout.sender, kSenderRoom,
                                [&](std::u16string_view text) { return tools.measure(layout.senderStyle, text); });
    layout.targetAndTime = targetAndTimeOf(message, tools);
    layout.timeStyle = timeStyleFor(layout.targetAndTime, look.language, tools);
    layout.isPdc = isPdc(message.text);
    layout.text = displayText(message.text);
    layout.style = {fontFor(layout.text), look.textSize, false};
    const MeasureText measure = [&](std::u16string_view text) { return tools.measure(layout.style, text); };
    layout.visibleRows = static_cast<std::int32_t>(kBodyHeight / (look.textSize * kPageLineHeight));
    const std::size_t maxLines = static_cast<std::size_t>(layout.visibleRows) + 1;
    for (const auto line : wrapText(layout.text, kWrapWidth, measure, kMessageWrap, maxLines))
        layout.lines.emplace_back(line);
    if (!layout.lines.empty()) layout.lastLineWidth = measure(layout.lines.back());
    layout.maxScroll = std::max(0, static_cast<std::int32_t>(layout.lines.size()) - layout.visibleRows);
    return layout;
}

}  // namespace

std::string_view pageFontFamily(PageFont font) {
    return kFontFamilies[static_cast<std::size_t>(font)];
}

PageTextStyle labelStyle(std::u16string_view label) {
    return {fontFor(label), 12.0f, false};
}

bool isPdc(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return std::any_of(kPdcWords.begin(), kPdcWords.end(),
                       [&](std::string_view word) { return upper.find(word) != std::string::npos; });
}

void MessagePage::change_page(MessageStore& store, std::int32_t delta) {
    release();
    const std::int64_t count = countMessages(store);
    if (count == 0) return;
    page_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(std::int64_t{page_} + delta, 0, count - 1));
    scroll_ = 0;
    if (page_ == 0) store.unread = 0;
}

void MessagePage::rewind() {
    release();
    page_ = 0;
    scroll_ = 0;
}

void MessagePage::hold(std::uint32_t number) {
    held_ = number;
    scroll_ = 0;
    laidOut_.reset();
}

void MessagePage::clear(MessageStore& store) {
    clearMessages(store);
    rewind();
}

PageLook MessagePage::look(const MessageStore& store, float textScale, std::int32_t language, std::uint32_t dpi) const {
    PageLook look;
    look.revision = store.revision;
    look.page = page_;
    look.scroll = scroll_;
    look.unread = store.unread;
    look.language = language;
    look.textSize = textScale > kSmallestText ? std::min(textScale, kLargestText) : kSmallestText;  // also of no number
    look.dpi = dpi;
    look.isCloseHovered = isCloseHovered_;
    look.hasKeyboard = hasKeyboard_;
    return look;
}

MessagePage::Key MessagePage::keyOf(const PageLook& look) const {
    return {look.revision, page_, kWrapWidth, look.textSize, look.dpi, look.language};
}

PageLook MessagePage::layOut(MessageStore& store, const PageLook& look, const PageTools& tools) {
    if (laidOut_ != keyOf(look)) layOutAnew(store, look, tools);
    PageLook shown = look;
    shown.revision = laidOut_->revision;
    shown.page = page_;
    shown.scroll = scroll_;
    return shown;
}

void MessagePage::layOutAnew(MessageStore& store, const PageLook& look, const PageTools& tools) {
    const PageSnapshot snapshot = findMessage(store);
    layout_ = {};
    if (snapshot.count > 0) {
        page_ = snapshot.page;
        layout_ = layOutMessage(snapshot.message, look, tools);
    }
    layout_.count = snapshot.count;
    scroll_ = std::clamp(scroll_, 0, layout_.maxScroll);
    laidOut_ = keyOf(look);
    laidOut_->revision = snapshot.revision;
}

PageSnapshot MessagePage::findMessage(MessageStore& store) {
    if (!held_) return copyPage(store, page_);
    if (const auto held = copyNumbered(store, *held_)) return *held;
    rewind();
    return copyPage(store, page_);
}
