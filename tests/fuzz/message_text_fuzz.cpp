// message_text_fuzz.cpp - any bytes as a text message and its sender: converted, wrapped and laid out. The conversion
// must be well formed, the wrapping equal to the plain rules, and a page must stay inside its window.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include "base/display_text.h"
#include "base/utf8.h"
#include "messages/message_page.h"
#include "tests/unit/fakes.h"
#include "tests/unit/ui/plain_word_wrap.h"

namespace {

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "message text: %s\n", what);
    std::abort();
}

float widthOf(std::u16string_view text) {
    float width = 0.0f;
    for (const char16_t unit : text) width += isWide(unit) ? 15.0f : static_cast<float>(unit % 13U);
    return width;
}

void checkText(const std::u16string& text) {
    for (std::size_t i = 0; i < text.size(); i++) {
        const char16_t unit = text[i];
        if (unit != u'\n' && isControl(unit)) fail("a control is shown");
        if (isDirectionControl(unit)) fail("a direction control is shown");
        if (unit >= 0xDC00 && unit <= 0xDFFF) fail("the second half of a pair alone");
        if (unit < 0xD800 || unit > 0xDBFF) continue;
        i++;
        if (i == text.size() || text[i] < 0xDC00 || text[i] > 0xDFFF) fail("the first half of a pair alone");
    }
}

// A text that has been made fit for the screen stays as it is.
void checkStays(const std::u16string& text) {
    const auto utf8 = utf8FromUtf16(text);
    if (utf16FromUtf8(utf8) != text) fail("UTF-8 and back is another text");
    if (displayText(utf8) != text) fail("made fit for the screen twice, it is another text");
    const auto line = displayLine(utf8);
    if (line.find(u'\n') != std::u16string::npos) fail("one line has a line end");
    if (line.size() != text.size()) fail("one line has lost a character");
    std::size_t end = 0;
    while (end < text.size()) {
        const auto start = end;
        end = characterEnd(text, start);
        if (end <= start || end > text.size() || end - start > kMaxCharacterUnits) fail("a character has no end");
        if (end < text.size() && text[end] >= 0xDC00 && text[end] <= 0xDFFF) fail("a character ends inside a pair");
    }
}

void checkWrap(const std::u16string& text, float maxWidth) {
    const auto plain = plainWrap(text, maxWidth, widthOf);
    const auto lines = wrapText(text, maxWidth, widthOf);
    if (lines.size() != plain.size()) fail("another number of lines than the plain rules");
    for (std::size_t i = 0; i < lines.size(); i++)
        if (lines[i] != plain[i]) fail("another line than the plain rules");
    // The same text as a description: nothing is left out but line feeds.
    std::u16string described;
    for (const auto line : wrapText(text, maxWidth, widthOf, kDescriptionWrap)) described += line;
    std::u16string whole = text;
    std::erase(whole, u'\n');
    if (described != whole) fail("a description has lost a part");
}

void checkPage(const std::string& text) {
    ManualClock clock;
    MessageStore store;
    addMessage(store, text, text, kPrivateMessage, 1, clock.tickMs());
    MessagePage page;
    const PageTools tools{[](const PageTextStyle&, std::u16string_view line) { return widthOf(line); },
                          [](double) { return TimeOfDay{}; }, clock};
    const PageLook shown = page.layOut(store, page.look(store, 15.0f, 2, 96), tools);
    for (const PageItem& item : page.items(shown)) {
        if (item.rect.x < 0 || item.rect.y < 0) fail("drawn outside");
        if (item.rect.x + item.rect.width > 620 || item.rect.y + item.rect.height > 400) fail("drawn outside");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;  // the plain rules take their time
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::u16string text = displayText(bytes);
    checkText(text);
    checkStays(text);
    checkWrap(text, size > 0 ? static_cast<float>(data[0]) : 580.0f);
    checkPage(bytes);
    return 0;
}
