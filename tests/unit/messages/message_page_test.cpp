#include "messages/message_page.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <optional>
#include "base/display_text.h"
#include "settings/language.h"
#include "tests/unit/fakes.h"

namespace {

constexpr std::uint32_t kAmber = 0xFFFFB84D;
constexpr std::uint32_t kDimGreen = 0xFF4E8F69;
constexpr std::uint32_t kFaintGreen = 0xFF38674C;
constexpr std::uint32_t kBrightGreen = 0xFF86E8AC;
constexpr std::uint32_t kRed = 0xFFFF6B6B;
constexpr std::int32_t kEnglishTexts = 2;

// A page with its store; a character is as wide as half its size, a wide one as its whole size.
class MessagePageTest : public testing::Test {
  protected:
    void add(const std::string& text, const std::string& sender = "Tower", std::uint32_t target = kChannelMessage) {
        addMessage(store, sender, text, target, 7, clock.tickMs());
    }
    void addNumbered(int count) {
        for (int i = 0; i < count; i++) add("message " + std::to_string(i));
    }
    PageLook look() const { return page.look(store, textScale, kEnglishTexts, dpi); }
    std::vector<PageItem> items() { return page.items(page.layOut(store, look(), tools)); }
    std::string body() {
        items();
        std::string text;
        for (const char16_t unit : page.layout().text) text += static_cast<char>(unit);
        return text;
    }
    // The text's item; nothing if it is not shown, or more than once.
    std::optional<PageItem> find(const std::u16string& text) {
        std::optional<PageItem> found;
        for (const PageItem& item : items()) {
            if (item.kind != PageItemKind::kText || item.text != text) continue;
            if (found) return std::nullopt;
            found = item;
        }
        return found;
    }
    bool shows(const PageItem& wanted) {
        const auto all = items();
        return std::count(all.begin(), all.end(), wanted) == 1;
    }
    std::vector<PageItem> rows() {
        std::vector<PageItem> found;
        for (const PageItem& item : items())
            if (item.kind == PageItemKind::kText && item.rect.x == 20.0f) found.push_back(item);
        return found;
    }
    std::optional<UnitRect> cursor() {
        items();
        const std::optional<PageItem> item = page.cursor(clock.tickMs());
        if (!item) return std::nullopt;
        EXPECT_EQ(item->kind, PageItemKind::kFill);
        EXPECT_EQ(item->colour, kBrightGreen);
        return item->rect;
    }

    static PageItem text(const std::u16string& what, UnitRect rect, PageTextStyle style, std::uint32_t colour,
                         PageAlign align = PageAlign::kLeft) {
        return {PageItemKind::kText, rect, colour, what, style, align};
    }
    static PageTextStyle mono(float size, bool isBold = false) { return {PageFont::kMono, size, isBold}; }
    static PageTextStyle chinese(float size, bool isBold = false) { return {PageFont::kChinese, size, isBold}; }
    static PageTextStyle interfaceText(float size) { return {PageFont::kInterface, size, false}; }

    ManualClock clock;
    MessageStore store;
    MessagePage page;
    float textScale = 15.0f;
    std::uint32_t dpi = 96;
    int measured = 0;
    PageTools tools{[this](const PageTextStyle& style, std::u16string_view measuredText) {
                        measured++;
                        float width = 0.0f;
                        for (const char16_t unit : measuredText) width += isWide(unit) ? style.size : style.size / 2;
                        return width;
                    },
                    [](double unixSeconds) {
                        const auto seconds = static_cast<int>(static_cast<std::int64_t>(unixSeconds) % 86400);
                        return TimeOfDay{seconds / 3600, seconds / 60 % 60, seconds % 60};
                    },
                    clock};
};

}  // namespace

TEST_F(MessagePageTest, TheTextIsOf12To22WhateverItsSettingSays) {
    const float noNumber = std::numeric_limits<float>::quiet_NaN(), most = std::numeric_limits<float>::infinity();
    const struct {
        float setting, size;
    } rows[] = {{-most, 12}, {0, 12},     {11.5f, 12}, {12, 12},      {15, 15},
                {22, 22},    {22.5f, 22}, {most, 22},  {noNumber, 12}};
    for (const auto& row : rows) {
        textScale = row.setting;
        EXPECT_EQ(look().textSize, row.size) << row.setting;
    }
}

TEST_F(MessagePageTest, DrawsGroundAndHeaderOfAReadStore) {
    const auto all = items();
    ASSERT_GE(all.size(), 7U);
    EXPECT_EQ(all[0], (PageItem{PageItemKind::kFill, {0, 0, 620, 400}, 0xFF060908}));
    EXPECT_EQ(all[1], (PageItem{PageItemKind::kFill, {0, 0, 620, 44}, 0xFF090E0C}));
    EXPECT_EQ(all[2], (PageItem{PageItemKind::kFrame, {0.5f, 0.5f, 619, 399}, 0xFF1B3A28}));
    EXPECT_EQ(all[3], (PageItem{PageItemKind::kRule, {0, 44, 620, 0}, 0xFF1B3A28}));
    EXPECT_EQ(all[4], (PageItem{PageItemKind::kRule, {0, 62, 620, 0}, 0xFF1B3A28}));
    EXPECT_EQ(all[5], (PageItem{PageItemKind::kRule, {0, 360, 620, 0}, 0xFF1B3A28}));
    EXPECT_TRUE(shows({PageItemKind::kDot, {16, 19, 6, 6}, kBrightGreen}));
    EXPECT_TRUE(shows(text(u"ACARS", {30, 10, 80, 24}, mono(15, true), kAmber)));
    EXPECT_TRUE(shows(text(u"▸ PDC", {96, 10, 70, 24}, mono(13), kDimGreen)));
    EXPECT_TRUE(shows(text(u"TEXT", {430, 10, 60, 24}, mono(14, true), kBrightGreen, PageAlign::kRight)));
    EXPECT_TRUE(shows(text(u"✕", {580, 8, 32, 28}, interfaceText(14), kDimGreen, PageAlign::kCentre)));
    EXPECT_FALSE(find(u"*NEW"));
    EXPECT_EQ(pageFontFamily(PageFont::kMono), "Consolas");
    EXPECT_EQ(pageFontFamily(PageFont::kChinese), "Microsoft YaHei UI");
    EXPECT_EQ(pageFontFamily(PageFont::kInterface), "Segoe UI");
}

TEST_F(MessagePageTest, MarksUnreadMessages) {
    add("hello");
    EXPECT_TRUE(shows({PageItemKind::kDot, {16, 19, 6, 6}, kAmber}));
    EXPECT_TRUE(shows(text(u"*NEW", {168, 10, 60, 24}, mono(13, true), kAmber)));
    EXPECT_TRUE(shows(text(u"UNREAD 1", {400, 366, 80, 20}, mono(12, true), kAmber, PageAlign::kRight)));
    store.unread = 0;
    EXPECT_TRUE(shows({PageItemKind::kDot, {16, 19, 6, 6}, kBrightGreen}));
    EXPECT_FALSE(find(u"*NEW"));
    EXPECT_FALSE(find(u"UNREAD 0"));
}

TEST_F(MessagePageTest, AnEmptyStoreShowsItsHintAndNothingElse) {
    EXPECT_EQ(items().size(), 6U + 5U + 2U);
    EXPECT_TRUE(shows(text(u"NO MESSAGE", {0, 174, 620, 24}, mono(18, true), kDimGreen, PageAlign::kCentre)));
    EXPECT_TRUE(shows(text(u"No text messages yet. Clearances appear here as soon as they arrive.", {0, 202, 620, 20},
                           chinese(13), kDimGreen, PageAlign::kCentre)));
}

TEST_F(MessagePageTest, TheCloseGlyphIsRedUnderThePointer) {
    page.hoverClose(true);
    EXPECT_EQ(find(u"✕")->colour, kRed);
    page.hoverClose(false);
    EXPECT_EQ(find(u"✕")->colour, kDimGreen);
}

TEST_F(MessagePageTest, TheMetaLineTellsSenderModeAndTimeOfReception) {
    clock.seconds = 86400.0 * 20000 + 3600 * 13 + 60 * 5 + 9;
    add("hello", "Frankfurt", kPrivateMessage);
    clock.advance(3'600'000);
    EXPECT_TRUE(shows(text(u"FROM", {16, 44, 60, 18}, mono(12), kDimGreen)));
    EXPECT_TRUE(shows(text(u"Frankfurt", {76, 44, 400, 18}, mono(13, true), kBrightGreen)));
    EXPECT_TRUE(shows(text(u"TIME", {430, 44, 46, 18}, mono(12), kDimGreen)));
    EXPECT_TRUE(shows(text(u"PRIVATE   ·   13:05:09", {478, 44, 122, 18}, mono(12), kBrightGreen, PageAlign::kRight)));
}

TEST_F(MessagePageTest, NamesEveryTargetMode) {
    clock.seconds = 86400.0 * 20000;
    const struct {
        std::uint32_t target;
        const char16_t* shown;
    } rows[] = {{1, u"PRIVATE   ·   00:00:00"},
                {2, u"CHANNEL   ·   00:00:00"},
                {3, u"SERVER   ·   00:00:00"},
                {0, u"SERVER   ·   00:00:00"},
                {77, u"SERVER   ·   00:00:00"}};
    for (const auto& row : rows) {
        add("hello", "Tower", row.target);
        EXPECT_TRUE(find(row.shown)) << row.target;
    }
}

TEST_F(MessagePageTest, TheSenderIsNamedInAFontThatHasItsLetters) {
    add("hello", "北京放行");
    EXPECT_EQ(find(u"北京放行")->style, chinese(13, true));
    add("hello", "");
    EXPECT_EQ(find(u"UNKNOWN")->style, mono(13, true));
    EXPECT_EQ(find(u"UNKNOWN")->rect, (UnitRect{76, 44, 400, 18}));
    add("hello", "a\nb\u202Ec");
    EXPECT_TRUE(find(u"a bc"));
}

TEST_F(MessagePageTest, ANameTooLongEndsInAnEllipsisThatFits) {
    const std::size_t room = 53;  // of 6.5 pixels each in 348
    add("hello", std::string(room, 'W'));
    EXPECT_TRUE(find(std::u16string(room, u'W')));
    for (const std::size_t letters : {room + 1, std::size_t{10'000}}) {
        add("hello", std::string(letters, 'W'));
        const auto shown = find(std::u16string(room - 1, u'W') + u'\u2026');
        ASSERT_TRUE(shown) << letters;
        EXPECT_EQ(shown->rect, (UnitRect{76, 44, 400, 18}));
    }
    std::string wide;
    for (int i = 0; i < 27; i++) wide += "放";  // 351 pixels; the ellipsis takes half of one's place
    add("hello", wide);
    EXPECT_TRUE(find(std::u16string(26, u'放') + u'\u2026'));
}

TEST_F(MessagePageTest, NothingOnTheMetaLineRunsIntoTheTimesLabel) {
    for (const float cell : {0.5f, 0.55f, 0.6f}) {  // em: our usual one, Consolas' and a wide font's
        tools.measure = [=](const PageTextStyle& style, std::u16string_view measuredText) {
            return style.size * cell * static_cast<float>(measuredText.size());
        };
        add("hello", std::string(200, 'W'));
        items();
        const std::u16string name = page.layout().sender;
        EXPECT_LT(76.0f + tools.measure(page.layout().senderStyle, name), 430.0f) << cell;
        EXPECT_EQ(name.back(), u'\u2026') << cell;
        const auto time = find(u"CHANNEL   ·   14:13:20");
        const auto label = find(u"TIME");
        ASSERT_TRUE(time && label) << cell;
        const float left = time->rect.x + time->rect.width - tools.measure(time->style, time->text);
        EXPECT_GE(left, label->rect.x + tools.measure(label->style, label->text)) << cell;
        EXPECT_GE(time->style.size, 10.0f) << cell;
    }
}

TEST_F(MessagePageTest, ShowsTheRowsOfTheBody) {
    add("PDC 1423\r\n\r\nSQUAWK 2211");
    const auto shown = rows();
    ASSERT_EQ(shown.size(), 3U);
    EXPECT_EQ(shown[0], text(u"PDC 1423", {20, 72, 580, 22.5f}, mono(15), kBrightGreen));
    EXPECT_EQ(shown[1], text(u"", {20, 94.5f, 580, 22.5f}, mono(15), kBrightGreen));
    EXPECT_EQ(shown[2], text(u"SQUAWK 2211", {20, 117, 580, 22.5f}, mono(15), kBrightGreen));
    add("放行");
    EXPECT_EQ(rows()[0].style, chinese(15));
}

TEST_F(MessagePageTest, KeepsTheTextSizeInItsRangeAndFitsTheRows) {
    const struct {
        float scale, size;
        std::size_t visible;
    } rowsOf[] = {{15, 15, 12}, {12, 12, 15}, {22, 22, 8}, {3, 12, 15}, {100, 22, 8}, {17.5f, 17.5f, 10}};
    add(std::string(30, '\n') + "end");
    for (const auto& row : rowsOf) {
        textScale = row.scale;
        EXPECT_EQ(rows().size(), row.visible) << row.scale;
        EXPECT_EQ(rows()[0].style.size, row.size) << row.scale;
    }
}

TEST_F(MessagePageTest, ALongMessageShowsItsFirstRowsAndAMark) {
    add(std::string(12 * 77, 'x'));  // 77 characters of 7.5 pixels in 580
    EXPECT_EQ(page.layout().count, 0);
    EXPECT_EQ(rows().size(), 12U);
    EXPECT_FALSE(find(u"▼"));
    add(std::string(12 * 77 + 1, 'x'));
    EXPECT_EQ(rows().size(), 12U);
    EXPECT_EQ(page.layout().maxScroll, 1);
    EXPECT_TRUE(shows(text(u"▼", {586, 314, 20, 20}, interfaceText(12), kAmber)));
    EXPECT_FALSE(find(u"▲"));
    EXPECT_FALSE(cursor());
}

TEST_F(MessagePageTest, TheFooterTellsPageKeysAndPdc) {
    add("CLR TO KJFK");
    add("hello");
    EXPECT_TRUE(shows(text(u"1 / 2", {490, 366, 60, 20}, mono(12), kBrightGreen)));
    EXPECT_TRUE(shows(text(u"↑↓ page   DEL clear   ESC / TEXT close", {16, 366, 430, 20}, chinese(12), kFaintGreen)));
    EXPECT_FALSE(find(u"PDC"));
    page.change_page(store, 1);
    EXPECT_TRUE(shows(text(u"2 / 2", {490, 366, 60, 20}, mono(12), kBrightGreen)));
    EXPECT_TRUE(shows(text(u"PDC", {16, 366, 40, 20}, mono(12, true), kAmber)));
    const auto all = items();
    const auto at = [&](const std::u16string& what) {
        return std::find_if(all.begin(), all.end(), [&](const PageItem& item) { return item.text == what; });
    };
    EXPECT_LT(at(u"PDC"), at(u"↑↓ page   DEL clear   ESC / TEXT close"));
}

TEST_F(MessagePageTest, TheHintBeginsBehindTheTag) {
    const std::u16string hint = u"↑↓ page   DEL clear   ESC / TEXT close";
    add("hello");
    EXPECT_EQ(find(hint)->indent, 0.0f);
    add("CLR TO KJFK");
    const auto behind = find(hint);
    const auto tag = find(u"PDC");
    ASSERT_TRUE(behind && tag);
    EXPECT_EQ(behind->rect, (UnitRect{16, 366, 430, 20}));  // the same place, but for its letters
    EXPECT_EQ(behind->indent, 40.0f);
    EXPECT_GT(behind->rect.x + behind->indent, tag->rect.x + tools.measure(tag->style, tag->text) + 10.0f);
}

TEST_F(MessagePageTest, TheHintIsFaintWhileTheKeysGoElsewhere) {
    const std::u16string hint = u"↑↓ page   DEL clear   ESC / TEXT close";
    add("hello");
    EXPECT_EQ(find(hint)->colour, kFaintGreen);
    const PageLook without = look();
    const int once = measured;
    page.setKeyboard(true);
    EXPECT_NE(look(), without);
    EXPECT_EQ(find(hint)->colour, kDimGreen);
    EXPECT_EQ(measured, once);  // nothing is laid out anew for it
    page.setKeyboard(false);
    EXPECT_EQ(find(hint)->colour, kFaintGreen);
}

TEST_F(MessagePageTest, KnowsAPdcByItsWords) {
    for (const char* pdc : {"pdc", "xPDCx", "clr to", "Clearance", "sid", "CONSIDER", "squawk", "climb via", "Request"})
        EXPECT_TRUE(isPdc(pdc)) << pdc;
    for (const char* other : {"", "hello", "CLIMB  VIA", "CLIMB", "P D C", "ＰＤＣ", "CL\nR", "squaw", "ſid"})
        EXPECT_FALSE(isPdc(other)) << other;
    EXPECT_TRUE(isPdc(std::string_view("\0\xFF sid", 6)));
}

TEST_F(MessagePageTest, TheCursorBlinksAfterTheLastLine) {
    clock.tick = 1'000'000;
    add("one\ntwo45");
    const float size = 15.0f;
    ASSERT_TRUE(cursor());
    EXPECT_EQ(*cursor(), (UnitRect{20 + 5 * size / 2, 72 + 22.5f + 0.15f * size, 0.55f * size, 0.95f * size}));
    clock.advance(499);
    EXPECT_TRUE(cursor());
    clock.advance(1);
    EXPECT_FALSE(cursor());
    clock.advance(499);
    EXPECT_FALSE(cursor());
    clock.advance(1);
    EXPECT_TRUE(cursor());
}

TEST_F(MessagePageTest, TheCursorStaysInsideTheLine) {
    add(std::string(77, 'x'));
    EXPECT_EQ(cursor()->x, 20 + 580 - 0.6f * 15);
    add("放");
    EXPECT_EQ(cursor()->x, 20 + 15);
    add("\n");
    EXPECT_EQ(*cursor(), (UnitRect{20, 72 + 0.15f * 15, 0.55f * 15, 0.95f * 15}));
    add("\u202E");  // nothing to show at all
    EXPECT_EQ(cursor()->x, 20);
}

TEST_F(MessagePageTest, FortyMessagesArePagedToBothEnds) {
    addNumbered(40);
    EXPECT_EQ(body(), "message 39");
    page.change_page(store, -1);
    EXPECT_EQ(page.page(), 0);
    for (int i = 1; i <= 39; i++) {
        page.change_page(store, 1);
        EXPECT_EQ(page.page(), i);
    }
    EXPECT_EQ(body(), "message 0");
    EXPECT_TRUE(find(u"40 / 40"));
    page.change_page(store, 1);
    EXPECT_EQ(page.page(), 39);
    page.change_page(store, -2'000'000'000);
    EXPECT_EQ(page.page(), 0);
    page.change_page(store, 2'147'483'647);
    page.change_page(store, 2'147'483'647);
    EXPECT_EQ(page.page(), 39);
}

TEST_F(MessagePageTest, OnlyTheNewestPageMakesMessagesRead) {
    addNumbered(3);
    page.change_page(store, 1);
    EXPECT_EQ(store.unread, 3);
    page.change_page(store, -1);
    EXPECT_EQ(store.unread, 0);
    page.change_page(store, 2);
    add("new");
    EXPECT_EQ(store.unread, 1);
    page.change_page(store, -1);
    EXPECT_EQ(store.unread, 1);
}

TEST_F(MessagePageTest, PagingAnEmptyStoreChangesNothing) {
    store.unread = 5;  // as between a message's arrival and its counting
    page.change_page(store, -1);
    page.change_page(store, 1);
    EXPECT_EQ(page.page(), 0);
    EXPECT_EQ(store.unread, 5);
}

TEST_F(MessagePageTest, AMessageArrivingMeanwhileKeepsThePagesNumber) {
    addNumbered(10);
    page.change_page(store, 3);
    EXPECT_EQ(body(), "message 6");
    add("newer");
    EXPECT_EQ(body(), "message 7");
    EXPECT_EQ(page.page(), 3);
    EXPECT_TRUE(find(u"4 / 11"));
}

TEST_F(MessagePageTest, ClearingShowsTheEmptyStore) {
    addNumbered(10);
    page.change_page(store, 5);
    items();
    page.clear(store);
    EXPECT_TRUE(find(u"NO MESSAGE"));
    EXPECT_TRUE(shows({PageItemKind::kDot, {16, 19, 6, 6}, kBrightGreen}));
    EXPECT_EQ(page.page(), 0);
}

TEST_F(MessagePageTest, ClearedByAnotherThePageMovesToWhereThereAreMessages) {
    addNumbered(10);
    page.change_page(store, 5);
    items();
    clearMessages(store);
    EXPECT_TRUE(find(u"NO MESSAGE"));
    addNumbered(2);
    EXPECT_EQ(body(), "message 0");
    EXPECT_EQ(page.page(), 1);
    EXPECT_TRUE(find(u"2 / 2"));
}

TEST_F(MessagePageTest, MeasuresOnlyWhenTheLinesMayHaveChanged) {
    add("one two three");
    items();
    const int once = measured;
    EXPECT_GT(once, 0);
    for (int i = 0; i < 100; i++) {
        clock.advance(33);
        page.hoverClose(i % 2 == 0);
        store.unread = i;
        items();
    }
    EXPECT_EQ(measured, once);
    const auto measuresAfter = [&](const std::function<void()>& change) {
        const int before = measured;
        change();
        items();
        return measured - before;
    };
    EXPECT_GT(measuresAfter([&] { add("four"); }), 0);
    EXPECT_GT(measuresAfter([&] { page.change_page(store, 1); }), 0);
    EXPECT_GT(measuresAfter([&] { textScale = 16.0f; }), 0);
    EXPECT_GT(measuresAfter([&] { dpi = 144; }), 0);
    EXPECT_EQ(measuresAfter([] {}), 0);
}

TEST_F(MessagePageTest, TheTimeStandsStillWhileTheClocksRunApart) {
    clock.seconds = 86400.0 * 20000 + 0.999;
    add("hello");
    EXPECT_TRUE(find(u"CHANNEL   ·   00:00:00"));
    for (int i = 0; i < 50; i++) {
        clock.tick += 33;
        clock.seconds = clock.seconds + 0.034;
        EXPECT_TRUE(find(u"CHANNEL   ·   00:00:00"));
    }
}

TEST_F(MessagePageTest, LooksTheSameUntilSomethingChanges) {
    add("hello");
    items();
    const PageLook before = look();
    for (int i = 0; i < 100; i++) {
        clock.advance(33);  // the cursor blinks above the picture
        EXPECT_EQ(look(), before);
    }
    page.hoverClose(true);
    EXPECT_NE(look(), before);
    page.hoverClose(false);
    EXPECT_EQ(look(), before);
    textScale = 16.0f;
    EXPECT_NE(look(), before);
    textScale = 15.0f;
    store.unread = 7;
    EXPECT_NE(look(), before);
    add("again");
    store.unread = 1;
    EXPECT_NE(look(), before);
}

TEST_F(MessagePageTest, TheEmptyPageHasNoCursor) {
    clock.tick = 1'000'000;
    EXPECT_FALSE(cursor());
    add("hello");
    EXPECT_TRUE(cursor());
    page.clear(store);
    EXPECT_FALSE(cursor());
}

TEST_F(MessagePageTest, EveryLanguageHasItsTextsInsideTheWindow) {
    add("PDC");
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        const PageLook shown = page.layOut(store, page.look(store, textScale, language, dpi), tools);
        for (const PageItem& item : page.items(shown)) {
            EXPECT_GE(item.rect.x, 0.0f);
            EXPECT_GE(item.rect.y, 0.0f);
            EXPECT_LE(item.rect.x + item.rect.width, 620.0f);
            EXPECT_LE(item.rect.y + item.rect.height, 400.0f);
            for (const char16_t unit : item.text) EXPECT_NE(unit, u'\uFFFD') << language;
        }
    }
}

TEST_F(MessagePageTest, TakesHostileMessages) {
    const std::string hostile[] = {
        std::string(8192, 'x'),    std::string(8192, ' '), std::string(8192, '\n'), std::string(8192, '\xFF'),
        std::string(8192, '\0'),   "\u202E\u202E\u2067",   "🛬\xF0\x9F",          std::string(100, '\r') + "x",
        std::string("a\0b\0c", 5),
    };
    for (const std::string& message : hostile) {
        add(message, message);
        EXPECT_LE(rows().size(), 12U);
        for (const PageItem& item : items()) EXPECT_LE(item.text.size(), 512U);
    }
}
