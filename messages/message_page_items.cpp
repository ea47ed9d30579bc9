// message_page_items.cpp - every shape and text of the message window, in its design pixels.
#include <algorithm>
#include <string>
#include "base/display_text.h"
#include "messages/message_page.h"
#include "settings/interface_texts.h"

namespace {

constexpr std::uint32_t kBackground = 0xFF060908;
constexpr std::uint32_t kHeaderBand = 0xFF090E0C;
constexpr std::uint32_t kLines = 0xFF1B3A28;
constexpr std::uint32_t kAmber = 0xFFFFB84D;
constexpr std::uint32_t kDimGreen = 0xFF4E8F69;
constexpr std::uint32_t kFaintGreen = 0xFF38674C;  // 70 % of the dim green above the ground: 3:1, still readable
constexpr std::uint32_t kBrightGreen = 0xFF86E8AC;
constexpr std::uint32_t kRed = 0xFFFF6B6B;

constexpr UnitRect kWindow = {0, 0, 620, 400};
constexpr float kBodyLeft = 20.0f;
constexpr float kBodyTop = 72.0f;
constexpr float kBodyWidth = 580.0f;
constexpr float kCursorRoom = 0.6f;  // of the text's size, like all below
constexpr float kCursorTop = 0.15f;
constexpr float kCursorWidth = 0.55f;
constexpr float kCursorHeight = 0.95f;
constexpr std::uint64_t kBlinkMs = 500;

constexpr PageTextStyle mono(float size) {
    return {PageFont::kMono, size, false};
}
constexpr PageTextStyle monoBold(float size) {
    return {PageFont::kMono, size, true};
}
constexpr PageTextStyle chinese(float size) {
    return {PageFont::kChinese, size, false};
}
constexpr PageTextStyle interfaceText(float size) {
    return {PageFont::kInterface, size, false};
}

PageItem shape(PageItemKind kind, const UnitRect& rect, std::uint32_t colour) {
    return {kind, rect, colour};
}

PageItem textItem(std::u16string text, const UnitRect& rect, const PageTextStyle& style, std::uint32_t colour,
                  PageAlign align = PageAlign::kLeft) {
    return {PageItemKind::kText, rect, colour, std::move(text), style, align};
}

// A label in the language of the plugin's windows.
PageItem label(std::int32_t language, int entry, const UnitRect& rect) {
    std::u16string text = displayLine(textOf(language, entry));
    const PageTextStyle style = labelStyle(text);
    return textItem(std::move(text), rect, style, kDimGreen);
}

void addGround(std::vector<PageItem>& items) {
    items.push_back(shape(PageItemKind::kFill, kWindow, kBackground));
    items.push_back(shape(PageItemKind::kFill, {0, 0, 620, kHeaderHeight}, kHeaderBand));
    items.push_back(shape(PageItemKind::kFrame, {0.5f, 0.5f, 619, 399}, kLines));
    for (const float y : {44.0f, 62.0f, 360.0f}) items.push_back(shape(PageItemKind::kRule, {0, y, 620, 0}, kLines));
}

void addHeader(std::vector<PageItem>& items, const PageLook& look) {
    const bool isUnread = look.unread > 0;
    items.push_back(shape(PageItemKind::kDot, {16, 19, 6, 6}, isUnread ? kAmber : kBrightGreen));
    items.push_back(textItem(u"ACARS", {30, 10, 80, 24}, monoBold(15), kAmber));
    items.push_back(textItem(u"\u25B8 PDC", {96, 10, 70, 24}, mono(13), kDimGreen));
    if (isUnread) items.push_back(textItem(u"*NEW", {168, 10, 60, 24}, monoBold(13), kAmber));
    items.push_back(textItem(u"TEXT", {430, 10, 60, 24}, monoBold(14), kBrightGreen, PageAlign::kRight));
    items.push_back(textItem(u"\u2715", {580, 8, 32, 28}, interfaceText(14), look.isCloseHovered ? kRed : kDimGreen,
                             PageAlign::kCentre));
}

void addEmptyHint(std::vector<PageItem>& items, const PageLook& look) {
    items.push_back(textItem(u"NO MESSAGE", {0, 174, 620, 24}, monoBold(18), kDimGreen, PageAlign::kCentre));
    items.push_back(textItem(displayLine(textOf(look.language, kTextNoMessages)), {0, 202, 620, 20}, chinese(13),
                             kDimGreen, PageAlign::kCentre));
}

void addMetaLine(std::vector<PageItem>& items, const PageLook& look, const PageLayout& layout) {
    items.push_back(label(look.language, kTextFrom, {16, 44, 60, 18}));
    const std::u16string sender = layout.sender.empty() ? u"UNKNOWN" : layout.sender;
    items.push_back(textItem(sender, {76, 44, 400, 18}, layout.senderStyle, kBrightGreen));
    items.push_back(label(look.language, kTextTime, {430, 44, 46, 18}));
    items.push_back(
        textItem(layout.targetAndTime, {478, 44, 122, 18}, layout.timeStyle, kBrightGreen, PageAlign::kRight));
}

UnitRect rowRect(const PageLayout& layout, std::int32_t row) {
    const float height = layout.style.size * kPageLineHeight;
    return {kBodyLeft, kBodyTop + static_cast<float>(row) * height, kBodyWidth, height};
}

void addBody(std::vector<PageItem>& items, const PageLook& look, const PageLayout& layout) {
    const auto lines = static_cast<std::int32_t>(layout.lines.size());
    for (std::int32_t row = 0; row < layout.visibleRows && look.scroll + row < lines; row++) {
        std::u16string line = layout.lines[static_cast<std::size_t>(look.scroll) + static_cast<std::size_t>(row)];
        line.erase(line.find_last_not_of(u' ') + 1);  // thousands of spaces at a line's end draw nothing
        items.push_back(textItem(std::move(line), rowRect(layout, row), layout.style, kBrightGreen));
    }
}

void addScrollMarks(std::vector<PageItem>& items, const PageLook& look, const PageLayout& layout) {
    if (look.scroll > 0) items.push_back(textItem(u"\u25B2", {586, 292, 20, 20}, interfaceText(12), kAmber));
    if (look.scroll < layout.maxScroll)
        items.push_back(textItem(u"\u25BC", {586, 314, 20, 20}, interfaceText(12), kAmber));
}

void addFooter(std::vector<PageItem>& items, const PageLook& look, const PageLayout& layout) {
    const UnitRect tag = {16, 366, 40, 20};
    if (layout.isPdc) items.push_back(textItem(u"PDC", tag, monoBold(12), kAmber));
    const std::string counter = std::to_string(look.page + 1) + " / " + std::to_string(layout.count);
    items.push_back(textItem(displayLine(counter), {490, 366, 60, 20}, mono(12), kBrightGreen));
    // The window opens without the keyboard, and keys do nothing until a click gives it: the hint is faint until then.
    items.push_back(textItem(displayLine(textOf(look.language, kTextPageKeys)), {16, 366, 430, 20}, chinese(12),
                             look.hasKeyboard ? kDimGreen : kFaintGreen));
    if (layout.isPdc) items.back().indent = tag.width;
    if (look.unread > 0) {
        items.push_back(textItem(displayLine("UNREAD " + std::to_string(look.unread)), {400, 366, 80, 20}, monoBold(12),
                                 kAmber, PageAlign::kRight));
    }
}

}  // namespace

std::vector<PageItem> MessagePage::items(const PageLook& look) const {
    std::vector<PageItem> items;
    addGround(items);
    addHeader(items, look);
    if (layout_.count == 0) {
        addEmptyHint(items, look);
        return items;
    }
    addMetaLine(items, look, layout_);
    addBody(items, look, layout_);
    addScrollMarks(items, look, layout_);
    addFooter(items, look, layout_);
    return items;
}

std::optional<PageItem> MessagePage::cursor(std::uint64_t nowMs) const {
    const bool isLit = nowMs / kBlinkMs % 2 == 0;
    if (!isLit || layout_.count == 0 || scroll_ != layout_.maxScroll) return std::nullopt;
    const std::int32_t last = static_cast<std::int32_t>(layout_.lines.size()) - 1 - scroll_;
    const bool isVisible = last >= 0 && last < layout_.visibleRows;
    const UnitRect row = rowRect(layout_, isVisible ? last : layout_.visibleRows - 1);
    const float size = layout_.style.size;
    return shape(PageItemKind::kFill,
                 {kBodyLeft + std::min(kBodyWidth - kCursorRoom * size, layout_.lastLineWidth),
                  row.y + kCursorTop * size, kCursorWidth * size, kCursorHeight * size},
                 kBrightGreen);
}
